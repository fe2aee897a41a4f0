#include "corvane_mcp/tools/Tools.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <latch>
#include <thread>

#include "corvane_mcp/protocol/JsonRpc.h"
#include "tests/support/ErrorText.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/ToolBench.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

const std::string id = "0a1b2c3d-0000-4000-8000-00000000abcd";

class CancelRunToolTest : public ::testing::Test {
 protected:
  std::string cancel(const std::string& requestId = id) {
    const auto result = bench.call(tool, R"({"requestId":")" + requestId + "\"}");
    EXPECT_FALSE(result.isError);
    return textOf(result);
  }
  std::string failure() {
    try {
      cancel();
      return "(nothing was thrown)";
    } catch (const JSONRPCError& error) {
      EXPECT_EQ(error.code, -32603);
      return error.message;
    }
  }
  std::string folderNames(const fs::path& folder) {
    std::string names;
    for (const auto& entry : fs::directory_iterator(folder)) {
      names += entry.path().filename().string() + "\n";
    }
    return names;
  }

  ToolBench bench;
  const MCPTool tool = makeCancelRunTool(bench.services);
  const fs::path requests = bench.paths.agentRunRequestsDirectory();
  const fs::path request = requests / (id + ".runrequest.json");
  const fs::path marker = requests / (id + ".cancel");
  const fs::path result = bench.paths.agentResultsDirectory() / (id + ".json");

  const std::string withdrawn = "Run request " + id +
                                " cancelled (Corvane had not picked it up yet). get_result now "
                                "reports status \"cancelled\".";
  const std::string asked =
      "Cancellation requested for " + id +
      ". A queued run is cancelled immediately; an executing run is aborted at the next step "
      "boundary. Poll get_result until it reports status \"cancelled\" (or a terminal result, if "
      "the run finished before the cancellation landed).";
};

TEST_F(CancelRunToolTest, NeedsArguments) {
  EXPECT_EQ(errorText<JSONRPCError>([&] { bench.call(tool, std::nullopt); }),
            "cancel_run requires arguments");
  EXPECT_EQ(errorText<JSONRPCError>([&] { bench.call(tool, "null"); }),
            "cancel_run requires arguments");
}

TEST_F(CancelRunToolTest, RefusesAnIdThatIsNoUuid) {
  for (const auto& [arguments, given] :
       std::vector<std::pair<const char*, const char*>>{{"{}", "<missing>"},
                                                        {R"({"requestId":[]})", "<missing>"},
                                                        {R"({"requestId":"../x"})", "../x"}}) {
    const auto answer = bench.call(tool, arguments);
    EXPECT_TRUE(answer.isError);
    EXPECT_EQ(textOf(answer),
              std::string("error:invalid_request_id\n\nrequestId must be the UUID returned by "
                          "create_test/run_test. Got: '") +
                  given + "'");
  }
  EXPECT_FALSE(fs::exists(requests));
}

TEST_F(CancelRunToolTest, WithdrawsARequestThatTheAppHasNotTaken) {
  TestFiles::write(request, "{}");
  bench.clock.pass(std::chrono::milliseconds(1700));
  EXPECT_EQ(cancel(), withdrawn);
  EXPECT_EQ(folderNames(requests), "");
  EXPECT_EQ(TestFiles::read(result),
            R"({"message":"Cancelled by cancel_run before Corvane picked the request up.",)"
            R"("requestId":")" +
                id +
                R"(","schemaVersion":3,"source":"run_test",)"
                R"("status":"cancelled","terminal":true,"updatedAt":"2026-01-31T12:00:01Z"})");
  EXPECT_EQ(bench.logged(), Lines{"INFO cancel_run: removed unconsumed request " + id});
}

TEST_F(CancelRunToolTest, AsksTheAppToCancelWhatItHasTaken) {
  TestFiles::write(result, R"({"status":"running"})");
  EXPECT_EQ(cancel(), asked);
  EXPECT_EQ(folderNames(requests), id + ".cancel\n");
  EXPECT_EQ(TestFiles::read(marker), R"({"createdAt":"2026-01-31T12:00:00Z","requestId":")" + id +
                                         R"(","schemaVersion":1})");
  EXPECT_EQ(TestFiles::read(result), R"({"status":"running"})");
  EXPECT_EQ(bench.logged(), Lines{"INFO cancel_run: dropped cancel marker for " + id});
}

TEST_F(CancelRunToolTest, TakesAnIdInAnyCase) {
  TestFiles::write(request, "{}");
  EXPECT_EQ(cancel("0A1B2C3D-0000-4000-8000-00000000ABCD"), withdrawn);
  EXPECT_EQ(cancel("0A1B2C3D-0000-4000-8000-00000000ABCD"), asked);
  EXPECT_TRUE(fs::exists(marker));
}

