#pragma once

#include <array>
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <string>

// Needs what stands above it.
#include <jpeglib.h>

#include "corvane_mcp/trace/PictureError.h"

namespace corvane {

/// Receives the errors of the JPEG library. It reports them by longjmp, which no C++ object may be
/// in the way of: every call into it goes through guarded(), whose argument makes only such calls.
class JpegErrors {
 public:
  /// `intro` begins every error text; it must outlive this.
  explicit JpegErrors(const char* intro);
  JpegErrors(const JpegErrors&) = delete;
  JpegErrors& operator=(const JpegErrors&) = delete;
  ~JpegErrors() = default;

  /// Makes `library`, a compressor or decompressor that is yet to be created, report to this.
  template <class Library>
  void attachTo(Library& library) {
    library.err = &manager;
    library.client_data = this;
  }

  /// Makes `call`; throws PictureError when the library reports an error meanwhile.
  template <class Call>
  void guarded(Call call) {
    if (setjmp(comeBack) != 0) throw PictureError(std::string(intro) + text.data());
    call();
  }

  /// Ends the call that `library` is in with an error of our own; for its callbacks.
  template <class Library>
  [[noreturn]] static void fail(Library* library, const char* reason) {
    static_cast<JpegErrors*>(library->client_data)->comeBackWith(reason);
  }

 private:
  [[noreturn]] static void onError(j_common_ptr library);
  static void onMessage(j_common_ptr library, int level);
  [[noreturn]] void comeBackWith(const char* reason);

  const char* intro;
  jpeg_error_mgr manager{};
  std::jmp_buf comeBack{};
  std::array<char, JMSG_LENGTH_MAX> text{};
};

}  // namespace corvane
