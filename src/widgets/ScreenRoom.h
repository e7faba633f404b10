#pragma once

#include <QScreen>
#include <QWidget>

namespace notlet {

/// How large a window may be so that it and its frame fit on the widget's screen, in logical pixels.
inline QSize roomOnScreen(const QWidget& widget) {
  constexpr QSize windowFrame{16, 48};
  return widget.screen()->availableSize() - windowFrame;
}

} // namespace notlet
