#include "corvanectl/setup/ConfigurationFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void failToWrite(const fs::path& file) {
  throw FileError("write", file, std::error_code(errno, std::generic_category()));
}

std::optional<std::string> readIfThere(const fs::path& file) {
  if (!fileExists(file)) return std::nullopt;
  return readFile(file);
}

/// The file that a link leads to in the end, which need not be there. Throws FileError when links
/// lead in a circle.
fs::path behindLinks(const fs::path& link) {
  constexpr int mostLinks = 40;
  std::error_code unseen;
  fs::path file = link;
  for (int i = 0; i < mostLinks; ++i) {
    if (!fs::is_symlink(file, unseen)) return file;
    file = file.parent_path() / fs::read_symlink(file, unseen);
  }
  throw FileError("write", link, std::make_error_code(std::errc::too_many_symbolic_link_levels));
}

void write(const fs::path& file, const std::optional<std::string>& text) {
  if (!text) {
    if (::unlink(file.c_str()) != 0 && errno != ENOENT) failToWrite(file);
    return;
  }
  struct stat former{};
  const bool isThere = ::stat(file.c_str(), &former) == 0;
  // A file that is read-only is meant to stay as it is, though its folder would let it be replaced.
  if (isThere && ::access(file.c_str(), W_OK) != 0) failToWrite(file);
  writeFileWhole(file, *text);
  constexpr mode_t permissions = 07777;
  if (isThere && ::chmod(file.c_str(), former.st_mode & permissions) != 0) failToWrite(file);
}

std::vector<std::string_view> linesOf(const std::optional<std::string>& text) {
  std::vector<std::string_view> lines;
  for (std::string_view rest = text ? *text : std::string_view(); !rest.empty();) {
    const std::size_t end = std::min(rest.find('\n'), rest.size() - 1) + 1;
    lines.push_back(rest.substr(0, end));
    rest.remove_prefix(end);
  }
  return lines;
}

}  // namespace

ConfigurationFile::ConfigurationFile(const Client& client, fs::path givenFile,
                                     std::string serverName)
    : client(client),
      file(std::move(givenFile)),
      place{std::string(client.servers), std::move(serverName)},
      text(readIfThere(file)),
      backup(readIfThere(backupOf(file))),
      configuration(read(text.value_or(std::string()))) {}

ConfigurationChange ConfigurationFile::addition(const std::string& command) const {
  const ServerEntry entry = client.entry(command);
  if (configuration->says(entry)) return {file, text, text, backup};
  return {.file = file,
          .before = text,
          .after = configuration->with(configuration->written(entry)),
          .backup = backupIsWithoutEntry() ? backup : text};
}

ConfigurationChange ConfigurationFile::removal() const {
  const auto entry = configuration->entry();
  if (!entry) return {file, text, text, backup};
  if (backupIsWithoutEntry()) return {file, text, backup, std::nullopt};
  if (!backup && read({})->with(*entry) == text) return {file, text, std::nullopt, std::nullopt};
  return {file, text, configuration->without(), text};
}

std::unique_ptr<Configuration> ConfigurationFile::read(std::string content) const {
  return readConfiguration(client.format, std::move(content), place);
}

bool ConfigurationFile::backupIsWithoutEntry() const {
  const auto entry = configuration->entry();
  if (!backup || !entry) return false;
  try {
    const auto former = read(*backup);
    return !former->entry() && former->with(*entry) == text;
  } catch (const ConfigurationFault&) {
    return false;
  }
}

fs::path backupOf(fs::path file) {
  return file += ".corvane-backup";
}

void carryOut(const ConfigurationChange& change) {
  if (change.backup) write(backupOf(change.file), change.backup);
  write(behindLinks(change.file), change.after);
  if (!change.backup) write(backupOf(change.file), std::nullopt);
}

std::string changedLines(const ConfigurationChange& change) {
  auto before = linesOf(change.before);
  auto after = linesOf(change.after);
  const auto same = std::ranges::mismatch(before, after);
  before.erase(before.begin(), same.in1);
  after.erase(after.begin(), same.in2);
  while (!before.empty() && !after.empty() && before.back() == after.back()) {
    before.pop_back();
    after.pop_back();
  }
  std::string lines;
  const auto tell = [&lines](const std::string& sign, const auto& all) {
    for (const std::string_view line : all) lines += cleanLines(sign + std::string(line)) + "\n";
  };
  tell("- ", before);
  tell("+ ", after);
  return lines;
}

}  // namespace corvane::ctl
