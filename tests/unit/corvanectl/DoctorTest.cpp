#include <gtest/gtest.h>

#include <filesystem>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/Date.h"
#include "CorvaneCore/json/JsonReader.h"
#include "StandInHome.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

/// The doctor with the built server, in a private home.
class DoctorTest : public ::testing::Test {
 protected:
  /// Writes a file that was last changed so long ago.
  static void writeOld(const fs::path& file, std::string_view text, std::chrono::seconds age) {
    writeFileWhole(file, text);
    fs::last_write_time(file, fs::file_time_type::clock::now() - age);
  }

  void publishWorkspace(std::chrono::seconds age) {
    writeFileWhole(home.paths().agentContextFile(),
                   R"({"schemaVersion":1,"updatedAt":")" + formatDate(currentDate() - age) +
                       R"(","appVersion":"3.1","projects":[{"name":"Shop","tests":[]}]})");
  }

  /// What the doctor says of one thing, its way to mend it included.
  [[nodiscard]] std::string finding(const std::string& check) const {
    const AnyCodable told = readJson(home.run({"doctor", "--json"}).output);
    std::string text;
    for (const AnyCodable& each : *told.find("checks")->array()) {
      if (*each.find("check") != AnyCodable(check)) continue;
      text += *each.find("ok") == AnyCodable(true) ? "well: " : "wrong: ";
      text += *each.find("text")->string();
      if (const auto* mend = each.find("mend")) text += " | " + *mend->string();
    }
    return text;
  }

  const StandInHome home;
};

TEST_F(DoctorTest, FindsNothingWrongInAHomeInUse) {
  home.startApp();
  const auto run = home.run({"doctor"});
  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_EQ(run.output.find("✗"), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("✓ Server and corvanectl are of version 0.2.0\n"), std::string::npos);
  EXPECT_NE(run.output.find("✓ The shared folders and the log's can be written, by you alone\n"),
            std::string::npos);
  EXPECT_NE(run.output.find("✓ Corvane.app is running, for this home\n"), std::string::npos);
  EXPECT_NE(run.output.find("✓ The workspace is fresh: 2 projects, published "), std::string::npos);
  EXPECT_NE(run.output.find("✓ No request has been waiting for over a minute to be picked up\n"),
            std::string::npos);
  EXPECT_EQ(*readJson(home.run({"doctor", "--json"}).output).find("ok"), AnyCodable(true));
}

TEST_F(DoctorTest, TellsOfAServerThatFails) {
  const auto run = home.run({"doctor", "--server", "/nowhere/server"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output,
            "✗ The server fails: could not start /nowhere/server: No such file or directory\n"
            "    cmake --install build/release, or name it: corvanectl doctor --server PATH (--log "
            "shows what it says)\n");
}

TEST_F(DoctorTest, TellsThatTheAppIsNotThere) {
  fs::remove(home.home().path() / "Applications" / "Corvane.app");
  const auto run = home.run({"doctor"});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.output.find(
                "✗ Corvane.app is in none of the places where the server looks\n    ln "
                "-s /path/to/Corvane.app ~/Applications/ or, to try it without: corvanectl try\n"),
            std::string::npos)
      << run.output;
}

TEST_F(DoctorTest, TellsThatThereIsNoWorkspace) {
  EXPECT_EQ(finding("workspace"), "wrong: Corvane.app has not published its workspace | '" +
                                      home.home().path().string() +
                                      "/Applications/Corvane.app/Contents/MacOS/Corvane' &");
}

// Fails when the day is longer than a day.
TEST_F(DoctorTest, TellsOfAnOldWorkspace) {
  publishWorkspace(std::chrono::hours(23));
  EXPECT_TRUE(finding("workspace").starts_with("well: The workspace is fresh: 1 project, "));
  publishWorkspace(std::chrono::hours(25));
  EXPECT_TRUE(
      finding("workspace").starts_with("wrong: The workspace is over a day old: 1 project"));
}

// Fails when any running app counts as this home's.
TEST_F(DoctorTest, TellsOfAnAppThatServesAnotherHome) {
  const StandInHome other;
  other.startApp(&home);
  EXPECT_EQ(finding("running"),
            "wrong: A Corvane.app is running, but nothing has been heard of it in this home: it "
            "hangs, or belongs to another home or user | pkill -u \"$USER\" -f "
            "Corvane.app/Contents/MacOS/Corvane");
}

TEST_F(DoctorTest, TellsOfRequestsThatNobodyTakes) {
  const std::string id = "3f2a0000-0000-4000-8000-000000000001";
  const fs::path file = home.paths().agentRunRequestsDirectory() / (id + ".runrequest.json");
  writeOld(file, "{}", std::chrono::seconds(30));
  EXPECT_EQ(finding("requests"),
            "well: No request has been waiting for over a minute to be picked up");
  writeOld(file, "{}", std::chrono::seconds(125));
  const std::string told = finding("requests");
  EXPECT_TRUE(told.starts_with("wrong: 1 request waits to be picked up, for up to 2 min ")) << told;
  EXPECT_TRUE(told.ends_with(" s: " + id + " | '" + home.home().path().string() +
                             "/Applications/Corvane.app/Contents/MacOS/Corvane' & or: corvanectl "
                             "cancel " +
                             id))
      << told;
}

// Fails when the folder of results is not looked at.
TEST_F(DoctorTest, TellsOfFoldersThatAreOpenToOthers) {
  const fs::path folder = home.paths().agentResultsDirectory();
  fs::create_directories(folder);
  fs::permissions(folder, fs::perms(0755));
  EXPECT_EQ(finding("folders"), "wrong: " + folder.string() +
                                    " is open to other users | chmod 700 '" + folder.string() +
                                    "'");
}

TEST_F(DoctorTest, TellsOfAFileInAFoldersPlace) {
  const fs::path folder = home.paths().agentResultsDirectory();
  writeFileWhole(folder, "");
  EXPECT_TRUE(finding("folders").starts_with("wrong: " + folder.string() + " is no folder | mv '"));
}

TEST_F(DoctorTest, TellsOfALogThatIsNotRotated) {
  const fs::path log = home.paths().logFile();
  // Nothing can take the place of a folder that holds something.
  writeFileWhole(log.parent_path() / "mcp.1.log" / "file", "");
  writeFileWhole(log, std::string(std::size_t{3} << 19, 'x'));
  EXPECT_TRUE(finding("log").starts_with("well: "));
  writeFileWhole(log, std::string((std::size_t{3} << 20) + 1, 'x'));
  EXPECT_EQ(finding("log"), "wrong: " + log.string() +
                                " has grown to 3 MiB and is not rotated | mv '" + log.string() +
                                "' '" + log.string() + ".old'");
}

}  // namespace
}  // namespace corvane::testing
