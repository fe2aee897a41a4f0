#include "CorvaneCore/json/JsonMembers.h"

#include <algorithm>

#include "CorvaneCore/json/JsonErrors.h"
#include "CorvaneCore/json/JsonReader.h"

namespace corvane {

JsonObject readMembers(std::string_view text, const std::vector<std::string_view>& names) {
  bool isObject = false;
  std::vector<JsonObject::Member> wanted;
  JsonReader().read(text, [&](JsonCursor& cursor) {
    isObject = cursor.atObject();
    if (!isObject) return cursor.skip();
    cursor.members([&](std::string_view key) {
      if (std::find(names.begin(), names.end(), key) == names.end()) return cursor.skip();
      auto& member = wanted.emplace_back(std::string(key), AnyCodable());
      member.value = cursor.read();
    });
  });
  if (!isObject) throw DecodeError("expected an object");
  return JsonObject(std::move(wanted));
}

}  // namespace corvane
