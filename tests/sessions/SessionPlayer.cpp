#include "tests/sessions/SessionPlayer.h"

#include <algorithm>
#include <sstream>

#include "tests/sessions/SessionFailure.h"
#include "tests/sessions/TextDifference.h"
#include "tests/sessions/ToolSnapshots.h"
#include "tests/support/LogLines.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/TestFiles.h"

namespace corvane::testing {

namespace {

namespace fs = std::filesystem;

std::map<std::string, std::string, std::less<>> fixedTexts(const TemporaryHome& home,
                                                           const SessionScript& script) {
  const AgentPaths paths = home.programPaths();
  return {
      {"home", home.path()},
      {"support", paths.applicationSupport()},
      {"imports", paths.agentImportsDirectory()},
      {"requests", paths.agentRunRequestsDirectory()},
      {"results", paths.agentResultsDirectory()},
      {"logs", paths.logsDirectory()},
      {"tools", ToolSnapshots::read(script.file.parent_path() / "tools")},
      // Test steps hold this one as it is.
      {"APP_NAME", "{{APP_NAME}}"},
  };
}

std::vector<std::string> splitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string joinLines(const std::vector<std::string>& lines) {
  std::string text;
  for (const auto& line : lines) text += (&line == &lines.front() ? "" : "\n") + line;
  return text;
}

/// The files and folders below `folder`, a folder's name ending in a slash, sorted.
std::vector<std::string> entriesOf(const fs::path& folder) {
  std::vector<std::string> entries;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    entries.push_back(entry.path().lexically_relative(folder).string() +
                      (entry.is_directory() ? "/" : ""));
  }
  std::sort(entries.begin(), entries.end());
  return entries;
}

}  // namespace

SessionPlayer::SessionPlayer(const SessionScript& script, fs::path program)
    : script(script), program(std::move(program)), placeholders(fixedTexts(home, script)) {}

void SessionPlayer::play() {
  try {
    for (const auto& step : script.steps) {
      lineNumber = step.number;
      std::visit([&](const auto& action) { perform(action); }, step.action);
    }
    endServer("exit 0");
  } catch (const SessionFailure&) {
    throw;
  } catch (const std::exception& error) {
    fail(error.what());
  }
}

void SessionPlayer::perform(const SessionScript::Send& step) {
  server().send(placeholders.expand(step.bytes));
  server().waitUntilTaken();
}

void SessionPlayer::perform(const SessionScript::CloseInput&) {
  server().closeInput();
}

void SessionPlayer::perform(const SessionScript::Receive& step) {
  if (step.anyOrder) {
    receiveInAnyOrder(step.lines);
  } else {
    receiveInOrder(step.lines.front());
  }
}

void SessionPlayer::receiveInOrder(const SessionScript::Receive::Line& expected) {
  const std::string line = server().readLine();
  if (const auto difference = placeholders.match(expected.text, line)) {
    fail("the server sent another line\n" +
         describeDifference(difference->expected, line, difference->position));
  }
}

void SessionPlayer::receiveInAnyOrder(std::vector<SessionScript::Receive::Line> expected) {
  while (!expected.empty()) {
    const std::string line = server().readLine();
    std::optional<Placeholders::Difference> closest;
    const auto fits = [&](const SessionScript::Receive::Line& candidate) {
      const auto difference = placeholders.match(candidate.text, line);
      if (difference && (!closest || difference->position > closest->position)) {
        closest = difference;
        lineNumber = candidate.number;
      }
      return !difference;
    };
    const auto found = std::find_if(expected.begin(), expected.end(), fits);
    if (found == expected.end()) {
      fail("the server sent a line that is none of those expected; this one comes closest\n" +
           describeDifference(closest->expected, line, closest->position));
    }
    expected.erase(found);
  }
}

void SessionPlayer::perform(const SessionScript::SetVariable& step) {
  if (process) fail("@env stands before the first message");
  environment.push_back(placeholders.expand(step.nameAndValue));
}

void SessionPlayer::perform(SessionScript::App state) {
  app.reset();
  if (state == SessionScript::App::none) return;
  app.emplace(home.path() / "Applications" / "Corvane.app");
  if (state == SessionScript::App::running) app->open();
}

void SessionPlayer::perform(const SessionScript::PutFile& step) {
  const fs::path file = place(step.path);
  TestFiles::replace(file, placeholders.expand(step.contents));
  if (step.age) TestFiles::setModified(file, std::chrono::system_clock::now() - *step.age);
}

