#pragma once

#include <QLabel>
#include <QVariantAnimation>

namespace notlet {

/// A short message on a capsule that fades in while it grows to its size, and fades out again. It takes no
/// clicks; assistive technology hears the message when it appears.
class ConfirmationCapsule : public QLabel {
  Q_OBJECT

 public:
  ConfirmationCapsule(const QString& message, QWidget* parent);

  void setShown(bool shown);

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QVariantAnimation m_presence;
  bool m_isShown = false;
};

} // namespace notlet
