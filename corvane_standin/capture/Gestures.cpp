#include "corvane_standin/capture/Gestures.h"

#include <cmath>

namespace corvane::standin {

namespace {

/// Files need no more than this.
double rounded(double share) {
  return std::round(share * 10'000) / 10'000;
}

Touch tapAt(Point at) {
  return {rounded(at.x), rounded(at.y)};
}

Touch drag(Point from, Point to) {
  return {rounded(from.x), rounded(from.y), rounded(to.x), rounded(to.y)};
}

/// A finger goes the other way than what comes into sight.
Touch scrollTouch(const StepWords& step) {
  constexpr Point above{0.5, 0.34};
  constexpr Point below{0.5, 0.74};
  constexpr Point left{0.18, 0.54};
  constexpr Point right{0.82, 0.54};
  if (step.speaksOf({"up"})) return drag(above, below);
  if (step.speaksOf({"left"})) return drag(left, right);
  if (step.speaksOf({"right"})) return drag(right, left);
  return drag(below, above);
}

Touch dragTouch(const StepWords& step, Rect target) {
  const Point centre = target.centre();
  if (step.speaksOf({"handle", "slider", "middle"})) return drag(centre, {0.5, centre.y});
  if (step.speaksOf({"up", "top"})) return drag(centre, {centre.x, 0.16});
  if (step.speaksOf({"down", "bottom"})) return drag(centre, {centre.x, 0.86});
  if (step.speaksOf({"left"})) return drag({0.84, centre.y}, {0.1, centre.y});
  return drag({0.16, centre.y}, {0.9, centre.y});
}

}  // namespace

std::vector<Touch> touchesOf(const StepWords& step, const std::optional<Rect>& target) {
  if (step.is(InteractionType::scroll)) return {scrollTouch(step)};
  if (!target) return {};
  if (step.is(InteractionType::tap)) return {tapAt(target->centre())};
  if (step.is(InteractionType::drag)) return {dragTouch(step, *target)};
  return {};
}

}  // namespace corvane::standin
