#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "CorvaneCore/authoring/vocabulary/InteractionType.h"

/// The prose half of the authoring contract: the rules that a schema cannot express, in Markdown,
/// written for the agents that author tests.
namespace corvane::AuthoringContract {

/// Raised whenever the text changes.
inline constexpr std::int64_t version = 17;

/// The rules that hold for every test.
[[nodiscard]] std::string generalContract();

/// The hint for one step type.
[[nodiscard]] std::string_view guidance(InteractionType type);

/// What guidance() says of a type without a hint of its own.
inline constexpr std::string_view noExtraGuidance =
    "(no extra guidance — see create_test.inputSchema)";

/// The general contract followed by the hint of every step type.
[[nodiscard]] std::string fullMarkdown();

}  // namespace corvane::AuthoringContract
