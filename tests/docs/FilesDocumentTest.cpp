// docs/files.md names every field of every record, and its examples are what the records write.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/capture/CaptureSession.h"
#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentActivity.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "tests/support/TestFiles.h"

namespace corvane::testing {
namespace {

/// The document's section of this title, up to the next one.
std::string section(const std::string& title) {
  const std::string document = TestFiles::read(CORVANE_FILES_DOCUMENT);
  const auto start = document.find("\n## " + title + "\n");
  if (start == std::string::npos) return {};
  return document.substr(start, document.find("\n## ", start + 1) - start);
}

/// What stands in the section's first block of JSON.
std::string example(const std::string& title) {
  const std::string text = section(title);
  constexpr std::string_view opening = "\n```json\n";
  const auto start = text.find(opening);
  if (start == std::string::npos) return {};
  const auto first = start + opening.size();
  return text.substr(first, text.find("\n```", first) - first);
}

template <class Record>
void expectFieldsNamed(const std::string& title) {
  const std::string text = section(title);
  const auto expectNamed = [&](std::string_view key) {
    EXPECT_NE(text.find("`" + std::string(key) + "`"), std::string::npos)
        << title << " does not mention " << key;
  };
  Record::fields().apply([&](const auto&... field) { (expectNamed(field.key), ...); });
}

/// Checks the section about a record, which may contain these others.
template <class Record, class... Nested>
void expectDescribed(const std::string& title) {
  expectFieldsNamed<Record>(title);
  (expectFieldsNamed<Nested>(title), ...);
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Record>(example(title))), example(title));
}

TEST(FilesDocumentTest, DescribesRequests) {
  using Target = AgentRunRequest::Target;
  expectDescribed<AgentRunRequest, Target::TestsByName, Target::SuiteByName>("Run request");
  expectDescribed<AgentExploreRequest>("Explore request");
  expectDescribed<AgentLibraryRequest>("Library request");
  expectDescribed<AgentTestSchema, AgentTest, AgentInteraction>("Test payload");
  expectDescribed<CancelMarker>("Cancel marker");
}

TEST(FilesDocumentTest, DescribesResults) {
  using Result = AgentRunResult;
  expectDescribed<Result, Result::Progress, Result::BlockedInfo, Result::Test, Result::Step,
                  Result::Summary, Result::AppIdentity, Result::TraceInfo, Result::AuthoredTestInfo,
                  Result::UdiInfo, ValidationIssue>("Result");
  const std::string text = section("Result");
  for (const auto& row : Vocabulary<RunStatus>::rows) {
    const std::string line =
        "\n| `" + std::string(row.rawValue) + "` | " + (row.terminal ? "yes |" : "|");
    EXPECT_NE(text.find(line), std::string::npos) << line;
  }
}

TEST(FilesDocumentTest, DescribesCaptureSessions) {
  expectDescribed<CaptureSession, CaptureSession::Frame, Touch>("Capture session");
}

TEST(FilesDocumentTest, DescribesWhatTheAppPublishes) {
  using Context = AgentContext;
  expectDescribed<Context, Context::ProjectContext, Context::SuiteContext, Context::TestContext,
                  Context::LastFailure, Context::StepSummary, Context::DeviceContext,
                  Context::UdiContext>("Context");
  using Activity = AgentActivity;
  expectDescribed<Activity, Activity::ActiveRequest, Activity::QueuedRequest, Activity::Device>(
      "Activity");
}

}  // namespace
}  // namespace corvane::testing
