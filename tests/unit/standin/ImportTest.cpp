#include <gmock/gmock.h>

#include "CorvaneCore/files/Folder.h"
#include "tests/support/TestFiles.h"
#include "tests/unit/standin/StandInFixture.h"

namespace corvane::testing {

using namespace standin;

namespace {

using ::testing::ElementsAre;
using namespace std::chrono_literals;

AgentInteraction interaction(const std::string& type, const std::string& description = "") {
  AgentInteraction interaction;
  interaction.type = type;
  interaction.description = description;
  return interaction;
}

AgentInteraction command(const std::string& name, const std::string& description = "") {
  auto step = interaction("builtIn", description);
  step.parameters.emplace();
  step.parameters->set("command", AnyCodable(name));
  return step;
}

AgentInteraction reuse(const std::string& test, std::int64_t fromStep, std::int64_t toStep) {
  auto step = interaction("reuseSteps");
  step.referencedTestName = test;
  step.fromStep = fromStep;
  step.toStep = toStep;
  return step;
}

AgentInteraction runTest(const std::string& test) {
  auto step = interaction("runTest");
  step.referencedTestName = test;
  return step;
}

AgentInteraction block(const std::string& udiName) {
  auto step = interaction("userDefined");
  step.udiName = udiName;
  return step;
}

AgentInteraction delay(std::int64_t seconds) {
  auto step = interaction("delay");
  step.parameters.emplace();
  step.parameters->set("seconds", AnyCodable(seconds));
  return step;
}

class ImportTest : public StandInFixture {
 protected:
  void SetUp() override { start(); }

  /// A payload of one test with these steps between the app's start and end.
  [[nodiscard]] AgentTestSchema payload(std::vector<AgentInteraction> steps) const {
    AgentTestSchema payload;
    payload.requestId = makeRequestId();
    payload.projectName = "Corner Shop";
    payload.iosProjectPath = "/src/shop";
    payload.bundleIdentifier = "com.example.cornershop";
    payload.createdAt = clock.date();
    auto& test = payload.tests.emplace_back();
    test.name = "Order";
    test.interactions = {command("terminateApplication"),
                         command("openApplication", "{{APP_NAME}}")};
    test.interactions.insert(test.interactions.end(), steps.begin(), steps.end());
    test.interactions.push_back(command("terminateApplication"));
    return payload;
  }

