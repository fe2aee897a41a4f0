// Changes inputs of JSON, one value a line, so that they mostly stay JSON: a fuzzer that this
// source is linked into spends its time behind the reader instead of in it.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/text/Unicode.h"

/// What the fuzzer does to bytes by itself, with the words of its dictionary.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace corvane::testing {

namespace {

std::string mutatedText(std::string text) {
  constexpr std::size_t mostGrowth = 40;
  const std::size_t size = text.size();
  text.resize(size + mostGrowth);
  auto* bytes = reinterpret_cast<std::uint8_t*>(text.data());
  text.resize(LLVMFuzzerMutate(bytes, size, text.size()));
  return toValidUtf8(text);
}

/// Makes one change at a time to a value, anywhere in it.
class ValueMutator {
 public:
  explicit ValueMutator(unsigned seed) : random(seed) {}

  void change(AnyCodable& root) {
    AnyCodable& place = anyOf(root);
    switch (below(6)) {
      case 0:
        place = scalar();
        break;
      case 1: {
        const auto* text = place.string();
        place = mutatedText(text && below(2) == 0 ? *text : std::string());
        break;
      }
      case 2: {
        AnyCodable copy = anyOf(root);
        place = std::move(copy);
        break;
      }
      case 3:
        place = below(2) == 0 ? AnyCodable(AnyCodable::Array{place})
                              : AnyCodable(JsonObject{{mutatedText(""), place}});
        break;
      default:
        changeContainer(place, anyOf(root));
    }
  }

  /// Puts a piece of `other` somewhere into `root`.
  void graft(AnyCodable& root, AnyCodable other) { anyOf(root) = AnyCodable(anyOf(other)); }

  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random()) % limit; }

 private:
  AnyCodable& anyOf(AnyCodable& root) {
    std::vector<AnyCodable*> all{&root};
    for (std::size_t i = 0; i < all.size(); ++i) {
      auto& value = all[i]->value();
      if (auto* array = std::get_if<AnyCodable::Array>(&value)) {
        for (auto& element : *array) all.push_back(&element);
      } else if (auto* object = std::get_if<JsonObject>(&value)) {
        for (auto& member : *object) all.push_back(&member.value);
      }
    }
    return *all[below(all.size())];
  }

  AnyCodable scalar() {
    using Integers = std::numeric_limits<std::int64_t>;
    const std::array<AnyCodable, 13> scalars{nullptr,
                                             true,
                                             false,
                                             0,
                                             -1,
                                             1,
                                             0.5,
                                             Integers::max(),
                                             Integers::min(),
                                             1e308,
                                             5e-324,
                                             "",
                                             AnyCodable::Array()};
    return scalars[below(scalars.size())];
  }

  /// Takes an element away, adds one or renames a key; other kinds of values are left alone.
  void changeContainer(AnyCodable& place, AnyCodable added) {
    if (auto* array = std::get_if<AnyCodable::Array>(&place.value())) {
      const auto at = array->begin() + static_cast<std::ptrdiff_t>(below(array->size() + 1));
      if (at != array->end() && below(2) == 0) {
        array->erase(at);
      } else {
        // More of the same kind is what an array mostly takes.
        const bool same = !array->empty() && below(4) != 0;
        if (same) added = AnyCodable((*array)[below(array->size())]);
        array->insert(at, std::move(added));
      }
    } else if (auto* object = std::get_if<JsonObject>(&place.value())) {
      std::vector<JsonObject::Member> members(std::make_move_iterator(object->begin()),
                                              std::make_move_iterator(object->end()));
      const auto at = members.begin() + static_cast<std::ptrdiff_t>(below(members.size() + 1));
      if (at == members.end()) {
        members.push_back({mutatedText(""), std::move(added)});
      } else if (below(2) == 0) {
        members.erase(at);
      } else {
        at->key = mutatedText(below(2) == 0 ? at->key : "");
      }
      *object = JsonObject(std::move(members));
    }
  }

  std::minstd_rand random;
};

/// One line of an input, and what stands around it.
struct PickedLine {
  std::string_view before;
  std::string_view line;
  std::string_view after;
};

PickedLine pickLine(std::string_view text, std::size_t at) {
  const std::size_t end = std::min(text.find('\n', at), text.size());
  const std::size_t lineFeed = at == 0 ? std::string_view::npos : text.rfind('\n', at - 1);
  const std::size_t begin = lineFeed == std::string_view::npos ? 0 : lineFeed + 1;
  return {text.substr(0, begin), text.substr(begin, end - begin), text.substr(end)};
}

std::optional<AnyCodable> readIfJson(std::string_view text) {
  try {
    return readJson(text);
  } catch (const DecodeError&) {
    return std::nullopt;
  }
}

std::string_view asText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Writes the changed line between its neighbours; 0 when the buffer is too small.
std::size_t join(const PickedLine& from, const AnyCodable& line, std::uint8_t* into,
                 std::size_t capacity) {
  const std::string joined = std::string(from.before).append(toJson(line)).append(from.after);
  if (joined.size() > capacity) return 0;
  std::memcpy(into, joined.data(), joined.size());
  return joined.size();
}

}  // namespace

}  // namespace corvane::testing

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
  using namespace corvane::testing;
  ValueMutator mutator(seed);
  const auto picked = pickLine(asText(data, size), mutator.below(size + 1));
  // Now and then the text is damaged as any other would be.
  auto line = mutator.below(8) == 0 ? std::nullopt : readIfJson(picked.line);
  if (line) {
    for (std::size_t changes = 1 + mutator.below(3); changes > 0; --changes) mutator.change(*line);
    if (const std::size_t changed = join(picked, *line, data, maxSize)) return changed;
  }
  return LLVMFuzzerMutate(data, size, maxSize);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data, std::size_t size,
                                                 const std::uint8_t* other, std::size_t otherSize,
                                                 std::uint8_t* out, std::size_t maxOut,
                                                 unsigned seed) {
  using namespace corvane::testing;
  ValueMutator mutator(seed);
  const auto picked = pickLine(asText(data, size), mutator.below(size + 1));
  const auto line = pickLine(asText(other, otherSize), mutator.below(otherSize + 1)).line;
  auto root = readIfJson(picked.line);
  auto given = readIfJson(line);
  if (!root || !given) return 0;
  mutator.graft(*root, std::move(*given));
  return join(picked, *root, out, maxOut);
}
