#include "corvanectl/report/JUnitReport.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <pugixml.hpp>
#include <sstream>

#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

using Step = AgentRunResult::Step;
using Test = AgentRunResult::Test;

/// Safe text without the two characters that are valid in UTF-8 but not in XML.
std::string withoutNonCharacters(std::string text) {
  for (const std::string_view forbidden : {"\uFFFE", "\uFFFF"}) {
    for (auto at = text.find(forbidden); at != std::string::npos; at = text.find(forbidden, at)) {
      text.replace(at, forbidden.size(), "\uFFFD");
    }
  }
  return text;
}

void setLine(pugi::xml_node node, const char* name, std::string_view value) {
  node.append_attribute(name).set_value(withoutNonCharacters(oneLine(value)).c_str());
}

/// Seconds to the millisecond.
void setTime(pugi::xml_node node, double seconds) {
  constexpr double longest = 1e9;
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.3f", std::clamp(seconds, 0.0, longest));
  node.append_attribute("time").set_value(text.data());
}

void setText(pugi::xml_node node, std::string text) {
  node.append_child(pugi::node_pcdata).set_value(withoutNonCharacters(std::move(text)).c_str());
}

void setDate(pugi::xml_node node, Date date) {
  std::string text = formatDate(date);
  // Strict readers know no time zones.
  text.pop_back();
  node.append_attribute("timestamp").set_value(text.c_str());
}

/// What the cases of a suite come to.
struct Counts {
  std::size_t tests = 0;
  std::size_t failures = 0;
  std::size_t errors = 0;
  std::size_t skipped = 0;
  double seconds = 0;
};

class JUnitWriter {
 public:
  JUnitWriter(const Report& report, const PictureFiles& files) : report(report), files(files) {}

  std::string write() {
    auto declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    auto suites = document.append_child("testsuites");
    suite = suites.append_child("testsuite");
    addProperties();
    for (std::size_t i = 0; i < report.tests.size(); ++i) addTest(i);
    const bool told = counts.failures + counts.errors > 0;
    if (counts.tests == 0 || (report.outcome != Outcome::passed && !told)) addRequest();
    setLine(suites, "name", "Corvane");
    setLine(suite, "name", report.title);
    setCounts(suites);
    setCounts(suite);
    if (report.updatedAt) setDate(suite, *report.updatedAt);
    std::ostringstream text;
    document.save(text, "  ");
    return std::move(text).str();
  }

 private:
  void addProperties() {
    auto properties = suite.append_child("properties");
    const auto add = [&](std::string_view name, std::string_view value) {
      auto property = properties.append_child("property");
      setLine(property, "name", name);
      setLine(property, "value", value);
    };
    add("Request", report.requestId);
    add("Status", report.status);
    for (const auto& fact : report.facts) add(fact.label, fact.value);
    for (const auto& remark : report.remarks) add("Remark", remark);
  }

  void addTest(std::size_t index) {
    const Test& test = report.tests[index];
    const Outcome outcome = outcomeOf(test);
    auto node = addCase(test.testName, test.durationSeconds);
    const std::string pictures = namedPictures(index);
    if (outcome == Outcome::skipped) {
      ++counts.skipped;
      node.append_child("skipped");
    } else if (outcome == Outcome::failed || outcome == Outcome::other) {
      addTrouble(node, outcome, test.status, reasonOf(test),
                 stepsOf(test) + (pictures.empty() ? "" : "\nPictures:\n" + pictures));
    }
    const std::string output = outcome == Outcome::healed ? notableSteps(test) : "";
    const std::string attachments = attachedPictures(index);
    if (!output.empty() || !attachments.empty()) {
      setText(node.append_child("system-out"), output + attachments);
    }
  }

