#pragma once

#include <QDialog>

#include "widgets/TextStyle.h"

class QHBoxLayout;
class QLabel;
class QVBoxLayout;

namespace notlet {

/// A message over a window, in its theme, that blocks only that window. Show it with open(); it deletes
/// itself when closed.
///
/// accepted() comes from "OK" or from the button that carries out what was asked; rejected() from Cancel,
/// Escape and the closing of the window.
class Alert : public QDialog {
  Q_OBJECT

 public:
  /// A message with one button, "OK". The reason, in smaller print, is for whoever has to mend what failed.
  [[nodiscard]] static Alert* message(QWidget* parent, const QString& title, const QString& text,
                                      const QString& reason = {});
  /// A question whose Cancel has the focus, beside a red button that carries out what was asked. In smaller
  /// print, what it is about.
  [[nodiscard]] static Alert* destructiveQuestion(QWidget* parent, const QString& title, const QString& text,
                                                  const QString& action, const QString& subject = {});

 private:
  Alert(QWidget* parent, const QString& title, const QString& text);

  QLabel* addBelowText(const QString& text, TextStyle style);

  QVBoxLayout* m_rows;
  QHBoxLayout* m_buttons;
};

} // namespace notlet
