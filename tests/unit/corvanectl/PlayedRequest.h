#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "corvanectl/follow/RequestWatch.h"

namespace corvane::testing {

/// A request whose course a test lays down in seconds, and which a follower goes through in no
/// time.
class PlayedRequest final : public ctl::RequestWatch {
 public:
  /// From then on get_result answers with `text`.
  void answer(double second, std::string text, bool isError = false) {
    answers[second] = {std::move(text), isError};
  }
  /// From then on the request has this result; `members` follow the required ones.
  void result(double second, const std::string& status, const std::string& members = {}) {
    answer(second, "status: " + status + remarkOn(status) + json(status, members));
  }
  /// From then on nobody has picked the request up.
  void pending(double second) {
    answer(second,
           "status: pending (Corvane has not picked up the request yet)\n\n{}\n\nThe request file "
           "is still waiting in Corvane's drop folder.");
  }
  /// From then on the app runs, or not.
  void app(double second, bool runs) { appStates[second] = runs; }

  [[nodiscard]] static std::string json(const std::string& status,
                                        const std::string& members = {}) {
    const std::string terminal = isOver(status) ? "true" : "false";
    return R"({"schemaVersion":3,"requestId":"ID","source":"run_test","status":")" + status +
           R"(","terminal":)" + terminal + R"(,"updatedAt":"2026-01-31T12:00:00Z")" +
           (members.empty() ? "" : "," + members) + "}";
  }

  /// The seconds that looks were asked to wait.
  [[nodiscard]] const std::vector<double>& waits() const { return asked; }
  [[nodiscard]] double seconds() const {
    return std::chrono::duration<double>(time.time_since_epoch()).count();
  }

  ctl::RequestLook look(ctl::Seconds wait) override {
    asked.push_back(wait.count());
    const double end = seconds() + wait.count();
    for (const auto& [second, answer] : answers) {
      const bool over = answer.text.find("(terminal)") != std::string::npos;
      if (over && second > seconds() && second <= end) return lookAt(second);
    }
    const bool isOverAlready = current().text.find("(terminal)") != std::string::npos;
    return lookAt(isOverAlready ? seconds() : end);
  }
  std::optional<ctl::Expectation> expectation() override {
    ++timesAsked;
    return known;
  }
  bool appIsRunning() override {
    const auto next = appStates.upper_bound(seconds());
    return next == appStates.begin() || std::prev(next)->second;
  }
  ctl::FollowTime now() override { return time; }
  void pauseUntil(ctl::FollowTime moment) override { time = std::max(time, moment); }

  /// What is known of the run beforehand, and how often that was asked for.
  std::optional<ctl::Expectation> known;
  int timesAsked = 0;

 private:
  struct Answer {
    std::string text;
    bool isError = false;
  };

  static bool isOver(std::string_view status) {
    return status != "received" && status != "queued" && status != "building" &&
           status != "running";
  }
  static std::string remarkOn(const std::string& status) {
    return isOver(status) ? " (terminal)\n\n"
                          : " (NOT terminal — run still in progress, call get_result again)\n"
                            "appRunning: true\nsecondsSinceUpdate: 1\n\n";
  }
  const Answer& current() const { return std::prev(answers.upper_bound(seconds()))->second; }
  ctl::RequestLook lookAt(double second) {
    time = ctl::FollowTime(std::chrono::duration_cast<ctl::FollowTime::duration>(
        std::chrono::duration<double>(second)));
    return ctl::RequestLook::from(current().text, current().isError);
  }

  std::map<double, Answer> answers;
  std::map<double, bool> appStates;
  std::vector<double> asked;
  ctl::FollowTime time;
};

}  // namespace corvane::testing
