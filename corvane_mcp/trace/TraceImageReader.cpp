#include "corvane_mcp/trace/TraceImageReader.h"

#include <exception>
#include <future>
#include <optional>
#include <string_view>
#include <utility>

#include "CorvaneCore/capture/CaptureSession.h"
#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "CorvaneCore/text/Base64.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/trace/CaptureManifest.h"
#include "corvane_mcp/trace/Picture.h"
#include "corvane_mcp/trace/PictureFormats.h"
#include "corvane_mcp/trace/TouchMarks.h"

namespace corvane {

namespace {

/// Every image costs the agent tokens, so they are small.
constexpr int largestSide = 800;
constexpr double quality = 0.7;

/// What became of one frame: an image, or the reason why there is none.
struct FrameResult {
  std::string_view label;
  std::optional<ContentBlock> image;
  std::string lost;
};

DecodedPicture decode(PictureInput& input) {
  const auto start = input.peek();
  if (isPng(start)) return decodePng(input, largestSide);
  if (isJpeg(start)) return decodeJpeg(input, largestSide);
  throw PictureError("it is neither a PNG nor a JPEG");
}

/// Whether `value` lies on a side that is `length` long.
bool isWithin(double value, double length) {
  return value >= 0 && value <= length;
}

bool isInFractions(const Touch& touch) {
  const bool startFits = isWithin(touch.x, 1) && isWithin(touch.y, 1);
  return startFits && (!touch.isDrag() || (isWithin(*touch.endX, 1) && isWithin(*touch.endY, 1)));
}

/// Where `touch` on a screen of `full` size lies on the picture of `small` size; nothing when it is
/// outside.
std::optional<TouchMark> markFor(const Touch& touch, PictureSize full, PictureSize small) {
  const bool fractions = isInFractions(touch);
  const double scaleX = fractions ? small.width : static_cast<double>(small.width) / full.width;
  const double scaleY = fractions ? small.height : static_cast<double>(small.height) / full.height;
  TouchMark mark{{touch.x * scaleX, touch.y * scaleY}, std::nullopt};
  if (!isWithin(mark.start.x, small.width) || !isWithin(mark.start.y, small.height)) {
    return std::nullopt;
  }
  if (touch.isDrag()) mark.end = Point{*touch.endX * scaleX, *touch.endY * scaleY};
  return mark;
}

/// The name of a frame's file for people: on one line and not too long.
std::string shownName(std::string_view name) {
  constexpr std::size_t longest = 255;
  if (name.empty()) return "(no file name)";
  if (name.size() <= longest) return escapeControls(name);
  return escapeControls(toValidUtf8(name.substr(0, longest))) + "…";
}

FrameResult load(const std::filesystem::path& sessionDir, std::string_view label,
                 const CaptureFrame& frame) {
  FrameResult result{label, std::nullopt, {}};
  try {
    auto input = PictureInput::open(sessionDir, frame.imageFileName);
    const std::string jpeg = TraceImageReader::downscaledJPEG(input, frame.touches);
    result.image = ContentBlock::image(base64(jpeg), "image/jpeg");
  } catch (const std::exception& error) {
    result.lost = "(" + std::string(label) + " screenshot lost: " + shownName(frame.imageFileName) +
                  " — " + error.what() + ")";
  }
  return result;
}

std::vector<FrameResult> loadAll(const std::filesystem::path& sessionDir,
                                 const StepFrames& frames) {
  std::vector<FrameResult> results;
  std::future<FrameResult> after;
  const auto loadAfter = [&] { return load(sessionDir, "after", *frames.after); };
  // Side by side when there are both, as pictures take long. On a thread of its own, not the
  // pool's: this runs on one of those, and were all of them here, each would wait for another to be
  // free. On this thread when the system has no other to give.
  if (frames.before && frames.after) after = std::async(loadAfter);
  if (frames.before) results.push_back(load(sessionDir, "before", *frames.before));
  if (frames.after) results.push_back(after.valid() ? after.get() : loadAfter());
  return results;
}

std::string caption(std::int64_t stepIndex, const std::vector<FrameResult>& results) {
  std::string labels;
  for (const auto& result : results) {
    if (!result.image) continue;
    if (!labels.empty()) labels += ", ";
    labels += result.label;
  }
  return AnswerTexts::stepCaption(stepIndex, labels);
}

ContentBlock noManifest(const std::filesystem::path& manifest) {
  return ContentBlock::text("(no capture manifest at " + displayPath(manifest) +
                            " — the run may predate capture, or capture was disabled)");
}

ContentBlock noFrames(std::int64_t stepIndex) {
  return ContentBlock::text("(no frames recorded for step " + std::to_string(stepIndex) +
                            " — it may not have executed, or its session was pruned)");
}

std::vector<ContentBlock> show(std::int64_t stepIndex, std::vector<FrameResult> results) {
  std::vector<ContentBlock> blocks{ContentBlock::text(caption(stepIndex, results))};
  for (auto& result : results) {
    if (result.image) blocks.push_back(std::move(*result.image));
  }
  if (blocks.size() > 1) return blocks;
  for (auto& result : results) blocks.push_back(ContentBlock::text(std::move(result.lost)));
  return blocks;
}

}  // namespace

std::vector<ContentBlock> TraceImageReader::blocks(const std::filesystem::path& sessionDir,
                                                   std::int64_t stepIndex) {
  const auto manifest = CaptureSession::fileURL(sessionDir);
  // The system would look for the one in a folder of the server's, and end the other at its NUL.
  if (!sessionDir.is_absolute() || sessionDir.native().find('\0') != std::string::npos) {
    return {noManifest(manifest)};
  }
  StepFrames frames;
  try {
    frames = readStepFrames(readFile(manifest), stepIndex);
  } catch (const FileError&) {
    return {noManifest(manifest)};
  } catch (const DecodeError&) {
    return {noManifest(manifest)};
  }
  if (frames.empty()) return {noFrames(stepIndex)};
  return show(stepIndex, loadAll(sessionDir, frames));
}

std::string TraceImageReader::downscaledJPEG(PictureInput& picture,
                                             std::span<const Touch> touches) {
  DecodedPicture decoded = decode(picture);
  const PictureSize full = uprightSize(decoded.fullSize, decoded.orientation);
  Picture upright = turnedUpright(std::move(decoded.picture), decoded.orientation);
  std::vector<TouchMark> marks;
  for (const auto& touch : touches) {
    if (const auto mark = markFor(touch, full, upright.size)) marks.push_back(*mark);
  }
  drawTouchMarks(upright, marks);
  const bool keepsProfile = isRgbProfile(decoded.colourProfile);
  return encodeJpeg(upright, quality,
                    keepsProfile ? decoded.colourProfile : std::vector<std::uint8_t>());
}

}  // namespace corvane
