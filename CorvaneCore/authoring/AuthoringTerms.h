#pragma once

/// Texts that authors, the validator and the schema have to agree on, and the examples they quote.
namespace corvane::AuthoringTerms {

/// The one description of an openApplication step; Corvane puts the app's real name in its place.
inline constexpr const char* appNamePlaceholder = "{{APP_NAME}}";

inline constexpr const char* exampleIdentifier = "com.example.myapp";
inline constexpr const char* exampleUrl = "https://example.com";
inline constexpr const char* systemMapsIdentifier = "com.apple.Maps";

}  // namespace corvane::AuthoringTerms
