#include "corvanectl/report/HtmlReport.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "CorvaneCore/text/Base64.h"
#include "ReportFixture.h"
#include "corvanectl/report/PictureSize.h"

namespace corvane::testing {
namespace {

using namespace ctl;

/// The header of a JPEG of 3 by 258 pixels: two segments, the second of which begins the frame.
const std::string jpeg("\xFF\xD8\xFF\xE0\x00\x04xx\xFF\xC0\x00\x0B\x08\x01\x02\x00\x03", 17);

StepPictures noPictures(std::size_t, const AgentRunResult::Step&) {
  return {};
}

std::string pageOf(const Report& report, const PictureSource& pictures = noPictures) {
  std::string page;
  writeHtmlReport(report, pictures, [&](std::string_view part) { page += part; });
  return page;
}

/// How often `text` stands in the page.
std::size_t count(const std::string& page, std::string_view text) {
  std::size_t found = 0;
  for (auto at = page.find(text); at != std::string::npos; at = page.find(text, at + 1)) ++found;
  return found;
}

TEST(PictureSize, StandsInTheHeaderOfAJpeg) {
  const auto size = jpegSize(jpeg);
  ASSERT_TRUE(size);
  EXPECT_EQ(size->width, 3);
  EXPECT_EQ(size->height, 258);
  // The table that a Huffman code needs begins no frame.
  std::string other = jpeg;
  other[9] = '\xC4';
  EXPECT_FALSE(jpegSize(other));
}

// Fails when it reads beyond the bytes, which the sanitizer tells.
TEST(PictureSize, IsUnknownWhereTheHeaderIsCut) {
  for (std::size_t length = 0; length < jpeg.size(); ++length) {
    const std::string cut = jpeg.substr(0, length);
    EXPECT_FALSE(jpegSize(cut)) << length;
  }
  EXPECT_FALSE(jpegSize("\x89PNG\r\n and more than enough of it"));
}

TEST(HtmlReport, MarksHowTestsAndStepsWent) {
  const std::string page = pageOf(failedRun());
  EXPECT_EQ(count(page, R"(<section class="test healed" data-outcome="healed">)"), 1U);
  EXPECT_EQ(count(page, R"(<section class="test failed" data-outcome="failed">)"), 1U);
  EXPECT_EQ(count(page, R"(<div role="listitem" class="step passed" data-outcome="passed">)"), 1U);
  EXPECT_EQ(
      count(page,
            R"(<div role="listitem" class="step failed" data-outcome="failed"><details open>)"),
      1U);
  EXPECT_EQ(count(page, R"(<p class="reason" dir="auto">No button</p>)"), 1U);
  EXPECT_EQ(count(page, R"(<dt>App under test</dt><dd>com.shop 1.2 build 45</dd>)"), 1U);
  EXPECT_EQ(count(page, R"(<dt>Credits</dt><dd>1.5 spent, 20 left</dd>)"), 1U);
  EXPECT_EQ(count(page, R"(<dt>Finished</dt><dd>2026-01-31 12:00:00 UTC</dd>)"), 1U);
}

TEST(HtmlReport, ShowsPicturesSideBySide) {
  const std::string page =
      pageOf(failedRun(), [](std::size_t test, const AgentRunResult::Step& step) {
        if (test != 1 || step.index != 1) return StepPictures();
        return StepPictures{
            {{"before", "image/jpeg", base64(jpeg)}, {"after", "image/png", "Zm9v"}}, ""};
      });
  EXPECT_EQ(count(page, R"(<div class="pictures"><figure><figcaption>before</figcaption>)"
                        R"(<img loading="lazy" decoding="async" )"
                        R"(alt="The screen before step 1: TAP: Tap Pay" width="3" height="258" )"
                        R"(src="data:image/jpeg;base64,)" +
                            base64(jpeg) +
                            R"("></figure><figure><figcaption>after</figcaption>)"
                            R"(<img loading="lazy" decoding="async" )"
                            R"(alt="The screen after step 1: TAP: Tap Pay" )"
                            R"(src="data:image/png;base64,Zm9v"></figure></div>)"),
            1U);
}

TEST(HtmlReport, TellsWhyThereAreNoPictures) {
  const std::string page = pageOf(failedRun(), [](std::size_t, const AgentRunResult::Step&) {
    return StepPictures{{}, "(no frames <recorded>)"};
  });
  EXPECT_EQ(count(page, R"(<p class="without">(no frames &lt;recorded&gt;)</p>)"), 4U);
}

// Fails when any text of a result comes into the page as markup.
TEST(HtmlReport, ShowsMarkupAsText) {
  const std::string evil = "\"><script>alert('1')</script>&amp;";
  Report report;
  report.requestId = report.title = report.status = report.totals = evil;
  report.remarks = {evil};
  report.url = "https://" + evil;
  report.facts = {{evil, evil}};
  auto& test = report.tests.emplace_back();
  test.testName = test.status = evil;
  auto& each = test.steps.emplace_back(step(0, evil, evil));
  each.title = evil;
  each.failureReason = evil;
  const std::string page = pageOf(report, [&](std::size_t, const AgentRunResult::Step&) {
    return StepPictures{{{evil, evil, "Zm9v"}}, evil};
  });
  EXPECT_EQ(count(page, "alert("), count(page,
                                         "&quot;&gt;&lt;script&gt;alert('1')"
                                         "&lt;/script&gt;&amp;amp;"));
  EXPECT_EQ(count(page, "<script"), 1U);
  EXPECT_EQ(count(page, "alert("), 22U);
}

TEST(HtmlReport, LinksToPagesOnly) {
  Report report;
  report.url = "https://example.com/?a=1&b=2";
  EXPECT_EQ(count(pageOf(report), R"(href="https://example.com/?a=1&amp;b=2")"), 1U);
  report.url = "javascript:alert(1)";
  EXPECT_EQ(count(pageOf(report), R"(<p class="remark">javascript:alert(1)</p>)"), 1U);
}

TEST(HtmlReport, LeavesOutWhatIsNoBase64) {
  const std::string page = pageOf(failedRun(), [](std::size_t, const AgentRunResult::Step&) {
    return StepPictures{{{"before", "image/jpeg", "no base64!"}}, ""};
  });
  EXPECT_EQ(count(page, "<img"), 0U);
  EXPECT_EQ(count(page, "no base64!"), 0U);
}

// Fails when pictures pile up in memory before they are handed on.
TEST(HtmlReport, HandsOnEachPictureBeforeTheNext) {
  constexpr std::size_t steps = 50;
  constexpr std::size_t heldAtMost = std::size_t{64} << 10;
  Report report;
  auto& test = report.tests.emplace_back();
  for (std::size_t i = 0; i < steps; ++i) {
    test.steps.push_back(step(static_cast<std::int64_t>(i), "Tap", "passed"));
  }
  const std::string picture = base64(std::string(300'000, 'x'));
  std::size_t asked = 0;
  std::size_t handedOn = 0;
  std::vector<std::size_t> told;
  writeHtmlReport(
      report,
      [&](std::size_t, const AgentRunResult::Step&) {
        EXPECT_GE(handedOn + heldAtMost, asked * picture.size());
        ++asked;
        return StepPictures{{{"before", "image/jpeg", picture}}, ""};
      },
      [&](std::string_view part) { handedOn += part.size(); },
      [&](std::size_t written) { told.push_back(written); });
  EXPECT_EQ(asked, steps);
  ASSERT_EQ(told.size(), steps);
  EXPECT_EQ(told.front(), 0U);
  EXPECT_EQ(told.back(), steps - 1);
}

}  // namespace
}  // namespace corvane::testing
