#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "CorvaneCore/json/Record.h"
#include "CorvaneCore/text/Utf8.h"

namespace corvane {

/// A value of one of several cases, written as one object: a tag member that names the case, beside
/// the fields of that case. Such a type declares
///   enum class Kind        a vocabulary, one value per case
///   tagKey                 the key of the tag member
///   choice                 a std::variant of declared records, in the order of Kind
/// and may declare `unknownTag`, the text that a decode error begins with when the tag names no
/// case.
template <class T>
concept TaggedUnion = HasVocabulary<typename T::Kind> && requires(T value) {
  T::tagKey;
  value.choice.index();
};

template <TaggedUnion Union>
struct Codec<Union> {
  using Choice = decltype(Union::choice);

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
