#pragma once

#include <QLabel>
#include <QVBoxLayout>
#include <QWidget>

#include "capture/CaptureComposer.h"
#include "capture/ui/ComposerCard.h"
#include "widgets/ConfirmationCapsule.h"
#include "widgets/Motion.h"

namespace notlet {

/// The main window's section for writing a notlet.
class MacNotletView : public QWidget {
  Q_OBJECT

 public:
  /// The composer must outlive the view.
  explicit MacNotletView(CaptureComposer& composer, QWidget* parent = nullptr);
  ~MacNotletView() override;

  [[nodiscard]] QSize minimumSizeHint() const override { return {0, 0}; }

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void layOut();
  void render();
  void arrange();
  void placeConfirmation();

  CaptureComposer& m_composer;
  QVBoxLayout* m_column;
  QLabel* m_title;
  FadeEffect* m_titleFade;
  ComposerCard* m_card;
  ConfirmationCapsule* m_confirmation;
};

} // namespace notlet
