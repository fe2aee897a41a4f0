#include "corvane_mcp/trace/TraceImageReader.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <thread>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/text/Base64.h"
#include "tests/support/TemporaryHome.h"
#include "tests/unit/trace/PictureFiles.h"
#include "tests/unit/trace/TestPictures.h"

namespace corvane::testing {
namespace {

std::string textOf(const ContentBlock& block) {
  const auto* text = std::get_if<ContentBlock::Text>(&block.choice);
  return text ? text->text : "(an image)";
}

std::vector<std::string> textsOf(const std::vector<ContentBlock>& blocks) {
  std::vector<std::string> texts;
  for (const auto& block : blocks) texts.push_back(textOf(block));
  return texts;
}

using Texts = std::vector<std::string>;

constexpr const char* noteAfterLabels =
    ") — corner brackets mark where Corvane touched (drags also draw a line to the end point)";

std::string captionFor(int step, const std::string& labels) {
  return "step " + std::to_string(step) + " screenshots (" + labels + noteAfterLabels;
}

constexpr const char* noFrames =
    "(no frames recorded for step 3 — it may not have executed, or its session was pruned)";

class TraceImageReaderTest : public ::testing::Test {
 protected:
  void writeManifest(const std::string& text) const {
    writeFileWhole(folder / "session.json", text);
  }

  /// A manifest of frames of step 3, given as status and file name.
  void writeFrames(const std::vector<std::pair<std::string, std::string>>& frames) const {
    std::string list;
    for (const auto& [status, name] : frames) {
      if (!list.empty()) list += ",";
      list += R"({"stepIndex":3,"status":")" + status + R"(","imageFileName":)" +
              AgentWire::encode(name) + R"(,"touches":[{"x":0.5,"y":0.5}]})";
    }
    writeManifest(R"({"frames":[)" + list + "]}");
  }

  void writePicture(const std::string& name, const std::string& file) const {
    writeFileWhole(folder / name, file);
  }

  [[nodiscard]] std::vector<ContentBlock> blocks() const {
    return TraceImageReader::blocks(folder, 3);
  }

  [[nodiscard]] std::string noManifest() const {
    return "(no capture manifest at " + (folder / "session.json").string() +
           " — the run may predate capture, or capture was disabled)";
  }

  /// What the block of a picture holds that was touched in the middle.
  [[nodiscard]] static std::string imageData(const std::string& file) {
    PictureInput input(asBytes(file));
    const Touch touch{.x = 0.5, .y = 0.5};
    return base64(TraceImageReader::downscaledJPEG(input, {&touch, 1}));
  }

