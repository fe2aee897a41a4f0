#include "corvane_mcp/trace/JpegDecoder.h"

#include <gtest/gtest.h>

#include "tests/unit/trace/PictureFiles.h"
#include "tests/unit/trace/TestPictures.h"

namespace corvane {
namespace {

constexpr int unscaled = 800;

DecodedPicture decoded(const std::string& file, int largestSide = unscaled) {
  PictureInput input(asBytes(file));
  return decodeJpeg(input, largestSide);
}

struct JpegKind {
  const char* name;
  JpegOptions options;
};

void PrintTo(const JpegKind& kind, std::ostream* out) {
  *out << kind.name;
}

std::string nameOf(const testing::TestParamInfo<JpegKind>& kind) {
  return kind.param.name;
}

class JpegKindTest : public testing::TestWithParam<JpegKind> {};

Picture shownBy(const Picture& picture, const JpegOptions& options) {
  if (options.samples != JpegOptions::Samples::grey) return picture;
  return drawn(picture.size, [&](int x, int y) {
    const std::uint8_t level = *picture.at(x, y);
    return Rgb{level, level, level};
  });
}

TEST_P(JpegKindTest, ShowsThePicture) {
  const Picture picture = smoothPicture({301, 203});
  const DecodedPicture result = decoded(jpegFile(picture, GetParam().options));
  EXPECT_EQ(result.fullSize, picture.size);
  const PictureDistance off = distance(result.picture, shownBy(picture, GetParam().options));
  EXPECT_LT(off.mean, 1.5);
  EXPECT_LE(off.largest, 8);
}

/// Down to where the decoder works at an eighth of the scale.
TEST_P(JpegKindTest, IsScaledDown) {
  const Picture picture = smoothPicture({803, 401});
  const std::string file = jpegFile(picture, GetParam().options);
  for (const int largestSide : {800, 402, 401, 201, 100, 30, 3}) {
    const DecodedPicture result = decoded(file, largestSide);
    const PictureSize size = fitted(picture.size, largestSide);
    EXPECT_EQ(result.fullSize, picture.size);
    ASSERT_EQ(result.picture.size, size);
    const Picture expected = shownBy(averagedByDefinition(picture, size), GetParam().options);
    const PictureDistance off = distance(result.picture, expected);
    EXPECT_LT(off.mean, 1.5) << largestSide;
    EXPECT_LE(off.largest, 8) << largestSide;
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, JpegKindTest,
    testing::Values(
        JpegKind{"Baseline", {}}, JpegKind{"HalvedColour", {.halvesColour = true}},
        JpegKind{"Progressive", {.progressive = true}},
        JpegKind{"ProgressiveHalvedColour", {.progressive = true, .halvesColour = true}},
        JpegKind{"Grey", {.samples = JpegOptions::Samples::grey}},
        JpegKind{"ProgressiveGrey", {.samples = JpegOptions::Samples::grey, .progressive = true}},
        JpegKind{"Inks", {.samples = JpegOptions::Samples::inks}},
        JpegKind{"Restarts", {.restartInterval = 3}}),
    nameOf);

TEST(JpegDecoderTest, ReadsTheOrientation) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const std::string file =
        jpegFile(noisyPicture({16, 8}), {.exif = exifData(orientation, orientation % 2 == 0)});
    EXPECT_EQ(static_cast<int>(decoded(file).orientation), orientation);
  }
  EXPECT_EQ(decoded(jpegFile(noisyPicture({16, 8}))).orientation, Orientation::upright);
}

TEST(JpegDecoderTest, HandsOverTheColourProfile) {
  const std::string profile = colourProfile("RGB ", 3000);
  const DecodedPicture picture = decoded(jpegFile(noisyPicture({16, 8}), {.profile = profile}));
  EXPECT_EQ(std::string(picture.colourProfile.begin(), picture.colourProfile.end()), profile);
}

TEST(JpegDecoderTest, PassesOverAColourProfileThatIsTooLarge) {
  for (const std::size_t size : {largestColourProfile + 1, std::size_t{200'000}}) {
    const Picture picture = smoothPicture({64, 64});
    const DecodedPicture result =
        decoded(jpegFile(picture, {.profile = colourProfile("RGB ", size)}));
    EXPECT_TRUE(result.colourProfile.empty());
    EXPECT_LT(distance(result.picture, picture).mean, 2);
  }
}

TEST(JpegDecoderTest, KnowsItsFilesByTheirStart) {
  const std::string file = jpegFile(noisyPicture({4, 4}));
  EXPECT_TRUE(isJpeg(asBytes(file)));
  EXPECT_FALSE(isJpeg(asBytes(file.substr(0, 2))));
  EXPECT_FALSE(isJpeg(asBytes(pngFile(noisyPicture({4, 4})))));
}

}  // namespace
}  // namespace corvane
