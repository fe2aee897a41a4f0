#include "CorvaneCore/json/JsonTokens.h"

#include <gtest/gtest.h>
#include <simdjson.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <stdexcept>

#include "CorvaneCore/json/AnyCodable.h"
#include "tests/support/AllocatedMemory.h"

namespace corvane::testing {
namespace {

using Kernel = const simdjson::implementation*;

/// The kernels of the library that this processor can run, the portable one among them.
std::vector<Kernel> kernels() {
  std::vector<Kernel> all;
  for (const Kernel kernel : simdjson::get_available_implementations()) {
    if (kernel->supported_by_runtime_system()) all.push_back(kernel);
  }
  return all;
}

/// Memory with texts that end where it does: reading on ends the test program.
class Edge {
 public:
  Edge() {
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    size = 2 * page;
    void* mapped =
        ::mmap(nullptr, size + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) throw std::runtime_error("no memory");
    begin = static_cast<char*>(mapped);
    ::mprotect(begin + size, page, PROT_NONE);
  }
  Edge(const Edge&) = delete;
  Edge& operator=(const Edge&) = delete;
  ~Edge() { ::munmap(begin, size + static_cast<std::size_t>(::sysconf(_SC_PAGESIZE))); }

  /// `text`, valid until the next call.
  std::string_view place(std::string_view text) {
    std::memcpy(begin + size - text.size(), text.data(), text.size());
    return {begin + size - text.size(), text.size()};
  }

 private:
  char* begin = nullptr;
  std::size_t size = 0;
};

/// Runs every test with one kernel after the other.
class JsonTokensTest : public ::testing::Test {
 protected:
  ~JsonTokensTest() override { simdjson::get_active_implementation() = chosen; }

  /// What a kernel makes of a text: the offsets of the tokens and of the end, or the error.
  std::string found(Kernel kernel, std::string_view text) {
    simdjson::get_active_implementation() = kernel;
    JsonTokens tokens;
    try {
      tokens.find(edge.place(text));
    } catch (const DecodeError& error) {
      return error.what();
    }
    std::string offsets;
    for (const auto* next = tokens.begin(); next != tokens.end(); ++next) {
      offsets += std::to_string(*next) + " ";
    }
    return offsets + "of " + std::to_string(*tokens.end());
  }
  void expectFound(std::string_view text, const std::string& expected) {
    for (const Kernel kernel : kernels()) {
      EXPECT_EQ(found(kernel, text), expected) << kernel->name() << ": " << text;
    }
  }

  const Kernel chosen = simdjson::get_active_implementation();
  Edge edge;
};

TEST_F(JsonTokensTest, TheProcessorHasAPortableKernelAtLeast) {
  const auto all = kernels();
  EXPECT_TRUE(std::any_of(all.begin(), all.end(),
                          [](Kernel kernel) { return kernel->name() == "fallback"; }));
}

TEST_F(JsonTokensTest, AreBracketsStringsAndWhatStandsBetween) {
  expectFound(R"({"a":[1,true], "b\"]" : nul })", "0 1 4 5 6 7 8 12 13 15 22 24 28 of 29");
  expectFound("7", "0 of 1");
  expectFound(R"(["",é 5])", "0 1 3 4 7 8 of 9");
  // A character that is escaped outside strings begins none.
  expectFound(R"([\"a, \\"]"])", "0 1 4 6 11 of 12");
}

// Fails when a rule is left to the library's portable kernel, or that reads on.
TEST_F(JsonTokensTest, TextsAreRefusedAlike) {
  const std::string notUtf8 = "not valid JSON: the text is not valid UTF-8";
  const std::string notClosed = "not valid JSON: a string is not closed";
  expectFound("", "not valid JSON: the text is empty");
  expectFound(" \t\r\n", "not valid JSON: the text is empty");
  expectFound("\xEF\xBB\xBF[]", "not valid JSON: the text begins with a byte order mark");
  for (const char* cut : {"\xC3", "\xE2\x82", "\xF0\x9F\x98", "[1]\xE2", "\"\"\xF0\x9F"}) {
    expectFound(cut, notUtf8);
  }
  for (const char* wrong : {"[\xFF]", "\xC0\x80", "\xED\xA0\x80", "[\"\xFF\"]", "\x80"}) {
    expectFound(wrong, notUtf8);
  }
  for (const char* open : {"\"", "[\"a", R"("\")", "\"\\", "1\"", "a\"[\"\"", "\"\xC3"}) {
    expectFound(open, notClosed);
  }
  expectFound("[\"a\nb\"]", "not valid JSON: a string holds an unescaped control character");
  expectFound(std::string_view("\"\0\"", 3),
              "not valid JSON: a string holds an unescaped control character");
  expectFound("\"\\\x1f\"", "not valid JSON: a string holds an unescaped control character");
}

/// Texts of all lengths around the blocks that vector instructions work on, of what begins and ends
/// something and of UTF-8 in parts.
TEST_F(JsonTokensTest, EveryKernelFindsTheSame) {
  const std::vector<std::string_view> parts{"{", "}",    "[",        "]",    ":",    ",",
                                            "1", "true", "\"",       "\"",   "\"",   "\\",
                                            " ", "\n",   "\xC3\xA9", "\xE2", "\x82", "\x01"};
  std::mt19937 random(16);
  const auto all = kernels();
  std::size_t accepted = 0;
  for (int round = 0; round < 3'000; ++round) {
    // Most texts are of few kinds of parts: others would be refused at once.
    const std::size_t kinds = 1 + random() % parts.size();
    const std::size_t length = random() % 200;
    std::string text;
    while (text.size() < length) text += parts[random() % kinds];
    const std::string expected = found(all.front(), text);
    if (!expected.starts_with("not valid")) ++accepted;
    for (const Kernel kernel : all) {
      ASSERT_EQ(found(kernel, text), expected) << kernel->name() << ": " << text;
    }
  }
  EXPECT_GT(accepted, 300U);
}

// Fails when the memory for a huge text is kept for the texts after it.
TEST_F(JsonTokensTest, TheMemoryForAHugeTextIsGivenBack) {
  const std::string huge = "[" + std::string(8'000'000, ' ') + "]";
  JsonTokens tokens;
  tokens.find("[]");
  const std::size_t before = allocatedBytes();
  tokens.find(huge);
  EXPECT_GT(allocatedBytes(), before + huge.size());
  tokens.find("[]");
  EXPECT_LT(allocatedBytes(), before + 1'000'000);
}

}  // namespace
}  // namespace corvane::testing
