#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "CorvaneCore/results/AgentRunResult.h"
#include "corvanectl/commands/Session.h"
#include "corvanectl/report/Report.h"

namespace corvane::ctl {

/// A picture of the screen, with the touches drawn.
struct StepPicture {
  /// "before" or "after"; empty when the server does not tell.
  std::string moment;
  std::string mimeType;
  /// In base64.
  std::string data;
};

struct StepPictures {
  std::vector<StepPicture> pictures;
  /// Why there are none, in the server's words.
  std::string remark;
};

/// Gives the pictures of a step of the test with this place in the report.
using PictureSource =
    std::function<StepPictures(std::size_t testIndex, const AgentRunResult::Step& step)>;

/// The files in which pictures of a step lie, by the test's place in the report and the step's
/// index.
using PictureFiles = std::map<std::pair<std::size_t, std::int64_t>, std::vector<std::string>>;

/// Whether the app may have left pictures of the step.
[[nodiscard]] bool mayHavePictures(const Report& report, const AgentRunResult::Test& test,
                                   const AgentRunResult::Step& step);

/// Asks the server for the pictures of one step of the request. Throws what Session::callTool
/// throws.
[[nodiscard]] StepPictures fetchPictures(Session& session, const Report& report,
                                         std::size_t testIndex, const AgentRunResult::Step& step);

/// Saves the pictures of every step that somebody should look at, and adds their files to `files`.
/// Throws FileError, and what Session::callTool throws.
void savePictures(const std::filesystem::path& folder, const Report& report, Session& session,
                  Console& console, PictureFiles& files);

}  // namespace corvane::ctl
