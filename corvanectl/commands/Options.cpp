#include "corvanectl/commands/Options.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonScalars.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

/// Enough for any list of names.
constexpr int manyValues = 10000;

constexpr char guard = '\1';
constexpr std::string_view guarded = "[{\1";

/// Refuses a value unless `fits`, saying what it should be.
CLI::Validator expecting(std::string what, bool (*fits)(const std::string&)) {
  return {[what = std::move(what), fits](const std::string& value) {
            return fits(value) ? std::string()
                               : "expected " + what + ", not '" + oneLine(value) + "'";
          },
          ""};
}

}  // namespace

void addRequestId(CLI::App& app, std::string& requestId) {
  app.add_option("REQUEST_ID", requestId,
                 "The request's id or its beginning, or 'last' for the most recent one")
      ->type_name("")
      ->required();
}

void addOptionalRequestId(CLI::App& app, std::string& requestId) {
  addRequestId(app, requestId);
  app.get_option("REQUEST_ID")->required(false)->capture_default_str();
}

void addJson(CLI::App& app, bool& json, const std::string& description) {
  app.add_flag("--json", json, description);
}

CLI::Option* addPictures(CLI::App& app, std::optional<std::filesystem::path>& directory) {
  return app
      .add_option("--pictures", directory,
                  "Save the pictures of the answer in this folder. On a terminal they are shown, "
                  "too, where the program chafa is installed")
      ->type_name("DIR");
}

void requirePictureFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (!error && !std::filesystem::is_directory(folder)) {
    error = std::make_error_code(std::errc::not_a_directory);
  }
  if (!error && ::access(folder.c_str(), W_OK | X_OK) != 0) {
    error = std::error_code(errno, std::generic_category());
  }
  if (error) throw FileError("use for --pictures", folder, error);
}

void takeMany(CLI::Option* option, const std::string& name) {
  option->expected(1, manyValues)->allow_extra_args(false)->type_name(name);
}

CLI::Validator secondsAbove0() {
  return expecting("seconds from 0.001 to 100000000", [](const std::string& value) {
    char* end = nullptr;
    const double seconds = std::strtod(value.c_str(), &end);
    return end == value.c_str() + value.size() && seconds >= 0.001 && seconds <= 1e8;
  });
}

CLI::Validator numberFrom0() {
  return expecting("a number from 0",
                   [](const std::string& value) { return parseInteger(value).value_or(-1) >= 0; });
}

CLI::Validator keyAndValue() {
  return expecting("KEY=VALUE",
                   [](const std::string& value) { return value.find('=') != std::string::npos; });
}

CLI::Validator plainName() {
  return expecting("letters, digits, - and _", [](const std::string& value) {
    constexpr std::string_view allowed =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_";
    return !value.empty() && value.find_first_not_of(allowed) == std::string::npos;
  });
}

std::string withGuard(std::string word) {
  const std::size_t equals = word.starts_with("--") ? word.find('=') : std::string::npos;
  const std::size_t begin = equals == std::string::npos ? 0 : equals + 1;
  if (begin < word.size() && guarded.find(word[begin]) != std::string_view::npos) {
    word.insert(begin, 1, guard);
  }
  return word;
}

std::string withoutGuard(std::string word) {
  if (word.size() > 1 && word[0] == guard && guarded.find(word[1]) != std::string_view::npos) {
    word.erase(0, 1);
  }
  return word;
}

void takeValuesAsTheyAre(CLI::App& app) {
  for (CLI::Option* option : app.get_options()) {
    if (option->get_items_expected_max() == 0) continue;
    option->transform(CLI::Validator(
        [](std::string& value) {
          value = withoutGuard(std::move(value));
          return std::string();
        },
        "", "guard"));
  }
  for (CLI::App* command : app.get_subcommands(nullptr)) takeValuesAsTheyAre(*command);
}

}  // namespace corvane::ctl
