#include "corvane_mcp/workspace/PublishedContext.h"

#include <algorithm>
#include <array>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/text/CaseFolding.h"

namespace corvane {

namespace {

constexpr std::array<std::string_view, 6> keptMembers{"appVersion", "currentProjectName",
                                                      "device",     "schemaVersion",
                                                      "updatedAt",  "userDefinedInteractions"};

/// Passes a context document on to a tree with its projects cut down to PublishedContext::Project.
class Reduction final : public JsonSink {
 public:
  explicit Reduction(const JsonReader& reader) : reader(reader) {}

  void null() override {
    scalar([](JsonSink& to) { to.null(); });
  }
  void boolean(bool value) override {
    scalar([=](JsonSink& to) { to.boolean(value); });
  }
  void integer(std::int64_t value) override {
    scalar([=](JsonSink& to) { to.integer(value); });
  }
  void number(double value) override {
    scalar([=](JsonSink& to) { to.number(value); });
  }
  void string(std::string_view value) override {
    scalar([=](JsonSink& to) { to.string(value); });
  }

  void beginArray() override {
    const Part part = nextPart();
    if (part == Part::kept || part == Part::projects) {
      tree.beginArray();
    } else if (part == Part::tests) {
      testCount = 0;
    } else {
      replaceUnfit(part);
    }
    open.push_back(part == Part::project ? Part::dropped : part);
  }
  void endArray() override {
    const Part part = close();
    if (part == Part::kept || part == Part::projects) tree.endArray();
    if (part == Part::tests) tree.integer(testCount);
  }

  void beginObject() override {
    const Part part = nextPart();
    if (part == Part::kept || part == Part::document) {
      tree.beginObject();
    } else if (part == Part::project) {
      tree.beginObject();
      tree.key("begin");
      tree.integer(position());
    } else {
      replaceUnfit(part);
    }
    const bool unfit = part == Part::projects || part == Part::tests;
    open.push_back(unfit ? Part::dropped : part);
  }
  void endObject() override {
    const Part part = close();
    if (part == Part::project) {
      tree.key("end");
      tree.integer(position());
    }
    if (part != Part::dropped) tree.endObject();
  }

  void key(std::string_view key) override {
    const Part within = open.back();
    if (within == Part::document || within == Part::project) {
      member = within == Part::document ? partInDocument(key) : partInProject(key);
      if (member == Part::dropped) return;
    }
    if (within != Part::dropped) tree.key(member == Part::tests ? "testCount" : key);
  }

  AnyCodable take() { return tree.take(); }

 private:
  /// What a value is to the reduced document.
  enum class Part : std::uint8_t { document, projects, project, tests, kept, dropped };

  /// The part that the value beginning now plays.
  Part nextPart() {
    if (open.empty()) return Part::document;
    switch (open.back()) {
      case Part::document:
      case Part::project:
        return member;
      case Part::projects:
        return Part::project;
      case Part::tests:
        ++testCount;
        return Part::dropped;
      default:
        return open.back();
    }
  }

  template <class Send>
  void scalar(Send send) {
    const Part part = nextPart();
    if (part == Part::kept) {
      send(tree);
    } else {
      replaceUnfit(part);
    }
  }

  /// A value of the wrong kind stands for none at all.
  void replaceUnfit(Part part) {
    if (part == Part::document) throw DecodeError("expected an object");
    if (part == Part::projects) tree.null();
    if (part == Part::tests) tree.integer(0);
  }

  Part close() {
    const Part part = open.back();
    open.pop_back();
    return part;
  }

  [[nodiscard]] std::int64_t position() const {
    return static_cast<std::int64_t>(reader.position());
  }

  static Part partInDocument(std::string_view key) {
    if (key == "projects") return Part::projects;
    const bool kept = std::find(keptMembers.begin(), keptMembers.end(), key) != keptMembers.end();
    return kept ? Part::kept : Part::dropped;
  }
  static Part partInProject(std::string_view key) {
    if (key == "tests") return Part::tests;
    return key == "name" || key == "platform" ? Part::kept : Part::dropped;
  }

  const JsonReader& reader;
  JsonTree tree;
  std::vector<Part> open;
  /// The part of the member whose key came last.
  Part member = Part::dropped;
  std::int64_t testCount = 0;
};

}  // namespace

std::optional<PublishedContext> PublishedContext::read(const std::filesystem::path& file) {
  try {
    return PublishedContext(readFile(file));
  } catch (const FileError&) {
    return std::nullopt;
  } catch (const DecodeError&) {
    return std::nullopt;
  }
}

PublishedContext::PublishedContext(std::string contents) : text(std::move(contents)) {
  JsonReader reader;
  Reduction reduction(reader);
  reader.read(text, reduction);
  AnyCodable reduced = reduction.take();
  known = std::move(std::get<JsonObject>(reduced.value()));
  if (AnyCodable* projects = known.find("projects"); projects && projects->array()) {
    listed = decodeValue<std::vector<Project>>(std::move(*projects));
  }
}

const PublishedContext::Project* PublishedContext::find(std::string_view name) const {
  const std::string wanted = foldCase(name);
  const auto found = std::find_if(listed.begin(), listed.end(), [&](const Project& project) {
    const auto* given = project.name ? project.name->string() : nullptr;
    return given && foldCase(*given) == wanted;
  });
  return found == listed.end() ? nullptr : &*found;
}

AnyCodable PublishedContext::whole(const Project& project) const {
  const auto begin = static_cast<std::size_t>(project.begin);
  return readJson(
      std::string_view(text).substr(begin, static_cast<std::size_t>(project.end) - begin));
}

}  // namespace corvane
