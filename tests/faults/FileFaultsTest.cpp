#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <set>
#include <sstream>
#include <vector>

#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "tests/faults/FaultTest.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

/// A file operation of the server that is to go wrong.
struct Fault {
  /// Counted from 1.
  std::size_t operation;
  /// An errno value, "short" or "kill".
  std::string kind;
};

/// What a faulty life of the server left behind.
struct Outcome {
  std::vector<std::string> replies;
  std::string end;
  /// The file operations below the home, in order.
  std::vector<std::string> operations;
};

constexpr std::string_view madeId = "0a1b2c3d-0000-4000-8000-00000000abcd";
constexpr std::string_view waitingId = "0a1b2c3d-0000-4000-8000-00000000dcba";

/// One conversation, in a fresh home each time, with every tool that touches files.
class FileFaultsTest : public FaultTest {
 protected:
  static std::vector<std::string> conversation() {
    const auto about = [](std::string_view id) {
      return R"({"requestId":")" + std::string(id) + "\"}";
    };
    return {
        call(1, "run_test", anyRun),
        call(2, "create_test", anyPayload),
        call(3, "explore_flow", R"({"projectName":"Shop","goal":"Open the cart and see it"})"),
        call(4, "delete_udi", R"({"udiName":"Log in"})"),
        call(5, "get_result", about(madeId)),
        call(6, "describe_project", "{}"),
        call(7, "get_status", "{}"),
        call(8, "cancel_run", about(waitingId)),
        call(9, "cancel_run", about(madeId)),
        call(10, "health", "{}"),
        ping(11),
    };
  }

  /// A home in which one run waits, one has been taken up and the workspace is known.
  static void furnish(const AgentPaths& paths) {
    AgentRunRequest waiting;
    waiting.requestId = waitingId;
    waiting.projectName = "Shop";
    waiting.target.choice = AgentRunRequest::Target::AllSuites{};
    waiting.write(paths);
    AgentRunResult running;
    running.requestId = madeId;
    running.source = "run_test";
    running.setStatus(RunStatus::running);
    running.write(paths);
    AgentContext context;
    context.write(paths);
  }

  [[nodiscard]] Outcome converse(const TemporaryHome& home, const fs::path& journal,
                                 const std::optional<Fault>& fault) const {
    ServerProcess::Setup setup{program(), home.path()};
    setup.environment = {
        "LD_PRELOAD=" CORVANE_FILE_FAULTS,
        // The sanitizer wants to be loaded first, but does not need to be.
        "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0",
        "CORVANE_MCP_SUPPRESS_LAUNCH=1",
        "CORVANE_FAULT_ROOT=" + home.path().string(),
        "CORVANE_FAULT_JOURNAL=" + journal.string(),
    };
    for (const auto& variable : furtherEnvironment) setup.environment.push_back(variable);
    if (fault) {
      setup.environment.push_back("CORVANE_FAULT_AT=" + std::to_string(fault->operation));
      setup.environment.push_back("CORVANE_FAULT_AS=" + fault->kind);
    }
    ServerProcess server(std::move(setup));
    Outcome outcome;
    // One at a time, so that the operations come in the same order in every life.
    for (const auto& request : conversation()) {
      // The log's thread may have met its fault, and ended the server, since the last reply.
      if (!server.offerLine(request)) break;
      const auto reply = server.nextLine();
      if (!reply) break;
      outcome.replies.push_back(*reply);
    }
    server.closeInput();
    for (auto& late : server.readToEnd()) outcome.replies.push_back(std::move(late));
    outcome.end = server.wait();
    std::istringstream lines(fileExists(journal) ? TestFiles::read(journal) : "");
    for (std::string line; std::getline(lines, line);) outcome.operations.push_back(line);
    return outcome;
  }

  /// The operations of a life in which nothing goes wrong.
  [[nodiscard]] std::vector<std::string> undisturbedOperations() const {
    const TemporaryHome other;
    furnish(other.paths());
    return converse(other, home.path() / "journal", std::nullopt).operations;
  }

  /// The ids of the requests that the agent was told are on their way.
  static std::multiset<std::string> promised(const Outcome& outcome) {
    std::multiset<std::string> ids;
    for (const auto& reply : outcome.replies) {
      const auto at = reply.find("requestId:");
      if (at == std::string::npos) continue;
      const auto start = reply.find_first_not_of(' ', at + 10);
      ids.insert(reply.substr(start, 36));
    }
    return ids;
  }

  /// The ids of the requests that lie in the watched folders; every one has to be whole.
  static std::multiset<std::string> dropped(const AgentPaths& paths) {
    std::multiset<std::string> ids;
    for (const auto& folder : {paths.agentRunRequestsDirectory(), paths.agentImportsDirectory()}) {
      if (!fs::exists(folder)) continue;
      for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename();
        EXPECT_FALSE(name.starts_with('.')) << "debris: " << entry.path();
        const auto content = readJson(TestFiles::read(entry.path()));
        const auto* id = content.findAs<std::string>("requestId");
        EXPECT_TRUE(id && name.find(*id) != std::string::npos) << entry.path();
        if (id && !name.ends_with(".cancel") && *id != waitingId) ids.insert(*id);
      }
    }
    return ids;
  }

  static void expectEveryRequestAnsweredOnce(const Outcome& outcome) {
    std::vector<std::int64_t> ids;
    for (const auto& reply : outcome.replies) {
      const auto message = readJson(reply);
      const auto* id = message.find("id");
      ASSERT_TRUE(id && id->integer()) << reply;
      ids.push_back(*id->integer());
    }
    std::vector<std::int64_t> expected(conversation().size());
    for (std::size_t i = 0; i < expected.size(); ++i) expected[i] = static_cast<int>(i) + 1;
    EXPECT_EQ(ids, expected);
    EXPECT_EQ(outcome.end, "exit 0");
  }

  /// Lets the operation at this index, counted from 0, fail in a life of its own.
  void expectNothingLost(const std::string& operation, std::size_t index, int error) const {
    SCOPED_TRACE("operation " + std::to_string(index + 1) + " (" + operation + ") fails with " +
                 std::to_string(error));
    const TemporaryHome other;
    furnish(other.paths());
    const auto outcome =
        converse(other, home.path() / "faulty", Fault{index + 1, std::to_string(error)});
    expectEveryRequestAnsweredOnce(outcome);
    EXPECT_EQ(promised(outcome), dropped(other.paths()));
    fs::remove(home.path() / "faulty");
  }

  std::vector<std::string> furtherEnvironment;
};

