#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QWidget>

#include "shortcuts/ShortcutSettingsDraft.h"
#include "widgets/TextButton.h"

namespace notlet {

/// One key of the form: what it does, its name to be typed, a button that asks for the key itself, and below
/// what there is to say of it.
class KeyRow : public QWidget {
  Q_OBJECT

 public:
  /// The draft must outlive the row.
  KeyRow(ShortcutSettingsDraft& draft, ShortcutField field, const QString& placeholder,
         QWidget* parent = nullptr);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void layOut();
  void render();
  void renderNote(bool isRecording);

  ShortcutSettingsDraft& m_draft;
  ShortcutField m_field;
  QLineEdit* m_edit;
  TextButton* m_record;
  QLabel* m_note;
};

} // namespace notlet
