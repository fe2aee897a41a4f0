#include "corvanectl/report/HtmlReport.h"

#include <algorithm>
#include <string>

#include "CorvaneCore/text/Base64.h"
#include "corvanectl/report/PageParts.h"
#include "corvanectl/report/PictureSize.h"
#include "corvanectl/results/ResultPhrases.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

using Step = AgentRunResult::Step;
using Test = AgentRunResult::Test;

/// The name of an outcome in the page's style and script, and of its mark.
Markup wordFor(Outcome outcome) {
  switch (outcome) {
    case Outcome::passed:
      return "passed";
    case Outcome::healed:
      return "healed";
    case Outcome::failed:
      return "failed";
    case Outcome::skipped:
      return "skipped";
    case Outcome::other:
      return "other";
  }
  return "other";
}

/// A check mark, a plaster, a cross, an arrow past something and an exclamation mark.
constexpr Markup marks = R"svg(<svg hidden>
<symbol id="passed" viewBox="0 0 20 20"><path d="M4 10.5l4 4 8-9"/></symbol>
<symbol id="healed" viewBox="0 0 20 20"><rect x="1.5" y="6" width="17" height="8" rx="4" transform="rotate(-45 10 10)"/><path d="M10 8v4M8 10h4"/></symbol>
<symbol id="failed" viewBox="0 0 20 20"><path d="M5 5l10 10M15 5L5 15"/></symbol>
<symbol id="skipped" viewBox="0 0 20 20"><path d="M5 10h10"/></symbol>
<symbol id="other" viewBox="0 0 20 20"><path d="M10 3.5v8M10 16v.01"/></symbol>
</svg>
)svg";

constexpr Markup filter = R"(<form class="filter" role="search" hidden>
<label>Filter <input type="search" placeholder="Tests and steps" autocomplete="off"></label>
<fieldset><legend class="hidden">Show</legend>
<label><input type="radio" name="show" value="all" checked> All</label>
<label><input type="radio" name="show" value="failed"> Failed</label>
<label><input type="radio" name="show" value="healed"> Healed</label></fieldset>
<button type="button">Expand all</button>
<output></output>
<p class="keys"><kbd>/</kbd> filter · <kbd>n</kbd> <kbd>p</kbd> next and previous failed or healed step · <kbd>↓</kbd> <kbd>↑</kbd> from row to row · <kbd>Enter</kbd> open</p>
</form>
)";

/// "2026-01-31 12:00:00 UTC".
std::string displayDate(Date date) {
  std::string text = formatDate(date);
  text[text.find('T')] = ' ';
  text.pop_back();
  return text + " UTC";
}

class PageWriter {
 public:
  PageWriter(const Report& report, const PictureSource& pictures, Html::Append append,
             const OnStep& onStep)
      : report(report), pictures(pictures), onStep(onStep), html(std::move(append)) {}

  void write() {
    writeBeginning();
    writeHead();
    html.add(filter).add("<main id=\"results\" tabindex=\"-1\">\n");
    for (std::size_t i = 0; i < report.tests.size(); ++i) writeTest(i);
    html.add("<p class=\"none\" hidden>Nothing fits the filter.</p>\n</main>\n");
    html.add("<footer>Written by corvanectl " CORVANE_VERSION "</footer>\n<script>");
    html.add(pageScript).add("</script>\n</body>\n</html>\n");
    html.finish();
  }

 private:
  void writeBeginning() {
    html.add("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n");
    html.add("<meta http-equiv=\"Content-Security-Policy\" content=\"").add(pagePolicy);
    html.add("\">\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n");
    html.add("<title>").line(report.title + ": " + report.status).add("</title>\n");
    // An icon that is not there is not asked for.
    html.add("<link rel=\"icon\" href=\"data:,\">\n<style>").add(pageStyle);
    html.add("</style>\n</head>\n<body>\n").add(marks);
    html.add("<a class=\"skip\" href=\"#results\">Skip to the results</a>\n");
  }

  void writeHead() {
    html.add("<header>\n<p class=\"verdict ").add(wordFor(report.outcome)).add("\">");
    writeMark(report.outcome);
    html.add("<span class=\"word\">").line(report.status).add("</span></p>\n");
    html.add("<h1 dir=\"auto\">").line(report.title).add("</h1>\n");
    if (!report.totals.empty()) {
      html.add("<p class=\"totals\">").line(report.totals).add("</p>\n");
    }
    for (const auto& remark : report.remarks) {
      html.add("<p class=\"remark\" dir=\"auto\">").text(remark).add("</p>\n");
    }
    if (report.url) writeUrl(*report.url);
    html.add("<dl class=\"facts\">\n");
    for (const auto& fact : report.facts) writeFact(fact.label, fact.value);
    if (report.updatedAt) writeFact("Finished", displayDate(*report.updatedAt));
    writeFact("Request", report.requestId);
    html.add("</dl>\n</header>\n");
  }

  /// As a link only where it leads to a page and nowhere else.
  void writeUrl(std::string_view url) {
    html.add("<p class=\"remark\">");
    if (url.starts_with("https://")) {
      html.add("<a rel=\"noreferrer\" href=\"").line(url).add("\">").line(url).add("</a>");
    } else {
      html.line(url);
    }
    html.add("</p>\n");
  }

  void writeFact(std::string_view label, std::string_view value) {
    html.add("<div><dt>").line(label).add("</dt><dd>").line(value).add("</dd></div>\n");
  }

