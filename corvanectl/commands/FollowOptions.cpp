#include "corvanectl/commands/FollowOptions.h"

#include <string>

#include "corvanectl/commands/Options.h"

namespace corvane::ctl {

void FollowOptions::addTo(CLI::App& app, const char* following) {
  const auto needing = [&](CLI::Option* option) {
    if (following) option->needs(app.get_option(following));
    return option;
  };
  needing(addPictures(app, pictures));
  for (CLI::Option* report : addReports(app, reports)) needing(report);
  needing(app.add_flag("--events", events,
                       "Print what happens as JSON, a line for each event; the first one has the "
                       "request's id"))
      ->excludes(app.get_option("--json"));
  needing(app.add_option("--app-timeout", appTimeout,
                         "Give up when for this time no running app works on the request "
                         "(default: 60)")
              ->type_name("SECONDS")
              ->check(secondsFrom0()));
  needing(app.add_flag("--cancel-on-exit", cancelOnExit,
                       "Cancel the request when following ends before it, be it by Ctrl-C or as "
                       "the time runs out"));
  app.add_option_function<std::string>(
         "--color",
         [this](const std::string& when) {
           color = when == "always"  ? ColorChoice::always
                   : when == "never" ? ColorChoice::never
                                     : ColorChoice::automatic;
         },
         "Use colours: auto, always or never (default: auto, which is on a terminal unless "
         "NO_COLOR is set)")
      ->type_name("auto|always|never")
      ->transform(oneOf({"auto", "always", "never"}));
}

void FollowOptions::checkOutputs() const {
  if (pictures) requirePictureFolder(*pictures);
  checkReports(reports);
}

Deadline FollowOptions::end(const ServerOptions& options) {
  return options.timeout ? after(Seconds(*options.timeout)) : never;
}

}  // namespace corvane::ctl
