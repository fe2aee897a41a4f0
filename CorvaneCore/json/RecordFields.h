#pragma once

#include "CorvaneCore/json/Record.h"

namespace corvane {

namespace record_detail {

template <class Member>
struct FieldValue {
  using Type = Member;
};
template <class Value>
struct FieldValue<std::optional<Value>> {
  using Type = Value;
};

/// Goes on in `next` to the field's key, which is behind those of the fields before.
template <class Record, class Member>
void takeFieldIfFits(const Field<Record, Member>& field, JsonObject::iterator& next,
                     JsonObject::iterator end, Record& record) {
  int order = -1;
  while (next != end && (order = next->key.compare(field.key)) < 0) ++next;
  if (next == end || order != 0) return;
  auto value = decodeIfFits<typename FieldValue<Member>::Type>(std::move(next->value));
  if (value) record.*field.member = std::move(*value);
}

}  // namespace record_detail

/// Takes those fields of a record out of `object` that `wanted` accepts by their key. A value of
/// another type than its field's counts as absent, and so does null; fields that are absent keep
/// what `record` holds.
template <DeclaredRecord Record, class Wanted>
void takeFields(JsonObject& object, Record& record, Wanted wanted) {
  [[maybe_unused]] static constexpr auto order = record_detail::sortedPositions<Record>();
  [[maybe_unused]] static constexpr auto fields = record_detail::fieldsOf<Record>();
  auto next = object.begin();
  [&]<std::size_t... I>(std::index_sequence<I...>) {
    ((wanted(fields.template at<order[I]>().key)
          ? record_detail::takeFieldIfFits(fields.template at<order[I]>(), next, object.end(),
                                           record)
          : void()),
     ...);
  }(std::make_index_sequence<record_detail::fieldCount<Record>>());
}

}  // namespace corvane
