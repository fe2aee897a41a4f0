#include "corvane_standin/workspace/Workspace.h"

#include <utility>
#include <vector>

#include "CorvaneCore/authoring/Vocabularies.h"

namespace corvane::standin {

namespace {

using Project = AgentContext::ProjectContext;
using Step = AgentContext::StepSummary;
using Test = AgentContext::TestContext;

Step step(std::string type, std::string description) {
  Step step;
  step.type = std::move(type);
  step.description = std::move(description);
  return step;
}

/// `parent` with steps that are taken only when it failed.
Step recoveringWith(Step parent, std::vector<Step> children) {
  for (Step& child : children) child.previousStepCondition = "previousFailed";
  parent.children = std::move(children);
  return parent;
}

Test test(std::string id, std::string name, std::string description, std::vector<Step> steps) {
  Test test;
  test.id = std::move(id);
  test.name = std::move(name);
  test.description = std::move(description);
  test.steps = std::move(steps);
  test.autoScaffold = true;
  test.verified = false;
  return test;
}

struct History {
  double flakinessScore;
  bool verified;
};

Test withHistory(Test test, History history) {
  test.flakinessScore = history.flakinessScore;
  test.isFlaky = history.flakinessScore >= 0.3;
  test.verified = history.verified;
  return test;
}

const char* const catalogueId = "6f1d7c52-0b0e-4c55-9f8e-1a51c1f0a001";
const char* const signInId = "6f1d7c52-0b0e-4c55-9f8e-1a51c1f0a002";
const char* const searchId = "6f1d7c52-0b0e-4c55-9f8e-1a51c1f0a003";
const char* const cartId = "6f1d7c52-0b0e-4c55-9f8e-1a51c1f0a004";
const char* const voucherId = "6f1d7c52-0b0e-4c55-9f8e-1a51c1f0a005";
const char* const guestId = "6f1d7c52-0b0e-4c55-9f8e-1a51c1f0a006";

Test browseCatalogue() {
  return withHistory(
      test(catalogueId, "Browse the catalogue", "The catalogue opens and shows the season's goods.",
           {
               step("waitToLoad", "The heading \"New this week\" is shown"),
               step("visualAssert", "A grid of products with pictures and prices is shown"),
               step("scroll", "Scroll down to \"Kitchen\""),
               step("tap", "Tap \"Kitchen\""),
               step("visualAssert", "The page \"Kitchen\" lists the product \"Enamel mug\""),
           }),
      {.flakinessScore = 0.0, .verified = true});
}

Test signIn() {
  auto signIn = withHistory(
      test(signInId, "Sign in", "A customer with an account signs in.",
           {
               step("tap", "Tap the tab \"Account\""),
               step("tap", "Tap the field \"E-mail\""),
               step("input", "$username"),
               step("tap", "Tap the field \"Password\""),
               step("input", "$password"),
               recoveringWith(step("tap", "Tap the button \"Sign in\""),
                              {step("tap", "Tap \"Not now\" when asked to save the password"),
                               step("tap", "Tap the button \"Sign in\"")}),
               step("visualAssert", "The account page greets \"$username\""),
           }),
      {.flakinessScore = 0.07, .verified = true});
  signIn.parameterNames = std::vector<std::string>{"username", "password"};
  return signIn;
}

Test searchAndFilter() {
  return withHistory(
      test(searchId, "Search and filter", "Search results can be narrowed by price.",
           {
               step("tap", "Tap the magnifying glass in the bar at the top"),
               step("input", "linen"),
               step("builtIn", "Hit Return Key"),
               step("tap", "Tap the button \"Filter\""),
               step("drag", "Drag the right handle of \"Price\" to the middle of its track"),
               step("tap", "Tap the button \"Show results\""),
               step("visualAssert", "Every listed product has \"Linen\" in its name"),
           }),
      {.flakinessScore = 0.34, .verified = true});
}

Test addToCartAndRemove() {
  return test(cartId, "Add to cart and remove", "The cart follows what is put in and taken out.",
              {
                  step("tap", "Tap the product \"Enamel mug\""),
                  step("tap", "Tap the button \"Add to cart\""),
                  step("tap", "Tap the tab \"Cart\""),
                  step("visualAssert", "The cart holds one \"Enamel mug\""),
                  step("drag", "Drag the row \"Enamel mug\" to the left edge"),
                  step("tap", "Tap the button \"Remove\""),
                  step("visualAssert", "The text \"Your cart is empty\" is shown"),
              });
}

Test redeemVoucher() {
  return withHistory(
      test(voucherId, "Redeem a voucher", "A voucher lowers the amount to pay.",
           {
               step("reuseSteps", "Steps 0 to 2 of \"Add to cart and remove\""),
               step("tap", "Tap \"Add voucher\""),
               step("input", "SPRING10"),
               step("tap", "Tap the button \"Redeem\""),
               step("waitToLoad", "The row \"Voucher SPRING10\" is shown"),
               step("visualAssert", "The total is ten percent lower than the subtotal"),
           }),
      {.flakinessScore = 0.0, .verified = false});
}

Test checkOutAsGuest() {
  auto guest = withHistory(
      test(guestId, "Check out as guest", "An order can be placed without an account.",
           {
               step("builtIn", "Terminate Application"),
               step("builtIn", "Open Application Corner Shop"),
               step("runTest", "Run the test \"Add to cart and remove\" up to the full cart"),
               step("tap", "Tap the button \"Check out as guest\""),
               step("userDefined", "Fill shipping address"),
               step("delay", "Wait 2 seconds"),
               step("tap", "Tap the button \"Place order\""),
               step("visualAssert", "The page \"Thank you\" shows an order number"),
               step("builtIn", "Terminate Application"),
           }),
      {.flakinessScore = 0.18, .verified = true});
  guest.autoScaffold = false;
  guest.lastFailure = AgentContext::LastFailure{
      .stepTitle = "TAP",
      .errorMessage =
          "The button \"Place order\" stayed grey for 20 seconds after the address was "
          "filled in."};
  return guest;
}

Project cornerShop() {
  Project project;
  project.name = "Corner Shop";
  project.platform = rawValue(AgentTargetPlatform::iOS);
  project.bundleIdentifier = "com.example.cornershop";
  project.buildBeforeScheduledRuns = true;
  project.iosBuildConfigured = true;
  project.androidBuildConfigured = false;
  project.suites = {
      {.name = "Smoke", .testIds = {catalogueId, searchId}},
      {.name = "Purchase", .testIds = {cartId, voucherId, guestId}},
  };
  project.tests = {browseCatalogue(),    signIn(),        searchAndFilter(),
                   addToCartAndRemove(), redeemVoucher(), checkOutAsGuest()};
  project.worldMap =
      "Screens\n"
      "  Catalogue: grid of products, tabs \"Shop\", \"Cart\", \"Account\"\n"
      "  Product: picture, price, \"Add to cart\"\n"
      "  Cart: rows, \"Add voucher\", \"Check out\", \"Check out as guest\"\n"
      "  Account: \"E-mail\", \"Password\", \"Sign in\"\n"
      "Edges\n"
      "  Catalogue -- tap a product --> Product\n"
      "  Product -- tap \"Add to cart\" --> Product (badge on \"Cart\" counts up)\n"
      "  Catalogue -- tap \"Cart\" --> Cart\n"
      "  Catalogue -- tap \"Account\" --> Account\n"
      "  Cart -- tap \"Check out as guest\" --> Shipping address\n"
      "Tried without effect\n"
      "  Cart: tap \"Check out\" with an empty cart";
  return project;
}

Project trailLog() {
  const char* const recordId = "b3a0e6d4-7c1f-4f0a-8f43-52e7d90bb001";
  const char* const unitsId = "b3a0e6d4-7c1f-4f0a-8f43-52e7d90bb002";
  Project project;
  project.name = "Trail Log";
  project.platform = rawValue(AgentTargetPlatform::android);
  project.applicationId = "com.example.traillog";
  project.buildBeforeScheduledRuns = false;
  project.iosBuildConfigured = false;
  project.androidBuildConfigured = true;
  project.suites = {{.name = "Smoke", .testIds = {recordId, unitsId}}};
  project.tests = {
      withHistory(test(recordId, "Record a walk", "A walk is recorded and saved.",
                       {
                           step("tap", "Tap the round button \"Record\""),
                           step("delay", "Wait 5 seconds"),
                           step("tap", "Tap \"Stop\""),
                           step("tap", "Tap \"Save\""),
                           step("visualAssert", "The list \"My walks\" begins with today's walk"),
                       }),
                  {.flakinessScore = 0.12, .verified = true}),
      test(unitsId, "Switch to miles", "Distances follow the chosen unit.",
           {
               step("tap", "Tap the tab \"Settings\""),
               step("tap", "Tap \"Units\""),
               step("tap", "Tap \"Miles\""),
               step("builtIn", "Go Back"),
               step("visualAssert", "Distances end in \"mi\""),
           }),
  };
  return project;
}

AgentContext::UdiContext fillShippingAddress() {
  AgentContext::UdiContext udi;
  udi.id = "e4d1b2aa-93c5-4f67-a1d0-0c8f6ab5c001";
  udi.name = "Fill shipping address";
  udi.parameterNames = std::vector<std::string>{"street", "city"};
  udi.steps = {
      step("tap", "Tap the field \"Street\""), step("input", "$street"),
      step("tap", "Tap the field \"City\""),   step("input", "$city"),
      step("tap", "Tap the button \"Done\""),
  };
  udi.sourceProjectName = "Corner Shop";
  return udi;
}

}  // namespace

AgentContext firstWorkspace() {
  AgentContext workspace;
  workspace.appVersion = CORVANE_VERSION;
  workspace.currentProjectName = "Corner Shop";
  workspace.projects = {cornerShop(), trailLog()};
  workspace.device =
      AgentContext::DeviceContext{.platform = std::string(rawValue(AgentTargetPlatform::iOS)),
                                  .name = "Pocket 17",
                                  .udid = "3D0C4B1E-55A7-4E0C-9B5E-7F2A6C8D9E10",
                                  .state = "booted",
                                  .connected = true};
  workspace.userDefinedInteractions = std::vector{fillShippingAddress()};
  return workspace;
}

std::map<std::string, TestOutcome> firstOutcomes() {
  TestOutcome wrongTotal;
  wrongTotal.kind = TestOutcome::Kind::failed;
  wrongTotal.failedStep = 5;
  wrongTotal.failureReason =
      "The voucher was accepted: the row \"Voucher SPRING10\" shows a discount of 6.40. The total "
      "below it still reads 64.00, the same as the subtotal, where 57.60 was expected. All steps "
      "before were carried out on the intended elements, so this is a defect in how the app "
      "computes the total and not in the test.";

  TestOutcome movedFilter;
  movedFilter.kind = TestOutcome::Kind::healed;
  movedFilter.failedStep = 3;
  movedFilter.failureReason =
      "The button \"Filter\" was no longer in the bar at the top; Corvane found it as \"Refine\" "
      "above the results and tapped that.";

  return {{"Redeem a voucher", wrongTotal}, {"Search and filter", movedFilter}};
}

AgentRunResult::AppIdentity installedApp(const std::string& bundleId) {
  AgentRunResult::AppIdentity app;
  app.bundleId = bundleId;
  if (bundleId == "com.example.cornershop") {
    app.version = "4.2.0";
    app.build = "1187";
  } else if (bundleId == "com.example.traillog") {
    app.version = "1.9.3";
    app.build = "309";
  }
  return app;
}

}  // namespace corvane::standin
