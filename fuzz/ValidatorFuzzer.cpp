#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CorvaneCore/authoring/TestPayloadArguments.h"
#include "CorvaneCore/authoring/TestValidator.h"
#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "fuzz/Require.h"

namespace {

using namespace corvane;
using namespace corvane::testing;

void checkJudgement(const AgentTestSchema& payload) {
  const std::string before = AgentWire::encode(payload);
  const ValidationResult result = TestValidator::validate(payload);
  const std::string written = AgentWire::encode(result);
  require(AgentWire::encode(TestValidator::validate(payload)) == written, "judged alike twice");
  require(AgentWire::encode(payload) == before, "a judged payload is as it was");
  require(result.hasErrors() == !result.errors().empty(), "errors are counted alike");
  for (const auto& issue : result.issues) {
    require(!issue.path.empty() && !issue.message.empty(), "an issue says what and where");
  }
  // As create_test shows it.
  require(toJson(readJson(indentedJson(written))) == written, "issues read back");

  // What goes to the app as a file is judged there again.
  const auto received = AgentWire::decode<AgentTestSchema>(before);
  require(AgentWire::encode(TestValidator::validate(received)) == written,
          "a payload is judged alike on the other side");
}

std::optional<AnyCodable> read(std::string_view text) {
  try {
    return readJson(text);
  } catch (const DecodeError&) {
    return std::nullopt;
  }
}

void checkFile(const AnyCodable& document) {
  AgentTestSchema payload;
  try {
    payload = decodeValue<AgentTestSchema>(document);
  } catch (const DecodeError&) {
    return;
  }
  checkJudgement(payload);
}

/// What becomes of arguments, notes on what was dropped included.
struct Taken {
  AgentTestSchema payload;
  std::optional<std::string> refusal;
  std::vector<std::string> notes;
};

Taken finish(TestPayloadArguments arguments, std::vector<std::string> notes) {
  if (arguments.interactions) {
    const auto& dropped = arguments.interactions->dropped;
    notes.insert(notes.end(), dropped.begin(), dropped.end());
  }
  Taken taken{{}, arguments.refusal(), std::move(notes)};
  std::move(arguments).moveInto(taken.payload);
  return taken;
}

void checkArguments(std::string_view text, JsonObject arguments) {
  std::vector<std::string> notes;
  const auto note = [&notes](std::string_view key, std::string_view why) {
    notes.push_back(droppedNote(key, why));
  };
  auto read = TestPayloadArguments::read(text, note);
  require(read.has_value(), "an object is read as one");
  const Taken fromText = finish(*std::move(read), std::exchange(notes, {}));
  auto taken = takeDeclared<TestPayloadArguments>(arguments, note);
  const Taken fromValues = finish(std::move(taken), std::exchange(notes, {}));
  require(AgentWire::encode(fromText.payload) == AgentWire::encode(fromValues.payload),
          "arguments are the same whether they are read as values first or not");
  require(fromText.refusal == fromValues.refusal, "they are refused alike");
  require(fromText.notes == fromValues.notes, "and the same is dropped");
  if (!fromText.refusal) checkJudgement(fromText.payload);
}

}  // namespace

/// The input is a payload: a file's, or the arguments of create_test, which take nearly anything.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto document = read(text);
  if (!document) return 0;
  checkFile(*document);
  if (const auto* arguments = document->object()) checkArguments(text, *arguments);
  return 0;
}
