#include "corvanectl/report/ReportFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/files/TemporaryFile.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/report/HtmlReport.h"
#include "corvanectl/report/JUnitReport.h"
#include "corvanectl/report/MarkdownReport.h"
#include "corvanectl/report/PictureSource.h"

namespace corvane::ctl {

namespace {

namespace fs = std::filesystem;

struct WantedFile {
  std::string_view option;
  const fs::path& path;
};

std::vector<WantedFile> wantedFiles(const ReportOptions& options) {
  std::vector<WantedFile> files;
  if (options.junit) files.push_back({"--junit", *options.junit});
  if (options.markdown) files.push_back({"--markdown", *options.markdown});
  if (options.html) files.push_back({"--html", *options.html});
  return files;
}

/// The file that a report goes into: what a link leads to, for the link to stay.
fs::path fileOf(const fs::path& path) {
  std::error_code ignored;
  return fs::is_symlink(path, ignored) ? fs::weakly_canonical(path) : path;
}

/// Whether what is written to a standard stream goes into this file.
bool takesOutput(const fs::path& path) {
  struct stat file{};
  if (::stat(path.c_str(), &file) != 0) return false;
  return std::ranges::any_of(std::array{STDOUT_FILENO, STDERR_FILENO}, [&](int stream) {
    struct stat status{};
    return ::fstat(stream, &status) == 0 && status.st_dev == file.st_dev &&
           status.st_ino == file.st_ino;
  });
}

/// Makes sure that a report can replace what is there.
void checkReport(const WantedFile& file) {
  const std::string option(file.option);
  std::error_code ignored;
  const fs::file_status status = fs::status(file.path, ignored);
  const bool isOther =
      fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
  if (isOther || takesOutput(file.path)) {
    throw UsageError(option + ": expected the name of a file of its own, not '" +
                     displayPath(file.path) + "', which is " +
                     (isOther ? "a device or a pipe" : "where the output goes"));
  }
  try {
    ensureWritable(fileOf(file.path), Access::byUmask);
  } catch (const FileError& error) {
    throw FileError("write " + option, file.path, error.code());
  }
}

std::size_t stepsIn(const Report& report) {
  std::size_t count = 0;
  for (const auto& test : report.tests) count += test.steps.size();
  return count;
}

/// Pictures make the page large, so it goes into its file while they come in.
void writePage(const fs::path& path, const Report& report, Session& session, Console& console) {
  TemporaryFile file(fileOf(path), TemporaryFile::Kind::named, Access::byUmask);
  const PictureSource pictures = [&](std::size_t testIndex, const AgentRunResult::Step& step) {
    return mayHavePictures(report, report.tests[testIndex], step)
               ? fetchPictures(session, report, testIndex, step)
               : StepPictures();
  };
  const std::string total = std::to_string(stepsIn(report));
  if (console.progressStream(ProgressPlace::besideResults).canRedraw()) {
    console.startProgress(ProgressPlace::besideResults);
  }
  writeHtmlReport(
      report, pictures, [&](std::string_view part) { file.write(part); },
      [&](std::size_t written) {
        console.progress(displayPath(path) + ": " + std::to_string(written) + " of " + total +
                         " steps");
      });
  console.endProgress();
  (void)file.moveIntoPlace();
}

}  // namespace

std::vector<CLI::Option*> addReports(CLI::App& app, ReportOptions& options) {
  std::vector<CLI::Option*> added;
  const auto add = [&](const char* name, std::optional<fs::path>& file, const char* contents) {
    added.push_back(
        app.add_option(name, file, contents)->type_name("FILE")->check(named("a file")));
  };
  add("--junit", options.junit, "Write a report for build servers into this file, in JUnit's XML");
  add("--html", options.html,
      "Write a page with every step and its pictures into this file, for browsers");
  add("--markdown", options.markdown, "Write a summary into this file, in Markdown");
  return added;
}

void checkReports(const ReportOptions& options) {
  const auto files = wantedFiles(options);
  for (std::size_t i = 0; i < files.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (files[i].path.lexically_normal() != files[j].path.lexically_normal()) continue;
      throw UsageError(std::string(files[j].option) + " and " + std::string(files[i].option) +
                       " name one file: " + displayPath(files[i].path));
    }
    checkReport(files[i]);
  }
}

void removeOldReports(const ReportOptions& options) {
  for (const WantedFile& file : wantedFiles(options)) {
    std::error_code ignored;
    fs::remove(fileOf(file.path), ignored);
  }
}

bool writeReports(const ReportOptions& options, const std::optional<fs::path>& pictures,
                  const Report& report, Session& session, CommandContext& context) {
  bool written = true;
  const auto attempt = [&](auto write) {
    try {
      write();
    } catch (const FileError& error) {
      context.console.endProgress();
      context.console.complain(error.what());
      written = false;
    }
  };
  PictureFiles files;
  if (pictures) attempt([&] { savePictures(*pictures, report, session, context.console, files); });
  if (options.junit) {
    attempt([&] {
      writeFileWhole(fileOf(*options.junit), junitReport(report, files), Access::byUmask);
    });
  }
  if (options.markdown) {
    attempt([&] {
      writeFileWhole(fileOf(*options.markdown), markdownReport(report), Access::byUmask);
    });
  }
  if (options.html) {
    attempt([&] { writePage(*options.html, report, session, context.console); });
  }
  return written;
}

}  // namespace corvane::ctl
