#include "corvane_mcp/trace/Orientation.h"

#include <gtest/gtest.h>

#include "tests/unit/trace/PictureFiles.h"
#include "tests/unit/trace/TestPictures.h"

namespace corvane {
namespace {

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
}  // namespace corvane
