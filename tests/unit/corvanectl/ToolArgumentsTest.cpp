#include "corvanectl/commands/ToolArguments.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "CorvaneCore/json/JsonReader.h"
#include "corvanectl/commands/UsageError.h"
#include "corvanectl/system/Pipe.h"

namespace corvane {
namespace {

/// With a pipe for standard input.
class ToolArgumentsTest : public testing::Test {
 protected:
  ToolArgumentsTest() { ::dup2(pipe.readEnd.get(), STDIN_FILENO); }
  ~ToolArgumentsTest() override { ::dup2(formerInput.get(), STDIN_FILENO); }

  void type(std::string_view text) {
    ASSERT_EQ(::write(pipe.writeEnd.get(), text.data(), text.size()),
              static_cast<ssize_t>(text.size()));
  }

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
}  // namespace corvane
