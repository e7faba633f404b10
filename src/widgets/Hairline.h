#pragma once

#include <QPainter>
#include <QWidget>

#include "widgets/ThemePalette.h"

namespace notlet {

/// A line one pixel wide that divides two parts of a window.
class Hairline : public QWidget {
  Q_OBJECT

 public:
  explicit Hairline(Qt::Orientation orientation, QWidget* parent = nullptr) : QWidget(parent) {
    setOrientation(orientation);
  }

  void setOrientation(Qt::Orientation orientation) {
    const bool isHorizontal = orientation == Qt::Horizontal;
    setMinimumSize(isHorizontal ? 0 : 1, isHorizontal ? 1 : 0);
    setMaximumSize(isHorizontal ? QWIDGETSIZE_MAX : 1, isHorizontal ? 1 : QWIDGETSIZE_MAX);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter(this).fillRect(rect(), palette().color(ThemeRole::separator));
  }
};

} // namespace notlet
