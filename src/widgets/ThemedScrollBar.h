#pragma once

#include <QScrollBar>

class QAbstractScrollArea;

namespace notlet {

/// A slim scroll bar without arrows, in the colours of the theme.
class ThemedScrollBar : public QScrollBar {
  Q_OBJECT

 public:
  explicit ThemedScrollBar(Qt::Orientation orientation, QWidget* parent = nullptr);

  /// Gives the area such a bar at its side.
  static void install(QAbstractScrollArea& area);

  /// Pixels across.
  static constexpr int breadth = 12;
};

} // namespace notlet
