#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/authoring/ValidationResult.h"
#include "CorvaneCore/capture/CaptureSession.h"
#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentActivity.h"
#include "CorvaneCore/workspace/AgentContext.h"

// The codecs of the large records, which the headers declare extern: once for every program.
namespace corvane {

template struct RecordCodec<AgentInteraction>;
template struct RecordCodec<AgentTest>;
template struct RecordCodec<AgentTestSchema>;
template struct RecordCodec<ValidationIssue>;
template struct RecordCodec<CaptureSession>;
template struct RecordCodec<AgentExploreRequest>;
template struct RecordCodec<AgentLibraryRequest>;
template struct RecordCodec<AgentRunRequest>;
template struct RecordCodec<CancelMarker>;
template struct RecordCodec<AgentRunResult>;
template struct RecordCodec<AgentActivity>;
template struct RecordCodec<AgentContext>;

}  // namespace corvane
