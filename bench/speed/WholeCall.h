#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "bench/speed/Finding.h"
#include "bench/speed/Samples.h"
#include "bench/speed/Setting.h"

namespace corvane {

/// A call of a tool, from the request written to the reply read, against a program for Node.js that
/// does the work of the call alone, without a request or a pipe, and tells how long that took. Both
/// are warm: of each process the first few times do not count.
class WholeCall {
 public:
  WholeCall(const Setting& setting, std::filesystem::path home)
      : setting(setting), home(std::move(home)) {}

  /// `request` has id 1 and is answered with a line that holds `expected`.
  void addServerRound(const std::string& request, std::string_view expected);
  /// `program` is given `arguments` and how often to do its job, first uncounted, then counted. It
  /// prints the milliseconds that each counted time took, as a JSON array.
  void addNodeRound(const std::string& program, std::vector<std::string> arguments);

  /// How many times faster the call is.
  [[nodiscard]] double ratio() const { return node.median() / server.median(); }
  /// Fills in the figures.
  void describe(Finding& finding) const;

 private:
  static constexpr int uncounted = 3;
  static constexpr int counted = 5;

  const Setting& setting;
  std::filesystem::path home;
  Samples server;
  Samples node;
};

/// The size of a file, e.g. "23.4 MB".
[[nodiscard]] std::string megabytes(const std::filesystem::path& file);

}  // namespace corvane
