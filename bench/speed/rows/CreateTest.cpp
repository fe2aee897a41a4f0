#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "bench/speed/Documents.h"
#include "bench/speed/Messages.h"
#include "bench/speed/WholeCall.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane {

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

}  // namespace

Rows::Findings Rows::createTest(const Setting& setting) {
  const TemporaryHome home;
  const std::string arguments = Documents::createTestArguments();
  const auto argumentsFile = home.path() / "arguments.json";
  const auto schemaFile = home.path() / "schema.json";
  writeFileWhole(argumentsFile, arguments);
  writeFileWhole(schemaFile, publishedSchema(setting, home.path()));
  WholeCall call(setting, home.path());
  for (int i = 0; i < setting.rounds; ++i) {
    call.addServerRound(Messages::call(1, "create_test", arguments), "dispatched to Corvane");
    call.addNodeRound("validate.mjs", {schemaFile, argumentsFile});
  }
  Finding finding =
      timesBetter("`create_test` with 2,000 interactions (" + megabytes(argumentsFile) +
                      "), validated and written, whole call, against ajv validating alone",
                  10, call.ratio());
  call.describe(finding);
  return {finding};
}

}  // namespace corvane
