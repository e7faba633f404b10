#pragma once

#include <QLabel>
#include <QPointer>
#include <QWidget>

namespace notlet {

class IconButton;

/// A message across the top of a window that stays until it is dismissed or no longer true. It takes no
/// focus by itself, and gives it back when it goes.
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
  void giveKeyboardBack();

  QLabel* m_label;
  IconButton* m_dismiss;
  /// Who had the keyboard before the button.
  QPointer<QWidget> m_before;
};

} // namespace notlet
