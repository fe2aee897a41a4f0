#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace corvane::ctl {

/// Markup that stands in the sources of this program; nothing else can become one.
class Markup {
 public:
  // NOLINTNEXTLINE(google-explicit-constructor): a literal where markup is wanted is markup.
  consteval Markup(const char* literal) : literal(literal) {}

  [[nodiscard]] std::string_view text() const { return literal; }

 private:
  std::string_view literal;
};

/// HTML on its way out, piece by piece. What is no markup is escaped, here and nowhere else.
class Html {
 public:
  using Append = std::function<void(std::string_view)>;

  explicit Html(Append append) : append(std::move(append)) {}

  Html& add(Markup markup);
  /// Foreign text of any number of lines, between tags or in quotes as an attribute's value.
  Html& text(std::string_view foreign);
  /// The same on one line.
  Html& line(std::string_view foreign);
  /// The same for what is known to have no control characters, and may be long.
  Html& data(std::string_view foreign);
  /// Hands on what is still held. Comes last.
  void finish();

 private:
  void handOnIfLarge();

  Append append;
  std::string held;
};

}  // namespace corvane::ctl
