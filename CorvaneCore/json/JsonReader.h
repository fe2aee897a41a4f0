#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonSink.h"

namespace corvane {

/// Reads JSON texts. Keeps its working memory between texts, so a reader serves a stream of
/// messages well; a reader is used by one thread at a time.
class JsonReader {
 public:
  JsonReader();
  JsonReader(JsonReader&&) noexcept;
  JsonReader& operator=(JsonReader&&) noexcept;
  ~JsonReader();

  /// Sends the one value that `text` holds to `sink`. Throws DecodeError when the text is not valid
  /// JSON in valid UTF-8, or holds a number beyond a double; the sink may have got a part by then.
  void read(std::string_view text, JsonSink& sink);

  /// The one value that `text` holds. Throws DecodeError.
  [[nodiscard]] AnyCodable read(std::string_view text);

  /// For a sink while read() calls it: the offset in the text at which the value being reported
  /// begins or, at the end of an array or object, at which the text after it goes on.
  [[nodiscard]] std::size_t position() const;

 private:
  struct Parser;
  std::unique_ptr<Parser> parser;
};

/// The one value that `text` holds. Throws DecodeError.
[[nodiscard]] AnyCodable readJson(std::string_view text);

}  // namespace corvane
