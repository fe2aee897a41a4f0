#include <gtest/gtest.h>

#include "CorvaneCore/capture/CaptureSession.h"
#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "tests/support/ErrorText.h"
#include "tests/support/TemporaryHome.h"
#include "tests/unit/core/RecordRules.h"

namespace corvane::testing {
namespace {

constexpr const char* id = "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345";

constexpr const char* fullText =
    R"({"appUnderTest":{"build":"42","bundleId":"com.example.shop","version":"1.0"},)"
    R"("authoredTest":{"completionPercent":87.5,"stepCount":4,"testId":"t1","testName":"Log in"},)"
    R"("authoredTests":[{"completionPercent":100,"stepCount":2,"testId":"t2","testName":"Pay"}],)"
    R"("blocked":{"code":"budgetExceeded","message":"No credits","url":"https://example.com/pay"},)"
    R"("creditBalance":99.5,"creditsSpent":0.25,"message":"done","platform":"ios",)"
    R"("progress":{"currentStep":3,"lastStepStatus":"passed","lastStepTitle":"Tap","totalSteps":9},)"
    R"("projectName":"Shop","queuePosition":2,"requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345",)"
    R"("schemaVersion":3,"source":"run_test","status":"failed",)"
    R"("summary":{"durationSeconds":12.5,"tests":2,"testsPassed":1},"terminal":true,)"
    R"("tests":[{"durationSeconds":6.25,"status":"failed","steps":[{"description":"Tap 'Log in'",)"
    R"("durationSeconds":1.5,"failureReason":"not found","healedByAI":true,"index":0,)"
    R"("status":"failed","title":"Tap"}],"testId":"t1","testName":"Log in",)"
    R"("trace":{"artifactsDir":"/captures/1","failedStepIndex":0,"lastStepIndex":1}}],)"
    R"("trace":{"artifactsDir":"/captures/1","failedStepIndex":0,"lastStepIndex":1},)"
    R"("udi":{"name":"login","parameterNames":["user"],"stepCount":3,"udiId":"u1"},)"
    R"("updatedAt":"2026-01-31T12:00:00Z","validationIssues":[{"code":"missingTests",)"
    R"("message":"none","path":"tests","severity":"error","suggestion":["x"]}]})";

constexpr const char* leastText =
    R"({"requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345","schemaVersion":3,"source":"run_test",)"
    R"("status":"running","terminal":false,"updatedAt":"2026-01-31T12:00:00Z"})";

AgentRunResult resultWith(RunStatus status) {
  AgentRunResult result;
  result.requestId = id;
  result.source = "run_test";
  result.setStatus(status);
  result.updatedAt = *parseDate("2026-01-31T12:00:00Z");
  return result;
}

std::string decodeError(std::string_view text) {
  return errorText<DecodeError>([&] { (void)AgentWire::decode<AgentRunResult>(text); });
}

TEST(AgentRunResultTest, EveryMemberFollowsItsRule) {
  using enum Presence;
  expectRecordRules<AgentRunResult>(
      fullText, {
                    {"appUnderTest", "an object", optional},
                    {"appUnderTest.build", "a string", optional},
                    {"appUnderTest.bundleId", "a string", required},
                    {"appUnderTest.version", "a string", optional},
                    {"authoredTest", "an object", optional},
                    {"authoredTest.completionPercent", "a number", optional},
                    {"authoredTest.stepCount", "an integer", required},
                    {"authoredTest.testId", "a string", required},
                    {"authoredTest.testName", "a string", required},
                    {"authoredTests", "an array", optional},
                    {"authoredTests[0]", "an object", entry},
                    {"authoredTests[0].completionPercent", "a number", optional},
                    {"authoredTests[0].stepCount", "an integer", required},
                    {"authoredTests[0].testId", "a string", required},
                    {"authoredTests[0].testName", "a string", required},
                    {"blocked", "an object", optional},
                    {"blocked.code", "a string", required},
                    {"blocked.message", "a string", required},
                    {"blocked.url", "a string", optional},
                    {"creditBalance", "a number", optional},
                    {"creditsSpent", "a number", optional},
                    {"message", "a string", optional},
                    {"platform", "a string", optional},
                    {"progress", "an object", optional},
                    {"progress.currentStep", "an integer", required},
                    {"progress.lastStepStatus", "a string", optional},
                    {"progress.lastStepTitle", "a string", optional},
                    {"progress.totalSteps", "an integer", required},
                    {"projectName", "a string", optional},
                    {"queuePosition", "an integer", optional},
                    {"requestId", "a string", required},
                    {"schemaVersion", "an integer", required},
                    {"source", "a string", required},
                    {"status", "a string", required},
                    {"summary", "an object", optional},
                    {"summary.durationSeconds", "a number", required},
                    {"summary.tests", "an integer", required},
                    {"summary.testsPassed", "an integer", required},
                    {"terminal", "a boolean", required},
                    {"tests", "an array", optional},
                    {"tests[0]", "an object", entry},
                    {"tests[0].durationSeconds", "a number", required},
                    {"tests[0].status", "a string", required},
                    {"tests[0].steps", "an array", required},
                    {"tests[0].steps[0]", "an object", entry},
                    {"tests[0].steps[0].description", "a string", required},
                    {"tests[0].steps[0].durationSeconds", "a number", optional},
                    {"tests[0].steps[0].failureReason", "a string", optional},
                    {"tests[0].steps[0].healedByAI", "a boolean", defaulted},
                    {"tests[0].steps[0].index", "an integer", required},
                    {"tests[0].steps[0].status", "a string", required},
                    {"tests[0].steps[0].title", "a string", required},
                    {"tests[0].testId", "a string", required},
                    {"tests[0].testName", "a string", required},
                    {"tests[0].trace", "an object", optional},
                    {"tests[0].trace.artifactsDir", "a string", required},
                    {"tests[0].trace.failedStepIndex", "an integer", optional},
                    {"tests[0].trace.lastStepIndex", "an integer", optional},
                    {"trace", "an object", optional},
                    {"trace.artifactsDir", "a string", required},
                    {"trace.failedStepIndex", "an integer", optional},
                    {"trace.lastStepIndex", "an integer", optional},
                    {"udi", "an object", optional},
                    {"udi.name", "a string", required},
                    {"udi.parameterNames", "an array", optional},
                    {"udi.parameterNames[0]", "a string", entry},
                    {"udi.stepCount", "an integer", required},
                    {"udi.udiId", "a string", required},
                    {"updatedAt", "a date", required},
                    {"validationIssues", "an array", optional},
                    {"validationIssues[0]", "an object", entry},
                    {"validationIssues[0].code", "a string", required},
                    {"validationIssues[0].message", "a string", required},
                    {"validationIssues[0].path", "a string", required},
                    {"validationIssues[0].severity", "a string", required},
                    {"validationIssues[0].suggestion", "anything", optional},
                });
}

TEST(AgentRunResultTest, FieldsWithoutAValueAreLeftOut) {
  EXPECT_EQ(AgentWire::encode(resultWith(RunStatus::running)), leastText);
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<AgentRunResult>(leastText)), leastText);
  EXPECT_EQ(AgentRunResult::currentSchemaVersion, 3);
}

