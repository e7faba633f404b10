#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QWidget>

#include "capture/CaptureComposer.h"
#include "capture/ui/MicButton.h"
#include "widgets/ExactTextEdit.h"
#include "widgets/MacHashtagSuggestionsView.h"

namespace notlet {

class Alert;
class IconButton;

/// The raised field in which a notlet is written, the same on every surface: editor, hashtag suggestions,
/// what there is to say about the draft, and a footer with a hint, the microphone and the save button. What
/// fails is told in an alert over its window.
///
/// The card shows when the editor has the focus, and a click on its empty parts goes to the editor. When the
/// editor gives the keyboard up, as it does while somebody dictates, the card itself has it: Return saves,
/// Escape stops a dictation, and whoever types is back in the editor.
class ComposerCard : public QWidget {
  Q_OBJECT

 public:
  /// Takes the buttons as its children and gives the second one the shortcut for saving. The composer must
  /// outlive the card.
  ComposerCard(CaptureComposer& composer, MicButton* mic, QAbstractButton* save, QWidget* parent = nullptr);

  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void prepareEditor();
  void layOut();
  [[nodiscard]] QWidget* makeMessageRow();
  [[nodiscard]] QWidget* makeFooter();
  void connectHandlers();
  void takeInput();
  void render();
  void renderInput();
  void renderDictation();
  void renderFocus();
  void renderMessage();
  void keepKeyboardFrom(const QWidget* button);
  void renderAlerts();
  void openAlert(Alert* alert, void (CaptureComposer::*dismiss)());
  [[nodiscard]] bool useKey(const QKeyEvent& event);
  /// `before` is the size of the text's window until now.
  void keepCaretInSight(QSize before);

  CaptureComposer& m_composer;
  ExactTextEdit* m_editor;
  MacHashtagSuggestionsView* m_suggestions;
  QLabel* m_message;
  IconButton* m_dismiss;
  MicButton* m_mic;
  QAbstractButton* m_save;
  /// The revision of the composer's input that the editor holds.
  std::uint64_t m_shownRevision = 0;
  bool m_isTakingInput = false;
  /// The editor's last change came from the dictation in progress.
  bool m_holdsDictated = false;
  bool m_alertIsOpen = false;
};

} // namespace notlet
