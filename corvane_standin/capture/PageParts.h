#pragma once

#include <optional>
#include <string_view>

#include "corvane_standin/capture/PageView.h"
#include "corvane_standin/capture/Screen.h"

namespace corvane::standin {

/// The element with this label, and of this kind when one is given; capitals do not matter.
[[nodiscard]] std::optional<std::size_t> findElement(
    const Screen& screen, std::string_view label, std::optional<Element::Kind> kind = std::nullopt);

/// Makes sure that what `step` speaks of is on the screen of a page.
void addNamedPart(Screen& screen, const NamedPart& part, const StepWords& step, PageKind page);

/// Where the named part is on the screen; nothing when it is not there.
[[nodiscard]] std::optional<Target> targetOf(const Screen& screen, const NamedPart& part);

}  // namespace corvane::standin
