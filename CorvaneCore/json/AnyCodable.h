#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace corvane {

/// A text or value does not have the form its reader needs. The description is one line that names
/// the place and what was expected there.
class DecodeError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A value cannot be written as JSON.
class EncodeError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class AnyCodable;

/// The members of a JSON object: a map from key to value kept in ascending code-point order of the
/// keys (UTF-8 byte order is the same order), so that writing it needs no sorting. Keys are unique.
class JsonObject {
 public:
  struct Member;
  using iterator = std::vector<Member>::iterator;
  using const_iterator = std::vector<Member>::const_iterator;

  JsonObject() noexcept;
  JsonObject(std::initializer_list<Member> given);
  /// Takes members in any order; of several with one key the last one wins.
  explicit JsonObject(std::vector<Member> given);
  /// The same; moves the members out of where they are. No constructor: to look at it as one, the
  /// compiler would have to know a Member, which holds an object itself.
  [[nodiscard]] static JsonObject takenFrom(std::span<Member> given);
  JsonObject(const JsonObject& other);
  JsonObject(JsonObject&& other) noexcept;
  JsonObject& operator=(const JsonObject& other);
  JsonObject& operator=(JsonObject&& other) noexcept;
  ~JsonObject();

  /// The value under `key`, or nullptr when there is none.
  [[nodiscard]] const AnyCodable* find(std::string_view key) const noexcept;
  [[nodiscard]] AnyCodable* find(std::string_view key) noexcept;
  /// The value under `key` when it is held as a T, one of AnyCodable's alternatives, else nullptr.
  template <class T>
  [[nodiscard]] const T* findAs(std::string_view key) const noexcept;
  /// Sets `key` to `value`, replacing what it held.
  void set(std::string_view key, AnyCodable value);

  [[nodiscard]] std::size_t size() const noexcept;
  [[nodiscard]] bool empty() const noexcept;
  [[nodiscard]] iterator begin() noexcept;
  [[nodiscard]] iterator end() noexcept;
  [[nodiscard]] const_iterator begin() const noexcept;
  [[nodiscard]] const_iterator end() const noexcept;

 private:
  std::vector<Member> members;
};

/// One JSON value of any kind. The kind survives reading and writing: a boolean never becomes a
/// number and an integer never gains a fraction. Values nest to any depth: destroying, copying and
/// comparing use no machine stack per level.
class AnyCodable {
 public:
  using Array = std::vector<AnyCodable>;
  using Object = JsonObject;
  using Value =
      std::variant<std::monostate, bool, std::int64_t, double, std::string, Array, Object>;

  AnyCodable() noexcept = default;
  AnyCodable(std::nullptr_t) noexcept {}
  /// Of a boolean proper: pointers turn into true by themselves.
  AnyCodable(std::same_as<bool> auto value) noexcept : held(value) {}
  template <std::integral Integer>
    requires(!std::same_as<Integer, bool> && !std::same_as<Integer, char> &&
             (sizeof(Integer) < 8 || std::signed_integral<Integer>))
  AnyCodable(Integer value) noexcept : held(static_cast<std::int64_t>(value)) {}
  AnyCodable(double value) noexcept : held(value) {}
  AnyCodable(std::string value) noexcept : held(std::move(value)) {}
  AnyCodable(std::string_view value) : held(std::string(value)) {}
  AnyCodable(const char* value) : held(std::string(value)) {}
  AnyCodable(Array value) noexcept : held(std::move(value)) {}
  AnyCodable(Object value) noexcept : held(std::move(value)) {}
  template <class Element>
  AnyCodable(const std::vector<Element>& elements)
      : held(Array(elements.begin(), elements.end())) {}
  template <class Element>
  AnyCodable(const std::map<std::string, Element>& members);

  AnyCodable(const AnyCodable& other);
  AnyCodable(AnyCodable&& other) noexcept = default;
  AnyCodable& operator=(const AnyCodable& other);
  AnyCodable& operator=(AnyCodable&& other) noexcept {
    // `other` may live inside this value, so it is taken out before anything is released.
    Value taken = std::move(other.held);
    if (holdsChildren()) releaseChildren();
    held = std::move(taken);
    return *this;
  }
  ~AnyCodable() {
    if (holdsChildren()) releaseChildren();
  }

  /// The held value.
  [[nodiscard]] const Value& value() const noexcept { return held; }
  [[nodiscard]] Value& value() noexcept { return held; }

  [[nodiscard]] bool isNull() const noexcept { return held.index() == 0; }
  /// The value when it is of the asked kind, else nullptr.
  [[nodiscard]] const bool* boolean() const noexcept { return std::get_if<bool>(&held); }
  [[nodiscard]] const std::int64_t* integer() const noexcept {
    return std::get_if<std::int64_t>(&held);
  }
  [[nodiscard]] const double* number() const noexcept { return std::get_if<double>(&held); }
  [[nodiscard]] const std::string* string() const noexcept {
    return std::get_if<std::string>(&held);
  }
  [[nodiscard]] const Array* array() const noexcept { return std::get_if<Array>(&held); }
  [[nodiscard]] const Object* object() const noexcept { return std::get_if<Object>(&held); }

  /// The member `key` when this is an object that has it, else nullptr.
  [[nodiscard]] const AnyCodable* find(std::string_view key) const noexcept;

  /// The same when it is held as a T, one of the alternatives of Value, else nullptr.
  template <class T>
  [[nodiscard]] const T* findAs(std::string_view key) const noexcept {
    const AnyCodable* member = find(key);
    return member ? std::get_if<T>(&member->held) : nullptr;
  }

  friend bool operator==(const AnyCodable& left, const AnyCodable& right);

 private:
  [[nodiscard]] bool holdsChildren() const noexcept { return held.index() >= 5; }
  /// Empties a container without use of the machine stack per level.
  void releaseChildren() noexcept;

  Value held;
};

struct JsonObject::Member {
  std::string key;
  AnyCodable value;
};

inline std::size_t JsonObject::size() const noexcept {
  return members.size();
}
inline bool JsonObject::empty() const noexcept {
  return members.empty();
}
inline JsonObject::iterator JsonObject::begin() noexcept {
  return members.begin();
}
inline JsonObject::iterator JsonObject::end() noexcept {
  return members.end();
}
inline JsonObject::const_iterator JsonObject::begin() const noexcept {
  return members.begin();
}
inline JsonObject::const_iterator JsonObject::end() const noexcept {
  return members.end();
}

template <class T>
const T* JsonObject::findAs(std::string_view key) const noexcept {
  const AnyCodable* member = find(key);
  return member ? std::get_if<T>(&member->value()) : nullptr;
}

template <class Element>
AnyCodable::AnyCodable(const std::map<std::string, Element>& members) {
  Object object;
  for (const auto& [key, value] : members) object.set(key, AnyCodable(value));
  held = std::move(object);
}

}  // namespace corvane
