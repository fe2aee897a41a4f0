#include <sched.h>
#include <sys/mount.h>

#include <fstream>
#include <string>

#include "tests/faults/FaultTest.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

/// A small disk of its own, seen by this process and its children only. Making one needs rights
/// that a test may not have.
class SmallDisk {
 public:
  explicit SmallDisk(fs::path at) : place(std::move(at)) {
    fs::create_directories(place);
    mounted = ::unshare(CLONE_NEWNS) == 0 &&
              ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
              ::mount("none", place.c_str(), "tmpfs", 0, "size=512k") == 0;
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;
  ~SmallDisk() {
    if (mounted) ::umount2(place.c_str(), MNT_DETACH);
  }

  [[nodiscard]] bool isThere() const { return mounted; }
  void fill() const {
    std::ofstream filler(place / "filler", std::ios::binary);
    const std::string block(4096, 'x');
    while (filler.write(block.data(), static_cast<std::streamsize>(block.size())).flush()) {
    }
  }
  void freeSpace() const { fs::remove(place / "filler"); }

 private:
  const fs::path place;
  bool mounted = false;
};

class DiskTest : public FaultTest {};

TEST_F(DiskTest, MayBeFull) {
  const fs::path small = home.path() / "small";
  const SmallDisk disk(small);
  if (!disk.isThere()) GTEST_SKIP() << "this account may not mount a disk";
  auto given = setup();
  given.home = small;
  ServerProcess server(std::move(given));
  server.sendLine(ping(1));
  EXPECT_EQ(server.readLine(), pong(1));
  disk.fill();

  server.sendLine(call(2, "run_test", anyRun));
  const std::string refused = errorOf(server.readLine());
  EXPECT_TRUE(refused.starts_with("Failed to write run request: could not write " + small.string()))
      << refused;
  EXPECT_TRUE(refused.ends_with(".runrequest.json: No space left on device")) << refused;
  server.sendLine(call(3, "cancel_run", R"({"requestId":"0a1b2c3d-0000-4000-8000-00000000abcd"})"));
  const std::string unmarked = errorOf(server.readLine());
  EXPECT_TRUE(unmarked.starts_with("Failed to write cancel marker: ")) << unmarked;
  EXPECT_TRUE(unmarked.ends_with(".cancel: No space left on device")) << unmarked;
  const fs::path requests = small / ".local" / "share" / "Corvane" / "AgentRunRequests";
  EXPECT_EQ(fs::directory_iterator(requests), fs::directory_iterator());

  disk.freeSpace();
  server.sendLine(call(4, "run_test", anyRun));
  EXPECT_TRUE(textOf(server.readLine()).starts_with("Run request dispatched to Corvane."));
  EXPECT_EQ(listVisible(requests).size(), 1U);
  server.closeInput();
  EXPECT_EQ(server.wait(), "exit 0");
}

TEST_F(DiskTest, MayRefuseLargerFiles) {
  constexpr std::uint64_t limit = 8192;
  auto given = setup();
  given.fileSizeLimit = limit;
  ServerProcess server(std::move(given));
  // The log reaches the limit on the way.
  for (int i = 0; i < 500; ++i) {
    server.sendLine(ping(i));
    ASSERT_EQ(server.readLine(), pong(i));
  }
  server.sendLine(call(1, "run_test", anyRun));
  EXPECT_TRUE(textOf(server.readLine()).starts_with("Run request dispatched to Corvane."));
  server.sendLine(
      call(2, "run_test", R"({"runAll":true,"projectName":")" + std::string(limit, 'x') + "\"}"));
  const std::string refused = errorOf(server.readLine());
  EXPECT_TRUE(refused.ends_with(".runrequest.json: File too large")) << refused;
  std::size_t files = 0;
  for (const auto& entry : fs::directory_iterator(paths.agentRunRequestsDirectory())) {
    EXPECT_EQ(entry.path().extension(), ".json") << entry.path();
    ++files;
  }
  EXPECT_EQ(files, 1U);
  server.closeInput();
  EXPECT_EQ(server.wait(), "exit 0");
  EXPECT_LE(fs::file_size(paths.logFile()), limit);
}

TEST_F(DiskTest, MayHoldFilesWhereFoldersAreExpected) {
  TestFiles::write(paths.applicationSupport(), "a file");
  TestFiles::write(home.path() / "Library", "a file");
  ServerProcess server(setup());
  server.sendLine(call(1, "health", "{}"));
  EXPECT_TRUE(textOf(server.readLine()).starts_with("corvane-mcp is healthy."));
  server.sendLine(call(2, "run_test", anyRun));
  const std::string refused = errorOf(server.readLine());
  EXPECT_TRUE(refused.ends_with(".runrequest.json: Not a directory")) << refused;
  server.closeInput();
  EXPECT_EQ(server.wait(), "exit 0");
  EXPECT_EQ(TestFiles::read(paths.applicationSupport()), "a file");
  EXPECT_EQ(TestFiles::read(home.path() / "Library"), "a file");
}

}  // namespace
}  // namespace corvane::testing
