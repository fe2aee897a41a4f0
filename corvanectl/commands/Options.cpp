#include "corvanectl/commands/Options.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonScalars.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

/// Enough for any list of names.
constexpr int manyValues = 10000;

constexpr char guard = '\1';
constexpr std::string_view guarded = "[{\1";

/// Refuses a value unless `fits`, saying what it should be.
template <class Fits>
CLI::Validator expecting(std::string what, Fits fits) {
  return {[what = std::move(what), fits](std::string& value) {
            return fits(value) ? std::string()
                               : "expected " + what + ", not '" + oneLine(value) + "'";
          },
          ""};
}

bool isSecondsFrom(double least, const std::string& value) {
  char* end = nullptr;
  const double seconds = std::strtod(value.c_str(), &end);
  return !value.empty() && end == value.c_str() + value.size() && seconds >= least &&
         seconds <= 1e8;
}

/// "auto, always or never".
std::string listed(const std::vector<std::string>& words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? " or " : ", ";
    text += words[i];
  }
  return text;
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
      ->type_name("DIR")
      ->check(named("a folder"));
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
  if (error) throw FileError("write --pictures", folder, error);
}

void takeMany(CLI::Option* option, const std::string& name) {
  option->expected(1, manyValues)->allow_extra_args(false)->type_name(name);
}

CLI::Validator secondsAbove0() {
  return expecting("seconds from 0.001 to 100000000",
                   [](const std::string& value) { return isSecondsFrom(0.001, value); });
}

CLI::Validator secondsFrom0() {
  return expecting("seconds from 0 to 100000000",
                   [](const std::string& value) { return isSecondsFrom(0, value); });
}

CLI::Validator named(std::string what) {
  return expecting("the name of " + what, [](const std::string& value) { return !value.empty(); });
}

CLI::Validator oneOf(std::vector<std::string> words) {
  return expecting(listed(words), [words](std::string& value) {
    const auto word = std::find_if(words.begin(), words.end(), [&](const std::string& each) {
      return asciiLowercase(each) == asciiLowercase(value);
    });
    if (word == words.end()) return false;
    value = *word;
    return true;
  });
}

CLI::Validator numberFrom0() {
  return expecting("a number from 0",
                   [](const std::string& value) { return parseInteger(value).value_or(-1) >= 0; });
}

CLI::Validator keyAndValue() {
  return expecting("KEY=VALUE", [](const std::string& value) {
    const std::size_t equals = value.find('=');
    return equals != std::string::npos && equals > 0;
  });
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
