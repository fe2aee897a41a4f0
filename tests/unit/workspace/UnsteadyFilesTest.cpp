// The two tools that read what the app publishes, while what they read is in no good state.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <thread>

#include "corvane_mcp/tools/Tools.h"
#include "tests/unit/workspace/WorkspaceBench.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

/// A workspace of this many projects of 500 tests of 20 steps each.
std::string largeContext(int projects) {
  std::string test = R"({"id":"00000000-0000-4000-8000-000000000000","name":"T","steps":[)";
  for (int step = 0; step < 20; ++step) {
    test += (step == 0 ? "" : ",") + std::string(R"({"description":"Tap it","type":"tap"})");
  }
  test += "]}";
  std::string tests;
  for (int i = 0; i < 500; ++i) tests += (i == 0 ? "" : ",") + test;
  std::string text = R"({"currentProjectName":"Project 1","projects":[)";
  for (int i = 0; i < projects; ++i) {
    text += (i == 0 ? "" : ",") + (R"({"name":"Project )" + std::to_string(i)) + R"(","tests":[)" +
            tests + "]}";
  }
  return text + R"(],"schemaVersion":1,"updatedAt":"2026-01-31T12:00:00Z"})";
}

/// Does something over and over on a thread of its own.
class Meanwhile {
 public:
  template <class Act>
  explicit Meanwhile(Act act)
      : worker([this, act] {
          while (!stop) act();
        }) {}
  Meanwhile(const Meanwhile&) = delete;
  Meanwhile& operator=(const Meanwhile&) = delete;
  ~Meanwhile() {
    stop = true;
    worker.join();
  }

 private:
  std::atomic<bool> stop{false};
  std::thread worker;
};

class UnsteadyFilesTest : public ::testing::Test {
 protected:
  [[nodiscard]] WorkspaceBench::Answer describe() const {
    return bench.call<makeDescribeProjectTool>();
  }
  [[nodiscard]] WorkspaceBench::Answer status() const { return bench.call<makeGetStatusTool>(); }

  [[nodiscard]] bool unavailable() const {
    return describe().text.starts_with("error:context_unavailable\n");
  }
  /// Whether get_status answers as if there were no activity.
  [[nodiscard]] bool inactive() const {
    return status().text.find("\"activity\"") == std::string::npos;
  }
  /// Puts something in the place of both files.
  template <class Put>
  void inPlaceOfBoth(Put put) const {
    for (const auto& file : {context, activity}) {
      fs::create_directories(file.parent_path());
      fs::remove_all(file);
      put(file);
    }
  }

  WorkspaceBench bench;
  fs::path context = bench.paths.agentContextFile();
  fs::path activity = bench.paths.agentActivityFile();
};

TEST_F(UnsteadyFilesTest, AFolderIsNoFile) {
  inPlaceOfBoth([](const fs::path& file) { fs::create_directory(file); });
  EXPECT_TRUE(unavailable());
  EXPECT_TRUE(inactive());
}

TEST_F(UnsteadyFilesTest, AFifoHoldsNobodyUp) {
  inPlaceOfBoth([](const fs::path& file) { ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0); });
  EXPECT_TRUE(unavailable());
  EXPECT_TRUE(inactive());
}

TEST_F(UnsteadyFilesTest, ALinkThatLeadsNowhereIsNoFile) {
  inPlaceOfBoth([](const fs::path& file) { fs::create_symlink("nowhere", file); });
  EXPECT_TRUE(unavailable());
  EXPECT_TRUE(inactive());
}

TEST_F(UnsteadyFilesTest, AFileInTheFoldersPlaceIsNoFolder) {
  TestFiles::write(context.parent_path(), "in the way");
  EXPECT_TRUE(unavailable());
  EXPECT_TRUE(inactive());
}

TEST_F(UnsteadyFilesTest, AFileBeyondTheLimitIsNotRead) {
  const auto objectOfSize = [](std::size_t size) { return "{" + std::string(size - 2, ' ') + "}"; };
  inPlaceOfBoth(
      [&](const fs::path& file) { TestFiles::write(file, objectOfSize(largestFile + 1)); });
  EXPECT_TRUE(unavailable());
  EXPECT_TRUE(inactive());
  inPlaceOfBoth([&](const fs::path& file) { TestFiles::write(file, objectOfSize(largestFile)); });
  EXPECT_FALSE(unavailable());
  EXPECT_FALSE(inactive());
}

TEST_F(UnsteadyFilesTest, AFileCutAnywhereIsNotRead) {
  const std::string text =
      R"({"projects":[{"name":"A","tests":[{"steps":[{"type":"tap"}]}]}],"updatedAt":"x","n":-1.5e3})";
  for (std::size_t length = 0; length < text.size(); ++length) {
    inPlaceOfBoth([&](const fs::path& file) { TestFiles::write(file, text.substr(0, length)); });
    EXPECT_TRUE(unavailable()) << length;
    EXPECT_TRUE(inactive()) << length;
  }
  inPlaceOfBoth([&](const fs::path& file) { TestFiles::write(file, text); });
  EXPECT_FALSE(unavailable());
  EXPECT_FALSE(inactive());
}

