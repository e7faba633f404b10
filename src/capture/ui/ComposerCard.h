#pragma once

#include <QWidget>

#include "widgets/ExactTextEdit.h"

namespace notlet {

/// The raised field of a composer: an editor without a frame of its own, with room for rows below it. The
/// card shows when the editor has the focus, and a click on its empty parts goes to the editor.
class ComposerCard : public QWidget {
  Q_OBJECT

 public:
  explicit ComposerCard(QWidget* parent = nullptr);

  [[nodiscard]] ExactTextEdit& editor() const { return *m_editor; }
  /// Adds a row below the editor, keeping the rows' order.
  void addRow(QWidget* row);

  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  ExactTextEdit* m_editor;
};

} // namespace notlet
