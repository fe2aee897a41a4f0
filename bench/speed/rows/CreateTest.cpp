#include <stdexcept>

#include "CorvaneCore/authoring/TestValidator.h"
#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "bench/speed/Documents.h"
#include "bench/speed/Messages.h"
#include "bench/speed/WholeCall.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

namespace {

/// The schema that the server publishes for create_test.
std::string publishedSchema(const Setting& setting, const std::filesystem::path& home) {
  Contender contender(setting.serverIn(home));
  contender.initialize();
  const AnyCodable reply = readJson(
      contender.ask("{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"tools/list\"}\n", "create_test"));
  const auto& tools = *reply.find("result")->findAs<AnyCodable::Array>("tools");
  for (const AnyCodable& tool : tools) {
    if (*tool.findAs<std::string>("name") == "create_test") {
      return toJson(*tool.find("inputSchema"));
    }
  }
  return "{}";
}

/// The median milliseconds that validating the test takes which the server has written.
double validationMilliseconds(const AgentPaths& paths) {
  const std::filesystem::directory_iterator written(paths.agentImportsDirectory());
  const auto payload = AgentTestSchema::read(written->path());
  Samples samples;
  for (int i = 0; i < WholeCall::uncounted + WholeCall::counted; ++i) {
    const auto start = std::chrono::steady_clock::now();
    if (TestValidator::validate(payload).hasErrors())
      throw std::runtime_error("the test is unsound");
    if (i >= WholeCall::uncounted) samples.add(millisecondsSince(start));
  }
  return samples.median();
}

}  // namespace

Rows::Findings Rows::createTest(const Setting& setting) {
  const TemporaryHome home;
  const std::string arguments = Documents::createTestArguments();
  const auto argumentsFile = home.path() / "arguments.json";
  const auto schemaFile = home.path() / "schema.json";
  writeFileWhole(argumentsFile, arguments);
  writeFileWhole(schemaFile, publishedSchema(setting, home.path()));
  WholeCall call(setting, home.path(), Messages::call(1, "create_test", arguments),
                 "dispatched to Corvane");
  Samples validations;
  for (int i = 0; i < setting.rounds; ++i) {
    call.addServerRound();
    validations.add(validationMilliseconds(home.paths()));
    call.addNodeJob("validate.mjs", {schemaFile, argumentsFile});
  }
  const std::string test = "2,000 interactions (" + megabytes(argumentsFile) + ")";
  Finding whole =
      timesBetter("`create_test` with " + test +
                      ", validated and written, whole call, against ajv validating alone",
                  10, call.ratio());
  call.describe(whole);
  Finding validation = timesBetter("the validation in it, against ajv's", 10,
                                   call.nodeMilliseconds() / validations.median());
  validation.ours = shortNumber(validations.median()) + " ms";
  validation.others = whole.others;
  return {whole, validation};
}

}  // namespace corvane::testing
