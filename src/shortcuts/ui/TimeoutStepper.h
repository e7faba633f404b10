#pragma once

#include <QLabel>
#include <QWidget>

#include "shortcuts/ShortcutSettingsDraft.h"
#include "widgets/TextButton.h"

namespace notlet {

/// How long the leader waits, with two buttons that change it in steps.
class TimeoutStepper : public QWidget {
  Q_OBJECT

 public:
  /// The draft must outlive the stepper.
  explicit TimeoutStepper(ShortcutSettingsDraft& draft, QWidget* parent = nullptr);

 private:
  [[nodiscard]] TextButton* makeButton(const QString& text, const QString& name,
                                       void (ShortcutSettingsDraft::*step)());
  void render();

  ShortcutSettingsDraft& m_draft;
  QLabel* m_label;
  TextButton* m_lower;
  TextButton* m_raise;
};

} // namespace notlet
