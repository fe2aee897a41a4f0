#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "corvane_mcp/server/Logger.h"
#include "tests/support/Pipe.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Timeout.h"
#include "tests/unit/server/StandardStreamCapture.h"

namespace corvane::testing {
namespace {

std::vector<pid_t> threads() {
  std::vector<pid_t> ids;
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    ids.push_back(std::stoi(task.path().filename()));
  }
  return ids;
}

/// Whether a thread waits for something.
bool sleeps(pid_t thread) {
  const auto stat = TestFiles::read("/proc/self/task/" + std::to_string(thread) + "/stat");
  return stat.find(") S ") != std::string::npos;
}

std::atomic<bool> stalled;
std::atomic<int> stalledUntilReadable;

/// Keeps the thread that gets the signal from going on, as a disk does that takes no more.
void stall(int) {
  stalled = true;
  char byte = 0;
  (void)!::read(stalledUntilReadable, &byte, 1);
}

class LoggerQueueTest : public ::testing::Test {
 protected:
  LoggerQueueTest() {
    struct sigaction action{};
    action.sa_handler = stall;
    ::sigaction(SIGUSR1, &action, nullptr);
    stalledUntilReadable = disk.reading.get();
  }
  /// A failed test lets its threads end.
  ~LoggerQueueTest() override { disk.writing.close(); }

  /// Stalls the thread that writes the file of `logger`, which has not written yet.
  void stallFileOf(Logger& logger) {
    const auto others = threads();
    logger.info("first");
    waitUntil("the first line is there", [this] { return TestFiles::lines(file).size() == 1; });
    const auto now = threads();
    const auto writer = std::find_if(now.begin(), now.end(), [&others](pid_t thread) {
      return std::find(others.begin(), others.end(), thread) == others.end();
    });
    ASSERT_NE(writer, now.end());
    // Then it waits for lines, and holds no lock.
    waitUntil("the writer is idle", [writer] { return sleeps(*writer); });
    ::syscall(SYS_tgkill, ::getpid(), *writer, SIGUSR1);
    waitUntil("the writer is stalled", [] { return stalled.load(); });
  }

  TemporaryHome home;
  std::filesystem::path file = home.paths().logFile();
  Pipe disk;
  FileDescriptor nowhere{::open("/dev/null", O_WRONLY | O_CLOEXEC)};
  StandardStreamReplacement errors{STDERR_FILENO, nowhere.get()};
};

// Fails when lines are queued without bound, or when lines that were written go on counting.
TEST_F(LoggerQueueTest, HoldsItsCallersBackUntilTheFileHasCaughtUp) {
  constexpr int count = 100;
  const std::string text(std::size_t{64} << 10, 'x');
  std::atomic<int> emitted = 0;
  {
    Logger logger(file);
    ASSERT_NO_FATAL_FAILURE(stallFileOf(logger));
    std::atomic<pid_t> caller = 0;
    std::thread calls([&] {
      caller = static_cast<pid_t>(::syscall(SYS_gettid));
      for (int i = 0; i < count; ++i, ++emitted) logger.info(text);
    });
    // Four megabytes take 64 of these lines.
    waitUntil("the caller is held back",
              [&] { return emitted == count || (emitted >= 60 && sleeps(caller)); });
    EXPECT_LE(emitted, 64);
    writeAll(disk.writing.get(), "x");
    // Left to end the program where it is stuck.
    waitUntil("the caller is through", [&emitted] { return emitted == count; });
    calls.join();
  }
}

}  // namespace
}  // namespace corvane::testing
