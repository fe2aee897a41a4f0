#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/sessions/Placeholders.h"
#include "tests/sessions/SessionScript.h"
#include "tests/support/ServerProcess.h"
#include "tests/support/TemporaryApp.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {

/// Plays one script against a fresh server in a private home, and compares.
class SessionPlayer {
 public:
  SessionPlayer(const SessionScript& script, std::filesystem::path program);

  /// Plays the script to its end, where the server's input is closed and it must end well, having
  /// said nothing that the script does not expect. Throws SessionFailure at the first difference.
  void play();

 private:
  void perform(const SessionScript::Send& step);
  void perform(const SessionScript::CloseInput& step);
  void perform(const SessionScript::Receive& step);
  void perform(const SessionScript::SetVariable& step);
  void perform(SessionScript::App state);
  void perform(const SessionScript::PutFile& step);
  void perform(const SessionScript::MakeFolder& step);
  void perform(const SessionScript::Remove& step);
  void perform(const SessionScript::ExpectFile& step);
  void perform(const SessionScript::ExpectFolder& step);
  void perform(const SessionScript::ExpectNothing& step);
  void perform(const SessionScript::ExpectApp& step);
  void perform(const SessionScript::ExpectExit& step);
  void perform(const SessionScript::ExpectLog& step);
  void perform(const SessionScript::ExpectLogged& step);
  void perform(const SessionScript::ExpectUnlogged& step);

  ServerProcess& server();
  void receiveInOrder(const SessionScript::Receive::Line& expected);
  void receiveInAnyOrder(std::vector<SessionScript::Receive::Line> expected);
  void expectText(std::string_view what, const std::string& pattern, const std::string& text);
  void endServer(const std::string& expected);
  void takeLog();
  /// "LEVEL message" of every line of the log, which is complete when the server has ended.
  const std::vector<std::string>& log();
  [[nodiscard]] std::filesystem::path place(const std::string& path) const;
  [[noreturn]] void fail(const std::string& problem) const;

  const SessionScript& script;
  const std::filesystem::path program;
  TemporaryHome home;
  Placeholders placeholders;
  std::vector<std::string> environment;
  std::optional<TemporaryApp> app;
  std::optional<ServerProcess> process;
  bool ended = false;
  /// The line of the script that is being played.
  std::size_t lineNumber = 0;

  std::vector<std::string> logLines;
  std::size_t logLinesPassed = 0;
};

}  // namespace corvane::testing
