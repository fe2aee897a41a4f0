#include "CorvaneCore/json/JsonObject.h"

#include <algorithm>
#include <iterator>
#include <numeric>

#include "CorvaneCore/json/AnyCodable.h"

namespace corvane {

namespace {

constexpr auto keyBefore = [](const JsonObject::Member& member, std::string_view key) {
  return member.key < key;
};

/// Whether the keys ascend, as they do in files written by either side.
bool areSorted(std::span<const JsonObject::Member> members) {
  const auto outOfOrder = [](const auto& left, const auto& right) { return left.key >= right.key; };
  return std::adjacent_find(members.begin(), members.end(), outOfOrder) == members.end();
}

/// Moves members of any order out of where they are. Sorts their positions first, so that each is
/// moved once.
std::vector<JsonObject::Member> takeSorted(std::span<JsonObject::Member> members) {
  std::vector<std::size_t> order(members.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [members](std::size_t left, std::size_t right) {
    const int byKey = members[left].key.compare(members[right].key);
    return byKey != 0 ? byKey < 0 : left < right;
  });
  std::vector<JsonObject::Member> sorted;
  sorted.reserve(members.size());
  for (const std::size_t position : order) {
    JsonObject::Member& member = members[position];
    if (!sorted.empty() && sorted.back().key == member.key) {
      sorted.back().value = std::move(member.value);
    } else {
      sorted.push_back(std::move(member));
    }
  }
  return sorted;
}

}  // namespace

JsonObject::JsonObject() noexcept = default;
JsonObject::JsonObject(std::initializer_list<Member> given)
    : JsonObject(std::vector<Member>(given)) {}
JsonObject::JsonObject(std::vector<Member> given)
    : members(areSorted(given) ? std::move(given) : takeSorted(given)) {}
JsonObject::JsonObject(std::span<Member> given) {
  if (areSorted(given)) {
    members.assign(std::make_move_iterator(given.begin()), std::make_move_iterator(given.end()));
  } else {
    members = takeSorted(given);
  }
}
JsonObject::JsonObject(const JsonObject& other) = default;
JsonObject::JsonObject(JsonObject&& other) noexcept = default;
JsonObject& JsonObject::operator=(const JsonObject& other) = default;
JsonObject& JsonObject::operator=(JsonObject&& other) noexcept = default;
JsonObject::~JsonObject() = default;

const AnyCodable* JsonObject::find(std::string_view key) const noexcept {
  const auto at = std::lower_bound(members.begin(), members.end(), key, keyBefore);
  return at != members.end() && at->key == key ? &at->value : nullptr;
}

AnyCodable* JsonObject::find(std::string_view key) noexcept {
  return const_cast<AnyCodable*>(std::as_const(*this).find(key));
}

void JsonObject::set(std::string_view key, AnyCodable value) {
  const auto at = std::lower_bound(members.begin(), members.end(), key, keyBefore);
  if (at != members.end() && at->key == key) {
    at->value = std::move(value);
  } else {
    members.insert(at, Member{std::string(key), std::move(value)});
  }
}

}  // namespace corvane
