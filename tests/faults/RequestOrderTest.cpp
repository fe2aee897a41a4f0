#include <sys/inotify.h>

#include <array>
#include <map>
#include <set>

#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "tests/faults/FaultTest.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

/// Watches a folder from the outside, as the app does.
class FolderWatch {
 public:
  explicit FolderWatch(const fs::path& folder) : events(::inotify_init1(IN_CLOEXEC)) {
    if (::inotify_add_watch(events.get(), folder.c_str(), IN_CREATE | IN_MOVED_TO) < 0) {
      throw std::system_error(errno, std::generic_category(), "inotify_add_watch");
    }
  }

  /// The next `count` files that appear, in the order in which they do. Temporary ones do not
  /// count.
  std::vector<std::string> nextFiles(std::size_t count) {
    while (names.size() < count) takeIn();
    std::vector<std::string> next(names.begin(),
                                  names.begin() + static_cast<std::ptrdiff_t>(count));
    names.erase(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(count));
    return next;
  }

 private:
  void takeIn() {
    alignas(inotify_event) std::array<char, 16384> buffer;
    const ssize_t count = ::read(events.get(), buffer.data(), buffer.size());
    for (ssize_t at = 0; at < count;) {
      const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
      const std::string name = event->name;
      if (name.ends_with(".runrequest.json")) names.push_back(name);
      at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
    }
  }

  FileDescriptor events;
  std::vector<std::string> names;
};

class RequestOrderTest : public FaultTest {};

// Fails when calls that arrive together write side by side.
TEST_F(RequestOrderTest, IsThatOfTheCallsHoweverFastTheyCome) {
  constexpr int rounds = 1000;
  constexpr int callsPerRound = 6;
  ServerProcess server(setup());
  server.sendLine(ping(0));
  EXPECT_EQ(server.readLine(), pong(0));
  FolderWatch watch(paths.agentRunRequestsDirectory());
  for (int round = 0; round < rounds; ++round) {
    std::string lines;
    for (int i = 0; i < callsPerRound; ++i) lines += call(i, "run_test", anyRun) + "\n";
    server.send(lines);
    std::map<std::int64_t, std::string> fileOfCall;
    for (int i = 0; i < callsPerRound; ++i) {
      const std::string reply = server.readLine();
      const auto id = AnswerTexts::readRequestId(textOf(reply));
      fileOfCall[*readJson(reply).findAs<std::int64_t>("id")] = *id + ".runrequest.json";
    }
    std::vector<std::string> expected;
    for (const auto& [call, file] : fileOfCall) expected.push_back(file);
    ASSERT_EQ(watch.nextFiles(callsPerRound), expected) << "round " << round;
  }
}

// Fails when calls that wait for their turn begin inside each other, or when a client that is slow
// to read holds up what is read from it.
TEST_F(RequestOrderTest, IsThatOfThousandsOfCallsBeforeTheFirstReplyIsRead) {
  constexpr int calls = 3000;
  ServerProcess server(setup());
  std::string lines;
  for (int i = 0; i < calls; ++i) lines += call(i, "run_test", anyRun) + "\n";
  server.send(lines);
  std::set<std::int64_t> replied;
  for (int i = 0; i < calls; ++i) {
    replied.insert(*readJson(server.readLine()).findAs<std::int64_t>("id"));
  }
  EXPECT_EQ(replied.size(), std::size_t{calls});
  EXPECT_EQ(requestFiles(), std::size_t{calls});
  server.closeInput();
  EXPECT_EQ(server.wait(), "exit 0");
}

}  // namespace
}  // namespace corvane::testing
