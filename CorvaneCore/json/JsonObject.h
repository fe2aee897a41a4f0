#pragma once

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

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
  /// The same; moves the members out of where they are.
  explicit JsonObject(std::span<Member> given);
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

}  // namespace corvane
