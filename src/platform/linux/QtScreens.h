#pragma once

#include <QPoint>
#include <QString>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/Screens.h"

class QScreen;

namespace notlet {

class X11ScreenWatch;

/// How a monitor names itself, and the connector that it is plugged into. Each may be empty.
struct MonitorName {
  QString manufacturer;
  QString model;
  QString serialNumber;
  QString connector;
};

/// A number for each monitor, in their order: positive, different from each other, and the same in later
/// runs. A monitor with a serial number keeps its own at another connector, unless others claim the same
/// serial number.
[[nodiscard]] std::vector<std::int64_t> displayIDs(std::span<const MonitorName> monitors);

/// Coordinates that grow upward from a point in Qt's coordinates, and back.
class UpwardCoordinates {
 public:
  explicit UpwardCoordinates(QPoint origin) : m_origin(origin) {}

  [[nodiscard]] QRectF fromQt(const QRect& rect) const;
  /// Position and size are rounded each on its own, so that equal sizes stay equal.
  [[nodiscard]] QRect toQt(const QRectF& rect) const;

 private:
  QPoint m_origin;
};

/// The screens that Qt knows. The stand-in that it keeps while no monitor is connected does not count.
class QtScreens final : public Screens {
  Q_OBJECT

 public:
  QtScreens();
  ~QtScreens() override;

  [[nodiscard]] std::vector<ScreenArea> all() const override;
  [[nodiscard]] std::optional<ScreenArea> main() const override;
  [[nodiscard]] QRect toQt(const QRectF& rect) const override;
  [[nodiscard]] QRectF fromQt(const QRect& rect) const override;

 private:
  void watch(QScreen* screen);
  void scheduleChanged();
  [[nodiscard]] bool isStandIn(const QScreen& screen) const;
  [[nodiscard]] QList<QScreen*> realScreens() const;
  [[nodiscard]] UpwardCoordinates coordinates() const;

  /// None elsewhere.
  std::unique_ptr<X11ScreenWatch> m_x11;
  bool m_isChangeScheduled = false;
};

} // namespace notlet
