#include "CorvaneCore/requests/Requests.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryHome.h"
#include "tests/unit/core/RecordRules.h"

namespace corvane::testing {
namespace {

constexpr const char* fullText =
    R"({"createdAt":"2026-01-31T12:00:00Z","requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345",)"
    R"("schemaVersion":1})";

TEST(CancelMarkerTest, EveryMemberFollowsItsRule) {
  expectRecordRules<CancelMarker>(fullText, {
                                                {"createdAt", "a date", Presence::required},
                                                {"requestId", "a string", Presence::required},
                                                {"schemaVersion", "an integer", Presence::required},
                                            });
}

TEST(CancelMarkerTest, IsWrittenBesideTheRequests) {
  const TemporaryHome home;
  const CancelMarker marker{.requestId = "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345",
                            .createdAt = *parseDate("2026-01-31T12:00:00Z")};
  marker.write(home.paths());
  const auto file = home.path() /
                    ".local/share/Corvane/AgentRunRequests/"
                    "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345.cancel";
  EXPECT_EQ(CancelMarker::fileURL(marker.requestId, home.paths()), file);
  EXPECT_EQ(readFile(file), fullText);
}

}  // namespace
}  // namespace corvane::testing
