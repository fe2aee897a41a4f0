// A server that does what the script in the file CORVANECTL_FAKE_SCRIPT says, line by line:
//   expect METHOD       waits for a message with this method; ends with status 90 for another one
//   result JSON         answers the message expected last
//   error CODE TEXT     refuses it
//   progress TEXT       sends a progress notification for it
//   bigText COUNT       answers with one text block of so many characters
//   say TEXT            writes the line as it is
//   log TEXT            writes the line to standard error
//   delay MILLISECONDS  waits before it goes on
//   makeFolder PATH     makes a folder, with those that it lacks
//   closeOutput         closes standard output
//   ignoreTerm          stays when SIGTERM comes
//   hang                does nothing any more
//   exit STATUS         ends; without it the server ends when standard input does
//   crash               ends by SIGABRT
// Its process id and then every line it reads go to the file CORVANECTL_FAKE_RECORD.

#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>

#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"

namespace {

using corvane::AnyCodable;

class FakeServer {
 public:
  FakeServer() : record(std::getenv("CORVANECTL_FAKE_RECORD")) {
    record << ::getpid() << std::endl;
  }

  void follow(std::istream& script) {
    std::string line;
    while (std::getline(script, line)) {
      const auto gap = line.find(' ');
      const std::string rest = gap == std::string::npos ? "" : line.substr(gap + 1);
      obey(line.substr(0, gap), rest);
    }
    while (readMessage()) continue;
  }

 private:
  void obey(const std::string& verb, const std::string& rest) {
    if (verb == "expect") expect(rest);
    if (verb == "result") answer("result", corvane::readJson(rest));
    if (verb == "error") refuse(rest);
    if (verb == "progress") progress(rest);
    if (verb == "bigText") answerWithBigText(std::stoul(rest));
    if (verb == "say") say(rest);
    if (verb == "log") std::cerr << rest << std::endl;
    if (verb == "delay") std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(rest)));
    if (verb == "makeFolder") std::filesystem::create_directories(rest);
    if (verb == "closeOutput") ::close(STDOUT_FILENO);
    if (verb == "ignoreTerm") ::signal(SIGTERM, SIG_IGN);
    if (verb == "hang") {
      while (true) ::pause();
    }
    if (verb == "exit") ::_exit(std::stoi(rest));
    if (verb == "crash") {
      ::signal(SIGABRT, SIG_DFL);
      std::abort();
    }
  }

  bool readMessage() {
    std::string line;
    if (!std::getline(std::cin, line)) return false;
    record << line << std::endl;
    message = corvane::readJson(line);
    return true;
  }

  void expect(const std::string& method) {
    if (!readMessage()) ::_exit(0);
    if (*message.find("method")->string() == method) return;
    std::cerr << "expected " << method << std::endl;
    ::_exit(90);
  }

  void answer(const std::string& key, AnyCodable value) {
    say(toJson(AnyCodable::Object{
        {"jsonrpc", "2.0"}, {"id", *message.find("id")}, {key, std::move(value)}}));
  }

  void refuse(const std::string& codeAndText) {
    const auto gap = codeAndText.find(' ');
    answer("error", AnyCodable::Object{{"code", std::stoi(codeAndText.substr(0, gap))},
                                       {"message", codeAndText.substr(gap + 1)}});
  }

  void progress(const std::string& text) {
    const AnyCodable& token = *message.find("params")->find("_meta")->find("progressToken");
    const AnyCodable notification(AnyCodable::Object{
        {"jsonrpc", "2.0"},
        {"method", "notifications/progress"},
        {"params",
         AnyCodable::Object{{"progressToken", token}, {"progress", 1}, {"message", text}}}});
    say(toJson(notification, corvane::SlashStyle::escaped));
  }

  void answerWithBigText(std::size_t count) {
    const AnyCodable block(AnyCodable::Object{{"type", "text"}, {"text", std::string(count, 'x')}});
    answer("result", AnyCodable::Object{{"content", AnyCodable::Array{block}}, {"isError", false}});
  }

  static void say(const std::string& line) { std::cout << line << std::endl; }

  std::ofstream record;
  AnyCodable message;
};

}  // namespace

int main() {
  // Not even a client that fails its test leaves a server behind for long.
  constexpr unsigned longestLifeSeconds = 60;
  ::alarm(longestLifeSeconds);
  std::ifstream script(std::getenv("CORVANECTL_FAKE_SCRIPT"));
  FakeServer().follow(script);
}
