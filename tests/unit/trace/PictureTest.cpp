#include "corvane_mcp/trace/Picture.h"

#include <gtest/gtest.h>

#include "tests/support/ErrorText.h"
#include "tests/unit/trace/PictureFiles.h"
#include "tests/unit/trace/TestPictures.h"

namespace corvane::testing {
namespace {

std::string refusal(std::uint32_t width, std::uint32_t height) {
  return errorText<PictureError>([&] { (void)reasonableSize(width, height); });
}

TEST(ReasonableSizeTest, AllowsAHundredMillionPixels) {
  EXPECT_EQ(reasonableSize(10'000, 10'000), (PictureSize{10'000, 10'000}));
  EXPECT_EQ(reasonableSize(1'000, 100'000), (PictureSize{1'000, 100'000}));
  EXPECT_EQ(reasonableSize(1, 1), (PictureSize{1, 1}));
}

TEST(ReasonableSizeTest, RefusesMore) {
  EXPECT_EQ(refusal(10'000, 10'001), "the picture is too large: 10000 x 10001 pixels");
  EXPECT_EQ(refusal(100'001, 1), "the picture is too large: 100001 x 1 pixels");
  EXPECT_EQ(refusal(1, 100'001), "the picture is too large: 1 x 100001 pixels");
  EXPECT_EQ(refusal(0xFFFFFFFF, 0xFFFFFFFF),
            "the picture is too large: 4294967295 x 4294967295 pixels");
}

TEST(ReasonableSizeTest, RefusesNothing) {
  EXPECT_EQ(refusal(0, 10), "the picture has no pixels");
  EXPECT_EQ(refusal(10, 0), "the picture has no pixels");
}

TEST(FittedTest, KeepsTheProportionsAndNeverEnlarges) {
  EXPECT_EQ(fitted({1290, 2796}, 800), (PictureSize{369, 800}));
  EXPECT_EQ(fitted({2796, 1290}, 800), (PictureSize{800, 369}));
  EXPECT_EQ(fitted({801, 801}, 800), (PictureSize{800, 800}));
  EXPECT_EQ(fitted({800, 600}, 800), (PictureSize{800, 600}));
  EXPECT_EQ(fitted({10, 3}, 800), (PictureSize{10, 3}));
  EXPECT_EQ(fitted({100'000, 1}, 800), (PictureSize{800, 1}));
}

TEST(RgbProfileTest, TakesOnlySoundProfilesOfScreens) {
  EXPECT_TRUE(isRgbProfile(asBytes(colourProfile("RGB ", 548))));
  EXPECT_TRUE(isRgbProfile(asBytes(colourProfile("RGB ", largestColourProfile))));
  EXPECT_FALSE(isRgbProfile(asBytes(colourProfile("RGB ", largestColourProfile + 1))));
  EXPECT_FALSE(isRgbProfile(asBytes(colourProfile("GRAY", 548))));
  EXPECT_FALSE(isRgbProfile(asBytes(colourProfile("RGB ", 548) + "more")));
  EXPECT_FALSE(isRgbProfile(asBytes(colourProfile("RGB ", 128).substr(0, 127))));
  EXPECT_FALSE(isRgbProfile({}));
}

/// Where the stored first row begins and ends once a picture stands upright.
struct Corners {
  int orientation;
  const char* firstOfRow;
  const char* lastOfRow;
};

/// From the definition: for each value, the sides of the scene that the first row and the first
/// column show.
constexpr Corners table[] = {
    {1, "top left", "top right"},       {2, "top right", "top left"},
    {3, "bottom right", "bottom left"}, {4, "bottom left", "bottom right"},
    {5, "top left", "bottom left"},     {6, "top right", "bottom right"},
    {7, "bottom right", "top right"},   {8, "bottom left", "top left"},
};

Rgb atCorner(const Picture& picture, std::string_view corner) {
  const bool isRight = corner.ends_with("right");
  const bool isBottom = corner.starts_with("bottom");
  return colourAt(picture, isRight ? picture.size.width - 1 : 0,
                  isBottom ? picture.size.height - 1 : 0);
}

TEST(OrientationTest, TurnsTheFirstRowToItsSide) {
  const Picture stored = noisyPicture({5, 3});
  for (const auto& [orientation, first, last] : table) {
    SCOPED_TRACE(orientation);
    const auto meaning = static_cast<Orientation>(orientation);
    const Picture upright = turnedUpright(stored, meaning);
    EXPECT_EQ(upright.size, orientation < 5 ? (PictureSize{5, 3}) : (PictureSize{3, 5}));
    EXPECT_EQ(upright.size, uprightSize(stored.size, meaning));
    EXPECT_EQ(atCorner(upright, first), colourAt(stored, 0, 0));
    EXPECT_EQ(atCorner(upright, last), colourAt(stored, 4, 0));
  }
}

TEST(OrientationTest, IsReadInBothByteOrders) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    for (const bool bigEndian : {false, true}) {
      const std::string data = exifData(orientation, bigEndian);
      EXPECT_EQ(static_cast<int>(exifOrientation(asBytes(data))), orientation);
    }
  }
}

TEST(OrientationTest, IsUprightWhenTheValueMakesNoSense) {
  for (const int nonsense : {0, 9, 255, 0x600}) {
    EXPECT_EQ(exifOrientation(asBytes(exifData(nonsense, true))), Orientation::upright);
    EXPECT_EQ(exifOrientation(asBytes(exifData(nonsense, false))), Orientation::upright);
  }
  std::string wrongType = exifData(6, false);
  wrongType[24] = 7;
  EXPECT_EQ(exifOrientation(asBytes(wrongType)), Orientation::upright);
}

TEST(OrientationTest, IsUprightWhenTheDataIsCut) {
  const std::string data = exifData(6, true);
  constexpr std::size_t endOfValue = 32;
  for (std::size_t length = 0; length < endOfValue; ++length) {
    EXPECT_EQ(exifOrientation(asBytes(data.substr(0, length))), Orientation::upright) << length;
  }
  EXPECT_EQ(exifOrientation(asBytes(data.substr(0, endOfValue))), Orientation::turnedRight);
}

TEST(OrientationTest, IsUprightWhenTheDirectoryLiesElsewhere) {
  std::string data = exifData(6, true);
  data.replace(4, 4, "\xff\xff\xff\xff");
  EXPECT_EQ(exifOrientation(asBytes(data)), Orientation::upright);
}

}  // namespace
}  // namespace corvane::testing
