#include "CorvaneCore/json/JsonMembers.h"

#include <algorithm>
#include <variant>

#include "CorvaneCore/json/JsonErrors.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonTree.h"

namespace corvane {

namespace {

/// Passes the wanted members of a top-level object on to a tree and drops everything else.
class MemberFilter final : public JsonSink {
 public:
  explicit MemberFilter(const std::vector<std::string_view>& names) : names(names) {}

  void null() override {
    pass([](JsonSink& to) { to.null(); });
  }
  void boolean(bool value) override {
    pass([=](JsonSink& to) { to.boolean(value); });
  }
  void integer(std::int64_t value) override {
    pass([=](JsonSink& to) { to.integer(value); });
  }
  void number(double value) override {
    pass([=](JsonSink& to) { to.number(value); });
  }
  void string(std::string_view value) override {
    pass([=](JsonSink& to) { to.string(value); });
  }

  void beginArray() override {
    pass([](JsonSink& to) { to.beginArray(); });
    ++depth;
  }
  void endArray() override {
    --depth;
    pass([](JsonSink& to) { to.endArray(); });
  }

  void beginObject() override {
    if (depth == 0) {
      isObject = true;
      tree.beginObject();
    } else {
      pass([](JsonSink& to) { to.beginObject(); });
    }
    ++depth;
  }
  void endObject() override {
    --depth;
    if (depth == 0) {
      tree.endObject();
    } else {
      pass([](JsonSink& to) { to.endObject(); });
    }
  }

  void key(std::string_view key) override {
    if (depth == 1) wanted = std::find(names.begin(), names.end(), key) != names.end();
    pass([=](JsonSink& to) { to.key(key); });
  }

  JsonObject take() {
    if (!isObject) throw DecodeError("expected an object");
    AnyCodable value = tree.take();
    return std::move(std::get<JsonObject>(value.value()));
  }

 private:
  template <class Send>
  void pass(Send send) {
    if (wanted) send(tree);
  }

  const std::vector<std::string_view>& names;
  JsonTree tree;
  std::size_t depth = 0;
  bool isObject = false;
  bool wanted = false;
};

}  // namespace

JsonObject readMembers(std::string_view text, const std::vector<std::string_view>& names) {
  MemberFilter filter(names);
  JsonReader().read(text, filter);
  return filter.take();
}

}  // namespace corvane