/// What can befall an operation of this kind.
std::vector<int> errorsOf(const std::string& operation) {
  if (operation.starts_with("create ")) return {ENOSPC, EACCES, EMFILE};
  if (operation.starts_with("write ")) return {ENOSPC, EIO};
  if (operation.starts_with("open")) return {EACCES, EMFILE};
  if (operation.starts_with("read ") || operation.starts_with("close ")) return {EIO};
  return {EACCES, EIO};
}

TEST_F(FileFaultsTest, TheJournalSeesEveryKindOfOperation) {
  const auto operations = undisturbedOperations();
  for (const std::string kind : {"create ", "open ", "read ", "write ", "close ", "link ",
                                 "unlink ", "stat ", "opendir ", "readdir "}) {
    EXPECT_TRUE(std::any_of(operations.begin(), operations.end(), [&](const auto& each) {
      return each.starts_with(kind);
    })) << kind;
  }
}

TEST_F(FileFaultsTest, AFailedOperationLosesNothing) {
  const auto operations = undisturbedOperations();
  ASSERT_GT(operations.size(), 20U);
  for (std::size_t i = 0; i < operations.size(); ++i) {
    for (const int error : errorsOf(operations[i])) expectNothingLost(operations[i], i, error);
  }
}

/// Where the system gives no names to nameless files, as in a sandbox without /proc.
class NamelessFilesTest : public FileFaultsTest {
 protected:
  NamelessFilesTest() { furtherEnvironment = {"CORVANE_FAULT_REFUSED=link"}; }
};

