#include "CorvaneCore/results/AgentRunResult.h"

namespace corvane {

template struct RecordCodec<AgentRunResult>;

}  // namespace corvane
