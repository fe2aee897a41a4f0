#include "corvane_mcp/results/ResultFileStore.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>

#include "tests/support/ToolBench.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Snapshot = ResultFileStore::Snapshot;

constexpr const char* id = "11111111-0000-4000-8000-000000000001";

class ResultFileStoreTest : public ::testing::Test {
 protected:
  /// Polls and tells the outcome: a snapshot's text, or the outcome's name. `updates` has the texts
  /// that were reported on the way.
  std::string poll(std::int64_t waitSeconds) {
    updates.clear();
    const auto outcome = runTask(store.poll(id, waitSeconds, [this](const Snapshot& snapshot) {
      updates.push_back(snapshot.rawJSON);
    }));
    if (const auto* snapshot = std::get_if<Snapshot>(&outcome)) return snapshot->rawJSON;
    if (const auto* unreadable = std::get_if<ResultFileStore::Unreadable>(&outcome)) {
      return "unreadable " + unreadable->path.string();
    }
    return std::holds_alternative<ResultFileStore::Pending>(outcome) ? "pending" : "unknown";
  }

  /// Whether a file with this text counts as terminal.
  bool terminal(std::string_view text) {
    TestFiles::write(file, text);
    return ResultFileStore::parse(file).value().terminal;
  }

  using Texts = std::vector<std::string>;

  ToolBench bench;
  ResultFileStore store{bench.paths, bench.clock};
  const fs::path file = bench.paths.agentResultsDirectory() / (std::string(id) + ".json");
  const fs::path request =
      bench.paths.agentRunRequestsDirectory() / (std::string(id) + ".runrequest.json");
  const std::string unreadable = "unreadable " + file.string();
  Texts updates;
};

TEST_F(ResultFileStoreTest, LooksOnceWithoutAWait) {
  EXPECT_EQ(poll(0), "unknown");
  TestFiles::write(file, R"({"status":"running"})");
  EXPECT_EQ(poll(0), R"({"status":"running"})");
  EXPECT_EQ(updates, Texts{R"({"status":"running"})"});
  EXPECT_TRUE(bench.clock.sleeps().empty());
}

TEST_F(ResultFileStoreTest, ReturnsATerminalResultAtOnce) {
  TestFiles::write(file, R"({"status":"passed"})");
  EXPECT_EQ(poll(240), R"({"status":"passed"})");
  EXPECT_TRUE(updates.empty());
  EXPECT_TRUE(bench.clock.sleeps().empty());
}

TEST_F(ResultFileStoreTest, LooksTwiceASecondUntilItsTimeIsUp) {
  EXPECT_EQ(poll(240), "unknown");
  EXPECT_EQ(bench.clock.sleeps(), std::vector<std::chrono::milliseconds>(480, 500ms));
}

TEST_F(ResultFileStoreTest, WaitsAsLongWhenTheWallClockJumps) {
  for (const auto jump : {-24h, 24h}) {
    const auto before = bench.clock.totalSlept();
    bench.clock.runAfterEachSleep([&](int) { bench.clock.jump(jump); });
    EXPECT_EQ(poll(10), "unknown");
    EXPECT_EQ(bench.clock.totalSlept() - before, 10s);
  }
}

TEST_F(ResultFileStoreTest, SleepsNoLongerThanTheTimeLeft) {
  bench.clock.runAfterEachSleep([&](int) { bench.clock.pass(150ms); });
  EXPECT_EQ(poll(2), "unknown");
  // 650 ms a pass: after the third, 50 ms are left.
  EXPECT_EQ(bench.clock.sleeps(),
            (std::vector<std::chrono::milliseconds>{500ms, 500ms, 500ms, 50ms}));
}

TEST_F(ResultFileStoreTest, ReturnsAsSoonAsTheResultTurnsTerminal) {
  TestFiles::write(file, R"({"status":"running"})");
  bench.clock.runAfterEachSleep([&](int sleeps) {
    if (sleeps == 3) TestFiles::replace(file, R"({"status":"failed","tests":[]})");
  });
  EXPECT_EQ(poll(240), R"({"status":"failed","tests":[]})");
  EXPECT_EQ(bench.clock.sleeps().size(), 3U);
  EXPECT_EQ(updates, Texts{R"({"status":"running"})"});
}

