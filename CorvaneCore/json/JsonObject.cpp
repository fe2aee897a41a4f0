#include "CorvaneCore/json/JsonObject.h"

#include <algorithm>
#include <numeric>

#include "CorvaneCore/json/AnyCodable.h"

namespace corvane {

namespace {

constexpr auto keyBefore = [](const JsonObject::Member& member, std::string_view key) {
  return member.key < key;
};

}  // namespace

JsonObject::JsonObject() noexcept = default;
JsonObject::JsonObject(std::initializer_list<Member> given) : members(given) {
  sortUnique();
}
JsonObject::JsonObject(std::vector<Member> given) : members(std::move(given)) {
  sortUnique();
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

void JsonObject::sortUnique() {
  const auto outOfOrder = [](const Member& left, const Member& right) {
    return left.key >= right.key;
  };
  // Files written by either side come sorted already, so this look is the usual end of it.
  if (std::adjacent_find(members.begin(), members.end(), outOfOrder) == members.end()) return;
  std::vector<std::size_t> order(members.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [this](std::size_t left, std::size_t right) {
    const int byKey = members[left].key.compare(members[right].key);
    return byKey != 0 ? byKey < 0 : left < right;
  });
  std::vector<Member> sorted;
  sorted.reserve(members.size());
  for (const std::size_t position : order) {
    Member& member = members[position];
    if (!sorted.empty() && sorted.back().key == member.key) {
      sorted.back().value = std::move(member.value);
    } else {
      sorted.push_back(std::move(member));
    }
  }
  members = std::move(sorted);
}

}  // namespace corvane
