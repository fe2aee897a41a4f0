#include <gtest/gtest.h>

#include "CorvaneCore/text/Uuid.h"
#include "corvane_mcp/tools/Tools.h"
#include "tests/support/TemporaryApp.h"
#include "tests/unit/workspace/WorkspaceBench.h"

namespace corvane::testing {
namespace {

constexpr std::string_view suffix = ".libraryrequest.json";

const std::string extractReason =
    "error:invalid_arguments\n\nextract_udi requires projectName, testName, fromStep, toStep, and "
    "udiName.";
const std::string rangeReason =
    "error:invalid_arguments\n\nStep range must satisfy 0 <= fromStep <= toStep (0-based, "
    "inclusive — see describe_project for the source test's steps).";

/// Arguments of a good extraction with one of them replaced.
std::string extraction(const std::string& key = {}, const std::string& value = {}) {
  std::vector<std::pair<std::string, std::string>> members{{"projectName", R"("Shop")"},
                                                           {"testName", R"("Log in")"},
                                                           {"fromStep", "1"},
                                                           {"toStep", "3"},
                                                           {"udiName", R"("Sign in")"}};
  std::string text;
  bool replaced = key.empty();
  for (auto& [name, held] : members) {
    if (name == key) {
      held = value;
      replaced = true;
    }
    if (!held.empty()) text += (text.empty() ? "{\"" : ",\"") + name + "\":" + held;
  }
  if (!replaced) text += ",\"" + key + "\":" + value;
  return text + "}";
}

class LibraryToolsTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string requestId() const {
    const std::string name = bench.onlyRequest().filename();
    return name.substr(0, name.size() - suffix.size());
  }
  [[nodiscard]] std::string requestPath() const { return bench.onlyRequest().string(); }
  [[nodiscard]] std::string getResultCall() const {
    return "get_result {\"requestId\":\"" + requestId() + "\",\"waitSeconds\":60}";
  }
  template <auto makeTool>
  void expectRefused(std::optional<std::string_view> arguments, const std::string& text) const {
    EXPECT_EQ(bench.call<makeTool>(arguments), (WorkspaceBench::Answer{text, true}))
        << arguments.value_or("(none)");
    EXPECT_TRUE(bench.requests().empty());
  }
  /// Calls a tool, and takes its request away to read it.
  template <auto makeTool>
  [[nodiscard]] std::string requestFor(std::string_view arguments) const {
    const auto answer = bench.call<makeTool>(arguments);
    if (answer.isError) return answer.text;
    const auto file = bench.onlyRequest();
    const std::string text = TestFiles::read(file);
    std::filesystem::remove(file);
    return text;
  }

