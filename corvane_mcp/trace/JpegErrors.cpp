#include "corvane_mcp/trace/JpegErrors.h"

#include <jerror.h>

#include <algorithm>
#include <cstring>

namespace corvane {

namespace {

/// Whether a warning leaves the pixels as they were meant.
bool isHarmless(int warning) {
  return warning == JWRN_EXTRANEOUS_DATA || warning == JWRN_ADOBE_XFORM ||
         warning == JWRN_JFIF_MAJOR;
}

}  // namespace

JpegErrors::JpegErrors(const char* intro) : intro(intro) {
  jpeg_std_error(&manager);
  manager.error_exit = onError;
  manager.emit_message = onMessage;
  manager.output_message = [](j_common_ptr) {};
}

void JpegErrors::onError(j_common_ptr library) {
  if (library->err->msg_code == JERR_NO_BACKING_STORE) fail(library, "it needs too much memory");
  std::array<char, JMSG_LENGTH_MAX> reason{};
  library->err->format_message(library, reason.data());
  fail(library, reason.data());
}

void JpegErrors::onMessage(j_common_ptr library, int level) {
  constexpr int warningLevel = -1;
  if (level == warningLevel && !isHarmless(library->err->msg_code)) onError(library);
}

void JpegErrors::comeBackWith(const char* reason) {
  const std::size_t length = std::min(std::strlen(reason), text.size() - 1);
  std::memcpy(text.data(), reason, length);
  text[length] = '\0';
  std::longjmp(comeBack, 1);
}

}  // namespace corvane
