#include "corvanectl/commands/DoctorCommand.h"

#include <algorithm>
#include <iterator>

#include "CorvaneCore/json/JsonWriter.h"
#include "corvanectl/answers/ToolRefusal.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/doctor/FileChecks.h"
#include "corvanectl/doctor/ServerChecks.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

HealthAnswer examineThroughServer(CommandContext& context, Findings& findings) {
  Session session(context);
  findings.push_back(well("server", "The server answers: " +
                                        displayPath(locateServer(context.options.server,
                                                                 executablePath(), searchPath()))));
  findings.push_back(checkVersions(session.client().serverVersion()));
  const HealthAnswer places = readHealth(ask(session, "health", {}).firstText());
  std::ranges::move(checkFolders(places), std::back_inserter(findings));
  findings.push_back(checkApp(places));
  findings.push_back(checkRunningApp(session, places));
  findings.push_back(checkWorkspace(session, places));
  findings.push_back(checkWaitingRequests(places));
  return places;
}

Findings examine(CommandContext& context) {
  Findings findings;
  const auto serverFault = [&findings](const std::exception& error) {
    findings.push_back(wrong("server", std::string("The server fails: ") + error.what(),
                             "cmake --install build/release, or name it: corvanectl doctor "
                             "--server PATH   (--log shows what it says)"));
  };
  try {
    const HealthAnswer places = examineThroughServer(context, findings);
    // A server that has ended has rotated its log if need be.
    findings.push_back(checkLog(places));
  } catch (const ProtocolError& error) {
    serverFault(error);
  } catch (const NoAnswer& error) {
    serverFault(error);
  } catch (const ToolRefusal& error) {
    serverFault(error);
  }
  return findings;
}

std::string describe(const Findings& findings) {
  std::string text;
  for (const Finding& finding : findings) {
    text += (finding.well ? "✓ " : "✗ ") + oneLine(finding.text) + "\n";
    if (!finding.mend.empty()) text += "    " + oneLine(finding.mend) + "\n";
  }
  return text;
}

AnyCodable asJson(const Findings& findings, bool well) {
  AnyCodable::Array checks;
  for (const Finding& finding : findings) {
    AnyCodable::Object check{
        {"check", finding.check}, {"ok", finding.well}, {"text", finding.text}};
    if (!finding.mend.empty()) check.set("mend", finding.mend);
    checks.emplace_back(std::move(check));
  }
  return AnyCodable::Object{{"checks", std::move(checks)}, {"ok", well}};
}

}  // namespace

Command::About DoctorCommand::about() const {
  return {"doctor", "Look whether everything is in place, and tell how to mend what is not",
          "  corvanectl doctor\n"};
}

void DoctorCommand::addOptions(CLI::App& app) {
  addJson(app, json, "Print what was found as JSON");
}

ExitStatus DoctorCommand::execute(CommandContext& context) const {
  const Findings findings = examine(context);
  const bool allWell = std::ranges::all_of(findings, &Finding::well);
  context.console.print(json ? toJson(asJson(findings, allWell)) + "\n" : describe(findings));
  return allWell ? ExitStatus::success : ExitStatus::failure;
}

}  // namespace corvane::ctl
