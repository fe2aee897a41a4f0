#include "corvane_mcp/trace/CaptureManifest.h"

#include <array>
#include <utility>

#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/LenientReading.h"

namespace corvane {

namespace {

using Frame = CaptureSession::Frame;

/// The frames of the step, the last of each status.
using LatestFrames = std::array<std::optional<CaptureFrame>, Vocabulary<FrameStatus>::rows.size()>;

// A manifest may be large and hold anything, so nothing of it is kept that is not shown.

/// The scalar here; null in place of an array or object.
AnyCodable takeScalar(JsonCursor& cursor) {
  if (!cursor.atArray() && !cursor.atObject()) return cursor.read();
  cursor.skip();
  return nullptr;
}

std::optional<double> takeNumber(JsonCursor& cursor) {
  const AnyCodable value = takeScalar(cursor);
  if (const auto* integer = value.integer()) return static_cast<double>(*integer);
  if (const auto* number = value.number()) return *number;
  return std::nullopt;
}

std::string takeText(JsonCursor& cursor) {
  const AnyCodable value = takeScalar(cursor);
  return value.string() ? *value.string() : std::string();
}

std::optional<Touch> takeTouch(JsonCursor& cursor) {
  if (!cursor.atObject()) {
    cursor.skip();
    return std::nullopt;
  }
  std::optional<double> x;
  std::optional<double> y;
  Touch touch;
  cursor.members([&](std::string_view key) {
    if (key == keyOf<&Touch::x>()) {
      x = takeNumber(cursor);
    } else if (key == keyOf<&Touch::y>()) {
      y = takeNumber(cursor);
    } else if (key == keyOf<&Touch::endX>()) {
      touch.endX = takeNumber(cursor);
    } else if (key == keyOf<&Touch::endY>()) {
      touch.endY = takeNumber(cursor);
    } else {
      cursor.skip();
    }
  });
  if (!x || !y) return std::nullopt;
  touch.x = *x;
  touch.y = *y;
  return touch;
}

std::vector<Touch> takeTouches(JsonCursor& cursor) {
  std::vector<Touch> touches;
  if (!cursor.atArray()) {
    cursor.skip();
    return touches;
  }
  cursor.elements([&] {
    if (const auto touch = takeTouch(cursor)) touches.push_back(*touch);
  });
  return touches;
}

void takeFrame(JsonCursor& cursor, std::int64_t wantedStep, LatestFrames& latest) {
  if (!cursor.atObject()) return cursor.skip();
  AnyCodable step;
  std::string status;
  CaptureFrame frame;
  cursor.members([&](std::string_view key) {
    if (key == keyOf<&Frame::stepIndex>()) {
      step = takeScalar(cursor);
    } else if (key == keyOf<&Frame::status>()) {
      status = takeText(cursor);
    } else if (key == keyOf<&Frame::imageFileName>()) {
      frame.imageFileName = takeText(cursor);
    } else if (key == keyOf<&Frame::touches>()) {
      frame.touches = takeTouches(cursor);
    } else {
      cursor.skip();
    }
  });
  const auto known = fromRawValue<FrameStatus>(status);
  if (known && step.integer() && *step.integer() == wantedStep) {
    latest[static_cast<std::size_t>(*known)] = std::move(frame);
  }
}

}  // namespace

StepFrames readStepFrames(std::string_view manifest, std::int64_t stepIndex) {
  std::optional<LatestFrames> latest;
  JsonReader().read(manifest, [&](JsonCursor& cursor) {
    if (!cursor.atObject()) throw DecodeError("expected an object");
    cursor.members([&](std::string_view key) {
      if (key != keyOf<&CaptureSession::frames>()) return cursor.skip();
      latest.reset();
      if (!cursor.atArray()) return cursor.skip();
      latest.emplace();
      cursor.elements([&] { takeFrame(cursor, stepIndex, *latest); });
    });
  });
  if (!latest) throw DecodeError("frames: expected an array");
  const auto take = [&latest](FrameStatus status) -> std::optional<CaptureFrame>& {
    return (*latest)[static_cast<std::size_t>(status)];
  };
  auto& failed = take(FrameStatus::onFailure);
  return {std::move(take(FrameStatus::beforeStep)),
          std::move(failed ? failed : take(FrameStatus::afterStep))};
}

}  // namespace corvane
