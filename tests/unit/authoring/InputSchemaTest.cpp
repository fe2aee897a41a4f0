#include <gtest/gtest.h>

#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/authoring/InputSchemaBuilder.h"
#include "tests/support/PrintJson.h"
#include "tests/unit/authoring/Payloads.h"

namespace corvane::testing {
namespace {

const AnyCodable& at(const AnyCodable& value, const std::vector<std::string>& keys) {
  const AnyCodable* found = &value;
  for (const auto& key : keys) {
    found = found->find(key);
    if (!found) throw std::runtime_error("no " + key);
  }
  return *found;
}

const AnyCodable& builtSchema() {
  static const AnyCodable schema = InputSchemaBuilder::build();
  return schema;
}

AnyCodable property(const std::string& name) {
  return at(builtSchema(), {"properties", name});
}

std::vector<AnyCodable> definitions() {
  return *at(property("interactions"), {"items", "oneOf"}).array();
}

AnyCodable definition(std::string_view type) {
  for (const auto& descriptor : InputSchemaBuilder::interactionDescriptors()) {
    if (descriptor.name == type) return descriptor.paramsSchema;
  }
  throw std::runtime_error("no such type");
}

AnyCodable offered(std::string_view type) {
  for (const auto& candidate : definitions()) {
    if (*at(candidate, {"properties", "type", "const"}).string() == type) return candidate;
  }
  throw std::runtime_error("not offered");
}

std::string keysOf(const AnyCodable& object) {
  std::string keys;
  for (const auto& member : *object.object()) keys += (keys.empty() ? "" : " ") + member.key;
  return keys;
}

/// A property without its description, as JSON.
std::string form(const AnyCodable& schema) {
  JsonObject rest;
  for (const auto& [keyword, value] : *schema.object()) {
    if (keyword != "description") rest.set(keyword, value);
  }
  return toJson(rest);
}

TEST(InputSchemaTest, TheTopLevelIsAClosedObject) {
  const AnyCodable& schema = builtSchema();
  EXPECT_EQ(keysOf(schema), "$schema additionalProperties properties required type");
  EXPECT_EQ(at(schema, {"$schema"}), AnyCodable("https://json-schema.org/draft/2020-12/schema"));
  EXPECT_EQ(at(schema, {"type"}), AnyCodable("object"));
  EXPECT_EQ(at(schema, {"additionalProperties"}), AnyCodable(false));
  EXPECT_EQ(toJson(at(schema, {"required"})), R"(["projectName","testName","interactions"])");
}

TEST(InputSchemaTest, EveryArgumentHasItsForm) {
  const std::vector<std::pair<std::string, std::string>> forms{
      {"androidProjectPath", R"({"type":"string"})"},
      {"applicationId", R"({"pattern":"^[^\\s]+\\.[^\\s]+$","type":"string"})"},
      {"autoRun", R"({"default":true,"type":"boolean"})"},
      {"buildFirst", R"({"type":"boolean"})"},
      {"bundleIdentifier", R"({"pattern":"^[^\\s]+\\.[^\\s]+$","type":"string"})"},
      {"iosProjectPath", R"({"type":"string"})"},
      {"projectName", R"({"type":"string"})"},
      {"selfHealingMode", R"({"default":"off","enum":["off","fullTest"],"type":"string"})"},
      {"simulatorUDID",
       R"({"pattern":"^[A-Fa-f0-9]{8}(-[A-Fa-f0-9]{4}){3}-[A-Fa-f0-9]{12}$","type":"string"})"},
      {"suiteName", R"({"type":"string"})"},
      {"targetPlatform", R"({"default":"iOS","enum":["iOS","android"],"type":"string"})"},
      {"testDescription", R"({"type":"string"})"},
      {"testIndex", R"({"default":0,"type":"integer"})"},
      {"testName", R"({"type":"string"})"},
      {"version", R"({"default":"1.0","type":"string"})"},
  };
  for (const auto& [name, expected] : forms) EXPECT_EQ(form(property(name)), expected) << name;
  EXPECT_EQ(keysOf(at(builtSchema(), {"properties"})),
            "androidProjectPath applicationId autoRun buildFirst bundleIdentifier interactions "
            "iosProjectPath projectName selfHealingMode simulatorUDID suiteName targetPlatform "
            "testDescription testIndex testName version");
}

TEST(InputSchemaTest, ArgumentsAreDescribedInTheseWords) {
  const auto text = [](const std::string& name) {
    return *at(property(name), {"description"}).string();
  };
  EXPECT_EQ(text("projectName"), "Project name as it should appear in Corvane's project list.");
  EXPECT_EQ(text("testName"), "Test name (a single test is created per call).");
  EXPECT_EQ(text("testDescription"), "Optional human-readable description of the test.");
  EXPECT_EQ(text("testIndex"), "Position of the test in the project. Defaults to 0.");
  EXPECT_EQ(text("targetPlatform"), "Mobile platform under test.");
  EXPECT_EQ(text("suiteName"),
            "Optional suite to file the test under. Omit to use the default 'Agent' suite for "
            "agent-authored tests.");
}

TEST(InputSchemaTest, TheStepsAreOneOfSevenDefinitions) {
  const AnyCodable steps = property("interactions");
  EXPECT_EQ(keysOf(steps), "description items minItems type");
  EXPECT_EQ(at(steps, {"type"}), AnyCodable("array"));
  EXPECT_EQ(at(steps, {"minItems"}), AnyCodable(3));
  EXPECT_EQ(keysOf(at(steps, {"items"})), "oneOf");
  std::string types;
  for (const auto& one : definitions()) {
    EXPECT_EQ(keysOf(one), "properties required type");
    EXPECT_EQ(at(one, {"type"}), AnyCodable("object"));
    types += *at(one, {"properties", "type", "const"}).string() + " ";
  }
  EXPECT_EQ(types, "visualAssert builtIn delay waitToLoad runTest reuseSteps userDefined ");
}

TEST(InputSchemaTest, EveryDefinitionHasItsMembers) {
  const std::vector<std::array<std::string, 3>> members{
      {"visualAssert",
       "aiSegmentationMode children description memoryEnabled parameters previousStepCondition "
       "type",
       R"(["type","description"])"},
      {"builtIn", "children description parameters previousStepCondition type",
       R"(["type","description"])"},
      {"delay", "children description parameters previousStepCondition type", R"(["type"])"},
      {"waitToLoad", "children description parameters previousStepCondition type", R"(["type"])"},
      {"runTest",
       "arguments children description parameters previousStepCondition referencedTestId "
       "referencedTestName type",
       R"(["type"])"},
      {"reuseSteps",
       "description fromStep parameters previousStepCondition referencedTestId "
       "referencedTestName toStep type",
       R"(["type"])"},
      {"userDefined", "description parameters previousStepCondition type udiName", R"(["type"])"},
  };
  for (const auto& [type, keys, required] : members) {
    EXPECT_EQ(keysOf(at(offered(type), {"properties"})), keys) << type;
    EXPECT_EQ(toJson(at(offered(type), {"required"})), required) << type;
  }
}

TEST(InputSchemaTest, ParametersAreClosedObjects) {
  const std::vector<std::array<std::string, 3>> parameters{
      {"builtIn", "command", R"(["command"])"},
      {"delay", "seconds", R"(["seconds"])"},
      {"waitToLoad", "totalSeconds until", R"(["totalSeconds"])"},
  };
  for (const auto& [type, keys, required] : parameters) {
    const AnyCodable schema = at(offered(type), {"properties", "parameters"});
    EXPECT_EQ(keysOf(schema), "additionalProperties properties required type");
    EXPECT_EQ(at(schema, {"additionalProperties"}), AnyCodable(false));
    EXPECT_EQ(keysOf(at(schema, {"properties"})), keys);
    EXPECT_EQ(toJson(at(schema, {"required"})), required);
  }
}

TEST(InputSchemaTest, ParametersHaveTheirForms) {
  const auto parameter = [](std::string_view type, const std::string& key) {
    return at(definition(type), {"properties", "parameters", "properties", key});
  };
  EXPECT_EQ(form(parameter("builtIn", "command")),
            R"({"enum":["terminateApplication","openApplication","openUrl","goHome","goBack",)"
            R"("hitReturnKey","clearText","hitBackspaceKey","tapToDismiss"],"type":"string"})");
  EXPECT_EQ(
      toJson(parameter("delay", "seconds")),
      R"({"description":"Number of seconds to pause unconditionally. Field is 'seconds', NOT )"
      R"('totalSeconds' (which belongs to waitToLoad).","minimum":0,"type":"number"})");
  EXPECT_EQ(form(parameter("waitToLoad", "totalSeconds")),
            R"({"maximum":600,"minimum":0,"type":"number"})");
  EXPECT_TRUE(at(parameter("waitToLoad", "totalSeconds"), {"description"})
                  .string()
                  ->starts_with("Max seconds to wait (cap 600). Field is 'totalSeconds', NOT "
                                "'seconds' (which belongs to delay)."));
  EXPECT_EQ(toJson(parameter("waitToLoad", "until")),
            R"({"description":"Optional yes/no condition phrased as a visual question. Example: )"
            R"(\"Is the loading spinner gone?\". When omitted, Corvane waits for the generic )"
            R"(splash/skeleton screen to disappear.","type":"string"})");
  const std::string regions =
      R"({"enum":["all","content","top20","bottom15","top33","bottom33","contentLeading50",)"
      R"("contentTrailing50","contentCenter33","top20Leading50","top20Trailing50","top20Center33",)"
      R"("bottom15Leading50","bottom15Trailing50","bottom15Center33","top33Leading50",)"
      R"("top33Trailing50","top33Center33","bottom33Leading50","bottom33Trailing50",)"
      R"("bottom33Center33"],"type":"string"})";
  for (const char* type : {"tap", "scroll", "drag"}) {
    EXPECT_EQ(form(parameter(type, "regionOfInterest")), regions) << type;
  }
  EXPECT_EQ(form(parameter("scroll", "direction")),
            R"({"enum":["auto","up","down","left","right"],"type":"string"})");
  EXPECT_EQ(toJson(parameter("drag", "mode")),
            R"({"description":"'auto' = describe what/to/from in plain English (AI detects). )"
            R"('hardcoded' = supply explicit normalized {x,y} for both endpoints.",)"
            R"("enum":["auto","hardcoded"],"type":"string"})");
  EXPECT_TRUE(at(parameter("drag", "what"), {"description"})
                  .string()
                  ->starts_with("REQUIRED. Description of the draggable element — the "
                                "handle/thumb/grabber the user grabs."));
  for (const char* end : {"from", "to"}) {
    EXPECT_EQ(
        form(parameter("drag", end)),
        R"({"anyOf":[{"type":"string"},{"additionalProperties":false,"properties":{)"
        R"("x":{"description":"Normalized x in [0,1].","maximum":1,"minimum":0,"type":"number"},)"
        R"("y":{"description":"Normalized y in [0,1].","maximum":1,"minimum":0,"type":"number"}},)"
        R"("required":["x","y"],"type":"object"}]})");
  }
}

