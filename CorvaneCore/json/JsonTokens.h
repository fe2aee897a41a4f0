#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

namespace corvane {

/// Where the tokens of a JSON text begin: each bracket, brace, colon and comma, the opening quote
/// of each string, and the first byte of whatever else stands between them. Of a control character
/// outside strings it depends on the processor whether it is a token of its own. Reads no byte
/// beside the text. Keeps its working memory between texts; used by one thread at a time.
class JsonTokens {
 public:
  JsonTokens();
  JsonTokens(JsonTokens&&) noexcept;
  JsonTokens& operator=(JsonTokens&&) noexcept;
  ~JsonTokens();

  /// Finds the tokens of `text`. Afterwards the text is known to be UTF-8 that does not begin with
  /// a byte order mark, to hold at least one token, and to have every string closed and free of
  /// control characters; nothing else. Throws DecodeError when that is not so.
  void find(std::string_view text);

  /// The offsets found last, in order; the one at end() is the size of the text.
  [[nodiscard]] const std::uint32_t* begin() const noexcept;
  [[nodiscard]] const std::uint32_t* end() const noexcept;

 private:
  struct Finder;
  std::unique_ptr<Finder> finder;
};

}  // namespace corvane
