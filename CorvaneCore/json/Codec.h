#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/Date.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/json/Vocabulary.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane {

/// Where in a document decoding is: a chain of places that lives on the stack of the decoders and
/// is spelled out only when something does not fit. A path must not outlive its parent.
class DecodePath {
 public:
  DecodePath() = default;
  explicit DecodePath(std::string_view rootName) : name(rootName) {}

  [[nodiscard]] DecodePath member(std::string_view key) const { return {*this, key, noIndex}; }
  [[nodiscard]] DecodePath element(std::size_t index) const { return {*this, {}, index}; }

  /// The place as text, e.g. "params.arguments.interactions[2].type"; empty for a nameless root.
  [[nodiscard]] std::string text() const {
    std::string path = parent ? parent->text() : std::string();
    if (index != noIndex) return path + "[" + std::to_string(index) + "]";
    if (!path.empty() && !name.empty()) path += ".";
    return path.append(name);
  }

  /// Throws a DecodeError that names this place and `problem`, e.g. "method: required".
  [[noreturn]] void fail(std::string_view problem) const {
    // Keys come from the document and may hold anything.
    std::string place = escapeControls(text());
    if (!place.empty()) place += ": ";
    throw DecodeError(place.append(problem));
  }

 private:
  static constexpr std::size_t noIndex = static_cast<std::size_t>(-1);
  /// Records that contain themselves are read this deep and no deeper, so that no document can use
  /// up the machine stack.
  static constexpr std::size_t deepest = 1000;

  DecodePath(const DecodePath& parent, std::string_view name, std::size_t index)
      : parent(&parent), name(name), index(index), depth(parent.depth + 1) {
    if (depth > deepest) parent.fail("nested too deeply");
  }

  const DecodePath* parent = nullptr;
  std::string_view name;
  std::size_t index = noIndex;
  std::size_t depth = 0;
};

/// How values of type T are read from and written as JSON:
///   static T decode(AnyCodable&& value, const DecodePath& at);   // throws DecodeError naming `at`
///   static void encode(const T& value, JsonSink& sink);
/// Records get theirs from their list of fields (Record.h); a type with a form of its own
/// specialises this.
template <class T>
struct Codec;

/// Takes the alternative T out of `value`, or fails with "expected " and `what`.
template <class T>
[[nodiscard]] T takeAs(AnyCodable&& value, const DecodePath& at, std::string_view what) {
  if (auto* held = std::get_if<T>(&value.value())) return std::move(*held);
  at.fail(std::string("expected ").append(what));
}

template <>
struct Codec<bool> {
  static bool decode(AnyCodable&& value, const DecodePath& at) {
    return takeAs<bool>(std::move(value), at, "a boolean");
  }
  static void encode(bool value, JsonSink& sink) { sink.boolean(value); }
};

template <>
struct Codec<std::int64_t> {
  static std::int64_t decode(AnyCodable&& value, const DecodePath& at) {
    return takeAs<std::int64_t>(std::move(value), at, "an integer");
  }
  static void encode(std::int64_t value, JsonSink& sink) { sink.integer(value); }
};

template <>
struct Codec<double> {
  static double decode(AnyCodable&& value, const DecodePath& at) {
    if (const auto* integer = value.integer()) return static_cast<double>(*integer);
    return takeAs<double>(std::move(value), at, "a number");
  }
  static void encode(double value, JsonSink& sink) { sink.number(value); }
};

template <>
struct Codec<std::string> {
  static std::string decode(AnyCodable&& value, const DecodePath& at) {
    return takeAs<std::string>(std::move(value), at, "a string");
  }
  static void encode(const std::string& value, JsonSink& sink) { sink.string(value); }
};

template <>
struct Codec<AnyCodable> {
  static AnyCodable decode(AnyCodable&& value, const DecodePath&) { return std::move(value); }
  static void encode(const AnyCodable& value, JsonSink& sink) { writeValue(value, sink); }
};