  WorkspaceBench bench;
};

TEST_F(LibraryToolsTest, ExtractionNeedsAllThatNamesIt) {
  expectRefused<makeExtractUdiTool>(std::nullopt, extractReason);
  for (const char* arguments : {"null", "[]", "1", R"("x")", "{}"}) {
    expectRefused<makeExtractUdiTool>(arguments, extractReason);
  }
  for (const char* key : {"projectName", "testName", "udiName"}) {
    for (const char* value : {"", "null", R"("")", "5", "true", R"(["x"])"}) {
      expectRefused<makeExtractUdiTool>(extraction(key, value), extractReason);
    }
  }
  expectRefused<makeExtractUdiTool>(extraction("udiName", R"(" \n\t\u00a0\u2003 ")"),
                                    extractReason);
  for (const char* key : {"fromStep", "toStep"}) {
    for (const char* value : {"", "null", R"("2")", "2.5", "true", "[2]", "1e300"}) {
      expectRefused<makeExtractUdiTool>(extraction(key, value), extractReason);
    }
  }
}

TEST_F(LibraryToolsTest, ExtractionNeedsARangeThatGoesForward) {
  expectRefused<makeExtractUdiTool>(extraction("fromStep", "4"), rangeReason);
  expectRefused<makeExtractUdiTool>(extraction("toStep", "0"), rangeReason);
  expectRefused<makeExtractUdiTool>(extraction("fromStep", "-1"), rangeReason);
  expectRefused<makeExtractUdiTool>(extraction("toStep", "-1"), rangeReason);
  expectRefused<makeExtractUdiTool>(extraction("fromStep", "-9223372036854775808"), rangeReason);
}

TEST_F(LibraryToolsTest, ExtractionWritesItsRequest) {
  bench.client.setName("agent/1");
  const auto answer = bench.call<makeExtractUdiTool>(
      R"({"projectName":" Shop","testName":"Log in ","fromStep":3.0,"toStep":5,)"
      R"("udiName":"  Sign \"in\"  ","overwrite":true,"testId":"t1","other":[]})");
  const std::string id = requestId();
  EXPECT_EQ(parseRequestId(id), id);
  EXPECT_EQ(requestPath(),
            (bench.home.path() / ".local/share/Corvane/AgentRunRequests" / id).string() +
                ".libraryrequest.json");
  EXPECT_EQ(TestFiles::read(bench.onlyRequest()),
            R"({"action":"extractUdi","clientName":"agent/1","createdAt":"2026-01-31T12:00:00Z",)"
            R"("fromStep":3,"overwrite":true,"projectName":" Shop","requestId":")" +
                id +
                R"(","schemaVersion":1,"testName":"Log in ","toStep":5,"udiName":"Sign \"in\""})");
  EXPECT_EQ(answer,
            (WorkspaceBench::Answer{
                "Extraction dispatched to Corvane.\n\n  requestId:  " + id +
                    "\n  Source:     'Log in ' steps 3-5 in ' Shop'\n  UDI name:   Sign \"in\""
                    "\n\nNext: call " +
                    getResultCall() +
                    " — terminal \"extracted\" carries the udi payload; then embed it via "
                    "create_test {\"type\":\"userDefined\",\"udiName\":\"Sign \"in\"\"}.",
                false}));
  const std::string path = requestPath();
  EXPECT_EQ(bench.logged(), std::vector<std::string>{"INFO Wrote library request: " + path});
}

TEST_F(LibraryToolsTest, ExtractionOverwritesOnlyWhenToldSo) {
  const auto overwrite = [&](const char* value) {
    const std::string text = requestFor<makeExtractUdiTool>(extraction("overwrite", value));
    const auto at = text.find("\"overwrite\":");
    return at == std::string::npos ? "absent" : text.substr(at + 12, text.find(',', at) - at - 12);
  };
  EXPECT_EQ(overwrite("true"), "true");
  EXPECT_EQ(overwrite("false"), "false");
  EXPECT_EQ(overwrite(R"("true")"), "absent");
  EXPECT_EQ(overwrite("1"), "absent");
  EXPECT_EQ(overwrite("null"), "absent");
}

TEST_F(LibraryToolsTest, ExtractionTakesAnyRangeTheAppMayKnow) {
  for (const char* to : {"1", "9223372036854775807"}) {
    EXPECT_NE(requestFor<makeExtractUdiTool>(extraction("toStep", to))
                  .find("\"toStep\":" + std::string(to) + ","),
              std::string::npos);
  }
}

TEST_F(LibraryToolsTest, DeletionNeedsAName) {
  const std::string reason = "error:invalid_arguments\n\ndelete_udi requires udiName.";
  expectRefused<makeDeleteUdiTool>(std::nullopt, reason);
  for (const char* arguments : {"null", "[]", "{}", R"({"udiName":null})", R"({"udiName":7})",
                                R"({"udiName":""})", R"({"udiName":" \n "})"}) {
    expectRefused<makeDeleteUdiTool>(arguments, reason);
  }
}

TEST_F(LibraryToolsTest, DeletionWritesItsRequest) {
  const auto answer =
      bench.call<makeDeleteUdiTool>(R"({"udiName":"\u00a0Sign in\n","projectName":"Shop"})");
  const std::string id = requestId();
  EXPECT_EQ(TestFiles::read(bench.onlyRequest()),
            R"({"action":"deleteUdi","createdAt":"2026-01-31T12:00:00Z","fromStep":0,)"
            R"("projectName":"","requestId":")" +
                id + R"(","schemaVersion":1,"toStep":0,"udiName":"Sign in"})");
  EXPECT_EQ(answer,
            (WorkspaceBench::Answer{"Deletion dispatched to Corvane.\n\n  requestId:  " + id +
                                        "\n  UDI name:   Sign in\n\nNext: call " + getResultCall() +
                                        " — terminal \"deleted\" confirms removal. Tests already "
                                        "embedding this UDI keep their copy and keep running.",
                                    false}));
  const std::string path = requestPath();
  EXPECT_EQ(bench.logged(),
            std::vector<std::string>{"INFO Wrote library request (deleteUdi): " + path});
}

