#pragma once

#include "capture/CaptureComposer.h"
#include "widgets/ThemedButton.h"

namespace notlet {

/// The button that starts and stops dictation. While the microphone is heard it is red and shows how loud:
/// a disc grows behind the symbol, and stays away for a muted microphone.
class MicButton : public ThemedButton {
  Q_OBJECT

 public:
  explicit MicButton(QWidget* parent = nullptr);

  /// Sides in logical pixels: of the symbol, and of the button around it.
  void setSides(int symbolSide, int buttonSide);
  void setDictation(CaptureComposer::Dictation dictation);
  [[nodiscard]] CaptureComposer::Dictation dictation() const { return m_dictation; }
  /// How loud the microphone is, from 0 to 1. Seen while recording only.
  void setLevel(double level);

  [[nodiscard]] QSize sizeHint() const override { return {m_buttonSide, m_buttonSide}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] bool isRecording() const { return m_dictation == CaptureComposer::Dictation::recording; }
  [[nodiscard]] QColor symbolColor() const;
  void paintLevel(QPainter& painter, const QColor& color) const;

  int m_symbolSide = 20;
  int m_buttonSide = 32;
  CaptureComposer::Dictation m_dictation = CaptureComposer::Dictation::off;
  double m_level = 0;
};

} // namespace notlet
