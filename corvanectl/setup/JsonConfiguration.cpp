#include "corvanectl/setup/JsonConfiguration.h"

#include <algorithm>

#include "CorvaneCore/json/JsonFault.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "corvanectl/setup/JsonComments.h"

namespace corvane::ctl {

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

[[noreturn]] void refuse(std::string_view text, std::size_t offset, const std::string& reason) {
  const std::size_t mark = text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
  throw ConfigurationFault(describePlace(text.substr(mark), offset < mark ? 0 : offset - mark) +
                           ": " + reason);
}

/// How lines of `text` end, going by its first.
std::string lineEndOf(std::string_view text) {
  const std::size_t end = text.find('\n');
  return end != std::string_view::npos && end > 0 && text[end - 1] == '\r' ? "\r\n" : "\n";
}

}  // namespace

JsonConfiguration::JsonConfiguration(std::string givenText, EntryPlace givenPlace,
                                     Comments comments)
    : text(std::move(givenText)),
      place(std::move(givenPlace)),
      bare(text),
      lineEnd(lineEndOf(text)) {
  if (bare.starts_with(byteOrderMark)) bare.replace(0, byteOrderMark.size(), "   ");
  if (comments == Comments::allowed) bare = withoutComments(bare);
  plain = comments == Comments::allowed ? withoutLastCommas(bare) : bare;
  if (plain.find_first_not_of(blanks) == std::string::npos) return;
  read();
  const Layout layout = layoutOf(*root);
  const std::size_t outer = layout.outerIndent.size();
  if (!root->members.empty() && !layout.onOneLine && layout.indent.size() > outer) {
    unit = layout.indent.substr(outer);
  }
}

std::optional<std::string> JsonConfiguration::entry() const {
  const Member* member = servers ? find(*servers, place.name) : nullptr;
  if (!member) return std::nullopt;
  return text.substr(member->begin, member->end - member->begin);
}

std::optional<AnyCodable> JsonConfiguration::value() const {
  const Member* member = servers ? find(*servers, place.name) : nullptr;
  if (!member) return std::nullopt;
  return readJson(plain.substr(member->begin, member->end - member->begin));
}

std::string JsonConfiguration::written(const ServerEntry& entry) const {
  const Layout layout = layoutWithin(layoutOfServers());
  const std::string colon = layout.onOneLine ? ":" : ": ";
  std::vector<std::string> members;
  for (const auto& [key, value] : entry) members.push_back(toJson(key) + colon + toJson(value));
  return objectOf(members, layout);
}

std::string JsonConfiguration::with(std::string_view entry) const {
  if (const Member* member = servers ? find(*servers, place.name) : nullptr) {
    return text.substr(0, member->begin).append(entry) + text.substr(member->end);
  }
  const Layout layout = layoutOfServers();
  const std::string colon = layout.onOneLine ? ":" : ": ";
  const std::string named = toJson(place.name) + colon + std::string(entry);
  if (servers) return withMember(*servers, named, layout);
  const std::string inServers = toJson(place.servers) + colon + objectOf({named}, layout);
  if (root) return withMember(*root, inServers, layoutOf(*root));
  const bool endsLine = bare.empty() || bare.ends_with('\n') || text == byteOrderMark;
  return text + (endsLine ? "" : lineEnd) +
         objectOf({inServers}, {.onOneLine = false, .indent = unit, .outerIndent = {}}) + lineEnd;
}

std::string JsonConfiguration::without() const {
  const Member* member = servers ? find(*servers, place.name) : nullptr;
  return member ? withoutMember(*servers, *member) : text;
}

void JsonConfiguration::read() {
  try {
    JsonReader().read(plain, [this](JsonCursor& cursor) {
      if (!cursor.atObject()) refuse(text, cursor.position(), "expected an object");
      root = readRoot(cursor);
    });
  } catch (const DecodeError& error) {
    refuse(text, faultIn(plain, error), error.what());
  }
  const Member* member = find(*root, place.servers);
  if (member && !servers) refuse(text, member->begin, "'" + place.servers + "' is no object");
}

JsonConfiguration::Object JsonConfiguration::readRoot(JsonCursor& cursor) {
  return readObject(cursor, [&](const std::string& key) {
    if (key != place.servers) return cursor.skip();
    servers.reset();
    if (!cursor.atObject()) return cursor.skip();
    servers = readObject(cursor, [&](const std::string&) { cursor.skip(); });
  });
}

template <class Visit>
JsonConfiguration::Object JsonConfiguration::readObject(JsonCursor& cursor, Visit visit) {
  Object object{.begin = cursor.position(), .close = 0, .members = {}};
  std::size_t separator = object.begin;
  cursor.members([&](std::string_view key) {
    Member member{.key = std::string(key),
                  .separator = separator,
                  .keyBegin = plain.find_first_not_of(blanks, separator + 1),
                  .begin = cursor.position(),
                  .end = 0};
    visit(member.key);
    separator = cursor.position();
    member.end = plain.find_last_not_of(blanks, separator - 1) + 1;
    object.members.push_back(std::move(member));
  });
  // What follows the last value, or stands alone in an empty object, is the brace.
  object.close =
      object.members.empty() ? plain.find_first_not_of(blanks, object.begin + 1) : separator;
  return object;
}

