#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/Screens.h"
#include "shell/FloatingPanel.h"
#include "shell/ui/RoundedWindow.h"

namespace notlet {

/// The floating panel as two windows, because a window either takes the keyboard or never does: the bubble's
/// never does, the composer's may. Only one of them is shown at a time.
///
/// A new content shows with the next order to the front. The composer's window is made once the bubble has
/// been shown, so that expanding need not wait for it.
class FloatingPanelWindows : public QObject, public FloatingPanel {
  Q_OBJECT

 public:
  /// All must outlive the windows.
  struct Surroundings {
    AppSettings& settings;
    WindowSystem& windowSystem;
    Screens& screens;
  };
  /// What the windows show, each of a fixed size; each is called once, on first use.
  struct Contents {
    std::function<QWidget*()> makeBubble;
    std::function<QWidget*()> makeCapture;
  };

  FloatingPanelWindows(const Surroundings& surroundings, Contents contents, QObject* parent = nullptr);

  void setContent(Content content) override { m_content = content; }
  void setFrame(const QRectF& frame, bool animated) override;
  [[nodiscard]] QRectF frame() const override;
  void orderFront() override;
  void makeKeyAndOrderFront() override;
  void orderOut() override;
  void clearFirstResponder() override;

 Q_SIGNALS:
  /// The user closed the composer's window by means of the desktop.
  void captureClosedByDesktop();

 private:
  [[nodiscard]] RoundedWindow& window(Content content);
  [[nodiscard]] std::unique_ptr<RoundedWindow>& slot(Content content);
  [[nodiscard]] std::unique_ptr<RoundedWindow> makeWindow(QWidget* content, const RoundedWindow::Shape& shape,
                                                          Qt::WindowFlags flags) const;
  [[nodiscard]] std::unique_ptr<RoundedWindow> makeBubbleWindow() const;
  [[nodiscard]] std::unique_ptr<RoundedWindow> makeCaptureWindow();
  /// The window with the content that is not set.
  [[nodiscard]] RoundedWindow* otherWindow() const;
  void prepareCapture();

  Surroundings m_surroundings;
  Contents m_contents;
  Content m_content = Content::bubble;
  std::unique_ptr<RoundedWindow> m_bubble;
  std::unique_ptr<RoundedWindow> m_capture;
};

} // namespace notlet
