#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/authoring/AgentInteraction.h"
#include "CorvaneCore/json/Record.h"

namespace corvane {

/// One test of a payload.
struct AgentTest {
  std::string name;
  std::optional<std::string> description;
  /// The position of the test in the payload.
  std::int64_t index = 0;
  /// The steps in order.
  std::vector<AgentInteraction> interactions;
  /// Values for the named parameters of the test.
  std::optional<std::map<std::string, std::string>> parameterValues;
  /// A SelfHealingMode, kept as it came.
  std::optional<std::string> selfHealingMode;

  static constexpr auto fields() {
    using R = AgentTest;
    return FieldList(field("name", &R::name), field("description", &R::description),
                     field("index", &R::index), field("interactions", &R::interactions),
                     field("parameterValues", &R::parameterValues),
                     field("selfHealingMode", &R::selfHealingMode));
  }
};

extern template struct RecordCodec<AgentTest>;

}  // namespace corvane
