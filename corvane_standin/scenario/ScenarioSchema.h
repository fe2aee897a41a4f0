#pragma once

#include <string>

namespace corvane::standin {

/// The JSON Schema of scenario files, indented for people.
[[nodiscard]] std::string scenarioSchema();

}  // namespace corvane::standin
