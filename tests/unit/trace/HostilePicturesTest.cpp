#include <gtest/gtest.h>
#include <sys/resource.h>
#include <zlib.h>

#include "corvane_mcp/trace/Picture.h"
#include "corvane_mcp/trace/TraceImageReader.h"
#include "tests/support/ErrorText.h"
#include "tests/unit/trace/PictureFiles.h"
#include "tests/unit/trace/TestPictures.h"

namespace corvane::testing {
namespace {

std::string downscaled(const std::string& file) {
  PictureInput input(asBytes(file));
  return TraceImageReader::downscaledJPEG(input, {});
}

std::string refusal(const std::string& file) {
  return errorText<PictureError>([&] { (void)downscaled(file); });
}

std::string bigEndian(std::uint32_t value, int length) {
  std::string bytes;
  for (int i = length - 1; i >= 0; --i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  return bytes;
}

std::string pngChunk(const std::string& type, const std::string& data) {
  const std::string checked = type + data;
  const auto checksum =
      ::crc32(0, reinterpret_cast<const Bytef*>(checked.data()), static_cast<uInt>(checked.size()));
  return bigEndian(static_cast<std::uint32_t>(data.size()), 4) + checked +
         bigEndian(static_cast<std::uint32_t>(checksum), 4);
}

std::string pngHeader(std::uint32_t width, std::uint32_t height, int depth, int colourType) {
  return "\x89PNG\r\n\x1a\n" +
         pngChunk("IHDR", bigEndian(width, 4) + bigEndian(height, 4) + static_cast<char>(depth) +
                              static_cast<char>(colourType) + std::string(3, '\0'));
}

std::string zeros(std::size_t count) {
  const std::string data(count, '\0');
  uLongf size = ::compressBound(static_cast<uLong>(count));
  std::string packed(size, '\0');
  ::compress2(reinterpret_cast<Bytef*>(packed.data()), &size,
              reinterpret_cast<const Bytef*>(data.data()), static_cast<uLong>(count), 9);
  packed.resize(size);
  return packed;
}

std::string segment(int marker, const std::string& data) {
  return std::string("\xff") + static_cast<char>(marker) +
         bigEndian(static_cast<std::uint32_t>(data.size() + 2), 2) + data;
}

/// The first position of `marker` in a JPEG.
std::size_t positionOf(int marker, const std::string& jpeg) {
  return jpeg.find(std::string("\xff") + static_cast<char>(marker));
}

/// `jpeg` with other dimensions in its header.
std::string withSize(std::string jpeg, int frameMarker, std::uint32_t width, std::uint32_t height) {
  const std::size_t header = positionOf(frameMarker, jpeg);
  return jpeg.replace(header + 5, 4, bigEndian(height, 2) + bigEndian(width, 2));
}

constexpr int baselineFrame = 0xC0;
constexpr int progressiveFrame = 0xC2;

class HostilePicturesTest : public ::testing::Test {
 protected:
  std::string png = pngFile(noisyPicture({23, 17}));
  std::string interlacedPng = pngFile(noisyPicture({23, 17}), {.interlaced = true});
  std::string jpeg = jpegFile(noisyPicture({23, 17}), {.exif = exifData(6, true)});
  std::string progressiveJpeg = jpegFile(noisyPicture({23, 17}), {.progressive = true});
};

TEST_F(HostilePicturesTest, CutFilesAreRefusedWhereverTheyEnd) {
  for (const std::string& file : {png, interlacedPng, jpeg, progressiveJpeg}) {
    for (std::size_t length = 0; length < file.size(); ++length) {
      EXPECT_THROW((void)downscaled(file.substr(0, length)), PictureError) << length;
    }
  }
}

/// Calls `check` with `file` after each of three changes to each of its bytes, and with the place.
template <class Check>
void forEachWrongByte(const std::string& file, Check check) {
  for (std::size_t i = 0; i < file.size(); ++i) {
    for (const int change : {0x01, 0x80, 0xFF}) {
      std::string changed = file;
      changed[i] = static_cast<char>(changed[i] ^ change);
      check(changed, i);
    }
  }
}

TEST_F(HostilePicturesTest, AnySingleWrongByteInAPngIsNoticed) {
  for (const std::string& file : {png, interlacedPng}) {
    forEachWrongByte(file, [](const std::string& changed, std::size_t place) {
      EXPECT_THROW((void)downscaled(changed), PictureError) << place;
    });
  }
}

/// A JPEG has no checksums: a wrong byte may go unnoticed, and then makes a picture like any other.
TEST_F(HostilePicturesTest, AnySingleWrongByteInAJpegIsRefusedOrShown) {
  int shown = 0;
  int refused = 0;
  for (const std::string& file : {jpeg, progressiveJpeg}) {
    forEachWrongByte(file, [&](const std::string& changed, std::size_t place) {
      try {
        const PictureSize size = pictureInJpeg(downscaled(changed)).size;
        EXPECT_LE(std::max(size.width, size.height), 800) << place;
        ++shown;
      } catch (const PictureError& error) {
        EXPECT_FALSE(std::string_view(error.what()).empty()) << place;
        ++refused;
      }
    });
  }
  EXPECT_GT(shown, 1000);
  EXPECT_GT(refused, 100);
}

TEST_F(HostilePicturesTest, WrongChecksumsOfPixelsAreRefused) {
  std::string changed = png;
  const std::size_t pixels = changed.find("IDAT");
  changed[pixels + 40] = static_cast<char>(changed[pixels + 40] ^ 1);
  EXPECT_THROW((void)downscaled(changed), PictureError);
  std::string wrongHeader = png;
  wrongHeader[29] = static_cast<char>(wrongHeader[29] ^ 1);
  EXPECT_EQ(refusal(wrongHeader), "unreadable PNG: IHDR: CRC error");
}

TEST_F(HostilePicturesTest, SizesThatMakeNoSenseAreRefused) {
  EXPECT_EQ(refusal(pngHeader(100'000, 100'000, 8, 6)), "unreadable PNG: it ends too early");
  const std::string pixels = pngChunk("IDAT", zeros(100)) + pngChunk("IEND", "");
  EXPECT_EQ(refusal(pngHeader(100'000, 100'000, 8, 6) + pixels),
            "the picture is too large: 100000 x 100000 pixels");
  EXPECT_EQ(refusal(pngHeader(10'001, 10'000, 1, 0) + pixels),
            "the picture is too large: 10001 x 10000 pixels");
  for (const auto& [width, height] :
       {std::pair{0U, 5U}, {5U, 0U}, {0U, 0U}, {0x80000000U, 1U}, {0xFFFFFFFFU, 0xFFFFFFFFU}}) {
    EXPECT_THROW((void)downscaled(pngHeader(width, height, 8, 2) + pixels), PictureError);
  }
  EXPECT_EQ(refusal(withSize(jpeg, baselineFrame, 60'000, 60'000)),
            "the picture is too large: 60000 x 60000 pixels");
  EXPECT_THROW((void)downscaled(withSize(jpeg, baselineFrame, 0, 10)), PictureError);
  EXPECT_THROW((void)downscaled(withSize(jpeg, baselineFrame, 10, 0)), PictureError);
  EXPECT_THROW((void)downscaled(withSize(jpeg, baselineFrame, 65'535, 65'535)), PictureError);
}

TEST_F(HostilePicturesTest, AHugePictureWithNoPixelsIsRefusedAtOnce) {
  EXPECT_THROW((void)downscaled(withSize(jpeg, baselineFrame, 10'000, 10'000)), PictureError);
  EXPECT_THROW((void)downscaled(pngHeader(10'000, 10'000, 16, 6) +
                                pngChunk("IDAT", zeros(100'000)) + pngChunk("IEND", "")),
               PictureError);
}

TEST_F(HostilePicturesTest, ALargePictureOfOneColourIsShown) {
  constexpr std::uint32_t side = 9'000;
  const std::string file = pngHeader(side, side, 1, 0) +
                           pngChunk("IDAT", zeros(side * (side / 8 + 1))) + pngChunk("IEND", "");
  EXPECT_LT(file.size(), 20'000U);
  EXPECT_EQ(pictureInJpeg(downscaled(file)).size, (PictureSize{800, 800}));
}

/// The most memory that this process has had, in KiB.
long peakKilobytes() {
  struct rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
#ifdef __APPLE__
  return usage.ru_maxrss >> 10;
#else
  return usage.ru_maxrss;
#endif
}

// Fails when texts are kept: each of these is small enough for the library to unpack.
TEST_F(HostilePicturesTest, TextsThatUnpackToGigabytesAreSteppedOver) {
  const std::string bomb = pngChunk("zTXt", std::string("a\0\0", 3) + zeros(7'500'000));
  std::string file = png;
  std::string bombs;
  for (int i = 0; i < 200; ++i) bombs += bomb;
  file.insert(file.find("IDAT") - 4, bombs);
  const long before = peakKilobytes();
  EXPECT_EQ(downscaled(file), downscaled(png));
  EXPECT_LT(peakKilobytes() - before, 200 << 10);
}

TEST_F(HostilePicturesTest, AColourProfileThatUnpacksToGigabytesIsPassedOver) {
  std::string file = png;
  file.insert(file.find("IDAT") - 4,
              pngChunk("iCCP", std::string("a\0\0", 3) + zeros(100'000'000)));
  EXPECT_EQ(downscaled(file), downscaled(png));
}

TEST_F(HostilePicturesTest, TooManyScansAreRefused) {
  // Scans that say nothing: the first bits of the first component, again and again.
  const std::size_t firstScan = positionOf(0xDA, progressiveJpeg);
  const std::size_t secondScan = progressiveJpeg.find("\xff\xc4", firstScan);
  ASSERT_NE(secondScan, std::string::npos);
  const std::string scan = progressiveJpeg.substr(firstScan, secondScan - firstScan);
  std::string file = progressiveJpeg.substr(0, secondScan);
  for (int i = 0; i < 30'000; ++i) file += scan;
  EXPECT_THROW((void)downscaled(file), PictureError);
}

TEST_F(HostilePicturesTest, AProgressivePictureThatNeedsTooMuchMemoryIsRefused) {
  const std::string file = withSize(progressiveJpeg, progressiveFrame, 10'000, 10'000);
  EXPECT_EQ(refusal(file), "unreadable JPEG: it needs too much memory");
}

TEST_F(HostilePicturesTest, SegmentsWithoutEndAreSteppedOver) {
  std::string flood;
  for (int i = 0; i < 2'000; ++i) {
    flood += segment(0xE1, std::string(30'000, 'x')) +
             segment(0xE2, std::string("ICC_PROFILE\0\1\1", 14) + std::string(30'000, 'x'));
  }
  std::string file = jpegFile(smoothPicture({20, 20}));
  file.insert(2, flood);
  EXPECT_EQ(downscaled(file), downscaled(jpegFile(smoothPicture({20, 20}))));
}

TEST_F(HostilePicturesTest, SegmentsOfImpossibleLengthAreRefused) {
  std::string file = jpeg;
  file.insert(2, std::string("\xff\xe1\0\1", 4));
  EXPECT_EQ(refusal(file), "unreadable JPEG: a segment is too short");
}

}  // namespace
}  // namespace corvane::testing
