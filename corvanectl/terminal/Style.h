#pragma once

#include <string>
#include <string_view>

namespace corvane::ctl {

/// The few colours of this program's texts. Each gives a text as it is when there are to be none.
class Style {
 public:
  explicit Style(bool colored) : colored(colored) {}

  [[nodiscard]] std::string good(std::string_view text) const { return within("32", text); }
  [[nodiscard]] std::string bad(std::string_view text) const { return within("31", text); }
  [[nodiscard]] std::string doubtful(std::string_view text) const { return within("33", text); }
  [[nodiscard]] std::string quiet(std::string_view text) const { return within("2", text); }

 private:
  [[nodiscard]] std::string within(std::string_view attribute, std::string_view text) const {
    if (!colored) return std::string(text);
    return std::string("\033[").append(attribute).append("m").append(text).append("\033[m");
  }

  bool colored;
};

}  // namespace corvane::ctl
