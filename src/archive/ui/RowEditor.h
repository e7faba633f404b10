#pragma once

#include "archive/ui/FittingTextEdit.h"

namespace notlet {

/// The field in which a notlet is edited in its row.
class RowEditor : public QWidget {
  Q_OBJECT

 public:
  explicit RowEditor(QWidget* parent = nullptr);

  [[nodiscard]] FittingTextEdit& edit() const { return *m_edit; }
  /// It is at least 120 pixels high and gets no higher than this for a long text.
  void setHighest(int height);

  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  FittingTextEdit* m_edit;
};

} // namespace notlet
