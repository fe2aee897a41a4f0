#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace corvane::standin {

/// Whether a decode error's text, "outcomes.Sign in.failedStep: expected ...", is about the value
/// at `place` or one inside it.
[[nodiscard]] bool isAbout(std::string_view description, std::string_view place);

/// Where the values of a JSON text stand, by the names that decode errors give them:
/// "outcomes.Sign in.failedStep", "projects[0].tests".
class JsonPlaces {
 public:
  /// Throws DecodeError when `text` is not valid JSON.
  explicit JsonPlaces(std::string_view text);

  /// The key of the member of this name, or the element; the beginning of the text when there is
  /// none.
  [[nodiscard]] std::size_t ofKey(const std::string& place) const;
  /// The value that a decode error's text is about: the one it names, or what that is missing from.
  [[nodiscard]] std::size_t ofError(std::string_view description) const;

 private:
  struct Offsets {
    std::size_t key;
    std::size_t value;
  };

  std::map<std::string, Offsets, std::less<>> places;
};

}  // namespace corvane::standin
