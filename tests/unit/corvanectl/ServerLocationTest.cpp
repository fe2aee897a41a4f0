#include "corvanectl/protocol/ServerLocation.h"

#include <gtest/gtest.h>

#include "CorvaneCore/files/Files.h"
#include "TemporaryDirectory.h"
#include "corvanectl/protocol/ProtocolError.h"

namespace corvane {
namespace {

class ServerLocationTest : public testing::Test {
 protected:
  std::filesystem::path addProgram(const std::string& folder) {
    const auto path = directory.path() / folder / "corvane-mcp";
    writeFileWhole(path, "");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }
  [[nodiscard]] std::string folder(const std::string& name) const {
    return directory.path() / name;
  }
  [[nodiscard]] std::filesystem::path own() const {
    return directory.path() / "bin" / "corvanectl";
  }

  TemporaryDirectory directory;
};

TEST_F(ServerLocationTest, PrefersTheGivenPath) {
  addProgram("bin");
  EXPECT_EQ(locateServer("given", own(), folder("bin")), "given");
}

TEST_F(ServerLocationTest, ThenTheOneBesideThisProgram) {
  const auto beside = addProgram("bin");
  addProgram("other");
  EXPECT_EQ(locateServer(std::nullopt, own(), folder("other")), beside);
}

TEST_F(ServerLocationTest, ThenTheFirstOnTheSearchPath) {
  const auto found = addProgram("second");
  addProgram("third");
  std::filesystem::create_directories(directory.path() / "folder" / "corvane-mcp");
  writeFileWhole(directory.path() / "plain" / "corvane-mcp", "no program");
  const std::string path = "::" + folder("missing") + ":" + folder("folder") + ":" +
                           folder("plain") + ":" + folder("second") + ":" + folder("third");
  EXPECT_EQ(locateServer(std::nullopt, own(), path), found);
  EXPECT_EQ(locateServer(std::nullopt, {}, path), found);
}

TEST_F(ServerLocationTest, FailsWithoutAny) {
  EXPECT_THROW((void)locateServer(std::nullopt, own(), ""), ProtocolError);
  EXPECT_THROW((void)locateServer(std::nullopt, {}, folder("missing")), ProtocolError);
}

}  // namespace
}  // namespace corvane
