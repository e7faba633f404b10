#pragma once

#include <QLabel>
#include <QVBoxLayout>
#include <QWidget>

#include "capture/CaptureComposer.h"
#include "capture/ui/ComposerCard.h"
#include "widgets/ConfirmationCapsule.h"
#include "widgets/IconButton.h"
#include "widgets/MacHashtagSuggestionsView.h"
#include "widgets/Motion.h"

namespace notlet {

/// The main window's section for writing a notlet.
class MacNotletView : public QWidget {
  Q_OBJECT

 public:
  /// The composer must outlive the view.
  explicit MacNotletView(CaptureComposer& composer, QWidget* parent = nullptr);

  [[nodiscard]] QSize minimumSizeHint() const override { return {0, 0}; }

  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void layOut();
  void connectHandlers();
  void takeInput();
  void render();
  void renderInput();
  void renderFocus();
  void renderHint();
  void renderSaveAlert();
  void arrange();

  CaptureComposer& m_composer;
  QVBoxLayout* m_column;
  QLabel* m_title;
  FadeEffect* m_titleFade;
  ComposerCard* m_card;
  ExactTextEdit* m_editor;
  MacHashtagSuggestionsView* m_suggestions;
  QLabel* m_hint;
  IconButton* m_save;
  ConfirmationCapsule* m_confirmation;
  /// The revision of the composer's input that the editor holds.
  std::uint64_t m_shownRevision = 0;
  bool m_isTakingInput = false;
  bool m_alertIsOpen = false;
};

} // namespace notlet
