#include "CorvaneCore/results/AgentRunResult.h"
#include "bench/speed/Documents.h"
#include "bench/speed/Messages.h"
#include "bench/speed/WholeCall.h"
#include "bench/speed/rows/Rows.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

Rows::Findings Rows::getResult(const Setting& setting) {
  const TemporaryHome home;
  const std::string id = "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345";
  Documents::writeTerminalResult(id, home.paths());
  const std::string file = AgentRunResult::fileURL(id, home.paths());
  WholeCall call(setting, home.path(),
                 Messages::call(1, "get_result", R"({"requestId":")" + id + R"("})"),
                 "status: passed (terminal)");
  for (int i = 0; i < setting.rounds; ++i) {
    call.addServerRound();
    call.addNodeRound("get_result.mjs", {file});
  }
  Finding finding = timesBetter("`get_result` on a terminal result of " + megabytes(file) +
                                    ", whole call, against the same in Node",
                                4, call.ratio());
  call.describe(finding);
  return {finding};
}

}  // namespace corvane::testing
