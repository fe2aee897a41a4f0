#include "corvanectl/commands/Options.h"

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

void takeMany(CLI::Option* option, const std::string& name) {
  option->expected(1, manyValues)->allow_extra_args(false)->type_name(name);
}

}  // namespace corvane::ctl