void SessionPlayer::perform(const SessionScript::MakeFolder& step) {
  fs::create_directories(place(step.path));
}

void SessionPlayer::perform(const SessionScript::Remove& step) {
  if (fs::remove_all(place(step.path)) == 0) fail("there is nothing to remove");
}

void SessionPlayer::perform(const SessionScript::ExpectFile& step) {
  const fs::path file = place(step.path);
  if (!fs::is_regular_file(file)) fail("there is no such file: " + file.string());
  expectText("the file holds another text", step.contents, TestFiles::read(file));
}

void SessionPlayer::perform(const SessionScript::ExpectFolder& step) {
  const fs::path folder = place(step.path);
  if (!fs::is_directory(folder)) fail("there is no such folder: " + folder.string());
  expectText("the folder holds other files", step.entries, joinLines(entriesOf(folder)));
}

void SessionPlayer::perform(const SessionScript::ExpectNothing& step) {
  const fs::path path = place(step.path);
  if (fs::exists(fs::symlink_status(path))) fail("this exists: " + path.string());
}

void SessionPlayer::perform(const SessionScript::ExpectApp& step) {
  if (!app) fail("no app is installed");
  if (step.running) {
    static_cast<void>(app->waitUntilUp());
  } else if (!ProcessFacts::withCommandLine({app->program().native()}).empty()) {
    fail("the app runs");
  }
}

void SessionPlayer::perform(const SessionScript::ExpectExit& step) {
  endServer(step.how);
}

void SessionPlayer::perform(const SessionScript::ExpectLog& step) {
  expectText("the log differs", step.lines, joinLines(log()));
}

void SessionPlayer::perform(const SessionScript::ExpectLogged& step) {
  for (std::size_t i = logLinesPassed; i < log().size(); ++i) {
    if (placeholders.match(step.line, log()[i])) continue;
    logLinesPassed = i + 1;
    return;
  }
  fail("this is not in the log, or not after the line expected before it: " + step.line +
       "\nthe log:\n" + joinLines(log()));
}

void SessionPlayer::perform(const SessionScript::ExpectUnlogged& step) {
  for (const auto& line : log()) {
    if (line.starts_with(step.beginning)) fail("this is in the log: " + line);
  }
}

ServerProcess& SessionPlayer::server() {
  if (!process) process.emplace(ServerProcess::Setup{program, home.path(), environment});
  return *process;
}

void SessionPlayer::endServer(const std::string& expected) {
  if (ended) return;
  server().closeInput();
  const auto lines = server().readToEnd();
  if (!lines.empty()) fail("the server sent more than expected: " + lines.front());
  const std::string how = server().wait();
  if (how != expected) {
    fail("the server ended with " + how + ", not " + expected +
         "; it had said on standard error:\n" + server().errors());
  }
  ended = true;
  takeLog();
}

const std::vector<std::string>& SessionPlayer::log() {
  endServer("exit 0");
  return logLines;
}

void SessionPlayer::expectText(std::string_view what, const std::string& pattern,
                               const std::string& text) {
  if (const auto difference = placeholders.match(pattern, text)) {
    fail(std::string(what) + "\n" +
         describeDifference(difference->expected, text, difference->position));
  }
}

/// Takes the log from standard error, and checks the form of its lines and that the log file, where
/// there is one, holds the same.
void SessionPlayer::takeLog() {
  auto lines = splitLines(server().errors());
  for (const auto& line : lines) {
    const auto parts = levelAndMessage(line);
    if (!parts) fail("this is no line of a log: " + line);
    logLines.push_back(*parts);
  }
  const fs::path file = home.programPaths().logFile();
  if (!fs::is_regular_file(file)) return;
  // Lines of calls that run side by side may stand in another order there.
  auto inFile = TestFiles::lines(file);
  std::sort(inFile.begin(), inFile.end());
  std::sort(lines.begin(), lines.end());
  if (inFile != lines) {
    fail("the log file does not hold what was said on standard error:\n" + joinLines(inFile));
  }
}

fs::path SessionPlayer::place(const std::string& path) const {
  return home.path() / placeholders.expand(path);
}

void SessionPlayer::fail(const std::string& problem) const {
  throw SessionFailure(script.file, lineNumber, problem);
}

}  // namespace corvane::testing
