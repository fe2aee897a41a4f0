#include "CorvaneCore/files/TemporaryFile.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <utility>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/text/Uuid.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

fs::path temporaryNameFor(const fs::path& path) {
  return path.parent_path() / ("." + makeRequestId() + ".tmp");
}

}  // namespace

TemporaryFile::TemporaryFile(fs::path finalPath, Kind kind, Access access)
    : target(std::move(finalPath)) {
  const mode_t mode = fileMode(access);
  if (kind == Kind::named || !openNameless(mode)) openNamed(mode);
}

TemporaryFile::~TemporaryFile() {
  if (name) ::unlink(name->c_str());
}

void TemporaryFile::write(std::string_view contents) {
  while (!contents.empty()) {
    const ssize_t count = ::write(file.get(), contents.data(), contents.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail();
    contents.remove_prefix(static_cast<std::size_t>(count));
  }
}

bool TemporaryFile::moveIntoPlace() {
  if (!name) {
    // Some file systems tell only at closing that something was not written; closing a copy tells
    // it as long as nothing can see the file yet.
    if (!FileDescriptor(::dup(file.get())).close()) fail();
    const Linked atOnce = link(target);
    if (atOnce != Linked::nameTaken) return atOnce == Linked::yes;
    const auto beside = temporaryNameFor(target);
    if (link(beside) != Linked::yes) return false;
    name = beside;
  }
  if (!file.close() || ::rename(name->c_str(), target.c_str()) != 0) fail();
  name.reset();
  return true;
}

bool TemporaryFile::openNameless([[maybe_unused]] mode_t mode) {
#ifdef O_TMPFILE
  const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
  file = FileDescriptor(::open(folder.c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, mode));
#endif
  // Whatever stands in the way of one with a name as well is told by that.
  return file.isOpen();
}

void TemporaryFile::openNamed(mode_t mode) {
  auto chosen = temporaryNameFor(target);
  file = FileDescriptor(::open(chosen.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  if (!file.isOpen()) fail();
  name = std::move(chosen);
}

TemporaryFile::Linked TemporaryFile::link(const fs::path& place) {
  const auto open = "/proc/self/fd/" + std::to_string(file.get());
  if (::linkat(AT_FDCWD, open.c_str(), AT_FDCWD, place.c_str(), AT_SYMLINK_FOLLOW) == 0) {
    return Linked::yes;
  }
  return errno == EEXIST ? Linked::nameTaken : Linked::refused;
}

void TemporaryFile::fail() const {
  throw FileError("write", target, {errno, std::generic_category()});
}

}  // namespace corvane
