#include "corvanectl/report/ReportFiles.h"

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/files/TemporaryFile.h"
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

std::size_t stepsIn(const Report& report) {
  std::size_t count = 0;
  for (const auto& test : report.tests) count += test.steps.size();
  return count;
}

/// Pictures make the page large, so it goes into its file while they come in.
void writePage(const fs::path& path, const Report& report, Session& session, Console& console) {
  TemporaryFile file(path, TemporaryFile::Kind::named, Access::byUmask);
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
    added.push_back(app.add_option(name, file, contents)->type_name("FILE"));
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
    ensureWritable(files[i].path, Access::byUmask);
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
    attempt([&] { writeFileWhole(*options.junit, junitReport(report, files), Access::byUmask); });
  }
  if (options.markdown) {
    attempt([&] { writeFileWhole(*options.markdown, markdownReport(report), Access::byUmask); });
  }
  if (options.html) {
    attempt([&] { writePage(*options.html, report, session, context.console); });
  }
  return written;
}

}  // namespace corvane::ctl