TEST(InputSchemaTest, StepMembersHaveTheirForms) {
  const auto member = [](std::string_view type, const std::string& key) {
    return at(definition(type), {"properties", key});
  };
  for (const auto& descriptor : InputSchemaBuilder::interactionDescriptors()) {
    const AnyCodable condition = member(descriptor.name, "previousStepCondition");
    EXPECT_EQ(form(condition),
              R"({"enum":["previousSucceeded","previousFailed"],"type":"string"})");
    EXPECT_TRUE(at(condition, {"description"})
                    .string()
                    ->starts_with("ONLY meaningful on a step nested inside another step's "
                                  "`children`"));
  }
  for (const char* type : {"visualAssert", "tap", "scroll", "drag"}) {
    EXPECT_EQ(form(member(type, "aiSegmentationMode")),
              R"({"default":"none","enum":["none","auto","forceFresh"],"type":"string"})");
    EXPECT_EQ(form(member(type, "memoryEnabled")), R"({"default":true,"type":"boolean"})");
  }
  EXPECT_EQ(form(member("runTest", "arguments")),
            R"({"additionalProperties":{"type":"string"},"type":"object"})");
  EXPECT_EQ(toJson(member("reuseSteps", "fromStep")),
            R"({"description":"0-based index of the FIRST step to clone, matching the source )"
            R"(test's step order in describe_project.","minimum":0,"type":"integer"})");
  EXPECT_EQ(toJson(member("reuseSteps", "toStep")),
            R"({"description":"0-based index of the LAST step to clone (inclusive). Omit to clone )"
            R"(the single step at fromStep.","minimum":0,"type":"integer"})");
  EXPECT_EQ(*at(member("reuseSteps", "description"), {"description"}).string(),
            "Optional display note, e.g. \"Reach the Input tab\". Corvane regenerates labels from "
            "the cloned steps.");
  EXPECT_EQ(*at(member("userDefined", "description"), {"description"}).string(),
            "Optional display note. Corvane shows the UDI's own name on the tile.");
  EXPECT_TRUE(at(member("builtIn", "description"), {"description"})
                  .string()
                  ->starts_with("terminateApplication kills the app. openApplication launches it "
                                "(description must be '{{APP_NAME}}')."));
}

