#pragma once

#include <QPixmap>
#include <QVariantAnimation>
#include <QWidget>

#include "platform/WindowSystem.h"
#include "themes/AppSettings.h"
#include "widgets/AppThemeContainer.h"
#include "widgets/ThemePalette.h"

namespace notlet {

/// A window without a frame, of a rounded shape, that stays above others and shows one content in the theme
/// in force.
///
/// With a compositor the window is translucent and its edges are smooth; without one it is cut out of an
/// opaque rectangle, which is painted sooner. It follows a compositor that comes or goes: at once if it stays
/// up, else when it is next hidden.
///
/// The body is the window without the shadow that it has around it on some desktops. Places and sizes are the
/// body's, and it stays where it is when the shadow comes or goes.
class RoundedWindow : public QWidget {
  Q_OBJECT

 public:
  /// Lengths in logical pixels.
  struct Shape {
    double radius = 28;
    /// What stays free along each edge of the window.
    double inset = 0;
    QPalette::ColorRole ground = ThemeRole::background;
    /// The window is up for hours rather than for moments.
    bool staysUp = false;
  };

  /// Takes the content as its child. The others must outlive the window.
  RoundedWindow(AppSettings& settings, WindowSystem& windowSystem, QWidget* content, const Shape& shape,
                Qt::WindowFlags flags = {});

  /// Gives the body this size for good.
  void setBodySize(const QSize& size);
  /// In Qt's screen coordinates.
  [[nodiscard]] QRect body() const;
  void moveBody(const QPoint& upperLeft);

  /// Makes everything that the first showing needs, which then takes no longer than the others.
  void prepare();
  /// Opens the window's shape from the one that stood in this place on the screen to its own; the window
  /// itself is there, and takes keys, from the start. Nothing moves when the desktop asks for no animation.
  void openFrom(const QRect& place);

  bool eventFilter(QObject* watched, QEvent* event) override;

 Q_SIGNALS:
  /// The user closed the window by means of the desktop.
  void closedByDesktop();

 protected:
  /// Grows no larger than the content may.
  void limitTo(const QWidget& content);
  [[nodiscard]] WindowSystem& windowSystem() const { return m_windowSystem; }

  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  /// The part of the window that is to be seen, without the shadow.
  [[nodiscard]] QRect area() const;
  [[nodiscard]] bool hasShadow() const;
  void fitShadow();
  void paintShadow(QPainter& painter);
  /// Whether the window's edges are drawn rather than cut.
  [[nodiscard]] bool hasSmoothEdges() const;
  void followCompositor();
  /// Makes the surface the one that suits the desktop, unless the window is up.
  void fitSurface();
  void applyShape();
  void applyOpening(double progress);

  WindowSystem& m_windowSystem;
  AppThemeContainer* m_container;
  Shape m_shape;
  /// Null unless it is to be kept.
  QSize m_bodySize;
  /// As last painted.
  QPixmap m_shadow;
  QVariantAnimation m_opening;
  /// In the window's coordinates.
  QRect m_openingStart;
};

} // namespace notlet
