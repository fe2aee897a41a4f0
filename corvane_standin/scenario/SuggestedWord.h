#pragma once

#include <string>
#include <vector>

#include "CorvaneCore/json/Codec.h"
#include "CorvaneCore/text/NearestName.h"

namespace corvane::standin {

/// The codec of a vocabulary whose words people type: an error names the nearest one.
template <HasVocabulary E>
struct SuggestedWord {
  static E decode(AnyCodable&& value, const DecodePath& at) {
    const auto raw = takeAs<std::string>(std::move(value), at, "a string");
    if (const auto known = fromRawValue<E>(raw)) return *known;
    std::vector<std::string> words;
    for (const auto& row : vocabularyRows<E>()) words.emplace_back(row.rawValue);
    const std::string suggestion = didYouMean(raw, words);
    at.fail("expected one of " + joinedRawValues<E>(", ") +
            (suggestion.empty() ? "" : "." + suggestion));
  }
  static void encode(E value, JsonSink& sink) { sink.string(rawValue(value)); }
};

}  // namespace corvane::standin
