#pragma once

#include <QLabel>
#include <QLayout>
#include <QWidget>
#include <functional>

#include "capture/CaptureComposer.h"
#include "widgets/Motion.h"

namespace notlet {

/// The quick capture: the content of the popover and of the floating panel.
class MacCaptureView : public QWidget {
  Q_OBJECT

 public:
  /// What the window that hosts the view gives it.
  struct Host {
    /// Closes the window.
    std::function<void()> onClose;
    /// Returns to the main window; without it there is no button for that.
    std::function<void()> onShowMainApp;
    /// Called after each drag of the window by the header; without it the header does not drag.
    std::function<void()> onDragEnded;
    /// Whether windows stand where the program puts them.
    bool placesWindows = true;
  };

  static constexpr QSize fixedSize{380, 260};

  /// The composer must outlive the view.
  MacCaptureView(CaptureComposer& composer, Host host, QWidget* parent = nullptr);
  ~MacCaptureView() override;

 private:
  void layOut();
  [[nodiscard]] QLayout* makeHeader();
  [[nodiscard]] QWidget* captureTitle();
  void render();

  CaptureComposer& m_composer;
  Host m_host;
  QLabel* m_confirmation;
  FadeEffect* m_confirmationFade;
};

} // namespace notlet
