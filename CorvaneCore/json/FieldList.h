#pragma once

#include <cstddef>
#include <utility>

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

}  // namespace corvane
