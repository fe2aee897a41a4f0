#include "corvane_mcp/trace/DecodedPicture.h"

#include <gtest/gtest.h>

#include "corvane_mcp/trace/PictureError.h"
#include "tests/support/ErrorText.h"
#include "tests/unit/trace/PictureFiles.h"

namespace corvane {
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

}  // namespace
}  // namespace corvane
