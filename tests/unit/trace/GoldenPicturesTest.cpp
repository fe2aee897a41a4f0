#include <gtest/gtest.h>

#include "CorvaneCore/files/Files.h"
#include "corvane_mcp/trace/TraceImageReader.h"
#include "tests/unit/trace/PictureFiles.h"
#include "tests/unit/trace/TestPictures.h"

namespace corvane {
namespace {

using Touch = TraceImageReader::Touch;

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
}  // namespace corvane
