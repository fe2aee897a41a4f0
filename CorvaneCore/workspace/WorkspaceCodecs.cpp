#include "CorvaneCore/workspace/AgentActivity.h"
#include "CorvaneCore/workspace/AgentContext.h"

namespace corvane {

template struct Codec<AgentActivity>;
template struct Codec<AgentContext>;

}  // namespace corvane
