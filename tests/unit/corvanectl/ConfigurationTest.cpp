#include "corvanectl/setup/Configuration.h"

#include <gtest/gtest.h>

namespace corvane::testing {
namespace {

using namespace ctl;
using Format = ConfigurationFormat;

const EntryPlace inJson{"mcpServers", "corvane"};
const EntryPlace inToml{"mcp_servers", "corvane"};
const ServerEntry entry{{"command", "/bin/corvane-mcp"}};

std::string with(const std::string& text, Format format = Format::json,
                 const EntryPlace& place = inJson, const ServerEntry& added = entry) {
  const auto configuration = readConfiguration(format, text, place);
  return configuration->with(configuration->written(added));
}
std::string without(const std::string& text, Format format = Format::json,
                    const EntryPlace& place = inJson) {
  return readConfiguration(format, text, place)->without();
}
std::string commented(const std::string& text) {
  return with(text, Format::jsonWithComments);
}

/// Why a text is refused.
std::string fault(const std::string& text, Format format = Format::json) {
  try {
    (void)with(text, format, format == Format::toml ? inToml : inJson);
  } catch (const ConfigurationFault& refused) {
    return refused.what();
  }
  return "none";
}

/// Puts the entry in and takes it out again.
void expectRestored(const std::string& text, Format format, const EntryPlace& place) {
  EXPECT_EQ(without(with(text, format, place), format, place), text);
}

const std::string alone =
    "{\n"
    "  \"mcpServers\": {\n"
    "    \"corvane\": {\n"
    "      \"command\": \"/bin/corvane-mcp\"\n"
    "    }\n"
    "  }\n"
    "}";

TEST(JsonConfiguration, AnEmptyTextBecomesAWholeOne) {
  EXPECT_EQ(with(""), alone + "\n");
  EXPECT_EQ(with(" \n"), " \n" + alone + "\n");
  EXPECT_EQ(with("\xEF\xBB\xBF"), "\xEF\xBB\xBF" + alone + "\n");
  EXPECT_EQ(commented("// mine"), "// mine\n" + alone + "\n");
}

TEST(JsonConfiguration, AnEmptyObjectIsFilled) {
  EXPECT_EQ(with("{}"), alone);
  EXPECT_EQ(with("{\n}\n"), alone + "\n");
  EXPECT_EQ(with("{\n  \"mcpServers\": {}\n}"), alone);
  EXPECT_EQ(with("\xEF\xBB\xBF{}"), "\xEF\xBB\xBF" + alone);
}

// Fails when the indentation of the file does not count, or the order of what is there.
TEST(JsonConfiguration, OthersStayAsTheyAre) {
  EXPECT_EQ(with("{\n\t\"z\": 1.50,\n\t\"mcpServers\": {\n\t\t\"b\": {\"command\":\t\"x\"},\n"
                 "\t\t\"a\": {}\n\t},\n\t\"y\": \"\\u00e9\"\n}\n"),
            "{\n\t\"z\": 1.50,\n\t\"mcpServers\": {\n\t\t\"b\": {\"command\":\t\"x\"},\n"
            "\t\t\"a\": {},\n\t\t\"corvane\": {\n\t\t\t\"command\": \"/bin/corvane-mcp\"\n\t\t}\n"
            "\t},\n\t\"y\": \"\\u00e9\"\n}\n");
}

TEST(JsonConfiguration, TheObjectOfTheServersIsMade) {
  EXPECT_EQ(with("{\n   \"theme\": \"dark\" }\n"),
            "{\n   \"theme\": \"dark\",\n   \"mcpServers\": {\n      \"corvane\": {\n"
            "         \"command\": \"/bin/corvane-mcp\"\n      }\n   } }\n");
}

TEST(JsonConfiguration, WhatIsOnOneLineStaysThere) {
  EXPECT_EQ(with(R"({"a":1})"),
            R"({"a":1,"mcpServers":{"corvane":{"command":"/bin/corvane-mcp"}}})");
  EXPECT_EQ(with(R"({ "a": 1, "mcpServers": {} })"),
            R"({ "a": 1, "mcpServers": {"corvane":{"command":"/bin/corvane-mcp"}} })");
  EXPECT_EQ(with("{\n  \"mcpServers\": {\"b\": {}}\n}"),
            "{\n  \"mcpServers\": {\"b\": {},\"corvane\":{\"command\":\"/bin/corvane-mcp\"}}\n}");
}

TEST(JsonConfiguration, LinesEndAsTheyDid) {
  EXPECT_EQ(with("{\r\n  \"a\": 1\r\n}\r\n"),
            "{\r\n  \"a\": 1,\r\n  \"mcpServers\": {\r\n    \"corvane\": {\r\n"
            "      \"command\": \"/bin/corvane-mcp\"\r\n    }\r\n  }\r\n}\r\n");
}

// Fails when a comma comes behind a comment, or two commas come.
TEST(JsonConfiguration, CommentsAndLastCommasStay) {
  EXPECT_EQ(commented("// head\n{\n  /* \"mcpServers\": {} */\n  \"a\": \"//\" // of a, b\n"
                      "  // the end\n}\n"),
            "// head\n{\n  /* \"mcpServers\": {} */\n  \"a\": \"//\", // of a, b\n"
            "  \"mcpServers\": {\n    \"corvane\": {\n      \"command\": \"/bin/corvane-mcp\"\n"
            "    }\n  }\n  // the end\n}\n");
  EXPECT_EQ(commented("{\n  \"mcpServers\": {\n    \"b\": {}, // b\n  },\n}\n"),
            "{\n  \"mcpServers\": {\n    \"b\": {}, // b\n    \"corvane\": {\n"
            "      \"command\": \"/bin/corvane-mcp\"\n    },\n  },\n}\n");
  EXPECT_EQ(commented("{\n  \"a\": [1, /* two\n  lines */ 2,] /* and\n  more */\n}"),
            "{\n  \"a\": [1, /* two\n  lines */ 2,], /* and\n  more */\n  \"mcpServers\": {\n"
            "    \"corvane\": {\n      \"command\": \"/bin/corvane-mcp\"\n    }\n  }\n}");
  EXPECT_EQ(commented("{\n  \"mcpServers\": {\n    // none yet\n  }\n}"),
            "{\n  \"mcpServers\": {\n    // none yet\n    \"corvane\": {\n"
            "      \"command\": \"/bin/corvane-mcp\"\n    }\n  }\n}");
}

// Fails when an entry on one line comes behind a comment that ends with the line.
TEST(JsonConfiguration, NothingIsPutIntoAComment) {
  EXPECT_EQ(commented("{\"a\":1,\"mcpServers\":{// none\n}}"),
            "{\"a\":1,\"mcpServers\":{\"corvane\":{\"command\":\"/bin/corvane-mcp\"}// "
            "none\n}}");
}

TEST(JsonConfiguration, AnEntryIsReplaced) {
  EXPECT_EQ(with("{\n  \"mcpServers\": {\n    \"corvane\": {\"command\": \"npx\"}, \"b\": {}\n"
                 "  }\n}"),
            "{\n  \"mcpServers\": {\n    \"corvane\": {\"command\":\"/bin/corvane-mcp\"}, \"b\": "
            "{}\n  }\n}");
}

// Fails when only the first of two equal keys is looked at: readers take the last.
TEST(JsonConfiguration, OfEqualKeysTheLastCounts) {
  EXPECT_EQ(with(R"({"mcpServers":{"a":{}},"mcpServers":{"b":{}}})"),
            R"({"mcpServers":{"a":{}},"mcpServers":{"b":{},)"
            R"("corvane":{"command":"/bin/corvane-mcp"}}})");
  EXPECT_EQ(with(R"({"mcpServers":{"corvane":{"a":1},"corvane":{"b":2}}})"),
            R"({"mcpServers":{"corvane":{"a":1},"corvane":{"command":"/bin/corvane-mcp"}}})");
}

TEST(JsonConfiguration, EntriesAreTakenOut) {
  EXPECT_EQ(without("{\n  \"mcpServers\": {\n    \"corvane\": {},\n    \"b\": {}\n  }\n}"),
            "{\n  \"mcpServers\": {\n    \"b\": {}\n  }\n}");
  EXPECT_EQ(without("{\n  \"mcpServers\": {\n    \"b\": {},\n    \"corvane\": {}\n  }\n}"),
            "{\n  \"mcpServers\": {\n    \"b\": {}\n  }\n}");
  EXPECT_EQ(without("{\n  \"mcpServers\": {\n    \"corvane\": {}\n  }\n}"),
            "{\n  \"mcpServers\": {}\n}");
  EXPECT_EQ(without("{\n  \"b\": 1 }"), "{\n  \"b\": 1 }");
  EXPECT_EQ(without("{\n  // mine\n  \"mcpServers\": {\n    \"b\": {}, // b\n    // ours\n"
                    "    \"corvane\": {},\n  },\n}",
                    Format::jsonWithComments),
            "{\n  // mine\n  \"mcpServers\": {\n    \"b\": {}, // b\n    // ours\n  },\n}");
}

TEST(JsonConfiguration, TakingOutRestoresWhatWas) {
  const EntryPlace place{"servers", "corvane"};
  for (const char* text :
       {"{\n  \"servers\": {}\n}\n", "{\n\t\"servers\": {\n\t\t\"b\": {}\n\t}\n}",
        "{\"servers\":{\"b\":{}}}", "{\r\n \"servers\": {\r\n  \"b\": {}\r\n }\r\n}\r\n",
        "{ // c\n  \"servers\": {\n    \"b\": {}, // b\n    // end\n  },\n}",
        "{\n  \"servers\": {\n    \"b\": {} // b\n  }\n}"}) {
    expectRestored(text, Format::jsonWithComments, place);
  }
}

TEST(JsonConfiguration, WhatIsBrokenIsRefusedWithItsPlace) {
  EXPECT_EQ(fault("{\n  \"a\": tru\n}"),
            "line 2, column 8: not valid JSON: unexpected text at byte 9");
  EXPECT_EQ(fault("[]"), "line 1, column 1: expected an object");
  EXPECT_EQ(fault("\xEF\xBB\xBF[]"), "line 1, column 1: expected an object");
  EXPECT_EQ(fault("{\n  \"mcpServers\": []\n}"), "line 2, column 17: 'mcpServers' is no object");
  EXPECT_EQ(fault("{\"a\": 1,}").substr(0, 17), "line 1, column 9:");
  EXPECT_EQ(fault("{\"a\": 1} // b").substr(0, 18), "line 1, column 10:");
  EXPECT_EQ(fault("{/*", Format::jsonWithComments).substr(0, 17), "line 1, column 2:");
  EXPECT_EQ(fault("{\"a\": [,]}", Format::jsonWithComments).substr(0, 17), "line 1, column 8:");
}

TEST(Configuration, SaysWhatCountsWhateverElseIsThere) {
  const auto says = [](const std::string& text) {
    return readConfiguration(Format::json, text, inJson)->says(entry);
  };
  EXPECT_TRUE(says(R"({"mcpServers":{"corvane":{"env":{},"command":"\/bin/corvane-mcp"}}})"));
  EXPECT_TRUE(says(R"({"mcpServers":{"corvane":{"command":"/bin/corvane-mcp","args":[]}}})"));
  EXPECT_FALSE(says(R"({"mcpServers":{"corvane":{"command":"/bin/corvane-mcp","args":["x"]}}})"));
  EXPECT_FALSE(says(R"({"mcpServers":{"corvane":{"command":"corvane-mcp"}}})"));
  EXPECT_FALSE(says(R"({"mcpServers":{"b":{"command":"/bin/corvane-mcp"}}})"));
}

const ServerEntry tomlEntry{{"command", "/opt/a \"b\"/corvane-mcp"}, {"tool_timeout_sec", 300}};

std::string withToml(const std::string& text) {
  return with(text, Format::toml, inToml, tomlEntry);
}

const std::string block =
    "[mcp_servers.corvane]\ncommand = \"/opt/a \\\"b\\\"/corvane-mcp\"\ntool_timeout_sec = 300\n";

TEST(TomlConfiguration, TheTableComesLast) {
  EXPECT_EQ(withToml(""), block);
  EXPECT_EQ(withToml("model = \"o\" # mine"), "model = \"o\" # mine\n\n" + block);
  EXPECT_EQ(withToml("[mcp_servers.b]\ncommand = 'x'\n\n[tui]\n"),
            "[mcp_servers.b]\ncommand = 'x'\n\n[tui]\n\n" + block);
  EXPECT_EQ(withToml("a = 1\r\n"),
            "a = 1\r\n\r\n[mcp_servers.corvane]\r\ncommand = \"/opt/a \\\"b\\\"/corvane-mcp\"\r\n"
            "tool_timeout_sec = 300\r\n");
}

TEST(TomlConfiguration, StringsAndCommentsHoldWhatTheyLike) {
  const std::string text =
      "a = \"\u00e9\\\"\u00e9\" # \u00e9\nb = '\u00e9\\'\nc = \"\"\"\n\u00e9\"\"\"\"\"\n"
      "'\u00e9' = '''\u00e9'\n\u00e9'''\n";
  EXPECT_EQ(withToml(text), text + "\n" + block);
}

TEST(TomlConfiguration, ATableIsReplacedWithTheTablesInIt) {
  EXPECT_EQ(
      withToml("a = 1\n[mcp_servers.corvane]\ncommand = 'npx'\nargs = [\n  'corvane-mcp',\n]\n"
               "[mcp_servers.corvane.env]\nX = 'y' # of X\n\n# the other\n[tui]\nb = 2\n"),
      "a = 1\n" + block + "\n# the other\n[tui]\nb = 2\n");
}

TEST(TomlConfiguration, ATableIsTakenOut) {
  expectRestored("", Format::toml, inToml);
  expectRestored("# mine\nmodel = \"o\"\n[tui]\n", Format::toml, inToml);
  EXPECT_EQ(without("a = 1\n\n" + block + "\n[tui]\n", Format::toml, inToml), "a = 1\n\n[tui]\n");
  EXPECT_EQ(without("a = 1\n", Format::toml, inToml), "a = 1\n");
}

TEST(TomlConfiguration, TellsWhatItSays) {
  const auto says = [](const std::string& text) {
    return readConfiguration(Format::toml, text, inToml)->says(tomlEntry);
  };
  EXPECT_TRUE(says(block));
  EXPECT_TRUE(says(block + "enabled = false\n"));
  EXPECT_FALSE(says(block + "args = ['x']\n"));
  EXPECT_FALSE(says(""));
}

// Fails when a table that stands elsewhere goes with the entry.
TEST(TomlConfiguration, WhatCannotBeChangedIsRefusedWithItsPlace) {
  EXPECT_EQ(fault("a = 1\nb = \n", Format::toml).substr(0, 32), "line 2, column 5: not valid TOML");
  EXPECT_EQ(fault("a = 1\n\u00e9 = 1\n", Format::toml).substr(0, 17), "line 2, column 1:");
  EXPECT_EQ(fault("a = 1\n\n[=]\nb = 2\n", Format::toml), "line 3, column 1: not valid TOML");
  EXPECT_EQ(fault("mcp_servers = {b = {command = 'x'}}", Format::toml),
            "line 1, column 15: 'mcp_servers' is no table of tables");
  EXPECT_EQ(fault("[mcp_servers]\ncorvane = {command = 'x'}", Format::toml),
            "line 2, column 11: 'corvane' is no table of its own, [mcp_servers.corvane]");
  EXPECT_EQ(fault("[mcp_servers.corvane]\ncommand = 'x'\n[tui]\na = 1\n[mcp_servers.corvane.env]\n",
                  Format::toml),
            "the table [mcp_servers.corvane] stands among others");
}

}  // namespace
}  // namespace corvane::testing
