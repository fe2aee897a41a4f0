#pragma once

#include "corvane_standin/capture/Brush.h"
#include "corvane_standin/capture/Screen.h"

namespace corvane::standin {

/// The measures of a phone, in points, and what its system and apps place around a page.
struct PhoneFrame {
  Size size;
  double statusHeight;
  double titleHeight;
  double tabsHeight;
  /// The strip at the bottom that the system keeps.
  double homeHeight;
  double keyboardHeight;
  bool titleInTheMiddle;

  [[nodiscard]] static PhoneFrame of(Screen::Phone phone);

  /// What is left for a page between the bars.
  [[nodiscard]] Rect pageOf(const Screen& screen) const;
  /// Where a dialog has room.
  [[nodiscard]] Rect dialogSpace(const Screen& screen) const;
  [[nodiscard]] Rect tabArea(const Screen& screen, std::size_t index) const;
  [[nodiscard]] Rect searchIconArea() const;
  [[nodiscard]] Rect backArea() const;

  void paintStatusBar(const Screen& screen, Colour ink, const Brush& brush) const;
  void paintTitleBar(const Screen& screen, const Brush& brush) const;
  /// The tabs, or the keyboard that covers them.
  void paintBottom(const Screen& screen, const Brush& brush) const;

 private:
  void paintTabs(const Screen& screen, const Brush& brush) const;
  void paintKeyboard(const Brush& brush) const;
  void paintHomeStrip(Colour ink, const Brush& brush) const;
};

}  // namespace corvane::standin
