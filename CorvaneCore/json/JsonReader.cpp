#include "CorvaneCore/json/JsonReader.h"

namespace corvane {

AnyCodable JsonReader::read(std::string_view text) {
  AnyCodable value;
  read(text, [&value](JsonCursor& cursor) { value = cursor.read(); });
  return value;
}

AnyCodable readJson(std::string_view text) {
  return JsonReader().read(text);
}

}  // namespace corvane