TEST(AgentRunResultTest, EmptyArraysAreWritten) {
  auto result = resultWith(RunStatus::running);
  result.tests.emplace();
  result.validationIssues.emplace();
  EXPECT_EQ(AgentWire::encode(result),
            R"({"requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345","schemaVersion":3,)"
            R"("source":"run_test","status":"running","terminal":false,"tests":[],)"
            R"("updatedAt":"2026-01-31T12:00:00Z","validationIssues":[]})");
}

TEST(AgentRunResultTest, AnUnknownStatusDecodesWithTheFilesOwnTerminalFlag) {
  for (const bool terminal : {true, false}) {
    for (const char* status : {"teleporting", "passed", "running", ""}) {
      const std::string flag = terminal ? "true" : "false";
      const auto result = AgentWire::decode<AgentRunResult>(
          R"({"requestId":"r","schemaVersion":9,"source":"s","status":")" + std::string(status) +
          R"(","terminal":)" + flag + R"(,"updatedAt":"2026-01-31T12:00:00Z"})");
      EXPECT_EQ(result.status, status);
      EXPECT_EQ(result.terminal, terminal);
      EXPECT_EQ(result.schemaVersion, 9);
    }
  }
}

TEST(AgentRunResultTest, RequiredMembersAreReadFirst) {
  EXPECT_EQ(decodeError(R"({"message":7})"), "schemaVersion: required");
  EXPECT_EQ(decodeError(R"({"schemaVersion":3})"), "requestId: required");
  EXPECT_EQ(decodeError(R"({"schemaVersion":3,"requestId":""})"), "source: required");
  EXPECT_EQ(decodeError(R"({"schemaVersion":3,"requestId":"","source":""})"), "status: required");
  EXPECT_EQ(decodeError(R"({"schemaVersion":3,"requestId":"","source":"","status":""})"),
            "terminal: required");
  EXPECT_EQ(
      decodeError(
          R"({"schemaVersion":3,"requestId":"","source":"","status":"","terminal":true,"tests":7})"),
      "updatedAt: required");
}

