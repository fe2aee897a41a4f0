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
  const auto nodesFolder = home.path() / "node";
  std::filesystem::create_directory(nodesFolder);
  const std::string request = Messages::call(1, "create_test", arguments);
  WholeCall againstAjv(setting, home.path(), request, "dispatched to Corvane");
  WholeCall againstNode = againstAjv;
  Samples validations;
  for (int i = 0; i < setting.rounds; ++i) {
    againstAjv.addServerRound();
    againstAjv.addNodeJob("validate.mjs", {schemaFile, argumentsFile});
    againstNode.addServerRound();
    againstNode.addFloorRound({"write", nodesFolder / "floor"});
    againstNode.addNodeRound("create_test.mjs", {schemaFile, nodesFolder});
    validations.add(validationMilliseconds(home.paths()));
  }
  const std::string whole = "`create_test` with 2,000 interactions (" + megabytes(argumentsFile) +
                            "), validated and written, whole call, against ";
  Finding wholeJob = againstNode.fasterThanNode(whole + "Node doing the same", 10);
  wholeJob.others +=
      "; reading and writing alone, in C, " + shortNumber(againstNode.floorMilliseconds()) + " ms";
  return {againstAjv.fasterThanNode(whole + "ajv validating alone", 5), std::move(wholeJob),
          timesBetter("the validation in it, against ajv's", 10,
                      againstAjv.nodeMilliseconds() / validations.median())
              .with(shortNumber(validations.median()) + " ms",
                    shortNumber(againstAjv.nodeMilliseconds()) + " ms")};
}

}  // namespace corvane::testing
