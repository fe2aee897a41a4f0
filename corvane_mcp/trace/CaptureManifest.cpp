#include "corvane_mcp/trace/CaptureManifest.h"

#include <algorithm>
#include <array>
#include <utility>

#include "CorvaneCore/capture/CaptureSession.h"
#include "CorvaneCore/json/JsonErrors.h"
#include "CorvaneCore/json/JsonReader.h"

namespace corvane {

namespace {

/// A frame as far as it must make sense; what may be unusable is kept as it stands.
struct FrameRecord {
  std::int64_t stepIndex = 0;
  FrameStatus status = FrameStatus::beforeStep;
  AnyCodable imageFileName;
  AnyCodable touches;

  static constexpr auto fields() {
    using R = FrameRecord;
    return FieldList(field("stepIndex", &R::stepIndex), field("status", &R::status),
                     field("imageFileName", &R::imageFileName).withDefault(),
                     field("touches", &R::touches).withDefault());
  }
};

std::vector<Touch> takeUsableTouches(AnyCodable& value) {
  // More marks than this would hide the screen.
  constexpr std::size_t mostTouches = 100;
  std::vector<Touch> touches;
  auto* array = std::get_if<AnyCodable::Array>(&value.value());
  if (!array) return touches;
  for (std::size_t i = 0; i < std::min(array->size(), mostTouches); ++i) {
    if (const auto touch = decodeIfFits<Touch>(std::move((*array)[i]))) touches.push_back(*touch);
  }
  return touches;
}

CaptureFrame takeUsable(FrameRecord& record) {
  const auto* name = record.imageFileName.string();
  return {name ? *name : std::string(), takeUsableTouches(record.touches)};
}

bool isOfStep(const AnyCodable& frame, std::int64_t stepIndex) {
  const auto* member = frame.find("stepIndex");
  const auto* index = member ? member->integer() : nullptr;
  return index && *index == stepIndex;
}

}  // namespace

StepFrames readStepFrames(std::string_view manifest, std::int64_t stepIndex) {
  JsonObject members = readMembers(manifest, {"frames"});
  AnyCodable* value = members.find("frames");
  auto* frames = value ? std::get_if<AnyCodable::Array>(&value->value()) : nullptr;
  if (!frames) throw DecodeError("frames: expected an array");

  std::array<std::optional<FrameRecord>, Vocabulary<FrameStatus>::rows.size()> latest;
  const auto latestOf = [&latest](FrameStatus status) -> std::optional<FrameRecord>& {
    return latest[static_cast<std::size_t>(status)];
  };
  for (AnyCodable& frame : *frames) {
    if (!isOfStep(frame, stepIndex)) continue;
    if (auto record = decodeIfFits<FrameRecord>(std::move(frame))) {
      latestOf(record->status) = std::move(record);
    }
  }

  StepFrames picked;
  auto& before = latestOf(FrameStatus::beforeStep);
  auto& failed = latestOf(FrameStatus::onFailure);
  auto& after = failed ? failed : latestOf(FrameStatus::afterStep);
  if (before) picked.before = takeUsable(*before);
  if (after) picked.after = takeUsable(*after);
  return picked;
}

}  // namespace corvane