TEST(AgentRunResultTest, DatesWithFractionsAreRefused) {
  EXPECT_EQ(decodeError(R"({"requestId":"r","schemaVersion":3,"source":"s","status":"passed",)"
                        R"("terminal":true,"updatedAt":"2026-01-31T12:00:00.123Z"})"),
            "updatedAt: expected an ISO 8601 date-time in whole seconds");
}

TEST(AgentRunResultTest, ErrorsNameThePlace) {
  const auto withSteps = [](std::string_view steps) {
    return R"({"requestId":"r","schemaVersion":3,"source":"s","status":"passed","terminal":true,)"
           R"("tests":[{"durationSeconds":1,"status":"passed","steps":)" +
           std::string(steps) +
           R"(,"testId":"t","testName":"n"}],"updatedAt":"2026-01-31T12:00:00Z"})";
  };
  const std::string good = R"({"description":"","index":0,"status":"","title":""})";
  EXPECT_EQ(decodeError(withSteps("[" + good + R"(,{"index":"1"}])")),
            "tests[0].steps[1].index: expected an integer");
  EXPECT_EQ(decodeError(withSteps("[" + good + "," + good + R"(,{"index":0}])")),
            "tests[0].steps[2].title: required");
  EXPECT_EQ(decodeError(withSteps("[7]")), "tests[0].steps[0]: expected an object");
}

AgentRunResult::Step decodedStep(std::string_view extra) {
  return AgentWire::decode<AgentRunResult::Step>(
      R"({"description":"d","index":0,"status":"failed","title":"t")" + std::string(extra) + "}");
}

TEST(AgentRunResultTest, StepsFallBackToErrorMessageAsTheReason) {
  EXPECT_EQ(decodedStep(R"(,"errorMessage":"old")").failureReason, "old");
  EXPECT_EQ(decodedStep(R"(,"errorMessage":"old","failureReason":null)").failureReason, "old");
  EXPECT_EQ(decodedStep(R"(,"errorMessage":"old","failureReason":"new")").failureReason, "new");
  EXPECT_EQ(decodedStep(R"(,"errorMessage":null)").failureReason, std::nullopt);
  EXPECT_EQ(decodedStep("").failureReason, std::nullopt);
  EXPECT_EQ(AgentWire::encode(decodedStep(R"(,"errorMessage":"old")")),
            R"({"description":"d","failureReason":"old","healedByAI":false,"index":0,)"
            R"("status":"failed","title":"t"})");
  EXPECT_EQ(errorText<DecodeError>([] { (void)decodedStep(R"(,"errorMessage":7)"); }),
            "errorMessage: expected a string");
}

TEST(AgentRunResultTest, StepsWithoutHealedByAIWereNotHealed) {
  EXPECT_FALSE(decodedStep("").healedByAI);
  EXPECT_FALSE(decodedStep(R"(,"healedByAI":null)").healedByAI);
  EXPECT_FALSE(decodedStep(R"(,"healedByAI":false)").healedByAI);
  EXPECT_TRUE(decodedStep(R"(,"healedByAI":true)").healedByAI);
}

