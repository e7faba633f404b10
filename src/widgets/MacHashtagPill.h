#pragma once

#include <QPalette>
#include <QWidget>
#include <optional>

namespace notlet {

/// What a hashtag chip shows, and how.
struct PillContent {
  /// Without "#".
  QString tag;
  /// Nothing: a plain chip. Else whether it is a filter that is selected.
  std::optional<bool> isSelected = std::nullopt;
  bool isLarge = false;
  /// A fine line around the chip.
  bool isOutlined = false;
  /// The keyboard is on the chip, which shrinks a little inside the focus ring.
  bool isFocused = false;
  bool isHovered = false;
  bool isPressed = false;

  bool operator==(const PillContent&) const = default;
};

/// Measures and paints hashtag chips, for the widget below and for lists that paint their rows themselves.
namespace PillPainter {

/// The size that shows the whole tag.
[[nodiscard]] QSize size(const PillContent& content);
/// Paints into the rectangle, in the colours of the palette's theme; a tag that does not fit is elided.
void paint(QPainter& painter, const QRect& rect, const PillContent& content, const QPalette& palette);
/// The fill of a tag: one of the theme's accents, the same in any letter case.
[[nodiscard]] QColor tagColor(const QString& tag, const QPalette& palette);
/// What the text stands on, and the text.
[[nodiscard]] QColor fillColor(const PillContent& content, const QPalette& palette);
[[nodiscard]] QColor textColor(const PillContent& content, const QPalette& palette);

} // namespace PillPainter

/// A hashtag chip as a widget that only shows; clicks go through it.
class MacHashtagPill : public QWidget {
  Q_OBJECT

 public:
  explicit MacHashtagPill(PillContent content, QWidget* parent = nullptr);

  void setContent(const PillContent& content);
  [[nodiscard]] const PillContent& content() const { return m_content; }

  [[nodiscard]] QSize sizeHint() const override { return PillPainter::size(m_content); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  PillContent m_content;
};

} // namespace notlet
