#include "CorvaneCore/workspace/AgentActivity.h"
#include "CorvaneCore/workspace/AgentContext.h"

namespace corvane {

template struct RecordCodec<AgentActivity>;
template struct RecordCodec<AgentContext>;

}  // namespace corvane
