#include "CorvaneCore/results/AgentRunResult.h"

#include <gtest/gtest.h>

#include "CorvaneCore/results/AgentRunResult.h"

namespace corvane::testing {
namespace {

TEST(RunStatusTest, EveryStatusHasItsPlaceAndItsTerminalFlag) {
  const std::vector<std::pair<const char*, bool>> expected{
      {"received", false}, {"queued", false},     {"validating", false}, {"importFailed", true},
      {"building", false}, {"buildFailed", true}, {"running", false},    {"authoring", false},
      {"imported", true},  {"authored", true},    {"extracted", true},   {"deleted", true},
      {"passed", true},    {"failed", true},      {"warning", true},     {"cancelled", true},
      {"blocked", true},   {"error", true},
  };
  ASSERT_EQ(Vocabulary<RunStatus>::rows.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const auto& [raw, terminal] = expected[i];
    const auto status = static_cast<RunStatus>(i);
    EXPECT_EQ(rawValue(status), raw);
    EXPECT_EQ(fromRawValue<RunStatus>(raw), status);
    EXPECT_EQ(isTerminal(status), terminal) << raw;

    AgentRunResult result;
    result.terminal = !terminal;
    result.setStatus(status);
    EXPECT_EQ(result.status, raw);
    EXPECT_EQ(result.terminal, terminal) << raw;
  }
}

TEST(RunStatusTest, OtherTextsNameNoStatus) {
  for (const char* raw : {"", "Passed", "canceled", "done", "import_failed", "passed "}) {
    EXPECT_EQ(fromRawValue<RunStatus>(raw), std::nullopt) << raw;
  }
}

}  // namespace
}  // namespace corvane::testing
