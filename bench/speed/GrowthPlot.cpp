#include "bench/speed/GrowthPlot.h"

#include <array>
#include <cmath>
#include <sstream>

#include "CorvaneCore/files/Files.h"

namespace corvane::testing {

namespace {

// Entries from 1,000 to 100,000 and milliseconds from 0.1 to 10,000, a decade alike on both axes.
constexpr double firstEntries = 1e3;
constexpr double firstMilliseconds = 0.1;
constexpr int entryDecades = 2;
constexpr int millisecondDecades = 5;
constexpr double decade = 60;
constexpr double left = 54;
constexpr double top = 34;
constexpr double chartWidth = 210;
constexpr double bottom = top + millisecondDecades * decade;

constexpr std::string_view style = R"(<style>
  text { font: 12px sans-serif; fill: #333 }
  .job { font-weight: 600 }
  .grid { stroke: #ddd }
  polyline { fill: none; stroke-width: 2 }
  .line0 { stroke: #0b6bcb } .line1 { stroke: #777; stroke-dasharray: 5 3 } .line2 { stroke: #c4501b }
  @media (prefers-color-scheme: dark) {
    text { fill: #ccc } .grid { stroke: #444 } .line0 { stroke: #6cb2ff } .line2 { stroke: #ff9a66 }
  }
</style>
)";

double x(double entries) {
  return left + std::log10(entries / firstEntries) * decade;
}

double y(double milliseconds) {
  return bottom - std::log10(milliseconds / firstMilliseconds) * decade;
}

class Picture {
 public:
  explicit Picture(std::size_t charts) {
    out << R"(<svg xmlns="http://www.w3.org/2000/svg" width=")"
        << left + static_cast<double>(charts) * chartWidth << R"(" height=")" << bottom + 72
        << "\">\n"
        << style;
  }

  void text(double atX, double atY, std::string_view words, std::string_view attributes = {}) {
    out << "<text x=\"" << atX << "\" y=\"" << atY << "\" " << attributes << ">" << words
        << "</text>\n";
  }

  void rule(double fromX, double fromY, double toX, double toY, std::string_view kind) {
    out << "<line class=\"" << kind << "\" x1=\"" << fromX << "\" y1=\"" << fromY << "\" x2=\""
        << toX << "\" y2=\"" << toY << "\"/>\n";
  }

  void chart(const GrowthPlot::Chart& chart, double offset) {
    out << "<g transform=\"translate(" << offset << ")\">\n";
    text(left, top - 14, chart.job, "class=\"job\"");
    for (int i = 0; i <= entryDecades; ++i) {
      const double at = left + i * decade;
      rule(at, top, at, bottom, "grid");
      constexpr std::array<std::string_view, entryDecades + 1> names{"1,000", "10,000", "100,000"};
      text(at, bottom + 16, names.at(static_cast<std::size_t>(i)), "text-anchor=\"middle\"");
    }
    for (int i = 0; i <= millisecondDecades; ++i) {
      const double at = bottom - i * decade;
      rule(left, at, left + entryDecades * decade, at, "grid");
    }
    for (std::size_t i = 0; i < chart.lines.size(); ++i) {
      out << "<polyline class=\"line" << i << "\" points=\"";
      for (const auto& point : chart.lines[i].points) {
        out << x(point.entries) << "," << y(point.milliseconds) << " ";
      }
      out << "\"/>\n";
    }
    out << "</g>\n";
  }

  void scaleOfTime() {
    constexpr std::array<std::string_view, millisecondDecades + 1> names{"0.1 ms", "1 ms", "10 ms",
                                                                         "100 ms", "1 s",  "10 s"};
    for (std::size_t i = 0; i < names.size(); ++i) {
      text(left - 6, bottom + 4 - static_cast<double>(i) * decade, names.at(i),
           "text-anchor=\"end\"");
    }
  }

  void legend(const std::vector<GrowthPlot::Line>& lines) {
    double at = left;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      rule(at, bottom + 46, at + 24, bottom + 46, "line" + std::to_string(i));
      text(at + 30, bottom + 50, lines[i].contender);
      at += 130;
    }
  }

  std::string finish() {
    out << "</svg>\n";
    return out.str();
  }

 private:
  std::ostringstream out;
};

}  // namespace

void GrowthPlot::write(const std::filesystem::path& file) const {
  Picture picture(charts.size());
  picture.scaleOfTime();
  for (std::size_t i = 0; i < charts.size(); ++i) {
    picture.chart(charts[i], static_cast<double>(i) * chartWidth);
  }
  picture.legend(charts.front().lines);
  writeFileWhole(file, picture.finish(), Access::byUmask);
}

}  // namespace corvane::testing
