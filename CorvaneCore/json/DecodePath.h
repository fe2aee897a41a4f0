#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "CorvaneCore/json/JsonErrors.h"
#include "CorvaneCore/text/Utf8.h"

namespace corvane {

/// Where in a document decoding is: a chain of places that lives on the stack of the decoders and
/// is spelled out only when something does not fit. A path must not outlive its parent.
class DecodePath {
 public:
  DecodePath() = default;
  explicit DecodePath(std::string_view rootName) : name(rootName) {}

  [[nodiscard]] DecodePath member(std::string_view key) const { return {*this, key, noIndex}; }
  [[nodiscard]] DecodePath element(std::size_t index) const { return {*this, {}, index}; }

  /// The place as text, e.g. "params.arguments.interactions[2].type"; empty for a nameless root.
  [[nodiscard]] std::string text() const {
    std::string path = parent ? parent->text() : std::string();
    if (index != noIndex) return path + "[" + std::to_string(index) + "]";
    if (!path.empty() && !name.empty()) path += ".";
    return path.append(name);
  }

  /// Throws a DecodeError that names this place and `problem`, e.g. "method: required".
  [[noreturn]] void fail(std::string_view problem) const {
    // Keys come from the document and may hold anything.
    std::string place = escapeControls(text());
    if (!place.empty()) place += ": ";
    throw DecodeError(place.append(problem));
  }

 private:
  static constexpr std::size_t noIndex = static_cast<std::size_t>(-1);
  /// Records that contain themselves are read this deep and no deeper, so that no document can use
  /// up the machine stack.
  static constexpr std::size_t deepest = 1000;

  DecodePath(const DecodePath& parent, std::string_view name, std::size_t index)
      : parent(&parent), name(name), index(index), depth(parent.depth + 1) {
    if (depth > deepest) parent.fail("nested too deeply");
  }

  const DecodePath* parent = nullptr;
  std::string_view name;
  std::size_t index = noIndex;
  std::size_t depth = 0;
};

}  // namespace corvane
