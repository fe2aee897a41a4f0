#include "CorvaneCore/requests/AgentExploreRequest.h"
#include "CorvaneCore/requests/AgentLibraryRequest.h"
#include "CorvaneCore/requests/AgentRunRequest.h"
#include "CorvaneCore/requests/CancelMarker.h"

namespace corvane {

template struct RecordCodec<AgentExploreRequest>;
template struct RecordCodec<AgentLibraryRequest>;
template struct RecordCodec<AgentRunRequest>;
template struct RecordCodec<CancelMarker>;

}  // namespace corvane
