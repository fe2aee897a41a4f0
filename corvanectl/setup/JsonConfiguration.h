#pragma once

#include <cstddef>
#include <vector>

#include "corvanectl/setup/Configuration.h"

namespace corvane {
class JsonCursor;
}

namespace corvane::ctl {

/// A configuration in JSON. A byte order mark is kept. Where comments are allowed, so is a comma
/// behind a last value.
class JsonConfiguration final : public Configuration {
 public:
  enum class Comments { refused, allowed };

  JsonConfiguration(std::string text, EntryPlace place, Comments comments);

  [[nodiscard]] std::optional<std::string> entry() const override;
  [[nodiscard]] std::optional<AnyCodable> value() const override;
  [[nodiscard]] std::string written(const ServerEntry& entry) const override;
  [[nodiscard]] std::string with(std::string_view entry) const override;
  [[nodiscard]] std::string without() const override;

 private:
  // All offsets are of bytes in the text.
  struct Member {
    std::string key;
    /// The brace or comma before it.
    std::size_t separator = 0;
    std::size_t keyBegin = 0;
    std::size_t begin = 0;
    std::size_t end = 0;
  };
  struct Object {
    std::size_t begin = 0;
    /// Its closing brace.
    std::size_t close = 0;
    std::vector<Member> members;
  };
  /// How the members of an object stand.
  struct Layout {
    /// All on the line of the brace.
    bool onOneLine = false;
    /// Before each of them, otherwise.
    std::string indent;
    /// Before the closing brace.
    std::string outerIndent;
  };

  void read();
  [[nodiscard]] Object readRoot(JsonCursor& cursor);
  /// Calls `visit` with every member, which takes the value from the cursor.
  template <class Visit>
  [[nodiscard]] Object readObject(JsonCursor& cursor, Visit visit);
  /// The last member of that name, which is the one that counts.
  [[nodiscard]] static const Member* find(const Object& object, std::string_view key);

  [[nodiscard]] Layout layoutOf(const Object& object) const;
  [[nodiscard]] Layout layoutWithin(const Layout& outer) const;
  [[nodiscard]] Layout layoutOfServers() const;
  /// An object of these members, each a key with its value, in this layout.
  [[nodiscard]] std::string objectOf(const std::vector<std::string>& members,
                                     const Layout& layout) const;
  /// The text with one more member in `object`.
  [[nodiscard]] std::string withMember(const Object& object, const std::string& member,
                                       const Layout& layout) const;
  [[nodiscard]] std::string withFirstMember(const Object& object, const std::string& member,
                                            const Layout& layout) const;
  [[nodiscard]] std::string withoutMember(const Object& object, const Member& member) const;

  /// The white space that the line begins with on which this byte stands.
  [[nodiscard]] std::string indentAt(std::size_t offset) const;

  std::string text;
  EntryPlace place;
  /// The text without comments, every byte in its place.
  std::string bare;
  /// The same without commas behind last values.
  std::string plain;
  std::optional<Object> root;
  std::optional<Object> servers;
  std::string lineEnd;
  /// What a level is indented by.
  std::string unit = "  ";
};

}  // namespace corvane::ctl