  TemporaryHome home;
  std::filesystem::path folder = home.path() / "session";
  std::string png = pngFile(smoothPicture({900, 100}));
  std::string jpeg = jpegFile(smoothPicture({100, 900}));
};

TEST_F(TraceImageReaderTest, ShowsBeforeAndAfter) {
  writeFrames({{"afterStep", "a.jpg"}, {"beforeStep", "b.png"}});
  writePicture("a.jpg", jpeg);
  writePicture("b.png", png);
  const auto shown = blocks();
  EXPECT_EQ(textsOf(shown), (Texts{captionFor(3, "before, after"), "(an image)", "(an image)"}));
  for (const auto& [block, file] : {std::pair{shown.at(1), png}, {shown.at(2), jpeg}}) {
    const auto& image = std::get<ContentBlock::Image>(block.choice);
    EXPECT_EQ(image.mimeType, "image/jpeg");
    EXPECT_EQ(image.data, imageData(file));
  }
}

TEST_F(TraceImageReaderTest, ShowsOneFrameAlone) {
  writePicture("p.png", png);
  writeFrames({{"beforeStep", "p.png"}});
  EXPECT_EQ(textsOf(blocks()), (Texts{captionFor(3, "before"), "(an image)"}));
  writeFrames({{"afterStep", "p.png"}});
  EXPECT_EQ(textsOf(blocks()), (Texts{captionFor(3, "after"), "(an image)"}));
  writeFrames({{"onFailure", "p.png"}});
  EXPECT_EQ(textsOf(blocks()), (Texts{captionFor(3, "after"), "(an image)"}));
}

TEST_F(TraceImageReaderTest, WithoutAManifestSaysWhereItLooked) {
  EXPECT_EQ(textsOf(blocks()), Texts{noManifest()});
  std::filesystem::create_directories(folder);
  EXPECT_EQ(textsOf(blocks()), Texts{noManifest()});
}

TEST_F(TraceImageReaderTest, AnUnreadableManifestIsNone) {
  for (const std::string text : {"", "{", "[]", R"({"frames":7})"}) {
    writeManifest(text);
    EXPECT_EQ(textsOf(blocks()), Texts{noManifest()}) << text;
  }
}

// Fails when a manifest may be larger or has to be smaller than other shared files.
TEST_F(TraceImageReaderTest, AManifestIsAsLargeAsAnySharedFileMayBe) {
  const std::string manifest = R"({"frames":[]})";
  const std::size_t largest = std::size_t{64} << 20;
  writeManifest(manifest + std::string(largest - manifest.size(), ' '));
  EXPECT_EQ(textsOf(blocks()), Texts{noFrames});
  writeManifest(manifest + std::string(largest - manifest.size() + 1, ' '));
  EXPECT_EQ(textsOf(blocks()), Texts{noManifest()});
}

// Fails when the system gets to see the path: it would find a manifest at each of these.
TEST_F(TraceImageReaderTest, AFolderOfNoPlaceHasNoManifest) {
  writeManifest(R"({"frames":[]})");
  const auto existing = folder;
  folder = existing.lexically_relative(std::filesystem::current_path());
  ASSERT_TRUE(std::filesystem::exists(folder / "session.json"));
  EXPECT_EQ(textsOf(blocks()), Texts{noManifest()});
  folder = (existing / "session.json").native() + std::string(1, '\0');
  EXPECT_EQ(textsOf(blocks()), Texts{noManifest()});
  folder.clear();
  EXPECT_EQ(textsOf(blocks()), Texts{noManifest()});
}

TEST_F(TraceImageReaderTest, AManifestThatIsAFolderOrAFifoIsNone) {
  std::filesystem::create_directories(folder / "session.json");
  EXPECT_EQ(textsOf(blocks()), Texts{noManifest()});
  std::filesystem::remove(folder / "session.json");
  ASSERT_EQ(::mkfifo((folder / "session.json").c_str(), 0600), 0);
  EXPECT_EQ(textsOf(blocks()), Texts{noManifest()});
}

TEST_F(TraceImageReaderTest, AFolderOfAnyNameIsNamedInValidText) {
  folder = home.path() / "\xff";
  const auto texts = textsOf(blocks());
  EXPECT_EQ(texts, Texts{"(no capture manifest at " + home.path().string() +
                         "/\uFFFD/session.json — the run may predate capture, or capture was "
                         "disabled)"});
}

TEST_F(TraceImageReaderTest, AStepWithoutFramesSaysSo) {
  const Texts expected{noFrames};
  writeManifest(R"({"frames":[]})");
  EXPECT_EQ(textsOf(blocks()), expected);
  writeManifest(R"({"frames":[{"stepIndex":4,"status":"beforeStep","imageFileName":"b.png"}]})");
  EXPECT_EQ(textsOf(blocks()), expected);
}

TEST_F(TraceImageReaderTest, ALostFrameIsLeftOut) {
  writePicture("a.jpg", jpeg);
  writePicture("broken.png", png.substr(0, png.size() / 2));
  writeFrames({{"beforeStep", "broken.png"}, {"afterStep", "a.jpg"}});
  EXPECT_EQ(textsOf(blocks()), (Texts{captionFor(3, "after"), "(an image)"}));
  writeFrames({{"beforeStep", "a.jpg"}, {"afterStep", "broken.png"}});
  EXPECT_EQ(textsOf(blocks()), (Texts{captionFor(3, "before"), "(an image)"}));
}

TEST_F(TraceImageReaderTest, WhenAllAreLostEachIsNamed) {
  writePicture("broken.png", png.substr(0, png.size() / 2));
  writeFrames({{"beforeStep", "broken.png"}, {"onFailure", "gone.png"}});
  EXPECT_EQ(textsOf(blocks()),
            (Texts{captionFor(3, ""),
                   "(before screenshot lost: broken.png — unreadable PNG: it ends too early)",
                   "(after screenshot lost: gone.png — No such file or directory)"}));
}

TEST_F(TraceImageReaderTest, AFailureThatIsLostIsNotReplaced) {
  writePicture("a.jpg", jpeg);
  writeFrames({{"afterStep", "a.jpg"}, {"onFailure", "gone.png"}});
  EXPECT_EQ(
      textsOf(blocks()),
      (Texts{captionFor(3, ""), "(after screenshot lost: gone.png — No such file or directory)"}));
}

TEST_F(TraceImageReaderTest, LostFramesAreNamedOnOneLineHoweverTheyAreCalled) {
  const auto lost = [&](const std::string& name) {
    writeFrames({{"beforeStep", name}});
    return textsOf(blocks()).at(1);
  };
  EXPECT_EQ(lost("../../secret.png"),
            "(before screenshot lost: ../../secret.png — it is not a plain file name)");
  EXPECT_EQ(lost(""), "(before screenshot lost: (no file name) — it is not a plain file name)");
  EXPECT_EQ(lost("a\nb.png").find('\n'), std::string::npos);
  const std::string longName(100'000, 'n');
  EXPECT_EQ(lost(longName),
            "(before screenshot lost: " + longName.substr(0, 255) + "… — File name too long)");
}

TEST_F(TraceImageReaderTest, MayBeCalledFromSeveralThreads) {
  writeFrames({{"beforeStep", "b.png"}, {"afterStep", "a.jpg"}});
  writePicture("a.jpg", jpeg);
  writePicture("b.png", png);
  const std::string expected = AgentWire::encode(blocks());
  std::vector<std::string> results(8);
  std::vector<std::thread> threads;
  for (auto& result : results) {
    threads.emplace_back([&] { result = AgentWire::encode(blocks()); });
  }
  for (auto& thread : threads) thread.join();
  for (const auto& result : results) EXPECT_EQ(result, expected);
}

}  // namespace
}  // namespace corvane::testing