TEST(InputSchemaTest, BranchesHoldStepsOfTheTypesThatTakePartInThem) {
  for (const char* type : {"visualAssert", "builtIn", "delay", "waitToLoad", "runTest"}) {
    const AnyCodable children = at(offered(type), {"properties", "children"});
    EXPECT_EQ(keysOf(children), "description items minItems type");
    EXPECT_EQ(at(children, {"type"}), AnyCodable("array"));
    EXPECT_EQ(at(children, {"minItems"}), AnyCodable(1));
    EXPECT_TRUE(at(children, {"description"})
                    .string()
                    ->ends_with("One level only (children cannot have children); child types: " +
                                Payloads::listed(Payloads::branchTypes, "/") +
                                " (compose userDefined/reuseSteps at the top level)."));
    const AnyCodable& child = at(children, {"items"});
    EXPECT_EQ(toJson(at(child, {"required"})), R"(["type","previousStepCondition"])");
    EXPECT_EQ(toJson(at(child, {"properties", "type", "enum"})),
              "[\"" + Payloads::listed(Payloads::branchTypes, "\",\"") + "\"]");
    EXPECT_EQ(keysOf(at(child, {"properties"})),
              "aiSegmentationMode arguments description memoryEnabled parameters "
              "previousStepCondition referencedTestId referencedTestName type");
    EXPECT_EQ(keysOf(at(child, {"properties", "parameters", "properties"})),
              "command direction from mode regionOfInterest searchType seconds speed tapCount to "
              "totalSeconds until what");
    EXPECT_EQ(toJson(at(child, {"properties", "parameters", "properties", "command", "enum"})),
              R"(["openUrl","goHome","goBack","hitReturnKey","clearText","hitBackspaceKey",)"
              R"("tapToDismiss"])");
  }
}

