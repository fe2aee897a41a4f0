#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "corvanectl/commands/CommandContext.h"
#include "corvanectl/commands/Session.h"
#include "corvanectl/report/Report.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace corvane::ctl {

/// Which reports are wanted, and in which files.
struct ReportOptions {
  std::optional<std::filesystem::path> junit;
  std::optional<std::filesystem::path> html;
  std::optional<std::filesystem::path> markdown;

  [[nodiscard]] bool areGiven() const { return junit || html || markdown; }
};

/// Adds an option for each report, which fills it in, and returns them.
std::vector<CLI::Option*> addReports(CLI::App& app, ReportOptions& options);

/// Makes sure that the files of the reports can be written, with the folders that they lack, so
/// that a run need not end before that is known. Throws UsageError when two of them are one file or
/// one is no file, FileError for one that cannot be written.
void checkReports(const ReportOptions& options);

/// Removes what an earlier run has left in their places, which nobody is to take for this one's.
void removeOldReports(const ReportOptions& options);

/// Writes the reports, each whole or not at all, and shows on a terminal how far the page has come.
/// With `pictures`, those of every step that somebody should look at are saved in that folder, and
/// named where a report has no room for them. True when all could be written; else the user has
/// been told of those that could not. Throws what Session::callTool throws.
[[nodiscard]] bool writeReports(const ReportOptions& options,
                                const std::optional<std::filesystem::path>& pictures,
                                const Report& report, Session& session, CommandContext& context);

}  // namespace corvane::ctl
