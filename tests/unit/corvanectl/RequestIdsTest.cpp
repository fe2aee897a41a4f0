#include "corvanectl/answers/RequestIds.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/JsonReader.h"
#include "tests/support/ErrorText.h"

namespace corvane::testing {
namespace {

using namespace ctl;

StatusAnswer statusFrom(std::string_view json) {
  return readStatus(*readJson(json).object());
}

std::vector<std::string> idsOf(const StatusAnswer& status) {
  std::vector<std::string> ids;
  for (const auto& request : status.requests) ids.push_back(request.id);
  return ids;
}

const std::string queue =
    R"("activity":{"active":{"requestId":"a1","kind":"run","startedAt":"2026-01-31T12:00:00Z"},)"
    R"("queued":[{"requestId":"b2","kind":"run","position":1},)"
    R"({"requestId":"c3","kind":"explore","position":2}]},)"
    R"("recentRequests":[{"requestId":"a1","status":"running","projectName":"Shop",)"
    R"("secondsSinceUpdate":1},{"requestId":"d4","status":"passed"}]})";

// Fails when the queue is told in its own order, or a request twice.
TEST(KnownRequests, BeginWithTheOneThatWasAskedForLast) {
  const auto status = statusFrom(R"({"appRunning":true,)" + queue);
  EXPECT_EQ(idsOf(status), (std::vector<std::string>{"c3", "b2", "a1", "d4"}));
  EXPECT_EQ(status.requests[0].place, KnownRequest::Place::queued);
  EXPECT_EQ(status.requests[2].place, KnownRequest::Place::active);
  EXPECT_EQ(status.requests[2].project, "Shop");
  EXPECT_EQ(status.requests[2].source, "run");
}

TEST(KnownRequests, EndWithTheWorkOfAnAppThatIsGone) {
  EXPECT_EQ(idsOf(statusFrom(R"({"appRunning":false,)" + queue)),
            (std::vector<std::string>{"a1", "d4", "c3", "b2"}));
}

TEST(KnownRequests, AreReadAsFarAsTheyMakeSense) {
  const auto status = statusFrom(
      R"({"appRunning":1,"activity":{"queued":"x"},"recentRequests":[{},{"requestId":"a",)"
      R"("secondsSinceUpdate":"y"}]})");
  EXPECT_FALSE(status.appRunning);
  EXPECT_EQ(idsOf(status), std::vector<std::string>{"a"});
  EXPECT_EQ(status.requests[0].secondsAgo, std::nullopt);
}

class RequestIdsTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string whole(const std::string& named) const {
    return wholeRequestId(named, requests);
  }

  const std::vector<KnownRequest> requests = [] {
    std::vector<KnownRequest> known;
    for (const char* id :
         {"3f2a0000-0000-4000-8000-000000000001", "3f2b0000-0000-4000-8000-000000000002"}) {
      known.emplace_back().id = id;
    }
    return known;
  }();
};

TEST_F(RequestIdsTest, LastIsTheFirstOfThem) {
  EXPECT_EQ(whole("last"), requests[0].id);
}

// Fails when case counts, or the first that fits is taken though another fits, too.
TEST_F(RequestIdsTest, ABeginningStandsForTheOneThatHasIt) {
  EXPECT_EQ(whole("3F2B"), requests[1].id);
  EXPECT_EQ(errorText<UsageError>([&] { (void)whole("3f2"); }),
            "'3f2' is the beginning of several requests: 3f2a0000-0000-4000-8000-000000000001, "
            "3f2b0000-0000-4000-8000-000000000002");
  EXPECT_EQ(
      errorText<UsageError>([&] { (void)whole("4"); }),
      "no request that the server tells of begins with '4'. It tells of the five that changed "
      "last and of what the app has in hand ('corvanectl list'); name others by their whole "
      "id");
}

// Fails when an id of which the server does not tell is refused here.
TEST_F(RequestIdsTest, OtherIdsStayAsTheyAre) {
  EXPECT_EQ(whole("11111111-2222-4333-8444-555555555555"), "11111111-2222-4333-8444-555555555555");
}

TEST_F(RequestIdsTest, WhatCanBeNoIdIsRefused) {
  for (const char* name : {"", "REQUEST", "3f2a "}) {
    EXPECT_EQ(errorText<UsageError>([&] { (void)whole(name); }),
              "'" + std::string(name) +
                  "' is neither the id of a request nor the beginning of one nor 'last' "
                  "('corvanectl list' shows requests)");
  }
}

TEST_F(RequestIdsTest, LastOfNoneIsAnError) {
  EXPECT_EQ(
      errorText<UsageError>([] { (void)wholeRequestId("last", std::vector<KnownRequest>()); }),
      "there is no last request: Corvane.app has none in hand and has answered none of late");
}

}  // namespace
}  // namespace corvane::testing
