#include "CorvaneCore/json/AnyCodable.h"

#include <algorithm>
#include <iterator>
#include <numeric>

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
JsonObject JsonObject::takenFrom(std::span<Member> given) {
  JsonObject object;
  if (areSorted(given)) {
    object.members.assign(std::make_move_iterator(given.begin()),
                          std::make_move_iterator(given.end()));
  } else {
    object.members = takeSorted(given);
  }
  return object;
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

namespace {

/// Calls `visit` for every direct child of a container; does nothing for other kinds.
template <class Value, class Visit>
void forEachChild(Value& value, Visit visit) {
  if (auto* array = std::get_if<AnyCodable::Array>(&value)) {
    for (auto& element : *array) visit(element);
  } else if (auto* object = std::get_if<AnyCodable::Object>(&value)) {
    for (auto& member : *object) visit(member.value);
  }
}

bool isContainer(const AnyCodable& value) noexcept {
  return value.array() != nullptr || value.object() != nullptr;
}

/// The container `source` with its keys and scalars; every nested container is left null and put,
/// with the place it belongs to, on `pending`.
struct Copy {
  const AnyCodable* from;
  AnyCodable* to;
};

void copyShallow(const Copy& copy, std::vector<Copy>& pending) {
  const auto copyChild = [&pending](const AnyCodable& from, AnyCodable& to) {
    if (isContainer(from)) {
      pending.push_back({&from, &to});
    } else {
      to = from;
    }
  };
  if (const auto* array = copy.from->array()) {
    auto& target = copy.to->value().emplace<AnyCodable::Array>(array->size());
    for (std::size_t i = 0; i < array->size(); ++i) copyChild((*array)[i], target[i]);
  } else if (const auto* object = copy.from->object()) {
    std::vector<JsonObject::Member> members(object->size());
    std::size_t i = 0;
    for (const auto& member : *object) members[i++].key = member.key;
    auto& target = copy.to->value().emplace<AnyCodable::Object>(std::move(members));
    auto into = target.begin();
    for (const auto& member : *object) copyChild(member.value, (into++)->value);
  }
}

}  // namespace

AnyCodable::AnyCodable(const AnyCodable& other) {
  if (!other.holdsChildren()) {
    held = other.held;
    return;
  }
  std::vector<Copy> pending{{&other, this}};
  while (!pending.empty()) {
    const Copy next = pending.back();
    pending.pop_back();
    copyShallow(next, pending);
  }
}

AnyCodable& AnyCodable::operator=(const AnyCodable& other) {
  if (this != &other) *this = AnyCodable(other);
  return *this;
}

void AnyCodable::releaseChildren() noexcept {
  // A container of which no child holds containers is left to the destructors.
  const auto nests = [](const AnyCodable& value) {
    bool found = false;
    forEachChild(value.held, [&found](const AnyCodable& child) { found |= child.holdsChildren(); });
    return found;
  };
  std::vector<Value> pending;
  const auto takeNested = [&](Value& value) {
    forEachChild(value, [&](AnyCodable& child) {
      if (child.holdsChildren() && nests(child)) pending.push_back(std::exchange(child.held, {}));
    });
  };
  takeNested(held);
  while (!pending.empty()) {
    Value next = std::move(pending.back());
    pending.pop_back();
    takeNested(next);
  }
}

const AnyCodable* AnyCodable::find(std::string_view key) const noexcept {
  const auto* members = object();
  return members ? members->find(key) : nullptr;
}

bool operator==(const AnyCodable& left, const AnyCodable& right) {
  std::vector<std::pair<const AnyCodable*, const AnyCodable*>> pending{{&left, &right}};
  while (!pending.empty()) {
    const auto [a, b] = pending.back();
    pending.pop_back();
    if (a->held.index() != b->held.index()) return false;
    if (const auto* array = a->array()) {
      const auto& other = *b->array();
      if (array->size() != other.size()) return false;
      for (std::size_t i = 0; i < array->size(); ++i) pending.emplace_back(&(*array)[i], &other[i]);
    } else if (const auto* object = a->object()) {
      const auto& other = *b->object();
      if (object->size() != other.size()) return false;
      auto with = other.begin();
      for (const auto& member : *object) {
        if (member.key != with->key) return false;
        pending.emplace_back(&member.value, &(with++)->value);
      }
    } else if (a->isNull()) {
      continue;
    } else if (const auto* text = a->string()) {
      if (*text != *b->string()) return false;
    } else if (const auto* integer = a->integer()) {
      if (*integer != *b->integer()) return false;
    } else if (const auto* number = a->number()) {
      if (*number != *b->number()) return false;
    } else if (*a->boolean() != *b->boolean()) {
      return false;
    }
  }
  return true;
}

}  // namespace corvane
