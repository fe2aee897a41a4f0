#include "manual/ProgramManual.h"

#include <CLI/CLI.hpp>

namespace corvane::manual {

std::vector<Option> optionsOf(const CLI::App& app) {
  std::vector<Option> options;
  for (const CLI::Option* given : app.get_options()) {
    Option& option = options.emplace_back();
    option.isArgument = given->get_positional();
    for (const auto& name : given->get_snames()) option.names.push_back("-" + name);
    for (const auto& name : given->get_lnames()) option.names.push_back("--" + name);
    if (option.isArgument) option.names = {given->get_name(true)};
    if (given->get_items_expected_max() > 0 && !option.isArgument) {
      option.value = given->get_type_name();
    }
    option.description = given->get_description();
    option.required = given->get_required();
    option.many = given->get_items_expected_max() > 1;
  }
  return options;
}

}  // namespace corvane::manual