TEST_F(ResultFileStoreTest, ReportsEveryChangeOnce) {
  bench.clock.runAfterEachSleep([&](int sleeps) {
    if (sleeps == 2) TestFiles::replace(file, R"({"status":"queued"})");
    if (sleeps == 5) TestFiles::replace(file, R"({"status":"building"})");
    if (sleeps == 6) TestFiles::replace(file, R"({"status":"running"})");
  });
  EXPECT_EQ(poll(10), R"({"status":"running"})");
  EXPECT_EQ(updates, (Texts{R"({"status":"queued"})", R"({"status":"building"})",
                            R"({"status":"running"})"}));
}

TEST_F(ResultFileStoreTest, ReportsAFileThatWasOnlyTouched) {
  TestFiles::write(file, R"({"status":"running"})");
  TestFiles::setModified(file, bench.clock.now());
  bench.clock.runAfterEachSleep([&](int sleeps) {
    if (sleeps == 1) TestFiles::setModified(file, bench.clock.now());
  });
  poll(2);
  EXPECT_EQ(updates.size(), 2U);
}

TEST_F(ResultFileStoreTest, DoesNotReadAgainWhatKeepsItsStamp) {
  const FileTime tick = bench.clock.now();
  TestFiles::write(file, R"({"status":"running"})");
  TestFiles::setModified(file, tick);
  bench.clock.runAfterEachSleep([&](int sleeps) {
    if (sleeps != 1) return;
    TestFiles::write(file, R"({"status":"passed "})");
    fs::resize_file(file, std::string_view(R"({"status":"running"})").size());
    TestFiles::setModified(file, tick);
  });
  EXPECT_EQ(poll(2), R"({"status":"running"})");
}

TEST_F(ResultFileStoreTest, ReadsAgainWhenOnlyTheSizeOrOnlyTheTimeIsNew) {
  const FileTime tick = bench.clock.now();
  TestFiles::write(file, R"({"status":"running"})");
  TestFiles::setModified(file, tick);
  bench.clock.runAfterEachSleep([&](int sleeps) {
    if (sleeps == 1) {
      TestFiles::write(file, R"({"status":"running" })");
      TestFiles::setModified(file, tick);
    }
    if (sleeps == 2) {
      TestFiles::write(file, R"({"status":"blocked" })");
      TestFiles::setModified(file, tick + 1ns);
    }
  });
  EXPECT_EQ(poll(2), R"({"status":"blocked" })");
  EXPECT_EQ(updates, (Texts{R"({"status":"running"})", R"({"status":"running" })"}));
}

TEST_F(ResultFileStoreTest, TakesAnEmptyFileForNone) {
  TestFiles::write(file, "");
  EXPECT_EQ(poll(0), "unknown");
  TestFiles::write(request, "{}");
  EXPECT_EQ(poll(1), "pending");
}

TEST_F(ResultFileStoreTest, NamesAFileThatCannotBeParsedAllTheWhile) {
  for (const char* text :
       {"not JSON", " ", "[]", "\"passed\"", "null", "{}", R"({"status":null})", R"({"status":1})",
        R"({"status":"passed")", R"({"status":"passed"}x)", "{\"status\":\"p\xff\"}",
        "\xef\xbb\xbf{\"status\":\"passed\"}", R"({"status":"\ud800"})"}) {
    TestFiles::write(file, text);
    EXPECT_EQ(poll(1), unreadable) << text;
    EXPECT_TRUE(updates.empty()) << text;
  }
}

TEST_F(ResultFileStoreTest, ReadsATornFileOnceItIsComplete) {
  TestFiles::write(file, R"({"status":"pass)");
  bench.clock.runAfterEachSleep([&](int sleeps) {
    if (sleeps == 2) TestFiles::write(file, R"({"status":"passed"})");
  });
  EXPECT_EQ(poll(240), R"({"status":"passed"})");
  EXPECT_EQ(bench.clock.sleeps().size(), 2U);
}

