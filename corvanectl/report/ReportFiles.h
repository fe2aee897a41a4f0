#pragma once

#include <filesystem>
#include <optional>

#include "corvanectl/commands/CommandContext.h"
#include "corvanectl/commands/Session.h"
#include "corvanectl/report/Report.h"

namespace CLI {
class App;
}

namespace corvane::ctl {

/// Which reports are wanted, and in which files.
struct ReportOptions {
  std::optional<std::filesystem::path> junit;
  std::optional<std::filesystem::path> html;
  std::optional<std::filesystem::path> markdown;

  [[nodiscard]] bool areGiven() const { return junit || html || markdown; }
};

/// Adds an option for each report, which fills it in.
void addReports(CLI::App& app, ReportOptions& options);

/// Makes sure that the files of the reports can be written, with the folders that they lack, so
/// that a run need not end before that is known. Throws UsageError when two of them are one file,
/// FileError for one that cannot be written.
void checkReports(const ReportOptions& options);

/// Writes the reports, the one with pictures last, and shows on a terminal how far it has come.
/// Each file is written whole or not at all. Throws FileError, and what Session::callTool throws.
void writeReports(const ReportOptions& options, const Report& report, Session& session,
                  CommandContext& context);

}  // namespace corvane::ctl