  /// What became of the request itself.
  void addRequest() {
    auto node = addCase("Request " + report.requestId, 0);
    std::string text;
    for (const auto& remark : report.remarks) text += cleanLines(remark) + "\n";
    if (report.url) text += oneLine(*report.url) + "\n";
    if (report.outcome == Outcome::passed) {
      if (!text.empty()) setText(node.append_child("system-out"), text);
    } else {
      addTrouble(node, report.outcome, report.status,
                 report.remarks.empty() ? report.status : report.remarks.front(), text);
    }
  }

  pugi::xml_node addCase(std::string_view name, double seconds) {
    ++counts.tests;
    counts.seconds += seconds;
    auto node = suite.append_child("testcase");
    setLine(node, "name", name);
    setLine(node, "classname", report.title);
    setTime(node, seconds);
    return node;
  }

  void addTrouble(pugi::xml_node node, Outcome outcome, std::string_view status,
                  std::string_view message, std::string text) {
    const bool failed = outcome == Outcome::failed;
    ++(failed ? counts.failures : counts.errors);
    auto trouble = node.append_child(failed ? "failure" : "error");
    setLine(trouble, "message", message);
    setLine(trouble, "type", status);
    setText(trouble, std::move(text));
  }

  void setCounts(pugi::xml_node node) const {
    node.append_attribute("tests") = counts.tests;
    node.append_attribute("failures") = counts.failures;
    node.append_attribute("errors") = counts.errors;
    // Strict readers know it of a suite only.
    if (node == suite) node.append_attribute("skipped") = counts.skipped;
    setTime(node, counts.seconds);
  }

  /// The first step that tells why the test did not pass, with its reason.
  static std::string reasonOf(const Test& test) {
    const auto isCause = [](const Step& step) {
      return isNotable(step) && outcomeOf(step) != Outcome::healed;
    };
    const auto cause = std::ranges::find_if(test.steps, isCause);
    if (cause == test.steps.end()) return test.status;
    return headlineOf(*cause) + (cause->failureReason ? " — " + *cause->failureReason : "");
  }

  static std::string stepsOf(const Test& test) {
    std::string text;
    for (const Step& step : test.steps) text += lineOf(step);
    return text;
  }

  static std::string notableSteps(const Test& test) {
    std::string text;
    for (const Step& step : test.steps) text += isNotable(step) ? lineOf(step) : "";
    return text;
  }

  /// A step and, below it, why it failed.
  static std::string lineOf(const Step& step) {
    std::string text = headlineOf(step);
    if (step.durationSeconds) text += " (" + displaySeconds(*step.durationSeconds) + ")";
    text += "\n";
    if (step.failureReason) text += cleanLines(*step.failureReason) + "\n";
    return text;
  }

  /// Where the pictures of a test's notable steps are, a line for each place.
  [[nodiscard]] std::string namedPictures(std::size_t index) const {
    const Test& test = report.tests[index];
    std::string lines;
    for (const Step& step : test.steps) {
      for (const auto& file : filesOf(index, step)) lines += file + "\n";
    }
    const auto& trace = test.trace ? test.trace : report.trace;
    if (lines.empty() && trace) lines = oneLine(trace->artifactsDir) + "\n";
    return lines;
  }

  /// The line by which build servers find a picture that belongs to a case.
  [[nodiscard]] std::string attachedPictures(std::size_t index) const {
    std::string lines;
    for (const Step& step : report.tests[index].steps) {
      for (const auto& file : filesOf(index, step)) lines += "[[ATTACHMENT|" + file + "]]\n";
    }
    return lines;
  }

  [[nodiscard]] std::vector<std::string> filesOf(std::size_t index, const Step& step) const {
    const auto found = files.find({index, step.index});
    return found == files.end() ? std::vector<std::string>() : found->second;
  }

  const Report& report;
  const PictureFiles& files;
  pugi::xml_document document;
  pugi::xml_node suite;
  Counts counts;
};

}  // namespace

std::string junitReport(const Report& report, const PictureFiles& files) {
  return JUnitWriter(report, files).write();
}

}  // namespace corvane::ctl
