#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "bench/speed/Finding.h"
#include "bench/speed/Samples.h"
#include "bench/speed/Setting.h"

namespace corvane::testing {

/// A call of a tool, from the request written to the reply read, against a program for Node.js.
/// Both are warm: of each process the first few times do not count.
class WholeCall {
 public:
  /// Of each process so many times do not count, and so many do.
  static constexpr int uncounted = 3;
  static constexpr int counted = 5;

  /// `request` has id 1 and is answered with a line that holds `expected`.
  WholeCall(const Setting& setting, std::filesystem::path home, std::string request,
            std::string expected)
      : setting(setting),
        home(std::move(home)),
        request(std::move(request)),
        expected(std::move(expected)) {}

  void addServerRound();
  /// `program` is asked the same in the same way.
  void addNodeRound(const std::string& program, std::vector<std::string> arguments);
  /// `program` does something else that is compared with the call. It is told as well how often to
  /// do it, first uncounted, then counted, and prints the milliseconds that each counted time took,
  /// as a JSON array.
  void addNodeJob(const std::string& program, std::vector<std::string> arguments);

  /// How many times faster the call is.
  [[nodiscard]] double ratio() const { return node.median() / server.median(); }
  /// Median milliseconds of what it is compared with.
  [[nodiscard]] double nodeMilliseconds() const { return node.median(); }
  /// Fills in the figures.
  void describe(Finding& finding) const;

 private:
  void askRepeatedly(Contender& contender, Samples& samples) const;

  const Setting& setting;
  std::filesystem::path home;
  std::string request;
  std::string expected;
  Samples server;
  Samples node;
};

/// The size of a file, e.g. "23.4 MB".
[[nodiscard]] std::string megabytes(const std::filesystem::path& file);

}  // namespace corvane::testing
