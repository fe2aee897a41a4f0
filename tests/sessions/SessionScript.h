#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace corvane::testing {

/// One conversation with the server as it stands in a .session file; README.md describes the form.
/// Texts and paths still hold their placeholders.
struct SessionScript {
  struct Send {
    std::string bytes;
  };
  struct CloseInput {};
  /// Lines that the server sends next.
  struct Receive {
    struct Line {
      std::size_t number;
      std::string text;
    };
    std::vector<Line> lines;
    /// Whether they may come in any order among themselves.
    bool anyOrder = false;
  };

  struct SetVariable {
    std::string nameAndValue;
  };
  enum class App { none, installed, running };
  struct PutFile {
    std::string path;
    std::string contents;
    std::optional<std::chrono::seconds> age;
  };
  struct MakeFolder {
    std::string path;
  };
  struct Remove {
    std::string path;
  };

  struct ExpectFile {
    std::string path;
    std::string contents;
  };
  /// Everything in the folder and below it, each line a path relative to it.
  struct ExpectFolder {
    std::string path;
    std::string entries;
  };
  struct ExpectNothing {
    std::string path;
  };
  struct ExpectApp {
    bool running;
  };
  struct ExpectExit {
    std::string how;
  };
  /// The whole log, one "LEVEL message" a line.
  struct ExpectLog {
    std::string lines;
  };
  /// A line of the log, somewhere after the one expected before it.
  struct ExpectLogged {
    std::string line;
  };
  /// What no line of the log begins with.
  struct ExpectUnlogged {
    std::string beginning;
  };

  struct Step {
    std::size_t number;
    std::variant<Send, CloseInput, Receive, SetVariable, App, PutFile, MakeFolder, Remove,
                 ExpectFile, ExpectFolder, ExpectNothing, ExpectApp, ExpectExit, ExpectLog,
                 ExpectLogged, ExpectUnlogged>
        action;
  };

  std::filesystem::path file;
  std::vector<Step> steps;

  /// Throws SessionFailure for a line that has no meaning.
  [[nodiscard]] static SessionScript read(const std::filesystem::path& file);
};

}  // namespace corvane::testing
