#include "corvanectl/commands/StatusCommands.h"

#include <algorithm>

#include "CorvaneCore/json/JsonWriter.h"
#include "corvanectl/answers/StatusAnswer.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/terminal/DisplayText.h"
#include "corvanectl/terminal/Table.h"

namespace corvane::ctl {

namespace {

using Place = KnownRequest::Place;

std::string placeOf(const KnownRequest& request, bool appRunning) {
  if (!appRunning || request.place == Place::ended) return request.status;
  if (request.place == Place::queued) return "queued";
  return request.status.empty() ? "active" : request.status;
}

std::string requestTable(const StatusAnswer& status) {
  std::vector<std::vector<std::string>> rows{{"REQUEST", "STATUS", "FROM", "PROJECT", "CHANGED"}};
  for (const KnownRequest& request : status.requests) {
    const auto ago = request.secondsAgo;
    rows.push_back({request.id, placeOf(request, status.appRunning), request.source.value_or(""),
                    request.project.value_or(""),
                    ago ? displaySeconds(static_cast<double>(*ago)) + " ago" : ""});
  }
  return asTable(rows);
}

std::string appLine(const StatusAnswer& status) {
  if (!status.appRunning) {
    return "Corvane.app is not running; 'corvanectl run' starts it.\n";
  }
  if (!status.activity) {
    return "Corvane.app is running, but it has not told here what it does ('corvanectl doctor').\n";
  }
  const auto silence = status.secondsSinceHeartbeat.value_or(0);
  if (silence <= StatusAnswer::longestSilence) return "Corvane.app is running.\n";
  return "Corvane.app is running, but has not been heard of for " +
         displaySeconds(static_cast<double>(silence)) +
         ": it may hang, or belong to another home ('corvanectl doctor').\n";
}

/// What the app says it does; only of one that runs.
std::string activityLines(const AgentActivity& activity) {
  std::string text;
  if (const auto& active = activity.active) {
    const auto seconds = std::max<std::int64_t>((currentDate() - active->startedAt).count(), 0);
    text += "At work: " + oneLine(active->kind) + " " + oneLine(active->requestId) + ", for " +
            displaySeconds(static_cast<double>(seconds)) + "\n";
  } else {
    text += "At work: nothing that was requested\n";
  }
  if (!activity.queued.empty()) {
    text += "In the queue: " + std::to_string(activity.queued.size()) + "\n";
  }
  if (activity.schedulerBusy) {
    text += "A run that no request asked for is going on; requests wait for its end.\n";
  }
  if (activity.authoringActive) text += "Somebody is authoring in the app.\n";
  if (const auto& device = activity.device) {
    text += "Device: " + oneLine(device->name.value_or("no name") + ", " + device->platform) +
            (device->connected ? "" : " (not connected)") + "\n";
  }
  return text;
}

std::string describe(const StatusAnswer& status) {
  std::string text = appLine(status);
  if (status.appRunning && status.activity) text += activityLines(*status.activity);
  if (!status.requests.empty()) text += "\n" + requestTable(status);
  return text;
}

/// Shows a text of several lines in the place of the one before, or below it where nothing can be
/// drawn over.
class ChangingText {
 public:
  explicit ChangingText(Console& console) : console(console) {}

  void show(const std::string& text) {
    const TextStream& output = console.standardOutput();
    if (!output.canRedraw()) {
      if (text == shown) return;
      console.print((shown.empty() ? "" : "\n") + text);
      shown = text;
      return;
    }
    const TerminalSize size = output.size();
    std::string drawing = lines > 0 ? "\033[" + std::to_string(lines) + "A\r\033[J" : "";
    lines = 0;
    for (std::string_view rest = text; !rest.empty() && lines + 1 < size.rows; ++lines) {
      const std::size_t end = rest.find('\n');
      drawing += cutToColumns(rest.substr(0, end), size.columns) + "\n";
      rest.remove_prefix(std::min(end, rest.size() - 1) + 1);
    }
    console.print(drawing);
  }

 private:
  Console& console;
  std::string shown;
  std::size_t lines = 0;
};

}  // namespace

Command::About StatusCommand::about() const {
  return {"status", "Tell what Corvane.app is doing",
          "  corvanectl status\n  corvanectl status --watch\n"};
}

void StatusCommand::addOptions(CLI::App& app) {
  app.add_flag("--watch", watch, "Go on telling, until Ctrl-C");
  addJson(app, json, "Print what get_status says as JSON, a line each time");
}

ExitStatus StatusCommand::execute(CommandContext& context) const {
  constexpr Seconds interval{2};
  Session session(context);
  ChangingText text(context.console);
  while (true) {
    const Deadline next = after(interval);
    const StatusAnswer status = askStatus(session);
    if (json) {
      context.console.print(toJson(status.snapshot) + "\n");
    } else {
      text.show(describe(status));
    }
    if (!watch) return ExitStatus::success;
    context.interruption.wait({}, next);
  }
}

Command::About ListCommand::about() const {
  return {"list", "List the requests in hand and those that ended last", "  corvanectl list\n"};
}

void ListCommand::addOptions(CLI::App& app) {
  addJson(app, json, "Print them as a JSON list");
}

ExitStatus ListCommand::execute(CommandContext& context) const {
  Session session(context);
  const StatusAnswer status = askStatus(session);
  if (json) {
    AnyCodable::Array list;
    for (const KnownRequest& request : status.requests) {
      AnyCodable::Object entry{{"requestId", request.id},
                               {"status", placeOf(request, status.appRunning)}};
      if (request.source) entry.set("source", *request.source);
      if (request.project) entry.set("projectName", *request.project);
      if (request.secondsAgo) entry.set("secondsSinceUpdate", *request.secondsAgo);
      list.emplace_back(std::move(entry));
    }
    context.console.print(toJson(std::move(list)) + "\n");
  } else if (status.requests.empty()) {
    context.console.print("Corvane.app has no request in hand and has answered none of late.\n");
  } else {
    context.console.print(requestTable(status));
  }
  return ExitStatus::success;
}

}  // namespace corvane::ctl
