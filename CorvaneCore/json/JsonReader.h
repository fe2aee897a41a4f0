#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonTokens.h"
#include "CorvaneCore/json/JsonWriter.h"

namespace corvane {

/// Goes through a JSON text from value to value. Everything it passes is checked, what is skipped
/// as well, and nothing that is skipped is kept. Its functions throw DecodeError where the text is
/// not valid JSON, or holds a number beyond a double; the cursor is of no more use then.
class JsonCursor {
 public:
  /// Stands at the one value of `text`, whose tokens `tokens` holds. Both outlive the cursor.
  JsonCursor(std::string_view text, const JsonTokens& tokens) noexcept
      : text(text),
        escapes(text.find('\\') != std::string_view::npos),
        next(tokens.begin()),
        end(tokens.end()) {}

  /// Whether the value here is an object.
  [[nodiscard]] bool atObject() const noexcept { return byte() == '{'; }
  /// Whether the value here is an array.
  [[nodiscard]] bool atArray() const noexcept { return byte() == '['; }
  /// The offset in the text of the token here; after a value that is what follows the value. The
  /// size of the text when there is nothing more.
  [[nodiscard]] std::size_t position() const noexcept { return *next; }

  /// A place to come back to.
  using Mark = const std::uint32_t*;
  [[nodiscard]] Mark mark() const noexcept { return next; }
  void goBackTo(Mark place) noexcept { next = place; }

  /// Takes the value here, however deep it nests; of duplicate keys the last one wins.
  [[nodiscard]] AnyCodable read();
  /// Passes over the value here.
  void skip();

  /// The value here, when it is of the asked kind; nothing is taken otherwise. A string is valid
  /// until the next call; a number is an integer when it is written as one and is in range.
  [[nodiscard]] std::optional<std::string_view> takeIfString();
  [[nodiscard]] std::optional<bool> takeIfBoolean();
  [[nodiscard]] std::optional<std::int64_t> takeIfInteger();

  /// Takes the object here: calls `visit` with every key in turn, upon which `visit` takes the
  /// value by one of the functions of this cursor. The key is valid until then.
  template <class Visit>
  void members(Visit visit) {
    expect('{');
    if (accept('}')) return;
    do {
      visit(takeKey());
    } while (accept(','));
    expect('}');
  }

  /// Takes the array here: calls `visit` for every element, upon which `visit` takes it.
  template <class Visit>
  void elements(Visit visit) {
    expect('[');
    if (accept(']')) return;
    do {
      visit();
    } while (accept(','));
    expect(']');
  }

  /// Makes sure that nothing follows.
  void expectEnd() const {
    if (next != end) failHere();
  }

 private:
  template <class Events>
  void walk(Events& events);
  template <class Events>
  void scalar(Events& events);
  template <class Events>
  void string(Events& events);
  template <class Events>
  void key(Events& events);

  [[nodiscard]] char byte() const noexcept { return next == end ? '\0' : text[*next]; }
  bool accept(char wanted) noexcept {
    if (byte() != wanted) return false;
    ++next;
    return true;
  }
  void expect(char wanted) {
    if (!accept(wanted)) failHere();
  }
  /// Takes a key and its colon.
  std::string_view takeKey();
  /// Takes the string here.
  std::string_view takeString();
  /// Takes everything up to the next token but for the white space before that.
  std::string_view takeToken() noexcept;
  [[noreturn]] void failHere() const;
  [[noreturn]] static void failScalar(std::string_view token, std::size_t begin);

  std::string_view text;
  /// Whether there are any in the text.
  bool escapes;
  const std::uint32_t* next;
  const std::uint32_t* end;
  /// Holds the last string that had escapes.
  std::string unescaped;
  /// Builds the values that are read; its working memory serves all of them.
  JsonTree tree;
};

/// Reads JSON texts. Keeps its working memory between texts, so a reader serves a stream of
/// messages well; a reader is used by one thread at a time.
class JsonReader {
 public:
  /// The one value that `text` holds. Throws DecodeError when the text is not valid JSON in valid
  /// UTF-8, or holds a number beyond a double.
  [[nodiscard]] AnyCodable read(std::string_view text);

  /// Calls `visit` with a cursor at the one value that `text` holds, which `visit` takes, and makes
  /// sure that nothing follows. Throws DecodeError as above; `visit` may have got a part by then.
  template <class Visit>
  void read(std::string_view text, Visit visit) {
    tokens.find(text);
    JsonCursor cursor(text, tokens);
    visit(cursor);
    cursor.expectEnd();
  }

 private:
  JsonTokens tokens;
};

/// The one value that `text` holds. Throws DecodeError.
[[nodiscard]] AnyCodable readJson(std::string_view text);

/// The named members of the object that `text` holds. The whole text is checked, but the other
/// members are not kept, so that a large text costs little memory. Throws DecodeError, also when
/// `text` holds no object.
[[nodiscard]] JsonObject readMembers(std::string_view text,
                                     const std::vector<std::string_view>& names);

}  // namespace corvane
