#include "CorvaneCore/requests/AgentExploreRequest.h"
#include "CorvaneCore/requests/AgentLibraryRequest.h"
#include "CorvaneCore/requests/AgentRunRequest.h"
#include "CorvaneCore/requests/CancelMarker.h"

namespace corvane {

template struct Codec<AgentExploreRequest>;
template struct Codec<AgentLibraryRequest>;
template struct Codec<AgentRunRequest>;
template struct Codec<CancelMarker>;

}  // namespace corvane
