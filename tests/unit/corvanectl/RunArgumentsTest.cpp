#include "corvanectl/commands/RunArguments.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/JsonWriter.h"

namespace corvane {
namespace {

class RunArgumentsTest : public testing::Test {
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

TEST(DispatchedRequestId, IsFoundInTheAnswer) {
  EXPECT_EQ(dispatchedRequestId("Run request dispatched to Corvane.\n\n"
                                "  requestId:   0f8fad5b-d9cb-469f-a165-70867728950e\n"
                                "  Project:     Shop\n"),
            "0f8fad5b-d9cb-469f-a165-70867728950e");
  EXPECT_EQ(dispatchedRequestId("  requestId:   unknown\n"), std::nullopt);
  EXPECT_EQ(dispatchedRequestId("nothing"), std::nullopt);
}

}  // namespace
}  // namespace corvane
