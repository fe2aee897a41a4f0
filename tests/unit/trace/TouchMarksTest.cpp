#include "corvane_mcp/trace/TouchMarks.h"

#include <gtest/gtest.h>

#include "tests/unit/trace/TestPictures.h"

namespace corvane::testing {
namespace {

constexpr Rgb grey{128, 128, 128};

Picture greyPicture(PictureSize size) {
  return drawn(size, [](int, int) { return grey; });
}

Picture marked(PictureSize size, const std::vector<TouchMark>& marks) {
  Picture picture = greyPicture(size);
  drawTouchMarks(picture, marks);
  return picture;
}

int touchedPixels(const Picture& picture) {
  int count = 0;
  for (int y = 0; y < picture.size.height; ++y) {
    for (int x = 0; x < picture.size.width; ++x) count += colourAt(picture, x, y) != grey ? 1 : 0;
  }
  return count;
}

/// How far the marked pixels reach.
struct Extent {
  int left = 1 << 20;
  int top = 1 << 20;
  int right = -1;
  int bottom = -1;
};

Extent extentOf(const Picture& picture) {
  Extent extent;
  for (int y = 0; y < picture.size.height; ++y) {
    for (int x = 0; x < picture.size.width; ++x) {
      if (colourAt(picture, x, y) == grey) continue;
      extent = {std::min(extent.left, x), std::min(extent.top, y), std::max(extent.right, x),
                std::max(extent.bottom, y)};
    }
  }
  return extent;
}

bool isBright(const Rgb& colour) {
  return colour[0] > 200;
}
bool isDark(const Rgb& colour) {
  return colour[0] < 60 && colour[1] < 60 && colour[2] < 60;
}

TEST(TouchMarksTest, BracketsStandAroundAPointAndLeaveItFree) {
  const Picture picture = marked({400, 800}, {{{200, 400}, {}}});
  const Extent extent = extentOf(picture);
  EXPECT_EQ(extent.left + extent.right, 399);
  EXPECT_EQ(extent.top + extent.bottom, 799);
  EXPECT_GT(extent.right - extent.left, 50);
  EXPECT_LT(extent.right - extent.left, 80);
  for (int y = 385; y < 415; ++y) {
    for (int x = 185; x < 215; ++x) ASSERT_EQ(colourAt(picture, x, y), grey);
  }
  // The sides are open between the corners.
  for (int x = extent.left; x <= extent.right; ++x) ASSERT_EQ(colourAt(picture, x, 400), grey);
  for (int y = extent.top; y <= extent.bottom; ++y) ASSERT_EQ(colourAt(picture, 200, y), grey);
}

TEST(TouchMarksTest, StrokesHaveABrightCoreInADarkCasing) {
  const Picture picture = marked({400, 800}, {{{100, 400}, Point{300, 400}}});
  // Straight through the middle of the line.
  std::string tones;
  for (int y = 380; y < 420; ++y) {
    const Rgb colour = colourAt(picture, 200, y);
    const char tone = isBright(colour) ? 'b' : isDark(colour) ? 'd' : colour == grey ? '.' : '~';
    if (tones.empty() || tones.back() != tone) tones += tone;
  }
  // The casing has smooth edges, so that there may be a pixel in between.
  std::erase(tones, '~');
  EXPECT_EQ(tones, ".dbd.");
}

TEST(TouchMarksTest, ADragHasALineToAMarkAtItsEnd) {
  const Picture tap = marked({400, 800}, {{{100, 200}, {}}});
  const Picture drag = marked({400, 800}, {{{100, 200}, Point{300, 600}}});
  EXPECT_TRUE(isBright(colourAt(drag, 200, 400)));
  EXPECT_EQ(colourAt(tap, 200, 400), grey);
  const auto markedNear = [&](int x, int y) {
    int count = 0;
    for (int dy = -12; dy < 12; ++dy) {
      for (int dx = -12; dx < 12; ++dx) count += colourAt(drag, x + dx, y + dy) != grey ? 1 : 0;
    }
    return count;
  };
  EXPECT_GT(markedNear(293, 586), markedNear(200, 400) * 3 / 2);
  EXPECT_LE(extentOf(drag).right, 308);
  EXPECT_LE(extentOf(drag).bottom, 608);
}

TEST(TouchMarksTest, SizesAreInProportion) {
  const Extent small = extentOf(marked({200, 400}, {{{100, 200}, {}}}));
  const Extent large = extentOf(marked({400, 800}, {{{200, 400}, {}}}));
  EXPECT_NEAR(2 * (small.right - small.left), large.right - large.left, 4);
}

TEST(TouchMarksTest, OnATinyPictureTheyStillLeaveThePointFree) {
  const Picture picture = marked({40, 40}, {{{20, 20}, {}}});
  EXPECT_GT(touchedPixels(picture), 40);
  EXPECT_EQ(colourAt(picture, 20, 20), grey);
}

// Fails when strokes get thinner than a pixel shows.
TEST(TouchMarksTest, OnATinyPictureTheirColourIsStillSeen) {
  const Picture picture = marked({40, 40}, {{{20.5, 20.5}, {}}});
  // The middle of an upper bracket's arm.
  EXPECT_TRUE(isBright(colourAt(picture, 16, 15)));
}

TEST(TouchMarksTest, AreCutAtTheBorder) {
  const PictureSize size{400, 800};
  const int whole = touchedPixels(marked(size, {{{200, 400}, {}}}));
  for (const Point edge : {Point{0, 400}, Point{400, 400}, Point{200, 0}, Point{200, 800}}) {
    EXPECT_EQ(touchedPixels(marked(size, {{edge, {}}})), whole / 2);
  }
  for (const Point corner : {Point{0, 0}, Point{400, 0}, Point{0, 800}, Point{400, 800}}) {
    EXPECT_EQ(touchedPixels(marked(size, {{corner, {}}})), whole / 4);
  }
}

// Fails when the far end, or the length of the way there, is beyond what the strokes are computed
// in.
TEST(TouchMarksTest, ADragMayEndFarOutside) {
  for (const double far : {1e12, 1e150, 1e200, 1.7e308}) {
    const Picture level = marked({400, 800}, {{{200, 400.5}, Point{far, 400.5}}});
    for (int x = 200; x < 400; ++x) ASSERT_TRUE(isBright(colourAt(level, x, 400))) << far;
    const Picture falling = marked({400, 800}, {{{200, 400}, Point{far, far}}});
    const Picture rising = marked({400, 800}, {{{200, 400}, Point{-far, -far}}});
    for (int i = 0; i < 200; ++i) {
      ASSERT_TRUE(isBright(colourAt(falling, 200 + i, 400 + i))) << far << ", " << i;
      ASSERT_TRUE(isBright(colourAt(rising, 199 - i, 399 - i))) << far << ", " << i;
    }
  }
}

TEST(TouchMarksTest, ADragToItsOwnStartShowsADot) {
  const Picture picture = marked({400, 800}, {{{200, 400}, Point{200, 400}}});
  EXPECT_TRUE(isBright(colourAt(picture, 200, 400)));
}

// Fails when a drag too short to be measured is divided by its length.
TEST(TouchMarksTest, ADragOfNearlyNoLengthShowsADot) {
  for (const double length : {1e-3, 1e-20, 1e-300}) {
    const Picture picture = marked({400, 800}, {{{200, 400}, Point{200 + length, 400 + length}}});
    EXPECT_TRUE(isBright(colourAt(picture, 200, 400))) << length;
  }
}

// Fails when strokes that lie on each other make their smooth edges harder.
TEST(TouchMarksTest, OneMarkOnAnotherLooksLikeOne) {
  const TouchMark tap{{130, 210}, {}};
  const TouchMark drag{{100, 200}, Point{310, 590}};
  const Picture once = marked({400, 800}, {tap, drag});
  EXPECT_EQ(marked({400, 800}, {drag, tap, tap, drag, drag}).bytes, once.bytes);
}

// Fails when a pixel beside one that a stroke has covered gets no look from the next.
TEST(TouchMarksTest, WhereMarksCrossTheNearestStrokeShows) {
  constexpr PictureSize size{400, 800};
  constexpr Rgb core{255, 228, 0};
  const TouchMark steep{{106, 190}, Point{294, 610}};
  const TouchMark flatter{{100, 200}, Point{300, 600}};
  const Picture one = marked(size, {steep});
  const Picture other = marked(size, {flatter});
  const Picture both = marked(size, {steep, flatter});
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      const Rgb first = colourAt(one, x, y);
      const Rgb second = colourAt(other, x, y);
      const bool firstIsNearer = first == core || second == grey;
      if (firstIsNearer || second == core || first == grey) {
        ASSERT_EQ(colourAt(both, x, y), firstIsNearer ? first : second) << x << ", " << y;
      }
    }
  }
}

