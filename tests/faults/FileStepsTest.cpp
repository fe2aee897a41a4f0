#include <cerrno>

#include "tests/faults/FaultTest.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

/// One whole file written or read, by a program of which every step can be made to go wrong.
class FileStepsTest : public FaultTest {
 protected:
  FileStepsTest() { TestFiles::write(file, "old"); }

  /// What the program answers in a life in which the step at this index, counted from 0, goes wrong
  /// like this.
  std::string answer(const std::string& command, std::size_t step, const std::string& fault) {
    return answer(command,
                  {"CORVANE_FAULT_AT=" + std::to_string(step + 1), "CORVANE_FAULT_AS=" + fault});
  }
  std::string answer(const std::string& command, Lines faults = {}) {
    const TemporaryHome elsewhere;
    const fs::path journal = elsewhere.path() / "journal";
    ServerProcess::Setup setup{CORVANE_WHOLE_FILE, home.path()};
    setup.environment = std::move(faults);
    setup.environment.insert(setup.environment.end(), furtherEnvironment.begin(),
                             furtherEnvironment.end());
    for (const auto& variable :
         {std::string("LD_PRELOAD=" CORVANE_FILE_FAULTS),
          // The sanitizer wants to be loaded first, but does not need to be.
          std::string("ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0"),
          "CORVANE_FAULT_ROOT=" + home.path().string(),
          "CORVANE_FAULT_JOURNAL=" + journal.string()}) {
      setup.environment.push_back(variable);
    }
    ServerProcess program(std::move(setup));
    program.sendLine(command);
    const std::string line = program.readLine();
    program.closeInput();
    EXPECT_EQ(program.wait(), "exit 0");
    steps.clear();
    for (const auto& each : TestFiles::lines(journal)) {
      steps.push_back(each.substr(0, each.find(' ')));
    }
    return line;
  }

  /// Expects that a step which goes wrong is told and undone, or makes no difference.
  void expectFailedWrite(std::size_t step, bool isNeeded) {
    SCOPED_TRACE("step " + std::to_string(step));
    EXPECT_EQ(answer(write, step, std::to_string(EIO)),
              isNeeded ? "could not write " + file.string() + ": Input/output error" : "done");
    EXPECT_EQ(TestFiles::read(file), isNeeded ? "old" : "new");
    EXPECT_EQ(home.entries(), Lines{"file"});
    TestFiles::write(file, "old");
  }

  const fs::path file = home.path() / "file";
  const std::string write = "write " + file.string();
  const std::string read = "read " + file.string();
  Lines furtherEnvironment;
  /// Of the last life.
  Lines steps;
};

// Fails when a copy is not closed, or what that tells is passed over: some file systems tell only
// then that something was not written.
TEST_F(FileStepsTest, AFileWithoutANameIsWrittenWholeOrNotAtAll) {
  EXPECT_EQ(answer(write), "done");
  ASSERT_EQ(steps, (Lines{"stat", "create", "write", "close", "link", "link", "close", "rename"}));
  TestFiles::write(file, "old");
  const std::vector<bool> isNeeded{false, false, true, true, false, false, true, true};
  for (std::size_t i = 0; i < isNeeded.size(); ++i) expectFailedWrite(i, isNeeded[i]);
}

// Fails when the file is moved into place although closing it told of an error.
TEST_F(FileStepsTest, AFileWithANameIsWrittenWholeOrNotAtAll) {
  furtherEnvironment = {"CORVANE_FAULT_REFUSED=link"};
  EXPECT_EQ(answer(write), "done");
  ASSERT_EQ(steps, (Lines{"stat", "create", "write", "close", "link", "close", "create", "write",
                          "close", "rename"}));
  TestFiles::write(file, "old");
  const std::vector<bool> isNeeded{false, false, true, true, false, false, true, true, true, true};
  for (std::size_t i = 0; i < isNeeded.size(); ++i) expectFailedWrite(i, isNeeded[i]);
}

// Fails when a call that a signal interrupted, or cut short, is not repeated.
TEST_F(FileStepsTest, InterruptedStepsAreRepeated) {
  for (const std::string& fault : {std::to_string(EINTR), std::string("short")}) {
    TestFiles::write(file, "old");
    EXPECT_EQ(answer(write, 2, fault), "done");
    EXPECT_EQ(steps.at(2), "write");
    EXPECT_EQ(TestFiles::read(file), "new");
    for (const std::size_t step : {1U, 2U}) {
      EXPECT_EQ(answer(read, step, fault), "new");
      EXPECT_EQ(steps.at(step), "read");
    }
  }
}

TEST_F(FileStepsTest, AFailedStepOfReadingIsTold) {
  EXPECT_EQ(answer(read), "old");
  ASSERT_EQ(steps, (Lines{"open", "read", "read", "close"}));
  for (const std::size_t step : {0U, 1U, 2U}) {
    EXPECT_EQ(answer(read, step, std::to_string(EIO)),
              "could not read " + file.string() + ": Input/output error");
  }
  EXPECT_EQ(answer(read, 3, std::to_string(EIO)), "old");
}

// Fails when a temporary file may be one that was there already, and perhaps another's.
TEST_F(FileStepsTest, ATemporaryFileIsNobodyElses) {
  furtherEnvironment = {"CORVANE_FAULT_REFUSED=link"};
  EXPECT_EQ(answer(write, 6, "taken"), "could not write " + file.string() + ": File exists");
  EXPECT_EQ(steps.at(6), "create");
  EXPECT_EQ(TestFiles::read(file), "old");
}

// Fails when a folder that cannot be made is told only as one that is not there.
TEST_F(FileStepsTest, AFolderThatCannotBeMadeIsTold) {
  const fs::path deep = home.path() / "a" / "b" / "file";
  EXPECT_EQ(answer("write " + deep.string(), 2, std::to_string(ENOSPC)),
            "could not write " + deep.string() + ": No space left on device");
  EXPECT_EQ((Lines(steps.begin(), steps.begin() + 4)), (Lines{"stat", "mkdir", "mkdir", "mkdir"}));
  EXPECT_EQ(answer("write " + deep.string()), "done");
}

}  // namespace
}  // namespace corvane::testing
