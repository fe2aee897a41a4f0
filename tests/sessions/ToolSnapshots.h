#pragma once

#include <filesystem>
#include <string>

#include "CorvaneCore/json/AnyCodable.h"

namespace corvane::testing {

/// The tools as clients see them, kept as one file per tool in which a changed word shows up in a
/// review: indented JSON whose description is an array of lines.
namespace ToolSnapshots {

/// The descriptors of all files in `folder`, sorted by file name, as they stand in the reply to
/// tools/list: compact JSON, with commas between them.
[[nodiscard]] std::string read(const std::filesystem::path& folder);

/// Writes the descriptors of a reply to tools/list, one file each.
void write(const AnyCodable& reply, const std::filesystem::path& folder);

}  // namespace ToolSnapshots

}  // namespace corvane::testing
