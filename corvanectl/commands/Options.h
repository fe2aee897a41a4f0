#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <optional>
#include <string>

namespace corvane::ctl {

// Options that several commands have alike. Each fills in what it is given.

void addRequestId(CLI::App& app, std::string& requestId);

/// `description` says what is printed.
void addJson(CLI::App& app, bool& json, const std::string& description);

/// Returns the option, for what it needs beside it.
CLI::Option* addPictures(CLI::App& app, std::optional<std::filesystem::path>& directory);

/// Makes sure that files can be made in the folder given with --pictures, which comes into being if
/// need be. Throws FileError.
void requirePictureFolder(const std::filesystem::path& folder);

/// Lets an option be given with one value or many; `name` is what help calls a value.
void takeMany(CLI::Option* option, const std::string& name);

}  // namespace corvane::ctl
