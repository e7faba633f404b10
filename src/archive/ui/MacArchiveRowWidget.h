#pragma once

#include <QWidget>
#include <string>
#include <vector>

#include "core/NotletEntry.h"

class QBoxLayout;
class QLabel;

namespace notlet {

class FittingTextEdit;
class HashtagStrip;
class MacHashtagSuggestionsView;
class RowEditor;
class TextButton;

/// The active row of the archive: the whole text, to be selected and copied, with what can be done; or its
/// editor.
///
/// It shows what it is told and reports what the user does; it decides nothing. Of a text longer than anybody
/// writes by hand only the beginning is shown; the editor has all of it.
class MacArchiveRowWidget : public QWidget {
  Q_OBJECT

 public:
  /// What the editor shows besides the text.
  struct Editing {
    /// UTF-8, as typed.
    std::string draft;
    std::vector<std::string> suggestions;
    /// What the user should know about the notlet; mostly empty.
    std::string notice;
  };

  explicit MacArchiveRowWidget(QWidget* parent = nullptr);

  void setNotlet(const NotletEntry& notlet);
  /// The longest text that is shown whole, in bytes and in lines.
  static constexpr std::size_t mostShownBytes = 100'000;
  static constexpr std::size_t mostShownLines = 5'000;
  void showText(bool offersRestore);
  void showEditor(const Editing& editing);
  void focusEditor();
  /// An editor that opens can take the keyboard only once it is on the screen.
  void focusEditorNextTurn();
  [[nodiscard]] bool isEditing() const { return m_isEditing; }
  /// The height of the list around: no part of the row that scrolls inside gets higher.
  void setPageHeight(int height);
  /// The list has the keyboard.
  void setHighlighted(bool highlighted);
  /// Gives the controls their place after `before` in the order of Tab.
  void orderAfter(QWidget* before);

  /// What the user has to see of the row while this control of it has the keyboard.
  [[nodiscard]] QRect keyboardPart(const QWidget* control) const;

  bool eventFilter(QObject* watched, QEvent* event) override;

 Q_SIGNALS:
  void clicked();
  void editRequested();
  void deleteRequested();
  void restoreRequested();
  void saveRequested();
  void cancelRequested();
  void draftChanged(const std::string& draft);
  void suggestionChosen(const std::string& tag);
  /// The caret is in this part of the row, which should be visible.
  void caretMoved(const QRect& part);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void layOut();
  void connectHandlers();
  void setEditing(bool editing);
  void reportCaret(const FittingTextEdit* edit);

  FittingTextEdit* m_text;
  RowEditor* m_editor;
  MacHashtagSuggestionsView* m_suggestions;
  QLabel* m_more;
  QLabel* m_notice;
  QLabel* m_date;
  HashtagStrip* m_hashtags;
  TextButton* m_restore;
  TextButton* m_edit;
  TextButton* m_delete;
  TextButton* m_save;
  TextButton* m_cancel;
  std::string m_shownDraft;
  bool m_isCut = false;
  bool m_isEditing = false;
  bool m_isHighlighted = false;
};

} // namespace notlet