/// A branch child lists each parameter once, so the types that share one must mean the same by it.
TEST(InputSchemaTest, ParametersOfOneNameHaveOneForm) {
  std::map<std::string, std::string> forms;
  for (const auto& descriptor : InputSchemaBuilder::interactionDescriptors()) {
    const auto* own =
        descriptor.paramsSchema.findAs<JsonObject>("properties")->findAs<JsonObject>("parameters");
    if (!own) continue;
    for (const auto& [key, schema] : *own->findAs<JsonObject>("properties")) {
      EXPECT_EQ(forms.try_emplace(key, form(schema)).first->second, form(schema)) << key;
    }
  }
  EXPECT_EQ(forms.size(), 13U);
}

TEST(InputSchemaTest, EveryTypeIsDescribed) {
  std::string names;
  for (const auto& descriptor : InputSchemaBuilder::interactionDescriptors()) {
    names += descriptor.name + " ";
    EXPECT_EQ(descriptor.hint,
              AuthoringContract::guidance(*fromRawValue<InteractionType>(descriptor.name)));
    EXPECT_EQ(at(descriptor.paramsSchema, {"properties", "type", "const"}),
              AnyCodable(descriptor.name));
  }
  EXPECT_EQ(names, joinedRawValues<InteractionType>(" ") + " ");
}

}  // namespace
}  // namespace corvane::testing
