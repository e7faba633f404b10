#pragma once

#include <QObject>
#include <QRect>
#include <QRectF>
#include <cstdint>
#include <optional>
#include <vector>

namespace notlet {

/// One screen of the desktop.
///
/// Rectangles are in logical pixels with y growing upward, so `y()` of a rectangle is its lower edge and
/// `y() + height()` its upper one. The origin is the lower left corner of the main screen.
struct ScreenArea {
  /// The same for the same monitor at the same connector in later runs; never 0 for a known screen.
  std::int64_t displayID = 0;
  QRectF frame;
  /// The frame without panels and docks.
  QRectF visibleFrame;

  bool operator==(const ScreenArea&) const = default;
};

/// The screens that the desktop consists of. There may be none for a while.
class Screens : public QObject {
  Q_OBJECT

 public:
  /// In the desktop's order.
  [[nodiscard]] virtual std::vector<ScreenArea> all() const = 0;
  /// The one that the desktop calls primary.
  [[nodiscard]] virtual std::optional<ScreenArea> main() const = 0;
  /// Between the coordinates of ScreenArea and those of Qt's windows (y downward), both ways. Without a
  /// screen only the direction of y differs.
  [[nodiscard]] virtual QRect toQt(const QRectF& rect) const = 0;
  [[nodiscard]] virtual QRectF fromQt(const QRect& rect) const = 0;

 Q_SIGNALS:
  /// Screens were added, removed, moved, resized, or got other panels. Comes on a turn of the event loop of
  /// its own, after the windows have been told.
  void changed();
};

} // namespace notlet
