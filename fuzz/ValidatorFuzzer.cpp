#include <cstdint>
#include <optional>
#include <string>
#include <utility>

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

void checkArguments(JsonObject arguments) {
  auto taken = takeDeclared<TestPayloadArguments>(arguments);
  if (taken.refusal()) return;
  AgentTestSchema payload;
  std::move(taken).moveInto(payload);
  checkJudgement(payload);
}

}  // namespace

/// The input is a payload: a file's, or the arguments of create_test, which take nearly anything.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto document = read({reinterpret_cast<const char*>(data), size});
  if (!document) return 0;
  checkFile(*document);
  if (const auto* arguments = document->object()) checkArguments(*arguments);
  return 0;
}
