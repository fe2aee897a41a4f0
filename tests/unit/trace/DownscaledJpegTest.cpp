#include "corvane_mcp/trace/TraceImageReader.h"

#include <gtest/gtest.h>

#include "CorvaneCore/files/Files.h"
#include "corvane_mcp/trace/Picture.h"
#include "tests/support/ErrorText.h"
#include "tests/unit/trace/PictureFiles.h"
#include "tests/unit/trace/TestPictures.h"

namespace corvane::testing {
namespace {

std::string downscaled(const std::string& file, const std::vector<Touch>& touches = {}) {
  PictureInput input(asBytes(file));
  return TraceImageReader::downscaledJPEG(input, touches);
}

/// The middle of what `touches` draw on the picture in `file`.
struct Middle {
  double x = 0;
  double y = 0;
};
Middle middleOfMarks(const std::string& file, const std::vector<Touch>& touches) {
  const Picture plain = pictureInJpeg(downscaled(file));
  const Picture marked = pictureInJpeg(downscaled(file, touches));
  int left = plain.size.width;
  int right = -1;
  int top = plain.size.height;
  int bottom = -1;
  for (int y = 0; y < plain.size.height; ++y) {
    for (int x = 0; x < plain.size.width; ++x) {
      if (distance(colourAt(plain, x, y), colourAt(marked, x, y)) < 60) continue;
      left = std::min(left, x);
      right = std::max(right, x);
      top = std::min(top, y);
      bottom = std::max(bottom, y);
    }
  }
  return {(left + right + 1) / 2.0, (top + bottom + 1) / 2.0};
}

void expectMarkAt(double x, double y, const std::string& file, const Touch& touch) {
  const Middle middle = middleOfMarks(file, {touch});
  EXPECT_NEAR(middle.x, x, 1.5);
  EXPECT_NEAR(middle.y, y, 1.5);
}

TEST(DownscaledJpegTest, FitsInto800Pixels) {
  const auto sizeOf = [](PictureSize size) {
    return pictureInJpeg(downscaled(pngFile(smoothPicture(size)))).size;
  };
  EXPECT_EQ(sizeOf({390, 844}), (PictureSize{370, 800}));
  EXPECT_EQ(sizeOf({1600, 200}), (PictureSize{800, 100}));
  EXPECT_EQ(sizeOf({801, 10}), (PictureSize{800, 10}));
}

TEST(DownscaledJpegTest, NeverEnlarges) {
  for (const PictureSize size : {PictureSize{800, 100}, PictureSize{31, 17}, PictureSize{1, 1}}) {
    EXPECT_EQ(pictureInJpeg(downscaled(pngFile(smoothPicture(size)))).size, size);
    EXPECT_EQ(pictureInJpeg(downscaled(jpegFile(smoothPicture(size)))).size, size);
  }
}

TEST(DownscaledJpegTest, KeepsTheColours) {
  const Picture picture = smoothPicture({1200, 300});
  const Picture expected = averagedByDefinition(picture, {800, 200});
  for (const std::string& file :
       {pngFile(picture), pngFile(picture, {.interlaced = true}), jpegFile(picture),
        jpegFile(picture, {.progressive = true, .halvesColour = true})}) {
    const PictureDistance off = distance(pictureInJpeg(downscaled(file)), expected);
    EXPECT_LT(off.mean, 1.5);
    EXPECT_LT(off.largestOfBlocks, 5);
  }
}

TEST(DownscaledJpegTest, IsOfQuality70) {
  const std::string jpeg = downscaled(pngFile(smoothPicture({16, 16})));
  // The first table's first step is 16 at quality 50, and 60 percent of that here.
  const std::size_t table = jpeg.find("\xff\xdb");
  ASSERT_NE(table, std::string::npos);
  EXPECT_EQ(jpeg[table + 5], 10);
}

TEST(DownscaledJpegTest, StandsUprightInEveryOrientation) {
  const Picture stored = smoothPicture({1000, 300});
  const Picture small = averagedByDefinition(stored, {800, 240});
  for (int orientation = 1; orientation <= 8; ++orientation) {
    SCOPED_TRACE(orientation);
    const Picture expected = turnedUpright(small, static_cast<Orientation>(orientation));
    const std::string exif = exifData(orientation, true);
    for (const std::string& file :
         {jpegFile(stored, {.exif = exif}), pngFile(stored, {.exif = exif})}) {
      const Picture upright = pictureInJpeg(downscaled(file));
      ASSERT_EQ(upright.size, expected.size);
      EXPECT_LT(distance(upright, expected).mean, 1.5);
    }
  }
}

TEST(DownscaledJpegTest, TouchesFrom0To1AreFractions) {
  const std::string file = pngFile(smoothPicture({1600, 400}));
  expectMarkAt(200, 150, file, {.x = 0.25, .y = 0.75});
}

// Fails when the borders count as lying outside, of the fractions or of the picture.
TEST(DownscaledJpegTest, TheBordersBelongToThePicture) {
  const std::string file = pngFile(smoothPicture({160, 40}));
  const auto shown = [&file](double x, double y) { return downscaled(file, {{.x = x, .y = y}}); };
  EXPECT_EQ(shown(0, 0.5), shown(0, 20));
  EXPECT_EQ(shown(1, 0.5), shown(160, 20));
  EXPECT_EQ(shown(0.5, 0), shown(80, 0));
  EXPECT_EQ(shown(0.5, 1), shown(80, 40));
  EXPECT_NE(shown(0, 20), downscaled(file));
  EXPECT_NE(shown(160, 20), downscaled(file));
  const auto dragged = [&file](double endX, double endY) {
    return downscaled(file, {{.x = 0.5, .y = 0.5, .endX = endX, .endY = endY}});
  };
  EXPECT_EQ(dragged(0, 1), downscaled(file, {{.x = 80, .y = 20, .endX = 0, .endY = 40}}));
  EXPECT_EQ(dragged(1, 0), downscaled(file, {{.x = 80, .y = 20, .endX = 160, .endY = 0}}));
}

TEST(DownscaledJpegTest, OtherTouchesArePixels) {
  const std::string file = pngFile(smoothPicture({1600, 400}));
  expectMarkAt(200, 150, file, {.x = 400, .y = 300});
  // One coordinate beyond 1 is enough.
  const Middle middle = middleOfMarks(file, {{.x = 0.5, .y = 300}});
  EXPECT_NEAR(middle.y, 150, 1.5);
  EXPECT_LT(middle.x, 30);
}

TEST(DownscaledJpegTest, ADragHasOneKindOfCoordinates) {
  const std::string file = pngFile(smoothPicture({1600, 400}));
  // The start alone would pass for the lower right corner.
  const Middle middle = middleOfMarks(file, {{.x = 1, .y = 1, .endX = 800, .endY = 300}});
  EXPECT_NEAR(middle.x, 201, 5);
  EXPECT_NEAR(middle.y, 76, 5);
}

TEST(DownscaledJpegTest, TouchesAreOnTheUprightPicture) {
  const std::string file = jpegFile(smoothPicture({1600, 400}), {.exif = exifData(6, true)});
  // Upright it is 400 x 1600 and becomes 200 x 800.
  expectMarkAt(150, 200, file, {.x = 300, .y = 400});
  expectMarkAt(150, 200, file, {.x = 0.75, .y = 0.25});
}

TEST(DownscaledJpegTest, ATouchOutsideIsNotDrawn) {
  const std::string file = pngFile(smoothPicture({1600, 400}));
  const std::string plain = downscaled(file);
  for (const Touch& touch :
       {Touch{.x = 1601, .y = 200}, Touch{.x = 800, .y = 401}, Touch{.x = -1, .y = 200},
        Touch{.x = 0.5, .y = -0.1}, Touch{.x = -5, .y = 200, .endX = 800, .endY = 200},
        Touch{.x = 1e300, .y = 1e300}}) {
    EXPECT_EQ(downscaled(file, {touch}), plain) << touch.x << ", " << touch.y;
  }
  EXPECT_NE(downscaled(file, {{.x = 1600, .y = 400}}), plain);
  EXPECT_NE(downscaled(file, {{.x = 800, .y = 200, .endX = 5000, .endY = -600}}), plain);
}

TEST(DownscaledJpegTest, KeepsAColourProfileThatFits) {
  const std::string wide = colourProfile("RGB ", 548);
  const Picture picture = smoothPicture({20, 20});
  EXPECT_NE(downscaled(pngFile(picture, {.profile = wide})).find(wide), std::string::npos);
  EXPECT_NE(downscaled(jpegFile(picture, {.profile = wide})).find(wide), std::string::npos);
}

TEST(DownscaledJpegTest, DropsAColourProfileOfOtherSamples) {
  const std::string file =
      jpegFile(smoothPicture({20, 20}),
               {.samples = JpegOptions::Samples::grey, .profile = colourProfile("GRAY", 548)});
  EXPECT_EQ(downscaled(file).find("ICC_PROFILE"), std::string::npos);
}

TEST(DownscaledJpegTest, RefusesOtherFiles) {
  for (const std::string& file :
       {std::string("GIF89a......"), std::string("hello"), std::string()}) {
    EXPECT_EQ(errorText<PictureError>([&] { (void)downscaled(file); }),
              "it is neither a PNG nor a JPEG");
  }
}

/// Compares with pictures that bench/pictures/golden.mjs drew without any of our code.
void expectGolden(const std::string& name, const std::string& suffix,
                  const std::vector<Touch>& touches) {
  const std::filesystem::path folder = GOLDEN_PICTURES;
  auto input = PictureInput::open(folder, name + suffix);
  const Picture made = pictureInJpeg(TraceImageReader::downscaledJPEG(input, touches));
  const Picture golden = pictureInJpeg(readFile(folder / (name + "-marked.jpg")));
  ASSERT_EQ(made.size, golden.size);
  const PictureDistance off = distance(made, golden);
  EXPECT_LT(off.mean, 4.5);
  EXPECT_LT(off.largestOfBlocks, 14);
}

TEST(GoldenPicturesTest, TapsOnAnInterlacedPng) {
  // The first in pixels of the 540 x 1170 screen.
  expectGolden("light", ".png", {{.x = 361.8, .y = 629.46}, {.x = 0.02, .y = 0.01}});
}

TEST(GoldenPicturesTest, ADragOnAProgressiveJpeg) {
  expectGolden("dark", ".jpg", {{.x = 0.3, .y = 0.75, .endX = 0.75, .endY = 0.35}});
}

TEST(GoldenPicturesTest, DragsOnATurnedJpegOneOfThemOutOfIt) {
  expectGolden("busy", ".jpg",
               {{.x = 270, .y = 702, .endX = 270, .endY = 234},
                {.x = 486, .y = 1053, .endX = 702, .endY = 585}});
}

}  // namespace
}  // namespace corvane::testing
