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
      : setting(&setting),
        home(std::move(home)),
        request(std::move(request)),
        expected(std::move(expected)) {}

  void addServerRound();
  /// The least that the same can cost: what bench/speed/folders.c does with these arguments.
  void addFloorRound(std::vector<std::string> arguments);
  /// `program` is asked the same in the same way.
  void addNodeRound(const std::string& program, std::vector<std::string> arguments);
  /// `program` does something else that is compared with the call. It is told as well how often to
  /// do it, first uncounted, then counted, and prints the milliseconds that each counted time took,
  /// as a JSON array.
  void addNodeJob(const std::string& program, std::vector<std::string> arguments);

  /// Median milliseconds of the call and of what it is compared with.
  [[nodiscard]] double milliseconds() const { return server.median(); }
  [[nodiscard]] double nodeMilliseconds() const { return node.median(); }
  [[nodiscard]] double floorMilliseconds() const { return floor.median(); }

  /// How many times faster the call is than what Node.js does.
  [[nodiscard]] Finding fasterThanNode(std::string what, double required) const;
  /// How many times as long as the floor it takes.
  [[nodiscard]] Finding timesTheFloor(std::string what, double allowed) const;

 private:
  void askRepeatedly(Contender& contender, std::string_view answer, Samples& samples) const;

  // A pointer, so that calls can be copied.
  const Setting* setting;
  std::filesystem::path home;
  std::string request;
  std::string expected;
  Samples server;
  Samples node;
  Samples floor;
};

/// The size of a file, e.g. "23.4 MB".
[[nodiscard]] std::string megabytes(const std::filesystem::path& file);

}  // namespace corvane::testing
