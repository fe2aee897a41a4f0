#include <atomic>
#include <functional>
#include <set>
#include <string>
#include <thread>

#include "tests/faults/FaultTest.h"

namespace corvane::testing {
namespace {

const std::string id = "0a1b2c3d-0000-4000-8000-00000000abcd";

class ResultFilesTest : public FaultTest {
 protected:
  /// The beginnings of the replies to many get_result calls while another thread changes the file.
  /// Every snapshot among them must be whole.
  std::set<std::string> outcomesWhile(const std::function<void()>& change) {
    std::atomic<bool> done = false;
    std::thread changer([&] {
      while (!done) change();
    });
    std::set<std::string> outcomes;
    constexpr int count = 150;
    for (int i = 0; i < count; ++i) {
      server.sendLine(call(i, "get_result", R"({"requestId":")" + id + "\"}"));
    }
    for (int i = 0; i < count; ++i) {
      const std::string text = textOf(server.readLine());
      const std::size_t head = text.find("\n\n");
      outcomes.insert(text.substr(0, head));
      if (!text.starts_with("status: ")) continue;
      const std::string snapshot = text.substr(head + 2);
      EXPECT_TRUE(snapshot == passed || snapshot == failed) << snapshot.substr(0, 100);
    }
    done = true;
    changer.join();
    server.closeInput();
    EXPECT_EQ(server.wait(), "exit 0");
    return outcomes;
  }

  const std::filesystem::path file = paths.agentResultsDirectory() / (id + ".json");
  // Of different lengths, so that a mixture of the two is no JSON.
  const std::string passed = R"({"status":"passed","message":")" + std::string(30'000, 'x') + "\"}";
  const std::string failed = R"({"status":"failed","message":")" + std::string(50'000, 'y') + "\"}";
  ServerProcess server{setup()};
};

TEST_F(ResultFilesTest, MayBeReplacedWhileTheyAreRead) {
  TestFiles::replace(file, passed);
  const auto outcomes = outcomesWhile([this] {
    TestFiles::replace(file, failed);
    TestFiles::replace(file, passed);
  });
  for (const auto& outcome : outcomes) {
    EXPECT_TRUE(outcome == "status: passed (terminal)" || outcome == "status: failed (terminal)")
        << outcome;
  }
}

TEST_F(ResultFilesTest, MayBeCutAndWrittenOverWhileTheyAreRead) {
  TestFiles::write(file, passed);
  const auto outcomes = outcomesWhile([this] {
    TestFiles::write(file, failed);
    TestFiles::write(file, passed);
    std::filesystem::resize_file(file, 1000);
  });
  for (const auto& outcome : outcomes) {
    EXPECT_TRUE(outcome == "status: passed (terminal)" || outcome == "status: failed (terminal)" ||
                outcome == "error:result_unreadable" || outcome == "error:unknown_request_id")
        << outcome;
  }
}

}  // namespace
}  // namespace corvane::testing