TEST_F(CancelRunToolTest, LeavesRequestsOfOtherKindsToTheApp) {
  TestFiles::write(requests / (id + ".explorerequest.json"), "{}");
  TestFiles::write(requests / (id + ".libraryrequest.json"), "{}");
  EXPECT_EQ(cancel(), asked);
  EXPECT_TRUE(fs::exists(requests / (id + ".explorerequest.json")));
  EXPECT_TRUE(fs::exists(requests / (id + ".libraryrequest.json")));
  EXPECT_FALSE(fs::exists(result));
}

// The app takes files away at any moment. Whoever removes the request has it; there is no third
// outcome, and never both a result by the server and a marker.
TEST_F(CancelRunToolTest, RacesTheAppForTheRequest) {
  fs::create_directories(requests);
  int withdrawals = 0;
  int rounds = 0;
  const auto bothHaveWon = [&] { return withdrawals > 0 && withdrawals < rounds; };
  waitUntil("the app and the server have both won", [&] {
    // One of them begins a little later, by another little each time.
    const auto headStart = std::chrono::microseconds(rounds % 21 * 50 - 500);
    fs::remove(result);
    fs::remove(marker);
    TestFiles::write(request, "{}");
    std::atomic<bool> appHasIt = false;
    std::latch start(2);
    std::thread theApp([&] {
      start.arrive_and_wait();
      std::this_thread::sleep_for(headStart);
      std::error_code error;
      appHasIt = fs::remove(request, error);
    });
    start.arrive_and_wait();
    std::this_thread::sleep_for(-headStart);
    const std::string answer = cancel();
    theApp.join();
    EXPECT_EQ(answer, appHasIt ? asked : withdrawn);
    EXPECT_EQ(fs::exists(marker), appHasIt);
    EXPECT_EQ(fs::exists(result), !appHasIt);
    withdrawals += appHasIt ? 0 : 1;
    return ++rounds >= 300 && bothHaveWon();
  });
}

TEST_F(CancelRunToolTest, TellsWhenAWithdrawalCannotBeRecorded) {
  TestFiles::write(request, "{}");
  TestFiles::write(result.parent_path(), "a file in the folder's place");
  EXPECT_EQ(failure(), "Run request " + id +
                           " was removed before Corvane picked it up, but its cancelled result "
                           "could not be recorded: could not write " +
                           result.string() + ": Not a directory");
  EXPECT_FALSE(fs::exists(request));
}

TEST_F(CancelRunToolTest, TellsWhenAMarkerCannotBeWritten) {
  TestFiles::write(requests, "a file in the folder's place");
  EXPECT_EQ(failure(), "Failed to write cancel marker: could not write " + marker.string() +
                           ": Not a directory");
}

// Fails when a file that is seen counts as one that was removed, and when more than a file is.
TEST_F(CancelRunToolTest, AsksTheAppWhereAFolderLiesInTheRequestsPlace) {
  fs::create_directories(request / "in the way");
  EXPECT_EQ(cancel(), asked);
  EXPECT_TRUE(fs::exists(request / "in the way"));
  EXPECT_TRUE(fs::exists(marker));
  EXPECT_FALSE(fs::exists(result));
}

// Fails when a link to nothing is taken for a request: the app never had one to take.
TEST_F(CancelRunToolTest, AsksTheAppWhereALinkLeadsNowhere) {
  fs::create_directories(requests);
  fs::create_symlink("nowhere", request);
  EXPECT_EQ(cancel(), asked);
  EXPECT_TRUE(fs::is_symlink(request));
  EXPECT_TRUE(fs::exists(marker));
  EXPECT_FALSE(fs::exists(result));
}

// Fails when a request has to be read, or made writable, to be withdrawn.
TEST_F(CancelRunToolTest, WithdrawsARequestThatNobodyMayRead) {
  const OrdinaryUser user(bench.home.path());
  if (!user.isOrdinary()) GTEST_SKIP() << "the superuser may read everything";
  TestFiles::write(request, "{}");
  TestFiles::setMode(request, 0);
  EXPECT_EQ(cancel(), withdrawn);
  EXPECT_FALSE(fs::exists(request));
  EXPECT_TRUE(fs::exists(result));
}

// Fails when what keeps the request from being removed is told in words of its own.
TEST_F(CancelRunToolTest, AsksTheAppWhereTheRequestCannotBeRemoved) {
  const OrdinaryUser user(bench.home.path());
  if (!user.isOrdinary()) GTEST_SKIP() << "the superuser may write everywhere";
  TestFiles::write(request, "{}");
  TestFiles::setMode(requests, 0500);
  EXPECT_EQ(failure(), "Failed to write cancel marker: could not write " + marker.string() +
                           ": Permission denied");
  EXPECT_TRUE(fs::exists(request));
  EXPECT_FALSE(fs::exists(result));
  TestFiles::setMode(requests, 0700);
}

}  // namespace
}  // namespace corvane::testing
