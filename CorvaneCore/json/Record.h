#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "CorvaneCore/json/Codec.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane {

namespace field_list_detail {

template <std::size_t Position, class Field>
struct Slot {
  Field field;
};

template <std::size_t Position, class Field>
constexpr const Field& fieldIn(const Slot<Position, Field>& slot) {
  return slot.field;
}

template <class Positions, class... Fields>
struct Slots;
template <std::size_t... Positions, class... Fields>
struct Slots<std::index_sequence<Positions...>, Fields...> : Slot<Positions, Fields>... {};

}  // namespace field_list_detail

/// The fields of a record, in declaration order. As std::tuple, but flat: headers full of records
/// compile several times as fast.
template <class... Fields>
class FieldList {
 public:
  constexpr FieldList(Fields... fields) : slots{{std::move(fields)}...} {}

  static constexpr std::size_t size = sizeof...(Fields);

  template <std::size_t Position>
  [[nodiscard]] constexpr const auto& at() const {
    return field_list_detail::fieldIn<Position>(slots);
  }

  /// Calls `visit` once, with all fields.
  template <class Visit>
  constexpr decltype(auto) apply(Visit visit) const {
    return [&]<std::size_t... Positions>(std::index_sequence<Positions...>) -> decltype(auto) {
      return visit(at<Positions>()...);
    }(std::index_sequence_for<Fields...>());
  }

 private:
  field_list_detail::Slots<std::index_sequence_for<Fields...>, Fields...> slots;
};

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

template <class Record, class Member>
Member memberOf(const Field<Record, Member>&);

/// Whether the fields name every member of an aggregate in the order of its declaration: it can be
/// made of values of their types, and of nothing more. Of a class with constructors that cannot be
/// told.
template <class Record, class... Fields>
[[nodiscard]] consteval bool namesEveryMember(const FieldList<Fields...>&) {
  constexpr bool enough = requires { Record{memberOf(std::declval<const Fields&>())...}; };
  constexpr bool tooFew = requires { Record{memberOf(std::declval<const Fields&>())..., {}}; };
  return !std::is_aggregate_v<Record> || (enough && !tooFew);
}

/// The fields of a record, known to be all there are.
template <class Record>
[[nodiscard]] consteval auto fieldsOf() {
  static_assert(namesEveryMember<Record>(Record::fields()),
                "fields() names every member of its record, in their order");
  return Record::fields();
}

template <class Record>
inline constexpr std::size_t fieldCount = decltype(fieldsOf<Record>())::size;

/// The positions of a record's fields in ascending key order, the order they are written in.
template <class Record>
[[nodiscard]] consteval auto sortedPositions() {
  constexpr std::size_t count = fieldCount<Record>;
  std::array<std::size_t, count> positions{};
  const auto keys = fieldsOf<Record>().apply(
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
  fieldsOf<Record>().apply(
      [&](const auto&... field) { (decodeField(field, object, record, at), ...); });
  return record;
}

/// Writes the fields of a record in key order; `beforeField` is told each key first.
template <class Record, class BeforeField>
void encodeFields(const Record& record, JsonSink& sink, BeforeField beforeField) {
  [[maybe_unused]] static constexpr auto order = sortedPositions<Record>();
  [[maybe_unused]] static constexpr auto fields = fieldsOf<Record>();
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

/// A value of one of several cases, written as one object: a tag member that names the case, beside
/// the fields of that case. Such a type declares
///   enum class Kind        a vocabulary, one value per case
///   tagKey                 the key of the tag member
///   choice                 a std::variant of declared records, in the order of Kind, each with its
///                          `kind`
/// and may declare `unknownTag`, the text that a decode error begins with when the tag names no
/// case.
template <class T>
concept TaggedUnion = HasVocabulary<typename T::Kind> && requires(T value) {
  T::tagKey;
  value.choice.index();
};

namespace record_detail {

/// Whether a union has one alternative for each kind, in their order.
template <class Union, class... Alternatives>
[[nodiscard]] consteval bool followsKinds(const std::variant<Alternatives...>*) {
  constexpr auto& rows = vocabularyRows<typename Union::Kind>();
  if (sizeof...(Alternatives) != rows.size()) return false;
  std::size_t position = 0;
  return ((Alternatives::kind == rows[position++].value) && ...);
}

}  // namespace record_detail

template <TaggedUnion Union>
struct Codec<Union> {
  using Choice = decltype(Union::choice);
  static_assert(record_detail::followsKinds<Union>(static_cast<const Choice*>(nullptr)),
                "the alternatives of a union stand in the order of its kinds");

  static Union decode(AnyCodable&& value, const DecodePath& at) {
    auto object = takeAs<AnyCodable::Object>(std::move(value), at, "an object");
    AnyCodable* tag = object.find(Union::tagKey);
    const DecodePath tagPlace = at.member(Union::tagKey);
    if (!tag) tagPlace.fail("required");
    const auto index = static_cast<std::size_t>(decodeTag(std::move(*tag), tagPlace));
    Union decoded;
    [&]<std::size_t... I>(std::index_sequence<I...>) {
      ((I == index
            ? void(decoded.choice.template emplace<I>(
                  record_detail::decodeFields<std::variant_alternative_t<I, Choice>>(object, at)))
            : void()),
       ...);
    }(std::make_index_sequence<std::variant_size_v<Choice>>());
    return decoded;
  }

  static void encode(const Union& value, JsonSink& sink) {
    const auto kind = static_cast<typename Union::Kind>(value.choice.index());
    bool tagWritten = false;
    const auto writeTag = [&] {
      if (std::exchange(tagWritten, true)) return;
      sink.key(Union::tagKey);
      sink.string(rawValue(kind));
    };
    sink.beginObject();
    std::visit(
        [&](const auto& record) {
          record_detail::encodeFields(record, sink, [&](std::string_view key) {
            if (Union::tagKey < key) writeTag();
          });
        },
        value.choice);
    writeTag();
    sink.endObject();
  }

 private:
  static typename Union::Kind decodeTag(AnyCodable&& tag, const DecodePath& at) {
    if constexpr (requires { Union::unknownTag; }) {
      const auto raw = takeAs<std::string>(std::move(tag), at, "a string");
      if (const auto known = fromRawValue<typename Union::Kind>(raw)) return *known;
      at.fail(std::string(Union::unknownTag).append(escapeControls(raw)));
    } else {
      return Codec<typename Union::Kind>::decode(std::move(tag), at);
    }
  }
};

}  // namespace corvane