template <>
struct Codec<JsonObject> {
  static JsonObject decode(AnyCodable&& value, const DecodePath& at) {
    return takeAs<JsonObject>(std::move(value), at, "an object");
  }
  static void encode(const JsonObject& members, JsonSink& sink) {
    sink.beginObject();
    for (const auto& [key, value] : members) {
      sink.key(key);
      writeValue(value, sink);
    }
    sink.endObject();
  }
};

template <>
struct Codec<Date> {
  static Date decode(AnyCodable&& value, const DecodePath& at) {
    const auto text = takeAs<std::string>(std::move(value), at, "a date");
    if (const auto date = parseDate(text)) return *date;
    at.fail("expected an ISO 8601 date-time in whole seconds");
  }
  static void encode(Date value, JsonSink& sink) { sink.string(formatDate(value)); }
};

template <HasVocabulary E>
struct Codec<E> {
  static E decode(AnyCodable&& value, const DecodePath& at) {
    const auto raw = takeAs<std::string>(std::move(value), at, "a string");
    if (const auto known = fromRawValue<E>(raw)) return *known;
    at.fail("expected one of " + joinedRawValues<E>(", "));
  }
  static void encode(E value, JsonSink& sink) { sink.string(rawValue(value)); }
};

template <class Element>
struct Codec<std::vector<Element>> {
  static std::vector<Element> decode(AnyCodable&& value, const DecodePath& at) {
    auto array = takeAs<AnyCodable::Array>(std::move(value), at, "an array");
    std::vector<Element> elements;
    elements.reserve(array.size());
    for (std::size_t i = 0; i < array.size(); ++i) {
      elements.push_back(Codec<Element>::decode(std::move(array[i]), at.element(i)));
    }
    return elements;
  }
  static void encode(const std::vector<Element>& elements, JsonSink& sink) {
    sink.beginArray();
    for (const auto& element : elements) Codec<Element>::encode(element, sink);
    sink.endArray();
  }
};

template <class Element>
struct Codec<std::map<std::string, Element>> {
  static std::map<std::string, Element> decode(AnyCodable&& value, const DecodePath& at) {
    auto object = takeAs<AnyCodable::Object>(std::move(value), at, "an object");
    std::map<std::string, Element> members;
    for (auto& member : object) {
      auto decoded = Codec<Element>::decode(std::move(member.value), at.member(member.key));
      members.emplace_hint(members.end(), std::move(member.key), std::move(decoded));
    }
    return members;
  }
  static void encode(const std::map<std::string, Element>& members, JsonSink& sink) {
    sink.beginObject();
    for (const auto& [key, value] : members) {
      sink.key(key);
      Codec<Element>::encode(value, sink);
    }
    sink.endObject();
  }
};

/// `value` as a T. Throws DecodeError; paths in its text start at `rootName`.
template <class T>
[[nodiscard]] T decodeValue(AnyCodable value, std::string_view rootName = {}) {
  return Codec<T>::decode(std::move(value), DecodePath(rootName));
}

/// For who does not want to know what does not fit.
struct IgnoreMisfits {
  void operator()(const auto&...) const {}
};

/// `value` as a T when it has that form; null and everything else count as absent. Everything else
/// is told to `onMisfit`, as the text of the DecodeError.
template <class T, class OnMisfit = IgnoreMisfits>
[[nodiscard]] std::optional<T> decodeIfFits(AnyCodable&& value, const OnMisfit& onMisfit = {}) {
  if (value.isNull()) return std::nullopt;
  try {
    return Codec<T>::decode(std::move(value), DecodePath());
  } catch (const DecodeError& error) {
    onMisfit(std::string_view(error.what()));
    return std::nullopt;
  }
}

/// `value` as a JSON value. Throws EncodeError.
template <class T>
[[nodiscard]] AnyCodable encodeValue(const T& value) {
  JsonTree tree;
  Codec<T>::encode(value, tree);
  return tree.take();
}

}  // namespace corvane