TEST_F(ResultFileStoreTest, KeepsTheLastWholeSnapshotOfAFileThatIsCut) {
  TestFiles::write(file, R"({"status":"running"})");
  bench.clock.runAfterEachSleep([&](int sleeps) {
    if (sleeps == 1) TestFiles::write(file, R"({"sta)");
    if (sleeps == 2) TestFiles::write(file, "");
    if (sleeps == 3) fs::remove(file);
  });
  EXPECT_EQ(poll(5), R"({"status":"running"})");
  EXPECT_EQ(updates.size(), 1U);
}

TEST_F(ResultFileStoreTest, RemembersThatItSawSomethingUnreadable) {
  TestFiles::write(file, "not JSON");
  TestFiles::write(request, "{}");
  bench.clock.runAfterEachSleep([&](int) { fs::remove(file); });
  EXPECT_EQ(poll(2), unreadable);
}

TEST_F(ResultFileStoreTest, IsNotStoppedByWhatStandsInTheFilesPlace) {
  fs::create_directories(file);
  TestFiles::write(file / "x", "");
  EXPECT_EQ(poll(1), unreadable);
  fs::remove_all(file);
  // A FIFO nobody writes to must not be waited for; there is nothing in it.
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  EXPECT_EQ(poll(1), "unknown");
  fs::remove(file);
  fs::create_symlink(file, file);
  EXPECT_EQ(poll(1), "unknown");
}

TEST_F(ResultFileStoreTest, FollowsALinkToTheFile) {
  TestFiles::write(bench.home.path() / "elsewhere", R"({"status":"passed"})");
  fs::create_directories(file.parent_path());
  fs::create_symlink(bench.home.path() / "elsewhere", file);
  EXPECT_EQ(poll(0), R"({"status":"passed"})");
}

TEST_F(ResultFileStoreTest, TakesTheFilesWordOnWhetherItIsTerminal) {
  EXPECT_FALSE(terminal(R"({"status":"passed","terminal":false})"));
  EXPECT_TRUE(terminal(R"({"status":"running","terminal":true})"));
  EXPECT_TRUE(terminal(R"({"status":"unheard of","terminal":true})"));
}

TEST_F(ResultFileStoreTest, FallsBackOnTheStatus) {
  for (const std::string status :
       {"importFailed", "buildFailed", "imported", "authored", "extracted", "deleted", "passed",
        "failed", "warning", "cancelled", "blocked", "error"}) {
    EXPECT_TRUE(terminal(R"({"status":")" + status + "\"}")) << status;
  }
  for (const std::string status : {"received", "queued", "validating", "building", "running",
                                   "authoring", "Passed", "unheard of", ""}) {
    EXPECT_FALSE(terminal(R"({"status":")" + status + "\"}")) << status;
  }
  // A member that is no boolean says nothing.
  EXPECT_TRUE(terminal(R"({"status":"passed","terminal":0})"));
  EXPECT_TRUE(terminal(R"({"status":"passed","terminal":"false"})"));
  EXPECT_FALSE(terminal(R"({"status":"running","terminal":null})"));
}

TEST_F(ResultFileStoreTest, LooksAtTopLevelMembersOnly) {
  TestFiles::write(file, R"({"a":{"status":"passed"}})");
  EXPECT_FALSE(ResultFileStore::parse(file));
  EXPECT_FALSE(terminal(R"({"tests":[{"terminal":true,"status":"passed"}],"status":"running"})"));
}

TEST_F(ResultFileStoreTest, KeepsTheFilesTextAsItIs) {
  const std::string text = "\r\n {\"status\" : \"running\",\n\t\"n\":1.50, \"p\":\"a\\/b\"}\n\n";
  TestFiles::write(file, text);
  const auto snapshot = ResultFileStore::parse(file);
  EXPECT_EQ(snapshot.value().rawJSON, text);
  EXPECT_EQ(snapshot.value().status, "running");
}

