#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace corvane::testing {

/// How the cost of a job grows with its size, for several contenders, as a plot with a chart for
/// each job; both axes are logarithmic, so what is linear rises at the angle of the grid.
struct GrowthPlot {
  struct Point {
    double entries = 0;
    double milliseconds = 0;
  };
  struct Line {
    std::string contender;
    std::vector<Point> points;
  };
  struct Chart {
    std::string job;
    std::vector<Line> lines;
  };

  std::vector<Chart> charts;

  /// Writes an SVG picture that suits light and dark pages. Throws FileError.
  void write(const std::filesystem::path& file) const;
};

}  // namespace corvane::testing
