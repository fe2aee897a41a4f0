#include "corvane_mcp/trace/PictureInput.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>

#include "corvane_mcp/trace/Picture.h"

namespace corvane {

namespace {

constexpr std::size_t chunkSize = std::size_t{64} << 10;
/// More than any screen needs, little enough to be read through in a moment.
constexpr std::size_t largestPictureFile = std::size_t{512} << 20;

[[noreturn]] void failWithLastError() {
  throw PictureError(std::generic_category().message(errno));
}

bool isPlainName(std::string_view name) {
  constexpr std::string_view notInNames("/\0", 2);
  return !name.empty() && name != "." && name != ".." &&
         name.find_first_of(notInNames) == std::string_view::npos;
}

void requirePictureFile(const FileDescriptor& file) {
  struct stat status{};
  if (::fstat(file.get(), &status) != 0) failWithLastError();
  if (S_ISDIR(status.st_mode)) throw PictureError("it is a folder");
  if (!S_ISREG(status.st_mode)) throw PictureError("it is not a regular file");
  if (status.st_size == 0) throw PictureError("the file is empty");
  if (static_cast<std::uintmax_t>(status.st_size) > largestPictureFile) {
    throw PictureError("the file is too large");
  }
}

}  // namespace

PictureInput PictureInput::open(const std::filesystem::path& folder, std::string_view name) {
  if (!isPlainName(name)) throw PictureError("it is not a plain file name");
  // Without O_NONBLOCK opening a FIFO would wait for its writer.
  FileDescriptor file(
      ::open((folder / name).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
  if (!file.isOpen()) {
    if (errno == ELOOP) throw PictureError("it is a link");
    failWithLastError();
  }
  requirePictureFile(file);
  return PictureInput(std::move(file));
}

PictureInput::PictureInput(FileDescriptor file)
    : file(std::move(file)), buffer(chunkSize), allowance(largestPictureFile) {}

std::span<const std::uint8_t> PictureInput::peek() noexcept {
  while (ready.empty() && allowance > 0) {
    const ssize_t count = ::read(file.get(), buffer.data(), std::min(buffer.size(), allowance));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      allowance = 0;
      break;
    }
    ready = std::span(buffer).first(static_cast<std::size_t>(count));
    allowance -= static_cast<std::size_t>(count);
  }
  return ready;
}

}  // namespace corvane
