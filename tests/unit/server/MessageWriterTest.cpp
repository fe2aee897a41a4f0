#include "corvane_mcp/server/MessageWriter.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <future>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "corvane_mcp/server/LineReader.h"
#include "tests/support/AllocatedMemory.h"
#include "tests/support/Pipe.h"

namespace corvane::testing {
namespace {

/// What can be read now without waiting.
std::string readyText(int descriptor) {
  std::string text;
  std::array<char, 65536> chunk;
  pollfd ready{descriptor, POLLIN, 0};
  while (::poll(&ready, 1, 0) == 1 && (ready.revents & POLLIN) != 0) {
    const ssize_t count = ::read(descriptor, chunk.data(), chunk.size());
    if (count <= 0) break;
    text.append(chunk.data(), static_cast<std::size_t>(count));
  }
  return text;
}

class MessageWriterTest : public ::testing::Test {
 protected:
  MessageWriterTest() { std::signal(SIGPIPE, SIG_IGN); }

  Pipe pipe;
};

TEST_F(MessageWriterTest, EndsEveryMessageWithALineFeed) {
  MessageWriter writer(std::move(pipe.writing));
  writer.send("one");
  writer.send("");
  writer.send(R"({"two":"ü"})");
  EXPECT_EQ(readyText(pipe.reading.get()), "one\n\n{\"two\":\"ü\"}\n");
}

TEST_F(MessageWriterTest, KeepsQueuedMessagesUntilTheyAreFlushed) {
  MessageWriter writer(std::move(pipe.writing));
  writer.queue("one");
  writer.queue("two");
  EXPECT_EQ(readyText(pipe.reading.get()), "");
  writer.flush();
  EXPECT_EQ(readyText(pipe.reading.get()), "one\ntwo\n");
  writer.flush();
  EXPECT_EQ(readyText(pipe.reading.get()), "");
}

TEST_F(MessageWriterTest, SendsQueuedMessagesBeforeLaterOnes) {
  MessageWriter writer(std::move(pipe.writing));
  writer.queue("one");
  writer.send("two");
  EXPECT_EQ(readyText(pipe.reading.get()), "one\ntwo\n");
}

TEST_F(MessageWriterTest, SendsAMessageThatIsEncodedMeanwhile) {
  MessageWriter writer(std::move(pipe.writing));
  writer.queue("one");
  writer.sendWhileEncoding([](JsonSink& sink) { sink.string("two"); });
  writer.sendWhileEncoding([](JsonSink& sink) { sink.integer(3); });
  EXPECT_EQ(readyText(pipe.reading.get()), "one\n\"two\"\n3\n");
}

TEST_F(MessageWriterTest, ALargeMessageLeavesWhileItIsEncoded) {
  const std::string text(200'000, 'x');
  std::promise<void> arrived;
  std::future<std::string> everything = std::async(std::launch::async, [&] {
    std::string first(1000, '\0');
    first.resize(static_cast<std::size_t>(::read(pipe.reading.get(), first.data(), first.size())));
    arrived.set_value();
    return first + readToEnd(pipe.reading.get());
  });
  {
    MessageWriter writer(std::move(pipe.writing));
    writer.sendWhileEncoding([&](JsonSink& sink) {
      sink.beginArray();
      sink.string(text);
      EXPECT_EQ(arrived.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
      sink.endArray();
    });
  }
  EXPECT_TRUE(everything.get() == "[\"" + text + "\"]\n");
}

TEST_F(MessageWriterTest, AMessageThatCannotBeEncodedLeavesNothing) {
  MessageWriter writer(std::move(pipe.writing));
  EXPECT_THROW(writer.sendWhileEncoding([](JsonSink& sink) {
    sink.beginArray();
    sink.number(std::numeric_limits<double>::infinity());
  }),
               EncodeError);
  writer.send("next");
  EXPECT_EQ(readyText(pipe.reading.get()), "next\n");
}

TEST_F(MessageWriterTest, AMessageBrokenOffDoesNotSpoilTheNext) {
  std::future<std::string> everything =
      std::async(std::launch::async, [this] { return readToEnd(pipe.reading.get()); });
  {
    MessageWriter writer(std::move(pipe.writing));
    EXPECT_THROW(writer.sendWhileEncoding([](JsonSink& sink) {
      sink.beginArray();
      sink.string(std::string(200'000, 'x'));
      sink.number(std::numeric_limits<double>::infinity());
    }),
                 EncodeError);
    writer.send("next");
  }
  const std::string received = everything.get();
  EXPECT_EQ(received.substr(0, 3), "[\"x");
  EXPECT_EQ(std::count(received.begin(), received.end(), '\n'), 2);
  EXPECT_TRUE(received.ends_with("\nnext\n"));
}

TEST_F(MessageWriterTest, DoesNotQueueWithoutBound) {
  std::future<std::string> everything =
      std::async(std::launch::async, [this] { return readToEnd(pipe.reading.get()); });
  std::size_t sent = 0;
  {
    MessageWriter writer(std::move(pipe.writing));
    const std::string message(1000, 'x');
    // Nobody flushes: what has piled up leaves by itself.
    for (int i = 0; i < 1000; ++i, sent += 1001) writer.queue(message);
  }
  const std::size_t received = everything.get().size();
  EXPECT_GT(received, sent - (std::size_t{128} << 10));
}

TEST_F(MessageWriterTest, DropsWhatIsWrittenToAReaderThatIsGone) {
  const int descriptor = pipe.writing.get();
  MessageWriter writer(std::move(pipe.writing));
  pipe.reading.close();
  for (int i = 0; i < 100; ++i) writer.send(std::string(10'000, 'x'));
  writer.queue("y");
  writer.flush();
  // Nothing of that is left for whoever reads next.
  const Pipe next;
  ::dup2(next.writing.get(), descriptor);
  writer.send("z");
  EXPECT_EQ(readyText(next.reading.get()), "z\n");
}

// Fails when the memory for a huge message is kept for the messages after it.
TEST_F(MessageWriterTest, TheMemoryForAHugeMessageIsGivenBack) {
  const std::string huge(8'000'000, 'x');
  MessageWriter writer(FileDescriptor(::open("/dev/null", O_WRONLY | O_CLOEXEC)));
  const std::size_t before = allocatedBytes();
  writer.queue(huge);
  writer.queue("next");
  EXPECT_LT(allocatedBytes(), before + 1'000'000);
}

TEST_F(MessageWriterTest, NoticesAReaderThatGoesWhileItWaitsForIt) {
  MessageWriter writer(std::move(pipe.writing));
  auto sending = std::async(std::launch::async, [&] { writer.send(std::string(1'000'000, 'x')); });
  std::array<char, 100> some;
  EXPECT_GT(::read(pipe.reading.get(), some.data(), some.size()), 0);
  pipe.reading.close();
  sending.get();
}

TEST_F(MessageWriterTest, WaitsForASlowReaderOfANonBlockingDescriptor) {
  makeNonBlocking(pipe.writing.get());
  const int mode = ::fcntl(pipe.writing.get(), F_GETFL);
  const FileDescriptor same(::fcntl(pipe.writing.get(), F_DUPFD_CLOEXEC, 0));
  const std::string message(1'000'000, 'x');
  std::future<std::size_t> received = std::async(std::launch::async, [&] {
    std::size_t length = 0;
    std::array<char, 1000> chunk;
    while (length < message.size() + 1) {
      length += static_cast<std::size_t>(::read(pipe.reading.get(), chunk.data(), chunk.size()));
    }
    return length;
  });
  MessageWriter writer(std::move(pipe.writing));
  writer.send(std::string(message));
  EXPECT_EQ(received.get(), message.size() + 1);
  EXPECT_EQ(::fcntl(same.get(), F_GETFL), mode);
}

TEST_F(MessageWriterTest, SharesASocketWithTheInput) {
  SocketPair sockets;
  makeNonBlocking(sockets.theirs.get());
  LineReader reader(sockets.theirs.get());
  MessageWriter writer(FileDescriptor(::dup(sockets.theirs.get())));
  writeAll(sockets.ours.get(), "one\ntwo\n");
  ASSERT_TRUE(reader.readMore());
  while (const auto line = reader.nextBuffered()) writer.send(std::string(line->text));
  EXPECT_EQ(readyText(sockets.ours.get()), "one\ntwo\n");
}

TEST_F(MessageWriterTest, KeepsMessagesOfSeveralThreadsWholeAndInOrder) {
  constexpr int threadCount = 4;
  constexpr int messageCount = 500;
  std::future<std::string> everything =
      std::async(std::launch::async, [this] { return readToEnd(pipe.reading.get()); });
  {
    MessageWriter writer(std::move(pipe.writing));
    std::vector<std::thread> threads;
    for (int name = 0; name < threadCount; ++name) {
      threads.emplace_back([&writer, name] {
        for (int i = 0; i < messageCount; ++i) {
          const std::string message = std::to_string(name) + " " + std::to_string(i) + " " +
                                      std::string(static_cast<std::size_t>(i * 7 % 3000), 'x');
          if (i % 3 == 0) {
            writer.queue(message);
          } else {
            writer.send(std::string(message));
          }
        }
        writer.flush();
      });
    }
    for (auto& thread : threads) thread.join();
  }
  std::map<int, int> next;
  std::istringstream lines(everything.get());
  int name = 0;
  int number = 0;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string filling;
    words >> name >> number >> filling;
    ASSERT_EQ(number, next[name]) << line.substr(0, 40);
    ASSERT_EQ(filling, std::string(static_cast<std::size_t>(number * 7 % 3000), 'x'));
    ++next[name];
  }
  for (int thread = 0; thread < threadCount; ++thread) EXPECT_EQ(next[thread], messageCount);
}

TEST_F(MessageWriterTest, NothingComesBetweenThePiecesOfALargeMessage) {
  constexpr int count = 50;
  std::future<std::string> everything =
      std::async(std::launch::async, [this] { return readToEnd(pipe.reading.get()); });
  const std::string text(300'000, 'x');
  {
    MessageWriter writer(std::move(pipe.writing));
    const auto sendLarge = [&] {
      for (int i = 0; i < count; ++i) {
        writer.sendWhileEncoding([&](JsonSink& sink) { sink.string(text); });
      }
    };
    std::thread one(sendLarge);
    std::thread other(sendLarge);
    for (int i = 0; i < count; ++i) {
      writer.queue("queued");
      writer.send("sent");
    }
    one.join();
    other.join();
  }
  std::map<std::string, int> received;
  std::istringstream lines(everything.get());
  for (std::string line; std::getline(lines, line);) ++received[line];
  EXPECT_TRUE(
      (received == std::map<std::string, int>{
                       {"\"" + text + "\"", 2 * count}, {"queued", count}, {"sent", count}}));
}

/// What one call of emit puts on the wire.
std::string sent(AnyCodable token, double progress, std::optional<double> total,
                 std::string_view message) {
  Pipe pipe;
  {
    MessageWriter writer(std::move(pipe.writing));
    ProgressReporter(writer, std::move(token)).emit(progress, total, message);
  }
  return readToEnd(pipe.reading.get());
}

TEST(ProgressReporterTest, SendsOneNotificationWithEscapedSlashes) {
  EXPECT_EQ(sent(5, 1, std::nullopt, "step 1/2"),
            R"({"jsonrpc":"2.0","method":"notifications\/progress","params":)"
            R"({"message":"step 1\/2","progress":1,"progressToken":5}})"
            "\n");
}

TEST(ProgressReporterTest, SendsATotalOnlyWhenThereIsOne) {
  EXPECT_EQ(sent("a", 0.5, 2, ""),
            R"({"jsonrpc":"2.0","method":"notifications\/progress","params":)"
            R"({"message":"","progress":0.5,"progressToken":"a","total":2}})"
            "\n");
}

TEST(ProgressReporterTest, SendsTheTokenAsItCame) {
  EXPECT_EQ(sent(AnyCodable::Object{{"b", 1.5}, {"a", nullptr}}, 1, std::nullopt, "m"),
            R"({"jsonrpc":"2.0","method":"notifications\/progress","params":)"
            R"({"message":"m","progress":1,"progressToken":{"a":null,"b":1.5}}})"
            "\n");
}

TEST(ProgressReporterTest, DropsWhatHasNoJsonForm) {
  EXPECT_EQ(sent(1, std::numeric_limits<double>::quiet_NaN(), std::nullopt, "m"), "");
  EXPECT_EQ(sent(1, 1, std::numeric_limits<double>::infinity(), "m"), "");
}

}  // namespace
}  // namespace corvane::testing
