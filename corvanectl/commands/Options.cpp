#include "corvanectl/commands/Options.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "CorvaneCore/files/Files.h"

namespace corvane::ctl {

namespace {

/// Enough for any list of names. Naming a limit also keeps CLI11 from taking a value in brackets
/// apart, as it does for lists without one.
constexpr int manyValues = 10000;

}  // namespace

void addRequestId(CLI::App& app, std::string& requestId) {
  app.add_option("REQUEST_ID", requestId, "The id that the request was given")
      ->type_name("")
      ->required();
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

}  // namespace corvane::ctl
