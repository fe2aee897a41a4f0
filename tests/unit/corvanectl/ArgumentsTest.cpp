#include <gtest/gtest.h>
#include <unistd.h>

#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "corvanectl/commands/CallCommand.h"
#include "corvanectl/commands/RunCommand.h"
#include "corvanectl/system/ChildProcess.h"
#include "tests/support/DefaultInterrupt.h"

namespace corvane::testing {
namespace {

using namespace ctl;

class RunArgumentsTest : public ::testing::Test {
 protected:
  RunArgumentsTest() { command.project = "Shop"; }
  [[nodiscard]] std::string arguments() const { return toJson(runArguments(command)); }

  RunCommand command;
};

TEST_F(RunArgumentsTest, NameTests) {
  command.tests = {"Login", "Check out"};
  EXPECT_EQ(arguments(), R"({"projectName":"Shop","testNames":["Login","Check out"]})");
}

TEST_F(RunArgumentsTest, NameASuite) {
  command.suite = "Smoke";
  EXPECT_EQ(arguments(), R"({"projectName":"Shop","suiteName":"Smoke"})");
}

TEST_F(RunArgumentsTest, CarryTheOptions) {
  command.all = true;
  command.params = {{"user", "me=you"}, {"empty", ""}};
  command.build = false;
  command.platform = "iOS";
  command.udid = "ABC";
  EXPECT_EQ(arguments(),
            R"({"buildFirst":false,"params":{"empty":"","user":"me=you"},"projectName":"Shop",)"
            R"("runAll":true,"simulatorUDID":"ABC","targetPlatform":"iOS"})");
}

/// With a pipe for standard input.
class ToolArgumentsTest : public ::testing::Test {
 protected:
  ToolArgumentsTest() { ::dup2(pipe.readEnd.get(), STDIN_FILENO); }
  ~ToolArgumentsTest() override { ::dup2(formerInput.get(), STDIN_FILENO); }

  void type(std::string_view text) {
    ASSERT_EQ(::write(pipe.writeEnd.get(), text.data(), text.size()),
              static_cast<ssize_t>(text.size()));
  }

  DefaultInterrupt interrupt;
  Interruption interruption;
  FileDescriptor formerInput{::dup(STDIN_FILENO)};
  Pipe pipe = makePipe();
};

TEST_F(ToolArgumentsTest, AreReadToTheEndOfStandardInput) {
  type("{\"a\":");
  type("true}\n");
  pipe.writeEnd.close();
  EXPECT_EQ(AnyCodable(readToolArguments("-", interruption)), readJson(R"({"a":true})"));
}

TEST_F(ToolArgumentsTest, AreNotWaitedForAfterCtrlC) {
  type("{");
  ::raise(SIGINT);
  EXPECT_THROW((void)readToolArguments("-", interruption), Interrupted);
}

TEST_F(ToolArgumentsTest, MustBeAnObject) {
  for (const char* source : {"[]", "1", "", "{", "{}{}", "@/nowhere/file", "@/tmp"}) {
    EXPECT_THROW((void)readToolArguments(source, interruption), UsageError) << source;
  }
}

}  // namespace
}  // namespace corvane::testing
