#pragma once

#include <string>
#include <string_view>

#include "corvanectl/ExitStatus.h"

namespace corvane {

/// What get_result says about a request, taken out of the text it answers with.
struct ResultAnswer {
  std::string status;
  bool terminal = false;
  /// Whether the request is on its way and nothing is wrong.
  bool healthy = false;
  /// The status together with what get_result remarks on it.
  std::string headline;
  /// The result file's text; only of a terminal result.
  std::string json;

  /// Throws ProtocolError when `text` does not begin with a status line.
  [[nodiscard]] static ResultAnswer parse(std::string_view text);

  /// How a finished request with this status ends the program.
  [[nodiscard]] ExitStatus exitStatus() const;
};

}  // namespace corvane