const JsonConfiguration::Member* JsonConfiguration::find(const Object& object,
                                                         std::string_view key) {
  const auto found = std::find_if(object.members.rbegin(), object.members.rend(),
                                  [&](const Member& member) { return member.key == key; });
  return found == object.members.rend() ? nullptr : &*found;
}

JsonConfiguration::Layout JsonConfiguration::layoutOf(const Object& object) const {
  const std::string outer = indentAt(object.begin);
  if (object.members.empty()) {
    return {.onOneLine = false, .indent = outer + unit, .outerIndent = outer};
  }
  const Member& last = object.members.back();
  const std::string_view gap =
      std::string_view(plain).substr(last.separator, last.keyBegin - last.separator);
  return {.onOneLine = gap.find('\n') == std::string_view::npos,
          .indent = indentAt(last.keyBegin),
          .outerIndent = outer};
}

JsonConfiguration::Layout JsonConfiguration::layoutWithin(const Layout& outer) const {
  return {.onOneLine = outer.onOneLine, .indent = outer.indent + unit, .outerIndent = outer.indent};
}

JsonConfiguration::Layout JsonConfiguration::layoutOfServers() const {
  const Layout outer = root ? layoutOf(*root) : Layout{false, unit, {}};
  if (!servers) return layoutWithin(outer);
  Layout layout = layoutOf(*servers);
  // An empty object is as its surroundings are.
  if (servers->members.empty()) layout.onOneLine = outer.onOneLine;
  return layout;
}

std::string JsonConfiguration::objectOf(const std::vector<std::string>& members,
                                        const Layout& layout) const {
  const std::string lineBegin = layout.onOneLine ? "" : lineEnd + layout.indent;
  std::string object;
  for (const std::string& member : members) {
    object += (object.empty() ? "{" : ",") + lineBegin + member;
  }
  return object + (layout.onOneLine ? "" : lineEnd + layout.outerIndent) + "}";
}

std::string JsonConfiguration::withMember(const Object& object, const std::string& member,
                                          const Layout& layout) const {
  if (object.members.empty()) return withFirstMember(object, member, layout);
  const Member& last = object.members.back();
  const std::size_t comma = bare.find(',', last.end);
  const bool endsWithComma = comma < object.close;
  std::string changed = text;
  if (layout.onOneLine) {
    const bool isSpaced = text[last.keyBegin - 1] == ' ';
    return changed.insert(last.end, (isSpaced ? ", " : ",") + member);
  }
  // Behind what is noted on the last value's line.
  const std::size_t behind = endsWithComma ? comma + 1 : last.end;
  std::size_t at = std::min(plain.find('\n', behind), object.close);
  at = text.find_last_not_of(blanks, at - 1) + 1;
  changed.insert(at, lineEnd + layout.indent + member + (endsWithComma ? "," : ""));
  if (!endsWithComma) changed.insert(last.end, ",");
  return changed;
}

std::string JsonConfiguration::withFirstMember(const Object& object, const std::string& member,
                                               const Layout& layout) const {
  std::string changed = text;
  if (layout.onOneLine) return changed.insert(object.begin + 1, member);
  // Behind what is noted in the object.
  const std::size_t at = text.find_last_not_of(blanks, object.close - 1) + 1;
  const std::string rest = text.substr(at, object.close - at);
  const bool closesOnItsOwnLine = rest.find('\n') != std::string::npos;
  return changed.replace(at, rest.size(),
                         lineEnd + layout.indent + member +
                             (closesOnItsOwnLine ? rest : lineEnd + layout.outerIndent));
}

std::string JsonConfiguration::withoutMember(const Object& object, const Member& member) const {
  const bool isOnly = object.members.size() == 1;
  const std::size_t comma = bare.find(',', member.end);
  const bool hasComma = comma < object.close;
  std::string changed = text;
  // With the white space before it, so that its line goes as well.
  const std::size_t begin = text.find_last_not_of(blanks, member.keyBegin - 1) + 1;
  std::size_t end = hasComma ? comma + 1 : member.end;
  const std::size_t next = text.find_first_not_of(blanks, end);
  if (isOnly && begin == object.begin + 1 && next == object.close) end = next;
  changed.erase(begin, end - begin);
  if (!hasComma && !isOnly) changed.erase(member.separator, 1);
  return changed;
}

std::string JsonConfiguration::indentAt(std::size_t offset) const {
  const std::size_t lineBegin = offset == 0 ? 0 : text.rfind('\n', offset - 1) + 1;
  const std::size_t end = std::min(text.find_first_not_of(" \t", lineBegin), offset);
  return text.substr(lineBegin, end - lineBegin);
}

}  // namespace corvane::ctl