// Fails when a request is given up because the nameless file gets no name.
TEST_F(NamelessFilesTest, AFileThatGetsNoNameIsWrittenWithOne) {
  const TemporaryHome other;
  furnish(other.paths());
  const auto outcome = converse(other, home.path() / "journal", std::nullopt);
  expectEveryRequestAnsweredOnce(outcome);
  EXPECT_EQ(promised(outcome).size(), 4U);
  EXPECT_EQ(promised(outcome), dropped(other.paths()));
  const auto count = [&outcome](std::string_view kind) {
    return std::count_if(outcome.operations.begin(), outcome.operations.end(),
                         [kind](const auto& each) { return each.starts_with(kind); });
  };
  EXPECT_EQ(count("link "), count("rename "));
}

TEST_F(NamelessFilesTest, AFailedOperationLosesNothing) {
  const auto operations = undisturbedOperations();
  for (std::size_t i = 0; i < operations.size(); ++i) {
    if (operations[i].starts_with("link ")) continue;
    expectNothingLost(operations[i], i, errorsOf(operations[i]).front());
  }
}

TEST_F(FileFaultsTest, ShortWritesAndReadsChangeNothing) {
  const auto operations = undisturbedOperations();
  for (std::size_t i = 0; i < operations.size(); ++i) {
    if (!operations[i].starts_with("write ") && !operations[i].starts_with("read ")) continue;
    SCOPED_TRACE("operation " + std::to_string(i + 1) + " (" + operations[i] + ") is cut short");
    const TemporaryHome other;
    furnish(other.paths());
    const auto outcome = converse(other, home.path() / "faulty", Fault{i + 1, "short"});
    expectEveryRequestAnsweredOnce(outcome);
    EXPECT_EQ(promised(outcome).size(), 4U);
    EXPECT_EQ(promised(outcome), dropped(other.paths()));
    fs::remove(home.path() / "faulty");
  }
}

// Fails when the conversation takes a server that has gone between two requests for an error.
TEST_F(FileFaultsTest, AServerThatIsGoneBeforeItHasReadIsToldFromOneThatReads) {
  ServerProcess server(setup());
  EXPECT_TRUE(server.offerLine(ping(1)));
  EXPECT_EQ(server.readLine(), pong(1));
  ::kill(server.id(), SIGKILL);
  EXPECT_EQ(server.wait(), "signal 9");
  EXPECT_FALSE(server.offerLine(ping(2)));
}

TEST_F(FileFaultsTest, AServerThatIsKilledLeavesWholeFilesOnly) {
  const auto operations = undisturbedOperations();
  for (std::size_t i = 0; i < operations.size(); ++i) {
    SCOPED_TRACE("killed before operation " + std::to_string(i + 1) + " (" + operations[i] + ")");
    const TemporaryHome other;
    furnish(other.paths());
    const auto outcome = converse(other, home.path() / "faulty", Fault{i + 1, "kill"});
    // The log's lines go out in batches, so that a life may do with fewer operations than another.
    const bool livedOn = outcome.end == "exit 0" && outcome.operations.size() <= i;
    EXPECT_TRUE(outcome.end == "signal 9" || livedOn) << outcome.end;
    const auto there = dropped(other.paths());
    for (const auto& id : promised(outcome)) EXPECT_TRUE(there.contains(id)) << id;
    // The last one may have been written without there being time to say so.
    EXPECT_LE(there.size(), promised(outcome).size() + 1);
    fs::remove(home.path() / "faulty");
  }
}

}  // namespace
}  // namespace corvane::testing
