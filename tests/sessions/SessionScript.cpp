#include "tests/sessions/SessionScript.h"

#include <fstream>
#include <map>
#include <string_view>

#include "CorvaneCore/json/JsonWriter.h"
#include "tests/sessions/SessionFailure.h"

namespace corvane::testing {

namespace {

/// Takes the first word off `text`, and the blank behind it.
std::string takeWord(std::string_view& text) {
  const auto end = std::min(text.find(' '), text.size());
  std::string word(text.substr(0, end));
  text.remove_prefix(std::min(end + 1, text.size()));
  return word;
}

/// Reads a script line by line.
class Parser {
 public:
  explicit Parser(const std::filesystem::path& file) : input(file) {
    script.file = file;
    if (!input) throw SessionFailure(file, 0, "cannot be read");
  }

  SessionScript run() {
    while (nextLine()) {
      if (line.empty() || line.front() == '#') continue;
      const char kind = line.front();
      std::string_view rest = std::string_view(line).substr(1);
      if (kind == '>') {
        send(rest);
      } else if (kind == '<') {
        receive(rest);
      } else if (kind == '@') {
        direct(rest);
      } else {
        fail("a line begins with one of # > < @, or with | as part of a block");
      }
    }
    return std::move(script);
  }

 private:
  bool nextLine() {
    if (!std::getline(input, line)) return false;
    ++number;
    return true;
  }

  [[noreturn]] void fail(const std::string& problem) const {
    throw SessionFailure(script.file, number, problem);
  }

  template <class Action>
  void add(Action action) {
    script.steps.push_back({number, std::move(action)});
  }

  /// The lines that begin with "|" and follow the current one, joined with line feeds.
  std::string block() {
    std::string text;
    for (bool first = true; input.peek() == '|'; first = false) {
      nextLine();
      if (!first) text += '\n';
      if (line.size() > 1 && line[1] != ' ') fail("a blank follows the |");
      if (line.size() > 2) text.append(line, 2);
    }
    return text;
  }

  void send(std::string_view rest) {
    std::string text;
    if (rest.starts_with("call ")) {
      rest.remove_prefix(5);
      const std::string id = takeWord(rest);
      text = R"({"jsonrpc":"2.0","id":)" + id + R"(,"method":"tools/call","params":{"name":")" +
             takeWord(rest) + '"';
      if (!rest.empty()) text.append(R"(,"arguments":)").append(rest);
      text += "}}";
    } else if (rest.starts_with(" ")) {
      text = rest.substr(1);
    } else {
      fail("expected '> LINE' or '>call ID TOOL [ARGUMENTS]'");
    }
    add(SessionScript::Send{text + "\n"});
  }

  void receive(std::string_view rest) {
    const bool anyOrder = rest.starts_with("*");
    if (anyOrder) rest.remove_prefix(1);
    SessionScript::Receive::Line expected{number, {}};
    if (rest.starts_with(" ")) {
      expected.text = rest.substr(1);
    } else {
      const std::string kind = takeWord(rest);
      if (kind != "text" && kind != "failure") {
        fail("expected '< LINE', '<text ID' or '<failure ID', a * after the < meaning any order");
      }
      expected.text = textReply(std::string(rest), kind == "failure");
    }
    // Lines in any order that stand together form one group.
    auto* last = script.steps.empty()
                     ? nullptr
                     : std::get_if<SessionScript::Receive>(&script.steps.back().action);
    if (anyOrder && last && last->anyOrder) {
      last->lines.push_back(std::move(expected));
    } else {
      add(SessionScript::Receive{{std::move(expected)}, anyOrder});
    }
  }

  /// The reply whose one text block is the block that follows.
  std::string textReply(const std::string& id, bool isError) {
    return R"({"id":)" + id + R"(,"jsonrpc":"2.0","result":{"content":[{"text":)" +
           toJson(AnyCodable(block())) + R"(,"type":"text"}],"isError":)" +
           (isError ? "true" : "false") + "}}";
  }

  void direct(std::string_view rest) {
    const std::string word = takeWord(rest);
    if (word == "send") {
      add(SessionScript::Send{unescaped(rest)});
    } else if (word == "close" && rest.empty()) {
      add(SessionScript::CloseInput{});
    } else if (word == "env") {
      add(SessionScript::SetVariable{std::string(rest)});
    } else if (word == "app") {
      add(appState(rest));
    } else if (word == "file") {
      putFile(rest);
    } else if (word == "folder") {
      add(SessionScript::MakeFolder{std::string(rest)});
    } else if (word == "remove") {
      add(SessionScript::Remove{std::string(rest)});
    } else if (word == "expect") {
      expect(rest);
    } else {
      fail("there is no @" + word);
    }
  }

  void expect(std::string_view rest) {
    const std::string word = takeWord(rest);
    if (word == "file") {
      add(SessionScript::ExpectFile{std::string(rest), block()});
    } else if (word == "folder") {
      add(SessionScript::ExpectFolder{std::string(rest), block()});
    } else if (word == "nothing") {
      add(SessionScript::ExpectNothing{std::string(rest)});
    } else if (word == "app" && (rest == "running" || rest == "none")) {
      add(SessionScript::ExpectApp{rest == "running"});
    } else if (word == "exit") {
      add(SessionScript::ExpectExit{"exit " + std::string(rest)});
    } else if (word == "log" && rest.empty()) {
      add(SessionScript::ExpectLog{block()});
    } else if (word == "logged") {
      add(SessionScript::ExpectLogged{std::string(rest)});
    } else if (word == "unlogged") {
      add(SessionScript::ExpectUnlogged{std::string(rest)});
    } else {
      fail("there is no @expect " + word + " of this form");
    }
  }

  SessionScript::App appState(std::string_view text) const {
    if (text == "none") return SessionScript::App::none;
    if (text == "installed") return SessionScript::App::installed;
    if (text == "running") return SessionScript::App::running;
    fail("expected '@app none', '@app installed' or '@app running'");
  }

  void putFile(std::string_view rest) {
    SessionScript::PutFile file;
    file.path = takeWord(rest);
    if (!rest.empty()) {
      if (!rest.starts_with("age=") || !rest.ends_with("s")) fail("expected age=SECONDSs");
      file.age = std::chrono::seconds(std::stol(std::string(rest.substr(4))));
    }
    file.contents = block();
    add(std::move(file));
  }

  std::string unescaped(std::string_view text) const {
    static const std::map<char, char> letters{
        {'n', '\n'}, {'r', '\r'}, {'t', '\t'}, {'0', '\0'}, {'\\', '\\'}};
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
      if (text[at] != '\\') {
        bytes += text[at];
        continue;
      }
      const char letter = ++at < text.size() ? text[at] : '?';
      if (const auto known = letters.find(letter); known != letters.end()) {
        bytes += known->second;
      } else if (letter == 'x' && at + 2 < text.size()) {
        bytes += static_cast<char>(std::stoi(std::string(text.substr(at + 1, 2)), nullptr, 16));
        at += 2;
      } else {
        fail("the escapes are \\n \\r \\t \\0 \\\\ \\xHH");
      }
    }
    return bytes;
  }

  std::ifstream input;
  SessionScript script;
  std::string line;
  std::size_t number = 0;
};

}  // namespace

SessionScript SessionScript::read(const std::filesystem::path& file) {
  return Parser(file).run();
}

}  // namespace corvane::testing
