#include "CorvaneCore/results/AgentRunResult.h"

namespace corvane {

template struct Codec<AgentRunResult>;

}  // namespace corvane