  std::string import(const AgentTestSchema& payload) const {
    writeRecord(payload, payload.fileURL(paths, FileTime()));
    return payload.requestId.value_or("");
  }
};

TEST_F(ImportTest, FilesTheTestAndRunsIt) {
  auto order = payload({reuse("Add to cart and remove", 0, 2), block("Fill shipping address"),
                        runTest("Browse the catalogue"), delay(2),
                        interaction("visualAssert", "The text \"Thank you\" is shown")});
  order.suiteName = "Purchase";
  const auto versions = follow(import(order));
  std::vector<std::string> statuses;
  for (const auto& version : versions) {
    if (statuses.empty() || statuses.back() != version.status) statuses.push_back(version.status);
    EXPECT_EQ(version.source, "create_test");
    EXPECT_EQ(version.projectName, "Corner Shop");
  }
  EXPECT_THAT(statuses, ElementsAre("received", "validating", "building", "running", "passed"));
  EXPECT_TRUE(listVisible(paths.agentImportsDirectory()).empty());

  const auto test = publishedTest("Order");
  EXPECT_THAT(
      stepLines(test.steps),
      ElementsAre("tap: Tap the product \"Enamel mug\"", "tap: Tap the button \"Add to cart\"",
                  "tap: Tap the tab \"Cart\"", "userDefined: Fill shipping address",
                  "runTest: Run the test \"Browse the catalogue\"", "delay: Wait 2 seconds",
                  "visualAssert: The text \"Thank you\" is shown"));
  EXPECT_EQ(test.autoScaffold, true);
  EXPECT_EQ(test.verified, true);
  const auto suite = publishedProject("Corner Shop").suites.at(1);
  EXPECT_EQ(suite.name, "Purchase");
  EXPECT_EQ(suite.testIds.back(), test.id);

  const auto& last = versions.back();
  EXPECT_EQ(last.authoredTest.value().testId, test.id);
  EXPECT_EQ(last.authoredTest.value().stepCount, 7);
  EXPECT_EQ(last.tests.value().at(0).testId, test.id);
  EXPECT_EQ(last.summary.value().testsPassed, 1);
}

TEST_F(ImportTest, WithoutAutoRunItOnlyImports) {
  auto order = payload({});
  order.autoRun = false;
  const auto result = finalResult(import(order));
  EXPECT_EQ(result.status, "imported");
  EXPECT_EQ(result.message, "Imported 1 test into 'Corner Shop'.");
  EXPECT_FALSE(result.tests);
  EXPECT_EQ(publishedTest("Order").verified, false);
  EXPECT_EQ(publishedProject("Corner Shop").suites.back().name, "Agent");
}

TEST_F(ImportTest, ATestOfThatNameIsUpdatedInPlace) {
  ASSERT_EQ(finalResult(drop({"Redeem a voucher"})).status, "failed");
  const auto before = publishedTest("Redeem a voucher");
  ASSERT_TRUE(before.lastFailure);
  auto changed = payload({interaction("visualAssert", "The text \"Cart\" is shown")});
  changed.tests[0].name = "Redeem a voucher";
  changed.autoRun = false;
  (void)finalResult(import(changed));
  const auto after = publishedTest("Redeem a voucher");
  EXPECT_EQ(after.id, before.id);
  EXPECT_EQ(after.steps.size(), 1U);
  EXPECT_EQ(after.flakinessScore, before.flakinessScore);
  EXPECT_EQ(after.isFlaky, before.isFlaky);
  EXPECT_EQ(after.lastFailure.value().errorMessage, before.lastFailure->errorMessage);
  const auto project = publishedProject("Corner Shop");
  EXPECT_EQ(project.suites.size(), 2U);
  EXPECT_EQ(project.tests.size(), 6U);
}

TEST_F(ImportTest, ASuiteThatIsNamedTakesTheTestOver) {
  auto moved = payload({});
  moved.tests[0].name = "Browse the catalogue";
  moved.suiteName = "Nightly";
  moved.autoRun = false;
  (void)finalResult(import(moved));
  const auto suites = publishedProject("Corner Shop").suites;
  ASSERT_EQ(suites.size(), 3U);
  EXPECT_EQ(suites[0].testIds.size(), 1U);
  EXPECT_EQ(suites[2].name, "Nightly");
  EXPECT_THAT(suites[2].testIds, ElementsAre(publishedTest("Browse the catalogue").id));
}

TEST_F(ImportTest, AnInvalidPayloadFailsWithItsIssues) {
  auto broken = payload({interaction("tap", "Tap \"Cart\"")});
  const auto before = published();
  const auto versions = follow(import(broken));
  ASSERT_GE(versions.size(), 3U);
  EXPECT_EQ(versions[1].status, "validating");
  EXPECT_EQ(versions[1].message, "Checking 1 imported test.");
  const auto& last = versions.back();
  EXPECT_EQ(last.status, "importFailed");
  EXPECT_TRUE(last.terminal);
  EXPECT_EQ(last.message, "Nothing was imported: 1 error in the payload.");
  const auto& issues = last.validationIssues.value();
  ASSERT_EQ(issues.size(), 1U);
  EXPECT_EQ(issues[0].code, ValidationIssue::Code::compositionOnly);
  EXPECT_EQ(issues[0].path, "tests[0].interactions[2].type");
  EXPECT_EQ(AgentWire::encode(published().projects), AgentWire::encode(before.projects));
}

TEST_F(ImportTest, ReferencesAreLookedUp) {
  auto nested = interaction("visualAssert", "The text \"Cart\" is shown");
  auto child = runTest("Nobody's test");
  child.previousStepCondition = "previousFailed";
  nested.children = std::vector{child};
  auto broken = payload({runTest("Nothing"), reuse("Sign in", 2, 40), block("No block"), nested});
  const auto result = finalResult(import(broken));
  EXPECT_EQ(result.status, "importFailed");
  std::vector<std::string> errors;
  for (const auto& issue : result.validationIssues.value()) {
    if (issue.severity != ValidationIssue::Severity::error) continue;
    EXPECT_EQ(issue.code, ValidationIssue::Code::invalidEnumValue);
    errors.push_back(issue.path);
    if (issue.path.ends_with(".udiName")) {
      EXPECT_EQ(issue.suggestion, AnyCodable("Fill shipping address"));
      EXPECT_EQ(issue.message,
                "The library has no building block named 'No block'. Building blocks: 'Fill "
                "shipping address'.");
    }
  }
  EXPECT_THAT(errors,
              ElementsAre("tests[0].interactions[2].referencedTestName",
                          "tests[0].interactions[3].toStep", "tests[0].interactions[4].udiName",
                          "tests[0].interactions[5].children[0].referencedTestName"));
}

// Fails when the last step of a test is taken for one behind it, or the one behind it for a step.
TEST_F(ImportTest, StepsAreReusedToTheLastOne) {
  auto whole = payload({reuse("Browse the catalogue", 0, 4)});
  whole.autoRun = false;
  EXPECT_EQ(finalResult(import(whole)).status, "imported");
  auto beyond = payload({reuse("Browse the catalogue", 0, 5)});
  const auto result = finalResult(import(beyond));
  EXPECT_EQ(result.status, "importFailed");
  EXPECT_EQ(result.validationIssues.value().at(0).message,
            "'Browse the catalogue' has 5 steps, so there is no step 5.");
}

// Fails when only tests that are filed already can be referred to.
TEST_F(ImportTest, ATestMayRunOneBeforeItInThePayload) {
  auto both = payload({});
  both.autoRun = false;
  auto& second = both.tests.emplace_back(both.tests.front());
  second.name = "Order twice";
  second.index = 1;
  second.interactions.insert(second.interactions.end() - 1, runTest("Order"));
  EXPECT_EQ(finalResult(import(both)).status, "imported");
}

TEST_F(ImportTest, WarningsAreKeptWithTheRun) {
  auto twice = payload({});
  twice.tests.push_back(twice.tests[0]);
  twice.tests[1].name = "Order again";
  twice.buildFirst = false;
  const auto result = finalResult(import(twice));
  EXPECT_EQ(result.status, "passed");
  EXPECT_EQ(result.summary.value().tests, 2);
  EXPECT_FALSE(result.authoredTest);
  ASSERT_EQ(result.validationIssues.value().size(), 1U);
  EXPECT_EQ(result.validationIssues->front().code, ValidationIssue::Code::duplicateTestIndex);
}

TEST_F(ImportTest, CreatesAProjectThatDoesNotExist) {
  auto first = payload({});
  first.projectName = "Maps";
  first.bundleIdentifier = "com.example.maps";
  first.iosProjectPath.reset();
  first.buildFirst = false;
  const auto result = finalResult(import(first));
  EXPECT_EQ(result.status, "passed");
  EXPECT_EQ(result.appUnderTest.value().bundleId, "com.example.maps");
  const auto project = publishedProject("Maps");
  EXPECT_EQ(project.iosBuildConfigured, false);
  EXPECT_EQ(project.tests.size(), 1U);
}

TEST_F(ImportTest, ValuesOfParametersComeWithTheTest) {
  auto signIn = payload({interaction("visualAssert", "The text \"$greeting\" is shown")});
  signIn.buildFirst = false;
  const auto blocked = finalResult(import(signIn));
  EXPECT_EQ(blocked.status, "blocked");
  EXPECT_EQ(blocked.blocked.value().code, "missingParameters");

  signIn.requestId = makeRequestId();
  signIn.tests[0].parameterValues = std::map<std::string, std::string>{{"greeting", "Hello"}};
  const auto result = finalResult(import(signIn));
  EXPECT_EQ(result.status, "passed");
  EXPECT_EQ(result.tests.value().at(0).steps.at(0).description, "The text \"Hello\" is shown");
}

TEST_F(ImportTest, CanBeCancelledAtEveryStage) {
  const auto checked = import(payload({}));
  pass(200ms);
  ASSERT_EQ(status(checked), "validating");
  dropCancelMarker(checked);
  const auto unfiled = finalResult(checked);
  EXPECT_EQ(unfiled.status, "cancelled");
  EXPECT_EQ(unfiled.message, "Cancelled before the tests were imported.");

  const auto built = import(payload({}));
  pass(1s);
  ASSERT_EQ(status(built), "building");
  dropCancelMarker(built);
  const auto filed = finalResult(built);
  EXPECT_EQ(filed.status, "cancelled");
  EXPECT_EQ(filed.source, "create_test");
  EXPECT_EQ(publishedTest("Order").name, "Order");
}

TEST_F(ImportTest, QuittingEndsIt) {
  const auto id = import(payload({}));
  pass(1s);
  standIn->quit();
  EXPECT_EQ(status(id), "error");
  EXPECT_EQ(result(id).source, "create_test");
}

TEST_F(ImportTest, APayloadThatCannotBeReadIsAnswered) {
  const auto id = makeRequestId();
  writeFileWhole(paths.agentImportsDirectory() / ("Shop-Order-" + id + ".corvane.json"), "{}");
  const auto answer = finalResult(id);
  EXPECT_EQ(answer.status, "error");
  EXPECT_EQ(answer.source, "create_test");
  EXPECT_EQ(answer.message, "Corvane cannot use the request file: version: required");
}

TEST_F(ImportTest, APayloadDroppedByHandIsTakenUnderAnyName) {
  auto order = payload({});
  order.autoRun = false;
  writeRecord(order, paths.agentImportsDirectory() / "order.corvane.json");
  EXPECT_EQ(finalResult(*order.requestId).status, "imported");

  order.requestId.reset();
  order.tests[0].name = "Without an id";
  writeRecord(order, paths.agentImportsDirectory() / "again.corvane.json");
  pass(2s);
  EXPECT_EQ(publishedTest("Without an id").name, "Without an id");
}

}  // namespace
}  // namespace corvane::testing