TEST_F(UnsteadyFilesTest, TwentyMegabytesAreReadWhole) {
  const std::string text = largeContext(53);
  ASSERT_GT(text.size(), std::size_t{20} << 20);
  TestFiles::write(context, text);
  const std::string answer = describe().text;
  std::string others;
  for (int i = 0; i < 53; ++i) {
    if (i == 1) continue;
    others += (i == 0 ? "" : ",") + (R"({"name":"Project )" + std::to_string(i)) +
              R"(","testCount":500})";
  }
  const std::string begin = R"({"currentProjectName":"Project 1","otherProjects":[)" + others +
                            R"(],"project":{"name":"Project 1","tests":[{"id":)";
  EXPECT_NE(answer.find("\n\n" + begin), std::string::npos);
  // One of the file's equal projects in full.
  const std::size_t projectSize =
      text.find(R"({"name":"Project 2")") - text.find(R"({"name":"Project 1")") - 1;
  EXPECT_GT(answer.size(), projectSize + others.size());
  EXPECT_LT(answer.size(), projectSize + others.size() + 500);

  TestFiles::write(context, std::string_view(text).substr(0, text.size() / 2));
  EXPECT_TRUE(unavailable());
}

TEST_F(UnsteadyFilesTest, ALargeActivityAndLargeResultsAreReadToo) {
  const std::string filler(std::size_t{20} << 20, 'x');
  TestFiles::write(activity, R"({"filler":")" + filler + "\"}");
  TestFiles::write(bench.paths.agentResultsDirectory() / "a.json",
                   R"({"filler":")" + filler + R"(","requestId":"big","status":"running"})");
  const std::string answer = status().text;
  EXPECT_GT(answer.size(), filler.size());
  EXPECT_LT(answer.size(), filler.size() + 500);
  EXPECT_NE(answer.find(R"("requestId":"big")"), std::string::npos);
}

TEST_F(UnsteadyFilesTest, AReplacedFileIsReadAsItWasOrAsItIs) {
  const std::string before =
      R"({"projects":[],"updatedAt":"before","x":")" + std::string(100000, 'b') + "\"}";
  const std::string after =
      R"({"projects":[],"updatedAt":"after","x":")" + std::string(200000, 'a') + "\"}";
  TestFiles::replace(context, before);
  TestFiles::replace(activity, before);
  const std::string describedBefore = describe().text;
  const std::string statusBefore = status().text;
  TestFiles::replace(context, after);
  TestFiles::replace(activity, after);
  const std::string describedAfter = describe().text;
  const std::string statusAfter = status().text;
  ASSERT_NE(describedBefore, describedAfter);
  ASSERT_NE(statusBefore, statusAfter);

  const Meanwhile writer([&] {
    for (const auto* text : {&before, &after}) {
      TestFiles::replace(context, *text);
      TestFiles::replace(activity, *text);
    }
  });
  for (int i = 0; i < 200; ++i) {
    const std::string described = describe().text;
    EXPECT_TRUE(described == describedBefore || described == describedAfter);
    const std::string told = status().text;
    EXPECT_TRUE(told == statusBefore || told == statusAfter);
  }
}

TEST_F(UnsteadyFilesTest, AFileThatComesAndGoesIsThereOrNot) {
  const std::string text = R"({"projects":[],"updatedAt":"now"})";
  TestFiles::replace(context, text);
  TestFiles::replace(activity, text);
  const std::string described = describe().text;
  const std::string told = status().text;
  const Meanwhile writer([&] {
    for (const auto& file : {context, activity}) {
      fs::remove(file);
      TestFiles::replace(file, text);
    }
  });
  for (int i = 0; i < 200; ++i) {
    const std::string nowDescribed = describe().text;
    EXPECT_TRUE(nowDescribed == described || nowDescribed.starts_with("error:context_unavailable"));
    const std::string nowTold = status().text;
    EXPECT_TRUE(nowTold == told || nowTold.find("note: ") != std::string::npos);
  }
}

TEST_F(UnsteadyFilesTest, ResultsThatVanishWhileTheyAreListedAreSkipped) {
  const fs::path folder = bench.paths.agentResultsDirectory();
  const std::string result = R"({"requestId":"kept","status":"passed"})";
  TestFiles::write(folder / "kept.json", result);
  TestFiles::setModified(folder / "kept.json", bench.clock.now() + std::chrono::hours(100000));
  const Meanwhile writer([&] {
    for (int i = 0; i < 20; ++i) {
      TestFiles::write(folder / (std::to_string(i) + ".json"), i % 2 == 0 ? result : "{\"requ");
    }
    for (int i = 0; i < 20; ++i) fs::remove(folder / (std::to_string(i) + ".json"));
  });
  for (int i = 0; i < 200; ++i) {
    const auto answer = status();
    EXPECT_FALSE(answer.isError);
    EXPECT_NE(answer.text.find(R"("recentRequests":[{"requestId":"kept",)"), std::string::npos)
        << answer.text;
  }
}

}  // namespace
}  // namespace corvane::testing