TEST_F(ResultFileStoreTest, KnowsWhenTheFileWasChanged) {
  TestFiles::write(file, R"({"status":"running"})");
  const FileTime time = bench.clock.now() - 90s - 1ns;
  TestFiles::setModified(file, time);
  EXPECT_EQ(ResultFileStore::parse(file).value().modifiedAt, time);
}

TEST_F(ResultFileStoreTest, ReadsDeepAndLargeFiles) {
  std::string deep = R"({"deep":)";
  for (int i = 0; i < 100'000; ++i) deep += '[';
  for (int i = 0; i < 100'000; ++i) deep += ']';
  deep += R"(,"large":")" + std::string(5'000'000, 'x') + R"(","status":"passed"})";
  TestFiles::write(file, deep);
  EXPECT_TRUE(poll(0) == deep);
}

TEST_F(ResultFileStoreTest, FindsARequestThatWaits) {
  EXPECT_FALSE(store.requestStillPending(id));
  TestFiles::write(request, "");
  EXPECT_TRUE(store.requestStillPending(id));
}

TEST_F(ResultFileStoreTest, FindsATestThatWaitsToBeImported) {
  const fs::path imports = bench.paths.agentImportsDirectory();
  const auto pendingWith = [&](const std::string& name, std::string_view text) {
    fs::remove_all(imports);
    TestFiles::write(imports / name, text);
    return store.requestStillPending(id);
  };
  EXPECT_TRUE(pendingWith("Login-" + std::string(id) + ".corvane", ""));
  EXPECT_TRUE(pendingWith("Login-" + std::string(id) + ".corvanetest.json", ""));
  EXPECT_TRUE(pendingWith("Login.corvane.json", R"({"requestId":")" + std::string(id) + "\"}"));
  // Neither by name nor by text, in a file of another kind, in a hidden one.
  EXPECT_FALSE(pendingWith("Login.corvane", "{}"));
  EXPECT_FALSE(pendingWith("Login-" + std::string(id) + ".json", id));
  EXPECT_FALSE(pendingWith("." + std::string(id) + ".corvane", id));
  // A file that is not UTF-8 is no text.
  EXPECT_FALSE(pendingWith("Login.corvane.json", "\xFF" + std::string(id)));
}

TEST_F(ResultFileStoreTest, PassesOverImportsThatCannotBeRead) {
  const fs::path imports = bench.paths.agentImportsDirectory();
  fs::create_directories(imports / "folder.corvane");
  ASSERT_EQ(::mkfifo((imports / "fifo.corvane").c_str(), 0600), 0);
  fs::create_symlink("nowhere", imports / "link.corvane");
  EXPECT_FALSE(store.requestStillPending(id));
  TestFiles::write(imports / "z.corvane", id);
  EXPECT_TRUE(store.requestStillPending(id));
}

TEST_F(ResultFileStoreTest, DoesNotTakeOtherKindsOfRequestsForItsOwn) {
  for (const char* suffix : {".explorerequest.json", ".libraryrequest.json", ".cancel"}) {
    TestFiles::write(bench.paths.agentRunRequestsDirectory() / (std::string(id) + suffix), "{}");
  }
  EXPECT_EQ(poll(0), "unknown");
}

// Fails when a time beyond the clock's is cut to one of its own.
TEST_F(ResultFileStoreTest, CopesWithTimesBeyondAllClocks) {
  TestFiles::write(file, R"({"status":"running"})");
  const auto modifiedAt = [&](std::int64_t seconds) {
    const timespec moment{seconds, 0};
    const timespec both[] = {moment, moment};
    EXPECT_EQ(::utimensat(AT_FDCWD, file.c_str(), both, 0), 0);
    return ResultFileStore::parse(file).value().modifiedAt;
  };
  EXPECT_FALSE(modifiedAt(std::int64_t{1} << 34));
  // File systems that know no such past cut it to one that they know.
  const auto past = modifiedAt(-(std::int64_t{1} << 34));
  EXPECT_TRUE(!past || secondsBetween(*past, bench.clock.now()) > 91);
}

}  // namespace
}  // namespace corvane::testing
