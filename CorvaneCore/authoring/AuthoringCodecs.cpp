#include "CorvaneCore/authoring/AgentInteraction.h"
#include "CorvaneCore/authoring/AgentTest.h"
#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/authoring/ValidationIssue.h"

namespace corvane {

template struct RecordCodec<AgentInteraction>;
template struct RecordCodec<AgentTest>;
template struct RecordCodec<AgentTestSchema>;
template struct RecordCodec<ValidationIssue>;

}  // namespace corvane
