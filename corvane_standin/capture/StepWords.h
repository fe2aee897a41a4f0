#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/authoring/InteractionType.h"

namespace corvane::standin {

/// Something on the screen that a step speaks of.
struct NamedPart {
  enum class Kind {
    unsaid,
    button,
    tab,
    field,
    product,
    row,
    page,
    text,
    slider,
    toggle,
    searchIcon,
  };

  Kind kind = Kind::unsaid;
  std::string label;

  friend bool operator==(const NamedPart&, const NamedPart&) = default;
};

/// What a step's description, written for people, says about the screen.
class StepWords {
 public:
  StepWords(std::string_view interactionType, std::string_view description);

  /// Nothing for a type that this build does not know.
  [[nodiscard]] std::optional<InteractionType> type() const { return interaction; }
  [[nodiscard]] bool is(InteractionType wanted) const { return interaction == wanted; }
  /// Whether it stands for steps that are written down elsewhere.
  [[nodiscard]] bool isOtherSteps() const {
    return is(InteractionType::runTest) || is(InteractionType::reuseSteps);
  }
  [[nodiscard]] const std::string& description() const { return whole; }
  /// What it names, mostly in quotes; for a tap without quotes what is left without the verb.
  [[nodiscard]] const std::vector<NamedPart>& named() const { return parts; }
  /// Whether one of the words stands in the description outside of the names of tabs and of what
  /// is about to be added; capitals do not matter.
  [[nodiscard]] bool speaksOf(std::initializer_list<std::string_view> words) const;

 private:
  void nameQuoted();
  void nameUnquoted();
  void collectProse();

  std::optional<InteractionType> interaction;
  std::string whole;
  std::string lower;
  std::string prose;
  std::vector<NamedPart> parts;
};

/// `text` with its first letter as a capital, if that is one of ASCII.
[[nodiscard]] std::string capitalised(std::string_view text);

/// Whether a label says what a button does, as in "Save" or "Sign in".
[[nodiscard]] bool beginsWithVerb(std::string_view label);

}  // namespace corvane::standin
