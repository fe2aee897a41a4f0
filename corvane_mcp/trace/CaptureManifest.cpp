#include "corvane_mcp/trace/CaptureManifest.h"

#include <algorithm>
#include <array>

#include "CorvaneCore/capture/CaptureSession.h"
#include "CorvaneCore/json/LenientReading.h"

namespace corvane {

namespace {

using Frame = CaptureSession::Frame;

/// The status of a frame of this step that makes sense.
std::optional<FrameStatus> statusInStep(const AnyCodable& frame, std::int64_t stepIndex) {
  const auto* index = findField<&Frame::stepIndex>(frame);
  const auto* status = findField<&Frame::status>(frame);
  if (!index || *index != stepIndex || !status) return std::nullopt;
  return fromRawValue<FrameStatus>(*status);
}

std::vector<Touch> usableTouches(const AnyCodable& frame) {
  // More marks than this would hide the screen.
  constexpr std::size_t mostTouches = 100;
  std::vector<Touch> touches;
  const auto* given = findField<&Frame::touches>(frame);
  if (!given) return touches;
  for (std::size_t i = 0; i < std::min(given->size(), mostTouches); ++i) {
    if (const auto touch = decodeIfFits<Touch>(AnyCodable((*given)[i]))) touches.push_back(*touch);
  }
  return touches;
}

CaptureFrame usable(const AnyCodable& frame) {
  const auto* name = findField<&Frame::imageFileName>(frame);
  return {name ? *name : std::string(), usableTouches(frame)};
}

}  // namespace

StepFrames readStepFrames(std::string_view manifest, std::int64_t stepIndex) {
  const JsonObject session = readMembers<&CaptureSession::frames>(manifest);
  const auto* frames = findField<&CaptureSession::frames>(session);
  if (!frames) throw DecodeError("frames: expected an array");

  std::array<const AnyCodable*, Vocabulary<FrameStatus>::rows.size()> latest{};
  const auto latestOf = [&latest](FrameStatus status) -> const AnyCodable*& {
    return latest[static_cast<std::size_t>(status)];
  };
  for (const AnyCodable& frame : *frames) {
    if (const auto status = statusInStep(frame, stepIndex)) latestOf(*status) = &frame;
  }

  StepFrames picked;
  const auto* before = latestOf(FrameStatus::beforeStep);
  const auto* failed = latestOf(FrameStatus::onFailure);
  const auto* after = failed ? failed : latestOf(FrameStatus::afterStep);
  if (before) picked.before = usable(*before);
  if (after) picked.after = usable(*after);
  return picked;
}

}  // namespace corvane
