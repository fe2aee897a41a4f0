#include <gmock/gmock.h>

#include <sys/stat.h>

#include <fstream>

#include "CorvaneCore/files/Folder.h"
#include "corvane_standin/jobs/DropFolder.h"
#include "tests/unit/standin/StandInFixture.h"

namespace corvane::testing {

using namespace standin;

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class DropFolderTest : public StandInFixture {
 protected:
  DropFolderTest() { paths.ensureAgentRunRequestsDirectoryExists(); }

  [[nodiscard]] std::filesystem::path place(const std::string& name) const {
    return paths.agentRunRequestsDirectory() / name;
  }
  void put(const std::string& name, const std::string& contents = "{}") const {
    std::ofstream(place(name)) << contents;
  }
  static std::string reason(const DroppedRequest& dropped) {
    return std::get<UnusableRequest>(dropped.request).reason;
  }

  const std::string id = makeRequestId();
  StandInLog quiet{StandInPaths(paths).logFile(), clock};
  const Ids ids{IdSource::random};
  DropFolder folder{paths, clock, quiet, ids, [](const DroppedRequest&) { return 0; }};
};

TEST_F(DropFolderTest, TakesARequestOut) {
  drop(request({"Sign in"}));
  const auto arrivals = folder.take();
  ASSERT_EQ(arrivals.requests.size(), 1U);
  EXPECT_EQ(std::get<AgentRunRequest>(arrivals.requests[0].request).projectName, "Corner Shop");
  EXPECT_THAT(listVisible(paths.agentRunRequestsDirectory()), IsEmpty());
  EXPECT_THAT(folder.take().requests, IsEmpty());
}

TEST_F(DropFolderTest, LeavesFilesAloneThatAreNotForIt) {
  put("." + id + ".runrequest.json");
  put("." + id + ".cancel");
  put(id + ".laterrequest.json");
  put("notes.txt");
  const auto before = home.entries();
  const auto arrivals = folder.take();
  EXPECT_THAT(arrivals.requests, IsEmpty());
  EXPECT_THAT(arrivals.cancelled, IsEmpty());
  EXPECT_EQ(home.entries(), before);
}

TEST_F(DropFolderTest, IdsComeOutInLowerCase) {
  put("ABCDEF00-0000-4000-8000-000000000001.cancel");
  put("ABCDEF00-0000-4000-8000-000000000001.runrequest.json", "[]");
  const auto arrivals = folder.take();
  EXPECT_THAT(arrivals.cancelled, ElementsAre("abcdef00-0000-4000-8000-000000000001"));
  EXPECT_EQ(arrivals.requests.at(0).id, "abcdef00-0000-4000-8000-000000000001");
  EXPECT_EQ(reason(arrivals.requests[0]), "expected an object");
}

TEST_F(DropFolderTest, ARequestWithoutAnIdForItsNameIsTakenAwayUnanswered) {
  put("mine.runrequest.json");
  EXPECT_THAT(folder.take().requests, IsEmpty());
  EXPECT_FALSE(fileExists(place("mine.runrequest.json")));
}

TEST_F(DropFolderTest, ARequestNamedAfterAnotherIsUnusable) {
  put(id + ".runrequest.json", AgentWire::encode(request({"Sign in"})));
  EXPECT_THAT(reason(folder.take().requests.at(0)), HasSubstr("another request id"));
}

TEST_F(DropFolderTest, WhatIsNoFileIsUnusable) {
  ASSERT_EQ(::mkfifo(place(id + ".runrequest.json").c_str(), 0600), 0);
  const auto arrivals = folder.take();
  ASSERT_EQ(arrivals.requests.size(), 1U);
  EXPECT_FALSE(fileExists(place(id + ".runrequest.json")));
}

TEST_F(DropFolderTest, WhatCannotBeRemovedIsHandedOutOnce) {
  // A folder that is not empty can neither be read nor removed, not even by the superuser.
  std::filesystem::create_directories(place(id + ".runrequest.json") / "inside");
  std::filesystem::create_directories(place(id + ".cancel") / "inside");
  const auto arrivals = folder.take();
  EXPECT_THAT(reason(arrivals.requests.at(0)), HasSubstr("cannot be taken out"));
  EXPECT_THAT(arrivals.cancelled, ElementsAre(id));
  for (int again = 0; again < 3; ++again) {
    const auto nothing = folder.take();
    EXPECT_THAT(nothing.requests, IsEmpty());
    EXPECT_THAT(nothing.cancelled, IsEmpty());
  }
  std::filesystem::remove_all(place(id + ".runrequest.json"));
  put(id + ".runrequest.json");
  EXPECT_EQ(folder.take().requests.size(), 1U);
}

TEST_F(DropFolderTest, ADanglingLinkIsTakenAway) {
  std::filesystem::create_symlink("nowhere", place(id + ".runrequest.json"));
  EXPECT_THAT(folder.take().requests, IsEmpty());
  EXPECT_FALSE(std::filesystem::is_symlink(place(id + ".runrequest.json")));
}

TEST_F(DropFolderTest, AMissingFolderIsAnEmptyOne) {
  std::filesystem::remove_all(paths.agentRunRequestsDirectory());
  EXPECT_THAT(folder.take().requests, IsEmpty());
}

}  // namespace
}  // namespace corvane::testing
