#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/json/AnyCodable.h"
#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

/// A call of one tool, and what becomes of its answer.
struct ToolCall {
  std::string tool;
  /// Nothing to send no arguments.
  std::optional<AnyCodable::Object> arguments = AnyCodable::Object();
  /// Whether the tool's result is printed as JSON.
  bool json = false;
  std::optional<std::filesystem::path> pictures;
};

/// Calls a tool and prints its answer. Throws what commands throw.
ExitStatus callAndPrint(ToolCall call, CommandContext& context);

/// Calls one tool.
class CallCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  std::string tool;
  /// A JSON text, "@" and a file's name, or "-" for standard input.
  std::string arguments = "{}";
  bool withoutArguments = false;
  bool json = false;
  std::optional<std::filesystem::path> pictures;
};

/// The arguments object that `source` stands for: a JSON text, "@" and the name of a file that
/// holds one, or "-" for standard input. Throws UsageError when it cannot be read or is no JSON
/// object, Interrupted while it waits for standard input.
[[nodiscard]] AnyCodable::Object readToolArguments(std::string_view source,
                                                   Interruption& interruption);

}  // namespace corvane::ctl