  void writeMark(Outcome outcome) {
    html.add("<svg class=\"mark\" aria-hidden=\"true\"><use href=\"#").add(wordFor(outcome));
    html.add("\"/></svg>");
  }

  /// The class of an element and, for the script, its outcome.
  void writeOutcome(Markup name, Outcome outcome) {
    html.add(" class=\"").add(name).add(" ").add(wordFor(outcome));
    html.add("\" data-outcome=\"").add(wordFor(outcome)).add("\"");
  }

  void writeTest(std::size_t index) {
    const Test& test = report.tests[index];
    const Outcome outcome = outcomeOf(test);
    // What somebody should look at is open.
    const bool open = report.tests.size() == 1 || outcome == Outcome::failed ||
                      outcome == Outcome::other || outcome == Outcome::healed;
    html.add("<section");
    writeOutcome("test", outcome);
    html.add("><details").add(open ? Markup(" open") : Markup("")).add("><summary>");
    writeMark(outcome);
    html.add("<h2 dir=\"auto\">").line(test.testName).add("</h2><span class=\"size\">");
    html.line(sizeOf(test)).add("</span>");
    writeWord(outcome, outcome == Outcome::healed ? "healed" : std::string_view(test.status));
    writeTime(test.durationSeconds);
    html.add("</summary>\n<div class=\"steps\" role=\"list\">\n");
    for (const Step& step : test.steps) writeStep(index, step);
    html.add("</div></details></section>\n");
  }

  static std::string sizeOf(const Test& test) {
    std::string text = counted(static_cast<std::int64_t>(test.steps.size()), "step");
    if (const auto healed = countSteps(test, Outcome::healed); healed > 0) {
      text += ", " + std::to_string(healed) + " healed";
    }
    return text;
  }

  /// Not an <li>: browsers count those anew for each one that the filter hides.
  void writeStep(std::size_t testIndex, const Step& step) {
    if (onStep) onStep(written++);
    const Outcome outcome = outcomeOf(step);
    const StepPictures shown = pictures(testIndex, step);
    html.add("<div role=\"listitem\"");
    writeOutcome("step", outcome);
    html.add(">");
    if (step.failureReason || !shown.pictures.empty() || !shown.remark.empty()) {
      html.add("<details").add(isNotable(step) ? Markup(" open") : Markup("")).add("><summary>");
      writeRow(step, outcome);
      html.add("</summary><div class=\"more\">");
      if (step.failureReason) {
        html.add("<p class=\"reason\" dir=\"auto\">").text(*step.failureReason).add("</p>");
      }
      writePictures(step, shown);
      html.add("</div></details>");
    } else {
      html.add("<div class=\"row\">");
      writeRow(step, outcome);
      html.add("</div>");
    }
    html.add("</div>\n");
  }

  void writeRow(const Step& step, Outcome outcome) {
    html.add("<span class=\"number\">").line(std::to_string(step.index)).add("</span>");
    writeMark(outcome);
    const bool described = !step.description.empty();
    html.add("<span class=\"what\"><span class=\"does\" dir=\"auto\">");
    html.line(described ? step.description : step.title).add("</span>");
    if (described) html.add(" <span class=\"kind\">").line(step.title).add("</span>");
    html.add("</span>");
    writeWord(outcome, statusWord(step));
    if (step.durationSeconds) writeTime(*step.durationSeconds);
  }

  /// How it went; in sight only where it is not as usual, as the mark tells the rest.
  void writeWord(Outcome outcome, std::string_view word) {
    html.add("<span class=\"word")
        .add(outcome == Outcome::passed ? Markup(" hidden") : Markup(""))
        .add("\">");
    html.line(word).add("</span>");
  }

  void writeTime(double seconds) {
    html.add("<span class=\"time\">").line(displaySeconds(seconds)).add("</span>");
  }

  void writePictures(const Step& step, const StepPictures& shown) {
    if (!shown.remark.empty()) {
      html.add("<p class=\"without\">").text(shown.remark).add("</p>");
    }
    if (shown.pictures.empty()) return;
    html.add("<div class=\"pictures\">");
    for (const auto& picture : shown.pictures) writePicture(step, picture);
    html.add("</div>");
  }

  void writePicture(const Step& step, const StepPicture& picture) {
    const auto bytes = decodeBase64(picture.data);
    if (!bytes) return;
    const std::string& moment = picture.moment;
    html.add("<figure><figcaption>").line(moment.empty() ? "screen" : moment);
    html.add("</figcaption><img loading=\"lazy\" decoding=\"async\" alt=\"");
    html.line("The screen " + (moment.empty() ? "at" : moment) + " step " +
              std::to_string(step.index) + ": " + nameOf(step));
    if (const auto size = jpegSize(*bytes)) {
      html.add("\" width=\"").line(std::to_string(size->width));
      html.add("\" height=\"").line(std::to_string(size->height));
    }
    html.add("\" src=\"data:").line(picture.mimeType).add(";base64,").data(picture.data);
    html.add("\"></figure>");
  }

  const Report& report;
  const PictureSource& pictures;
  const OnStep& onStep;
  Html html;
  std::size_t written = 0;
};

}  // namespace

void writeHtmlReport(const Report& report, const PictureSource& pictures, Html::Append append,
                     const OnStep& onStep) {
  PageWriter(report, pictures, std::move(append), onStep).write();
}

}  // namespace corvane::ctl
