#pragma once

#include <string>
#include <string_view>

#include "corvane_standin/Settings.h"

namespace corvane::standin {

/// Makes the ids of what the stand-in brings into being.
class Ids {
 public:
  explicit Ids(IdSource source) : source(source) {}

  /// A UUID for something of this sort and name; `owner` is what the name is unique in.
  [[nodiscard]] std::string make(std::string_view sort, std::string_view owner,
                                 std::string_view name) const;

 private:
  IdSource source;
};

}  // namespace corvane::standin
