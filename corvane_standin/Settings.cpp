#include "corvane_standin/Settings.h"

#include <utility>

namespace corvane::standin {

std::optional<std::string> StandInSettings::problem() const {
  for (const auto& [name, value] :
       {std::pair("stepSeconds", stepSeconds), std::pair("buildSeconds", buildSeconds),
        std::pair("heartbeatSeconds", heartbeatSeconds),
        std::pair("coldStartSeconds", coldStartSeconds)}) {
    if (!value.isWithinLimits())
      return std::string(name).append(": ").append(SecondsLimits::expected);
  }
  return std::nullopt;
}

}  // namespace corvane::standin