// Fails when only so many marks are drawn, or when what lies under many strokes is passed over
// where they do not reach.
TEST(TouchMarksTest, EveryOneOfManyMarksIsDrawn) {
  constexpr PictureSize size{400, 800};
  std::vector<TouchMark> marks;
  marks.reserve(20'001);
  for (int y = 0; y < 100; ++y) {
    for (int x = 0; x < 200; ++x) marks.push_back({{x / 2.0, 40 + y * 2.0}, {}});
  }
  const Picture many = marked(size, marks);
  const Picture one = marked(size, {{{320, 600}, {}}});
  marks.insert(marks.begin() + 10'000, TouchMark{{320, 600}, {}});
  const Picture all = marked(size, marks);
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      const Picture& expected = x < 200 ? many : one;
      ASSERT_EQ(colourAt(all, x, y), colourAt(expected, x, y)) << x << ", " << y;
    }
  }
  EXPECT_TRUE(isBright(colourAt(many, 60, 100)));
  EXPECT_EQ(colourAt(many, 260, 100), grey);
}

TEST(TouchMarksTest, FitOnASinglePixel) {
  EXPECT_LE(touchedPixels(marked({1, 1}, {{{0.5, 0.5}, Point{1, 1}}})), 1);
}

}  // namespace
}  // namespace corvane::testing
