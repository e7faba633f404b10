#pragma once

#include <QLabel>
#include <QWidget>

namespace notlet {

/// A message across the top of a window that stays until it is dismissed or no longer true. It takes no
/// focus.
class NoticeBar : public QWidget {
  Q_OBJECT

 public:
  explicit NoticeBar(QWidget* parent = nullptr);

  /// An empty text hides the bar.
  void setText(const QString& text);

 Q_SIGNALS:
  void dismissed();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QLabel* m_label;
};

} // namespace notlet
