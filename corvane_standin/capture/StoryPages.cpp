#include "corvane_standin/capture/StoryPages.h"

#include <optional>

namespace corvane::standin {

namespace {

using Way = Arrival::Way;

Arrival arrivalByTap(const NamedPart& part) {
  switch (part.kind) {
    case NamedPart::Kind::tab:
      return {Way::tab, part.label};
    case NamedPart::Kind::product:
      return {Way::product, part.label};
    case NamedPart::Kind::searchIcon:
      return {Way::search, part.label};
    case NamedPart::Kind::button:
      return {Way::button, part.label};
    default:
      return {beginsWithVerb(part.label) ? Way::button : Way::row, part.label};
  }
}

bool leavesPageInSight(NamedPart::Kind kind) {
  return kind == NamedPart::Kind::field || kind == NamedPart::Kind::toggle ||
         kind == NamedPart::Kind::slider;
}

/// Where a step leads; nothing when the page stays.
std::optional<Arrival> leadsTo(const StepWords& step) {
  if (step.is(InteractionType::tap)) {
    if (step.named().empty() || leavesPageInSight(step.named().front().kind)) return std::nullopt;
    return arrivalByTap(step.named().front());
  }
  if (step.isOtherSteps()) return Arrival{Way::otherSteps, {}};
  switch (phoneCommand(step)) {
    case PhoneCommand::closeApp:
      return Arrival{Way::closed, {}};
    case PhoneCommand::openApp:
      return Arrival{Way::opened, {}};
    case PhoneCommand::goBack:
      return Arrival{Way::back, {}};
    case PhoneCommand::other:
      break;
  }
  return std::nullopt;
}

}  // namespace

PhoneCommand phoneCommand(const StepWords& step) {
  if (!step.is(InteractionType::builtIn)) return PhoneCommand::other;
  if (step.speaksOf({"terminate", "close", "kill", "terminateapplication"})) {
    return PhoneCommand::closeApp;
  }
  if (step.speaksOf({"open", "launch", "openapplication"}) ||
      step.description().find("{{APP_NAME}}") != std::string::npos) {
    return PhoneCommand::openApp;
  }
  if (step.speaksOf({"back", "goback"})) return PhoneCommand::goBack;
  return PhoneCommand::other;
}

std::vector<PageSteps> pagesOf(const std::vector<StepWords>& steps) {
  std::vector<PageSteps> pages(1);
  for (std::size_t i = 0; i < steps.size(); ++i) {
    pages.back().end = i + 1;
    if (auto next = leadsTo(steps[i])) pages.push_back({i + 1, i + 1, std::move(*next)});
  }
  return pages;
}

}  // namespace corvane::standin
