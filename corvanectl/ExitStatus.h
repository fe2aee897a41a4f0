#pragma once

namespace corvane::ctl {

/// What the exit status of corvanectl says. A program ended by Ctrl-C or by a closed pipe ends by
/// that signal instead.
enum class ExitStatus {
  /// The tool reported no error, or the followed request went well.
  success = 0,
  /// The tool or the server reported an error, or the followed request failed.
  failure = 1,
  /// The server could not be started, ended early or broke the protocol.
  protocolTrouble = 2,
  /// The followed request came to another end: blocked, cancelled, error, warning.
  otherOutcome = 3,
  /// The time given ran out.
  timedOut = 4,
  /// No app took the request up or went on with it.
  noApp = 5,
  /// The command line or the given arguments are wrong.
  usage = 64,
  /// A file or the output could not be written.
  inputOutput = 74,
};

}  // namespace corvane::ctl
