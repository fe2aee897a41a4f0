#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/text/Unicode.h"
#include "fuzz/Require.h"

namespace {

using corvane::AnyCodable;
using corvane::testing::require;
using Other = nlohmann::json;

std::optional<AnyCodable> read(corvane::JsonReader& reader, std::string_view text) {
  try {
    return reader.read(text);
  } catch (const corvane::DecodeError& error) {
    require(corvane::escapeControls(error.what()) == error.what(), "an error is one line");
    require(corvane::isValidUtf8(error.what()), "an error is UTF-8");
    return std::nullopt;
  }
}

bool canBeSkipped(corvane::JsonReader& reader, std::string_view text) {
  try {
    reader.read(text, [](corvane::JsonCursor& cursor) { cursor.skip(); });
    return true;
  } catch (const corvane::DecodeError&) {
    return false;
  }
}

/// The other library keeps integers up to 2^64 and knows whole numbers from doubles by their
/// spelling; here a number is an integer when its exact value fits 64 bits, and else a double.
bool sameNumber(const AnyCodable& ours, const Other& theirs) {
  if (theirs.is_number_integer() && ours.integer()) {
    return theirs.get<std::int64_t>() == *ours.integer();
  }
  const double number = ours.number() ? *ours.number() : static_cast<double>(*ours.integer());
  return number == theirs.get<double>();
}

bool sameScalar(const AnyCodable& ours, const Other& theirs) {
  if (ours.isNull()) return theirs.is_null();
  if (ours.boolean()) return theirs.is_boolean() && theirs.get<bool>() == *ours.boolean();
  if (ours.string())
    return theirs.is_string() && theirs.get_ref<const std::string&>() == *ours.string();
  return theirs.is_number() && sameNumber(ours, theirs);
}

bool same(const AnyCodable& ours, const Other& theirs) {
  std::vector<std::pair<const AnyCodable*, const Other*>> pending{{&ours, &theirs}};
  while (!pending.empty()) {
    const auto [a, b] = pending.back();
    pending.pop_back();
    if (const auto* array = a->array()) {
      if (!b->is_array() || b->size() != array->size()) return false;
      for (std::size_t i = 0; i < array->size(); ++i) pending.emplace_back(&(*array)[i], &(*b)[i]);
    } else if (const auto* object = a->object()) {
      if (!b->is_object() || b->size() != object->size()) return false;
      for (const auto& [key, value] : *object) {
        if (!b->contains(key)) return false;
        pending.emplace_back(&value, &(*b)[key]);
      }
    } else if (!sameScalar(*a, *b)) {
      return false;
    }
  }
  return true;
}

/// The other library passes over a byte order mark and takes a NUL for the end of the text.
bool readsMoreThere(std::string_view text) {
  return text.starts_with("\xEF\xBB\xBF") || text.find('\0') != std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // One reader for all texts, as in the server: nothing of one may show in the next.
  static corvane::JsonReader reader;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto value = read(reader, text);
  require(canBeSkipped(reader, text) == value.has_value(), "what is skipped is judged alike");
  if (readsMoreThere(text)) {
    require(!value, "a byte order mark and a NUL are refused");
    return 0;
  }
  const Other other = Other::parse(text, nullptr, /*allow_exceptions=*/false);
  require(value.has_value() != other.is_discarded(), "both libraries judge the text alike");
  if (!value) return 0;
  require(same(*value, other), "both libraries read the same value");

  // A double that is whole is an integer from then on.
  const std::string written = toJson(*value);
  const auto again = corvane::readJson(written);
  require(same(again, other), "what was written reads back");
  require(toJson(again) == written, "writing twice gives the same text");
  require(corvane::readJson(toJson(*value, corvane::SlashStyle::escaped)) == again,
          "escaped slashes read back");
  return 0;
}
