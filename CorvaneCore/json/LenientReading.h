#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/Record.h"

// Reading what others wrote the way it comes. Codec refuses a whole document for one member that
// does not fit; who must make something of a file of any version looks at the members one by one,
// and what does not fit counts as absent. Which member is meant is said by the pointer to it, so
// that its key and its type stand in the record's declaration and nowhere else.

namespace corvane {

namespace lenient_detail {

template <class Pointer>
struct Pointee;
template <class R, class M>
struct Pointee<M R::*> {
  using Record = R;
  using Member = M;
};

template <class Record, class Member, class OtherMember>
constexpr bool isFieldOf(const Field<Record, Member>& field, OtherMember Record::* member) {
  if constexpr (std::is_same_v<Member, OtherMember>) {
    return field.member == member;
  } else {
    return false;
  }
}

/// The alternative of AnyCodable that a well-formed value of type T is held as. None for double:
/// one without a fraction is held as an integer.
template <class T>
struct HeldAs;
template <>
struct HeldAs<bool> {
  using Type = bool;
};
template <>
struct HeldAs<std::int64_t> {
  using Type = std::int64_t;
};
template <>
struct HeldAs<std::string> {
  using Type = std::string;
};
template <>
struct HeldAs<Date> {
  using Type = std::string;
};
template <HasVocabulary E>
struct HeldAs<E> {
  using Type = std::string;
};
template <DeclaredRecord Record>
struct HeldAs<Record> {
  using Type = JsonObject;
};
template <class Element>
struct HeldAs<std::vector<Element>> {
  using Type = AnyCodable::Array;
};
template <class Value>
struct HeldAs<std::optional<Value>> : HeldAs<Value> {};

template <class Member>
struct FieldValue {
  using Type = Member;
};
template <class Value>
struct FieldValue<std::optional<Value>> {
  using Type = Value;
};

/// Goes on in `next` to the field's key, which is behind those of the fields before.
template <class Record, class Member, class OnMisfit>
void takeFieldIfFits(const Field<Record, Member>& field, JsonObject::iterator& next,
                     JsonObject::iterator end, Record& record, const OnMisfit& onMisfit) {
  int order = -1;
  while (next != end && (order = next->key.compare(field.key)) < 0) ++next;
  if (next == end || order != 0) return;
  auto value = decodeIfFits<typename FieldValue<Member>::Type>(
      std::move(next->value), [&](std::string_view why) { onMisfit(field.key, why); });
  if (!value) return;
  if constexpr (record_detail::IsOptional<Member>::value) {
    record.*field.member = std::move(value);
  } else {
    record.*field.member = std::move(*value);
  }
}

}  // namespace lenient_detail

/// The key under which a record declares a member, e.g. keyOf<&AgentRunResult::status>().
template <auto member>
[[nodiscard]] consteval std::string_view keyOf() {
  using Record = typename lenient_detail::Pointee<decltype(member)>::Record;
  std::string_view key;
  Record::fields().apply([&key](const auto&... field) {
    ((lenient_detail::isFieldOf(field, member) ? void(key = field.key) : void()), ...);
  });
  // A member that is no field does not compile.
  if (key.empty()) throw "not a field of the record";
  return key;
}

/// The member of a JSON object (a JsonObject or an AnyCodable) under its declared key, whatever it
/// is; nullptr when there is none.
template <auto member, class Json>
[[nodiscard]] const AnyCodable* rawField(const Json& object) noexcept {
  return object.find(keyOf<member>());
}

/// The same when it is held as its type wants it, else nullptr: dates and words of a vocabulary as
/// texts, records as objects, vectors as arrays, of whatever they hold.
template <auto member, class Json>
[[nodiscard]] const auto* findField(const Json& object) noexcept {
  using Member = typename lenient_detail::Pointee<decltype(member)>::Member;
  return object.template findAs<typename lenient_detail::HeldAs<Member>::Type>(keyOf<member>());
}

/// These members of the object that `text` holds; the others are checked but not kept. Throws
/// DecodeError, also when `text` holds no object.
template <auto... wanted>
[[nodiscard]] JsonObject readMembers(std::string_view text) {
  return readMembers(text, {keyOf<wanted>()...});
}

/// Takes the fields of a record out of `object`, but for those under `except`. A value of another
/// type than its field's counts as absent, and `onMisfit` is told its key and why; so does null.
/// Fields that are absent keep what `record` holds.
template <auto... except, DeclaredRecord Record, class OnMisfit = IgnoreMisfits>
void takeFieldsExcept(JsonObject& object, Record& record, const OnMisfit& onMisfit = {}) {
  static constexpr auto order = record_detail::sortedPositions<Record>();
  static constexpr auto fields = Record::fields();
  auto next = object.begin();
  const auto take = [&]<std::size_t position>() {
    static constexpr auto& field = fields.template at<position>();
    if constexpr (((field.key != keyOf<except>()) && ...)) {
      lenient_detail::takeFieldIfFits(field, next, object.end(), record, onMisfit);
    }
  };
  [&]<std::size_t... I>(std::index_sequence<I...>) {
    (take.template operator()<order[I]>(), ...);
  }(std::make_index_sequence<record_detail::fieldCount<Record>>());
}

}  // namespace corvane
