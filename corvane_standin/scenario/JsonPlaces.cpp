#include "corvane_standin/scenario/JsonPlaces.h"

#include "CorvaneCore/json/Codec.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

namespace {

/// Tells `found` the place of every value, with the offsets of its key and of the value itself.
template <class Found>
void walk(JsonCursor& cursor, const DecodePath& at, std::size_t key, const Found& found) {
  const std::size_t value = cursor.position();
  found(escapeControls(at.text()), key, value);
  if (cursor.atObject()) {
    cursor.members([&](std::string_view name) {
      // The cursor has passed the key and the colon, which are a token each.
      const std::size_t keyOffset = cursor.mark()[-2];
      // The name is gone when the cursor moves on.
      const std::string kept(name);
      walk(cursor, at.member(kept), keyOffset, found);
    });
  } else if (cursor.atArray()) {
    std::size_t index = 0;
    cursor.elements([&] { walk(cursor, at.element(index++), cursor.position(), found); });
  } else {
    cursor.skip();
  }
}

}  // namespace

bool isAbout(std::string_view description, std::string_view place) {
  if (!description.starts_with(place) || description.size() == place.size()) return false;
  const char next = description[place.size()];
  return place.empty() || next == ':' || next == '.' || next == '[';
}

JsonPlaces::JsonPlaces(std::string_view text) {
  JsonReader().read(text, [this](JsonCursor& cursor) {
    walk(cursor, DecodePath(), cursor.position(),
         [this](std::string place, std::size_t key, std::size_t value) {
           places.insert_or_assign(std::move(place), Offsets{key, value});
         });
  });
}

std::size_t JsonPlaces::ofKey(const std::string& place) const {
  const auto found = places.find(place);
  return found == places.end() ? 0 : found->second.key;
}

std::size_t JsonPlaces::ofError(std::string_view description) const {
  std::size_t longest = 0;
  std::size_t offset = 0;
  for (const auto& [place, offsets] : places) {
    if (place.size() < longest || !isAbout(description, place)) continue;
    longest = place.size();
    offset = offsets.value;
  }
  return offset;
}

}  // namespace corvane::standin