TEST_F(LibraryToolsTest, ResetNeedsAProject) {
  const std::string reason = "error:invalid_arguments\n\nreset_world_map requires projectName.";
  expectRefused<makeResetWorldMapTool>(std::nullopt, reason);
  for (const char* arguments :
       {"null", "[]", "{}", R"({"projectName":null})", R"({"projectName":{}})",
        R"({"projectName":""})", R"({"projectName":"\t \u2028"})"}) {
    expectRefused<makeResetWorldMapTool>(arguments, reason);
  }
}

TEST_F(LibraryToolsTest, ResetWritesItsRequest) {
  const auto answer = bench.call<makeResetWorldMapTool>(R"({"projectName":"  My Shop "})");
  const std::string id = requestId();
  EXPECT_EQ(TestFiles::read(bench.onlyRequest()),
            R"({"action":"resetWorldMap","createdAt":"2026-01-31T12:00:00Z","fromStep":0,)"
            R"("projectName":"My Shop","requestId":")" +
                id + R"(","schemaVersion":1,"toStep":0,"udiName":""})");
  EXPECT_EQ(answer, (WorkspaceBench::Answer{
                        "World-map reset dispatched to Corvane.\n\n  requestId:  " + id +
                            "\n  Project:    My Shop\n\nNext: call " + getResultCall() +
                            " — terminal \"deleted\" confirms the reset. The map rebuilds "
                            "from the next exploration session.",
                        false}));
  const std::string path = requestPath();
  EXPECT_EQ(bench.logged(),
            std::vector<std::string>{"INFO Wrote library request (resetWorldMap): " + path});
}

TEST_F(LibraryToolsTest, TheAppIsLaunchedAndNotSpokenOf) {
  const TemporaryApp app(bench.home.path() / "Applications" / "Corvane.app");
  const auto answer = bench.call<makeDeleteUdiTool>(R"({"udiName":"Sign in"})");
  static_cast<void>(app.waitUntilUp());
  EXPECT_EQ(answer.text.find("Corvane.app"), std::string::npos);
}

TEST_F(LibraryToolsTest, AnAppThatRunsIsNotLaunchedAgain) {
  TemporaryApp running(bench.home.path() / "elsewhere" / "Corvane.app");
  running.open();
  // Launching this one would fail and be logged.
  std::filesystem::create_directories(bench.home.path() / "Applications" / "Corvane.app");
  EXPECT_FALSE(bench.call<makeResetWorldMapTool>(R"({"projectName":"Shop"})").isError);
  EXPECT_EQ(bench.logged().size(), 1U);
}

TEST_F(LibraryToolsTest, AFailedLaunchIsNoFailure) {
  std::filesystem::create_directories(bench.home.path() / "Applications" / "Corvane.app");
  EXPECT_FALSE(bench.call<makeExtractUdiTool>(extraction()).isError);
  EXPECT_EQ(bench.requests().size(), 1U);
  const auto log = bench.logged();
  ASSERT_EQ(log.size(), 2U);
  EXPECT_TRUE(log.back().starts_with("ERROR Failed to launch Corvane.app at "));
}

TEST_F(LibraryToolsTest, AFailedWriteIsAProtocolError) {
  const auto folder = bench.paths.agentRunRequestsDirectory();
  TestFiles::write(folder, "in the way");
  const std::string error =
      "-32603 Failed to write library request: could not write " + folder.string() + "/";
  EXPECT_TRUE(bench.protocolError<makeExtractUdiTool>(extraction()).starts_with(error));
  EXPECT_TRUE(bench.protocolError<makeDeleteUdiTool>(R"({"udiName":"x"})").starts_with(error));
  EXPECT_TRUE(
      bench.protocolError<makeResetWorldMapTool>(R"({"projectName":"x"})").starts_with(error));
  EXPECT_TRUE(bench.logged().empty());
}

}  // namespace
}  // namespace corvane::testing
