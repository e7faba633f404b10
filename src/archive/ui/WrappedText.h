#pragma once

#include <QFont>
#include <QPointF>
#include <QString>
#include <memory>
#include <string_view>
#include <vector>

class QPainter;
class QTextLayout;

namespace notlet {

/// The first lines of a text, wrapped as the text widgets of the program wrap it, so that a text stands still
/// when a widget takes the place of its picture. Each paragraph runs in its own direction, all stand at one
/// side.
class WrappedText {
 public:
  /// Wraps no more than the given lines; when that is not all, the last one ends with "…". The width is in
  /// pixels.
  WrappedText(const QString& text, const QFont& font, int width, int mostLines);
  /// The same for the beginning of a UTF-8 text of any length, of which no more than can be shown is read.
  [[nodiscard]] static WrappedText beginningOf(std::string_view text, const QFont& font, int width,
                                               int lines);

  /// To the side at which the first letter that has a direction begins. A text without one in its decisive
  /// beginning is aligned left.
  [[nodiscard]] static Qt::Alignment alignmentOf(const QString& text);
  static constexpr qsizetype decisiveBeginning = 200;

  WrappedText(WrappedText&&) noexcept;
  WrappedText& operator=(WrappedText&&) noexcept;
  ~WrappedText();

  /// In pixels, rounded up.
  [[nodiscard]] int height() const;
  /// Whether the whole text is there.
  [[nodiscard]] bool isComplete() const { return m_isComplete; }
  /// Paints in the pen of the painter.
  void paint(QPainter& painter, const QPointF& topLeft) const;

 private:
  WrappedText(const QString& text, const QFont& font, int width, int mostLines, bool isWhole);
  void addParagraph(const QString& paragraph, bool isLast);
  void elide(const QString& rest, bool isRightToLeft);
  [[nodiscard]] std::unique_ptr<QTextLayout> makeLayout(const QString& text, bool isRightToLeft) const;

  struct Piece {
    std::unique_ptr<QTextLayout> layout;
    int lines;
  };

  QFont m_font;
  int m_width;
  int m_linesLeft;
  Qt::Alignment m_alignment;
  bool m_isComplete = true;
  double m_height = 0;
  std::vector<Piece> m_pieces;
};

} // namespace notlet
