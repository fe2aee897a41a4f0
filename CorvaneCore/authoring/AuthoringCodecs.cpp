#include "CorvaneCore/authoring/AgentInteraction.h"
#include "CorvaneCore/authoring/AgentTest.h"
#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/authoring/ValidationIssue.h"

namespace corvane {

template struct Codec<AgentInteraction>;
template struct Codec<AgentTest>;
template struct Codec<AgentTestSchema>;
template struct Codec<ValidationIssue>;

}  // namespace corvane
