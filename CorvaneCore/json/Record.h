#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

#include "CorvaneCore/json/Codec.h"
#include "CorvaneCore/json/FieldList.h"

namespace corvane {

/// One field of a record: its JSON key and the member that holds it. A member of type
/// std::optional is optional: absent or null on reading means empty, empty is left out on writing.
/// Every other member is required on reading and always written.
template <class Record, class Member>
struct Field {
  std::string_view key;
  Member Record::* member;
  /// Read in the place of `key` when `key` is absent; never written.
  std::string_view alias;
  /// Whether a member that is not std::optional keeps its initial value when it is absent.
  bool defaulted = false;

  [[nodiscard]] constexpr Field orElse(std::string_view otherKey) const {
    return {key, member, otherKey, defaulted};
  }
  [[nodiscard]] constexpr Field withDefault() const { return {key, member, alias, true}; }
};

/// Declares a field. A record lists its fields once, in declaration order:
///   static constexpr auto fields() {
///     return FieldList(field("name", &Record::name), field("total", &Record::total));
///   }
/// Decoding, encoding and the paths in error texts all come from that list.
template <class Record, class Member>
[[nodiscard]] constexpr Field<Record, Member> field(std::string_view key, Member Record::* member) {
  return {key, member, {}, false};
}

template <class T>
concept DeclaredRecord = requires { T::fields(); };

namespace record_detail {

template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};

template <class Record>
inline constexpr std::size_t fieldCount = decltype(Record::fields())::size;

/// The positions of a record's fields in ascending key order, the order they are written in.
template <class Record>
[[nodiscard]] consteval auto sortedPositions() {
  constexpr std::size_t count = fieldCount<Record>;
  std::array<std::size_t, count> positions{};
  const auto keys = Record::fields().apply(
      [](const auto&... field) { return std::array<std::string_view, count>{field.key...}; });
  for (std::size_t i = 0; i < count; ++i) {
    std::size_t at = i;
    for (; at > 0 && keys[positions[at - 1]] > keys[i]; --at) positions[at] = positions[at - 1];
    positions[at] = i;
  }
  return positions;
}

template <class Record, class Member>
void decodeField(const Field<Record, Member>& field, AnyCodable::Object& object, Record& record,
                 const DecodePath& at) {
  AnyCodable* value = object.find(field.key);
  const bool missing = !value || value->isNull();
  const bool aliased = missing && !field.alias.empty() && object.find(field.alias);
  if (aliased) value = object.find(field.alias);
  auto& member = record.*field.member;
  const DecodePath place = at.member(aliased ? field.alias : field.key);
  if constexpr (IsOptional<Member>::value) {
    if (!value || value->isNull()) return;
    member = Codec<typename Member::value_type>::decode(std::move(*value), place);
  } else {
    if (field.defaulted && (!value || value->isNull())) return;
    if (!value) place.fail("required");
    member = Codec<Member>::decode(std::move(*value), place);
  }
}

template <class Record, class Member>
void encodeField(const Field<Record, Member>& field, const Record& record, JsonSink& sink) {
  const auto& member = record.*field.member;
  if constexpr (IsOptional<Member>::value) {
    if (!member) return;
    sink.key(field.key);
    Codec<typename Member::value_type>::encode(*member, sink);
  } else {
    sink.key(field.key);
    Codec<Member>::encode(member, sink);
  }
}

/// Reads the fields of a record out of `object`, in declaration order.
template <class Record>
[[nodiscard]] Record decodeFields(AnyCodable::Object& object, const DecodePath& at) {
  Record record;
  Record::fields().apply(
      [&](const auto&... field) { (decodeField(field, object, record, at), ...); });
  return record;
}

/// Writes the fields of a record in key order; `beforeField` is told each key first.
template <class Record, class BeforeField>
void encodeFields(const Record& record, JsonSink& sink, BeforeField beforeField) {
  [[maybe_unused]] static constexpr auto order = sortedPositions<Record>();
  [[maybe_unused]] static constexpr auto fields = Record::fields();
  [&]<std::size_t... I>(std::index_sequence<I...>) {
    ((beforeField(fields.template at<order[I]>().key),
      encodeField(fields.template at<order[I]>(), record, sink)),
     ...);
  }(std::make_index_sequence<fieldCount<Record>>());
}

}  // namespace record_detail

/// The codec of a record. Large records are declared `extern template struct RecordCodec<...>`
/// beside themselves and instantiated in one source, so that not every source that touches one
/// compiles it.
template <class Record>
struct RecordCodec {
  static Record decode(AnyCodable&& value, const DecodePath& at) {
    auto object = takeAs<AnyCodable::Object>(std::move(value), at, "an object");
    return record_detail::decodeFields<Record>(object, at);
  }

  static void encode(const Record& record, JsonSink& sink) {
    sink.beginObject();
    record_detail::encodeFields(record, sink, [](std::string_view) {});
    sink.endObject();
  }
};

// Not the codec itself: g++ 12 loses what is instantiated of a constrained specialisation.
template <DeclaredRecord Record>
struct Codec<Record> : RecordCodec<Record> {};

}  // namespace corvane
