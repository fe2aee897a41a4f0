#pragma once

#include <string_view>

#include "CorvaneCore/requests/Requests.h"
#include "corvane_standin/jobs/Job.h"

namespace corvane::standin {

/// The tool that sends requests of this action.
[[nodiscard]] std::string_view toolOf(AgentLibraryRequest::Action action);

/// Changes the library of building blocks or a world map, at once when its turn comes.
class LibraryJob final : public Job {
 public:
  LibraryJob(AgentLibraryRequest request, const Services& services);

  [[nodiscard]] Advance advance() override;

 private:
  void fulfil(AgentContext& workspace);

  AgentLibraryRequest request;
  Services services;
};

}  // namespace corvane::standin
