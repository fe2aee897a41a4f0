#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "CorvaneCore/authoring/InteractionType.h"

/// Texts that authors, the validator and the schema have to agree on, and the examples they quote.
namespace corvane::AuthoringTerms {

/// The one description of an openApplication step; Corvane puts the app's real name in its place.
inline constexpr const char* appNamePlaceholder = "{{APP_NAME}}";

inline constexpr const char* exampleIdentifier = "com.example.myapp";
inline constexpr const char* exampleUrl = "https://example.com";
inline constexpr const char* systemMapsIdentifier = "com.apple.Maps";

}  // namespace corvane::AuthoringTerms

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
[[nodiscard]] const std::string& fullMarkdown();

}  // namespace corvane::AuthoringContract

/// The narrower authoring text for a self-healing author, which repairs a running test.
namespace corvane::HealingSubsetSpec {

/// The healing toolbox: the only step types that such an author may emit, with their fields.
[[nodiscard]] std::string make();

}  // namespace corvane::HealingSubsetSpec
