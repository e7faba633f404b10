#pragma once

#include <QWidget>

class QLineEdit;

namespace notlet {

class IconButton;

/// A bar to search in: a magnifying glass, a line of text, and a button that empties it while there is any.
class SearchField : public QWidget {
  Q_OBJECT

 public:
  /// The placeholder also names the field for assistive technology; `clearName` names the button.
  SearchField(const QString& placeholder, const QString& clearName, QWidget* parent = nullptr);

  /// The line itself: its text, its signals, its focus. Focus given to the bar goes there.
  [[nodiscard]] QLineEdit* lineEdit() const { return m_lineEdit; }
  [[nodiscard]] QString text() const;
  /// Leaves the cursor alone when the text is the same.
  void setText(const QString& text);

 Q_SIGNALS:
  void textChanged(const QString& text);
  /// The line gained or lost the keyboard focus.
  void focusChanged(bool hasFocus);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  QLineEdit* m_lineEdit;
  IconButton* m_clear;
};

} // namespace notlet
