#include "corvanectl/report/MarkdownReport.h"

#include <algorithm>
#include <utility>

#include "CorvaneCore/text/Unicode.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

using Step = AgentRunResult::Step;
using Test = AgentRunResult::Test;

std::string_view markOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::passed:
      return "✅";
    case Outcome::healed:
      return "🩹";
    case Outcome::failed:
      return "❌";
    case Outcome::skipped:
      return "⏭️";
    case Outcome::other:
      return "⚠️";
  }
  return {};
}

/// Whether Markdown may take the character for more than itself.
bool isMarkup(char c) {
  constexpr std::string_view marks = R"(!#$&()*+-.:<=>@[\]^_`{|}~)";
  return marks.find(c) != std::string_view::npos;
}

/// Foreign text on one line, in which all markup shows as text.
std::string plain(std::string_view text) {
  std::string escaped;
  for (const char c : oneLine(text)) {
    if (isMarkup(c)) escaped += '\\';
    escaped += c;
  }
  return escaped;
}

/// The same for text of several lines, each of which begins with `indent`. Nobody reads all of a
/// very long one in a summary.
std::string quoted(std::string_view text, std::string_view indent) {
  constexpr std::size_t longest = 10'000;
  const std::string lines = cleanLines(text);
  std::string_view rest = shortenedTo(lines, longest);
  const bool cut = rest.size() < lines.size();
  std::string quote;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    quote.append(indent).append("> ").append(plain(line));
    if (rest.empty() && cut) quote += "…";
    quote += rest.empty() ? "\n" : "\\\n";
  }
  return quote;
}

std::string headOf(const Report& report) {
  std::string text = "## " + std::string(markOf(report.outcome)) + " " + plain(report.title) +
                     ": " + plain(report.status) + "\n\n";
  if (!report.totals.empty()) text += plain(report.totals) + "\n\n";
  for (const auto& remark : report.remarks) text += quoted(remark, "") + "\n";
  if (report.url) text += plain(*report.url) + "\n\n";
  for (const auto& fact : report.facts) {
    text += plain(fact.label) + ": " + plain(fact.value) + " · ";
  }
  return text + "Request: " + plain(report.requestId) + "\n";
}

std::string rowOf(const Test& test) {
  std::string steps = std::to_string(test.steps.size());
  if (const auto healed = countSteps(test, Outcome::healed); healed > 0) {
    steps += ", " + std::to_string(healed) + " healed";
  }
  return "| " + std::string(markOf(outcomeOf(test))) + " | " + plain(test.testName) + " | " +
         plain(test.status) + " | " + steps + " | " + displaySeconds(test.durationSeconds) + " |\n";
}

std::string entryOf(const Step& step) {
  std::string text = "- " + std::string(markOf(outcomeOf(step))) + " " + plain(headlineOf(step));
  if (step.durationSeconds) text += " (" + displaySeconds(*step.durationSeconds) + ")";
  text += "\n";
  if (step.failureReason) text += quoted(*step.failureReason, "  ");
  return text;
}

/// A text with room for so many bytes.
class Summary {
 public:
  explicit Summary(std::size_t limit) : limit(limit) {}

  /// Adds an entry if there is room, together with the `heading` that the first one added needs.
  void add(std::string& heading, const std::string& entry) {
    if (leftOut > 0 || text.size() + heading.size() + entry.size() > limit) {
      ++leftOut;
    } else {
      text += std::exchange(heading, {}) + entry;
    }
  }

  std::string finish() && {
    if (leftOut > 0) text += "\nLeft out for want of room: " + std::to_string(leftOut) + "\n";
    return std::move(text);
  }

 private:
  std::size_t limit;
  std::string text;
  std::size_t leftOut = 0;
};

}  // namespace

std::string markdownReport(const Report& report, std::size_t limit) {
  Summary summary(limit);
  std::string none;
  summary.add(none, headOf(report));
  std::string heading = "\n| | Test | Status | Steps | Time |\n|:-:|---|---|--:|--:|\n";
  for (const Test& test : report.tests) summary.add(heading, rowOf(test));
  for (const Test& test : report.tests) {
    heading = "\n### " + std::string(markOf(outcomeOf(test))) + " " + plain(test.testName) + "\n\n";
    for (const Step& step : test.steps) {
      if (isNotable(step)) summary.add(heading, entryOf(step));
    }
  }
  return std::move(summary).finish();
}

}  // namespace corvane::ctl
