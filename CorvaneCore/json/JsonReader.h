#pragma once

#include <string_view>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonCursor.h"
#include "CorvaneCore/json/JsonTokens.h"

namespace corvane {

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

}  // namespace corvane
