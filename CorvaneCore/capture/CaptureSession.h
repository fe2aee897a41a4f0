#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/Record.h"
#include "CorvaneCore/json/Vocabulary.h"

namespace corvane {

/// When a frame of a capture session was taken.
enum class FrameStatus { beforeStep, afterStep, onFailure };

template <>
struct Vocabulary<FrameStatus> {
  using Row = VocabularyRow<FrameStatus>;
  static constexpr std::array rows{
      Row{FrameStatus::beforeStep, "beforeStep"},
      Row{FrameStatus::afterStep, "afterStep"},
      Row{FrameStatus::onFailure, "onFailure"},
  };
};

/// One touch of the screen: a tap, or a drag when both end members are there. The coordinates are
/// fractions of the upright picture when all of them lie between 0 and 1, else its pixels.
struct Touch {
  double x = 0;
  double y = 0;
  std::optional<double> endX = std::nullopt;
  std::optional<double> endY = std::nullopt;

  [[nodiscard]] bool isDrag() const { return endX && endY; }

  static constexpr auto fields() {
    return FieldList(field("x", &Touch::x), field("y", &Touch::y), field("endX", &Touch::endX),
                     field("endY", &Touch::endY));
  }
};

/// The manifest of a capture session: the screenshots of one test, in the order they were taken.
/// They lie beside it in the session's folder.
struct CaptureSession {
  struct Frame {
    /// 0-based.
    std::int64_t stepIndex = 0;
    FrameStatus status = FrameStatus::beforeStep;
    /// The plain name of a picture in the session's folder; several frames may name one picture.
    std::string imageFileName;
    std::optional<std::vector<Touch>> touches;

    static constexpr auto fields() {
      using R = Frame;
      return FieldList(field("stepIndex", &R::stepIndex), field("status", &R::status),
                       field("imageFileName", &R::imageFileName), field("touches", &R::touches));
    }
  };

  std::vector<Frame> frames;

  static constexpr auto fields() { return FieldList(field("frames", &CaptureSession::frames)); }

  [[nodiscard]] static std::filesystem::path fileURL(const std::filesystem::path& sessionDir) {
    return sessionDir / "session.json";
  }
  /// Throws EncodeError or FileError.
  void write(const std::filesystem::path& sessionDir) const {
    writeRecord(*this, fileURL(sessionDir));
  }
  /// Throws FileError or DecodeError. Whoever reads the sessions of others takes them as they are
  /// instead, with frames that make no sense.
  [[nodiscard]] static CaptureSession read(const std::filesystem::path& sessionDir) {
    return readRecord<CaptureSession>(fileURL(sessionDir));
  }
};

extern template struct RecordCodec<CaptureSession>;

}  // namespace corvane
