#pragma once

#include <QLineEdit>

namespace notlet {

/// A line of text on a rounded ground of its own, for use on a card.
class RoundedLineEdit : public QLineEdit {
  Q_OBJECT

 public:
  explicit RoundedLineEdit(QWidget* parent = nullptr);

 protected:
  void initStyleOption(QStyleOptionFrame* option) const override;
  void paintEvent(QPaintEvent* event) override;
};

} // namespace notlet
