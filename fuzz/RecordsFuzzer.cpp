#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/authoring/ValidationResult.h"
#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/text/Unicode.h"
#include "CorvaneCore/workspace/AgentActivity.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "corvane_mcp/protocol/JsonRpc.h"
#include "corvane_mcp/protocol/McpRecords.h"
#include "fuzz/Require.h"

namespace {

using namespace corvane;
using namespace corvane::testing;

std::optional<AnyCodable> read(std::string_view text) {
  try {
    return readJson(text);
  } catch (const DecodeError&) {
    return std::nullopt;
  }
}

/// Whether `written`, which came of reading `document` as a record, says the same in that place.
bool saysTheSame(const AnyCodable& written, const AnyCodable& document) {
  if (written == document) return true;
  if (const auto* text = written.string()) {
    const auto date = parseDate(*text);
    return date && document.string() && parseDate(*document.string()) == date;
  }
  // A field of fractions that holds a whole number.
  const auto* read = document.integer();
  const auto* integer = written.integer();
  const auto* number = written.number();
  const double value = number ? *number : integer ? static_cast<double>(*integer) : 0;
  return read && (number || integer) && static_cast<double>(*read) == value;
}

/// A record leaves out what it does not know, and makes nothing up but what its defaults say.
void requireNothingMadeUp(const AnyCodable& written, const AnyCodable& document) {
  std::vector<std::pair<const AnyCodable*, const AnyCodable*>> pending{{&written, &document}};
  while (!pending.empty()) {
    const auto [ours, given] = pending.back();
    pending.pop_back();
    if (ours->object() && given->object()) {
      for (const auto& [key, value] : *ours->object()) {
        const AnyCodable* source = given->find(key);
        if (key == "failureReason" && (!source || source->isNull()))
          source = given->find("errorMessage");
        const bool isDefault = key == "healedByAI" && (!source || source->isNull());
        require(source || isDefault, "a record makes no member up");
        if (!isDefault) pending.emplace_back(&value, source);
      }
    } else if (ours->array() && given->array()) {
      require(ours->array()->size() == given->array()->size(), "a record keeps its elements");
      for (std::size_t i = 0; i < ours->array()->size(); ++i) {
        pending.emplace_back(&(*ours->array())[i], &(*given->array())[i]);
      }
    } else {
      require(saysTheSame(*ours, *given), "a record keeps its values");
    }
  }
}

template <class Record>
void checkRecord(const AnyCodable& document) {
  Record record;
  try {
    record = decodeValue<Record>(document);
  } catch (const DecodeError& error) {
    const std::string_view text = error.what();
    require(!text.empty() && isValidUtf8(text), "an error says something, in UTF-8");
    require(escapeControls(text) == text, "an error is one line");
    return;
  }
  const std::string written = AgentWire::encode(record);
  require(AgentWire::encode(AgentWire::decode<Record>(written)) == written,
          "a record reads back as it was written");
  const AnyCodable value = encodeValue(record);
  require(toJson(value) == written, "text and value of a record say the same");
  requireNothingMadeUp(value, document);
}

/// The name under which an input holds a record, and what is done with it.
struct NamedRecord {
  std::string_view name;
  void (*check)(const AnyCodable& document);
};

constexpr std::array records{
    NamedRecord{"AgentActivity", checkRecord<AgentActivity>},
    NamedRecord{"AgentContext", checkRecord<AgentContext>},
    NamedRecord{"AgentExploreRequest", checkRecord<AgentExploreRequest>},
    NamedRecord{"AgentLibraryRequest", checkRecord<AgentLibraryRequest>},
    NamedRecord{"AgentRunRequest", checkRecord<AgentRunRequest>},
    NamedRecord{"AgentRunResult", checkRecord<AgentRunResult>},
    NamedRecord{"AgentTestSchema", checkRecord<AgentTestSchema>},
    NamedRecord{"CancelMarker", checkRecord<CancelMarker>},
    NamedRecord{"InitializeResult", checkRecord<InitializeResult>},
    NamedRecord{"JSONRPCRequest", checkRecord<JSONRPCRequest>},
    NamedRecord{"JSONRPCResponse", checkRecord<JSONRPCResponse>},
    NamedRecord{"ToolsCallParams", checkRecord<ToolsCallParams>},
    NamedRecord{"ToolsCallResult", checkRecord<ToolsCallResult>},
    NamedRecord{"ToolsListResult", checkRecord<ToolsListResult>},
    NamedRecord{"ValidationResult", checkRecord<ValidationResult>},
};

}  // namespace

/// The input is an object: what each key names is read as the record of that name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto document = read({reinterpret_cast<const char*>(data), size});
  if (!document) return 0;
  for (const auto& record : records) {
    if (const AnyCodable* found = document->find(record.name)) record.check(*found);
  }
  return 0;
}
