#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace corvane::ctl {

// Options that several commands have alike. Each fills in what it is given.

/// The request that a command is about: an id, the beginning of one, or "last".
void addRequestId(CLI::App& app, std::string& requestId);
/// The same for a command that is about the last one unless told.
void addOptionalRequestId(CLI::App& app, std::string& requestId);

/// `description` says what is printed.
void addJson(CLI::App& app, bool& json, const std::string& description);

/// Returns the option, for what it needs beside it.
CLI::Option* addPictures(CLI::App& app, std::optional<std::filesystem::path>& directory);

/// Makes sure that files can be made in the folder given with --pictures, which comes into being if
/// need be. Throws FileError.
void requirePictureFolder(const std::filesystem::path& folder);

/// Lets an option be given with one value or many; `name` is what help calls a value.
void takeMany(CLI::Option* option, const std::string& name);

// What a value has to be. Each says so, and names the value, when it is not.

[[nodiscard]] CLI::Validator secondsAbove0();
[[nodiscard]] CLI::Validator secondsFrom0();
[[nodiscard]] CLI::Validator numberFrom0();
[[nodiscard]] CLI::Validator keyAndValue();
/// Not empty, as the value of a variable is that nobody has set.
[[nodiscard]] CLI::Validator named(std::string what);
/// One of these, in any case; the option takes it as it stands here.
[[nodiscard]] CLI::Validator oneOf(std::vector<std::string> words);
/// Letters, digits, "-" and "_".
[[nodiscard]] CLI::Validator plainName();

// CLI11 takes values in brackets and braces for lists. A guard in front of such a value keeps it
// from that, and every option takes the guard away.

[[nodiscard]] std::string withGuard(std::string word);
[[nodiscard]] std::string withoutGuard(std::string word);
/// Makes every option of `app` and of its subcommands take the guard away.
void takeValuesAsTheyAre(CLI::App& app);

}  // namespace corvane::ctl
