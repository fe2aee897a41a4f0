#include "corvane_mcp/server/ProgressReporter.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/Pipe.h"

namespace corvane {
namespace {

/// What one call of emit puts on the wire.
std::string sent(AnyCodable token, double progress, std::optional<double> total,
                 std::string_view message) {
  Pipe pipe;
  {
    MessageWriter writer(std::move(pipe.writing));
    ProgressReporter(writer, std::move(token)).emit(progress, total, message);
  }
  return readToEnd(pipe.reading.get());
}

TEST(ProgressReporterTest, SendsOneNotificationWithEscapedSlashes) {
  EXPECT_EQ(sent(5, 1, std::nullopt, "step 1/2"),
            R"({"jsonrpc":"2.0","method":"notifications\/progress","params":)"
            R"({"message":"step 1\/2","progress":1,"progressToken":5}})"
            "\n");
}

TEST(ProgressReporterTest, SendsATotalOnlyWhenThereIsOne) {
  EXPECT_EQ(sent("a", 0.5, 2, ""),
            R"({"jsonrpc":"2.0","method":"notifications\/progress","params":)"
            R"({"message":"","progress":0.5,"progressToken":"a","total":2}})"
            "\n");
}

TEST(ProgressReporterTest, SendsTheTokenAsItCame) {
  EXPECT_EQ(sent(AnyCodable::Object{{"b", 1.5}, {"a", nullptr}}, 1, std::nullopt, "m"),
            R"({"jsonrpc":"2.0","method":"notifications\/progress","params":)"
            R"({"message":"m","progress":1,"progressToken":{"a":null,"b":1.5}}})"
            "\n");
}

TEST(ProgressReporterTest, DropsWhatHasNoJsonForm) {
  EXPECT_EQ(sent(1, std::numeric_limits<double>::quiet_NaN(), std::nullopt, "m"), "");
  EXPECT_EQ(sent(1, 1, std::numeric_limits<double>::infinity(), "m"), "");
}

}  // namespace
}  // namespace corvane