TEST(AgentRunResultTest, ACancelledResultHasExactlyTheseBytes) {
  auto result = resultWith(RunStatus::cancelled);
  result.message = "Cancelled by cancel_run before Corvane picked the request up.";
  const TemporaryHome home;
  result.write(home.paths());
  EXPECT_EQ(readFile(home.path() / ".local/share/Corvane/AgentResults/"
                                   "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345.json"),
            R"({"message":"Cancelled by cancel_run before Corvane picked the request up.",)"
            R"("requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345","schemaVersion":3,)"
            R"("source":"run_test","status":"cancelled","terminal":true,)"
            R"("updatedAt":"2026-01-31T12:00:00Z"})");
}

TEST(AgentRunResultTest, WritesAndReadsItsFile) {
  const TemporaryHome home;
  const auto result = AgentWire::decode<AgentRunResult>(fullText);
  result.write(home.paths());
  const auto file = AgentRunResult::fileURL(id, home.paths());
  EXPECT_EQ(file, home.paths().agentResultsDirectory() / (std::string(id) + ".json"));
  EXPECT_EQ(readFile(file), fullText);
  EXPECT_EQ(AgentWire::encode(AgentRunResult::read(file)), fullText);
}

TEST(RunStatusTest, EveryStatusHasItsPlaceAndItsTerminalFlag) {
  const std::vector<std::pair<const char*, bool>> expected{
      {"received", false}, {"queued", false},     {"validating", false}, {"importFailed", true},
      {"building", false}, {"buildFailed", true}, {"running", false},    {"authoring", false},
      {"imported", true},  {"authored", true},    {"extracted", true},   {"deleted", true},
      {"passed", true},    {"failed", true},      {"warning", true},     {"cancelled", true},
      {"blocked", true},   {"error", true},
  };
  ASSERT_EQ(Vocabulary<RunStatus>::rows.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const auto& [raw, terminal] = expected[i];
    const auto status = static_cast<RunStatus>(i);
    EXPECT_EQ(rawValue(status), raw);
    EXPECT_EQ(fromRawValue<RunStatus>(raw), status);
    EXPECT_EQ(isTerminal(status), terminal) << raw;

    AgentRunResult result;
    result.terminal = !terminal;
    result.setStatus(status);
    EXPECT_EQ(result.status, raw);
    EXPECT_EQ(result.terminal, terminal) << raw;
  }
}

TEST(RunStatusTest, OtherTextsNameNoStatus) {
  for (const char* raw : {"", "Passed", "canceled", "done", "import_failed", "passed "}) {
    EXPECT_EQ(fromRawValue<RunStatus>(raw), std::nullopt) << raw;
  }
}

constexpr const char* fullManifest =
    R"({"frames":[{"imageFileName":"1.png","status":"beforeStep","stepIndex":2,)"
    R"("touches":[{"endX":0.25,"endY":0.5,"x":0.75,"y":0.5}]}]})";

TEST(CaptureSessionTest, EveryMemberFollowsItsRule) {
  expectRecordRules<CaptureSession>(
      fullManifest, {
                        {"frames", "an array", Presence::required},
                        {"frames[0]", "an object", Presence::entry},
                        {"frames[0].imageFileName", "a string", Presence::required},
                        {"frames[0].status", "a string", Presence::required},
                        {"frames[0].stepIndex", "an integer", Presence::required},
                        {"frames[0].touches", "an array", Presence::optional},
                        {"frames[0].touches[0]", "an object", Presence::entry},
                        {"frames[0].touches[0].endX", "a number", Presence::optional},
                        {"frames[0].touches[0].endY", "a number", Presence::optional},
                        {"frames[0].touches[0].x", "a number", Presence::required},
                        {"frames[0].touches[0].y", "a number", Presence::required},
                    });
}

TEST(CaptureSessionTest, IsWrittenIntoItsFolder) {
  const TemporaryHome home;
  CaptureSession session;
  session.frames.push_back({.stepIndex = 2,
                            .status = FrameStatus::beforeStep,
                            .imageFileName = "1.png",
                            .touches = std::vector{Touch{0.75, 0.5, 0.25, 0.5}}});
  session.write(home.path() / "session");
  EXPECT_EQ(readFile(home.path() / "session" / "session.json"), fullManifest);
  EXPECT_EQ(CaptureSession::read(home.path() / "session").frames.at(0).touches->at(0).endX, 0.25);
}

}  // namespace
}  // namespace corvane::testing
