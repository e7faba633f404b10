#include "archive/ui/WrappedText.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTextLayout>
#include <QtMath>

#include "widgets/TextConversion.h"

namespace notlet {

namespace {

const QChar ellipsis(0x2026);

bool endsParagraph(QChar character) {
  return character == u'\n' || character == u'\r' || character == QChar::ParagraphSeparator;
}

qsizetype paragraphEnd(const QString& text, qsizetype start) {
  qsizetype end = start;
  while (end < text.size() && !endsParagraph(text[end]))
    ++end;
  return end;
}

qsizetype afterParagraph(const QString& text, qsizetype end) {
  const bool isPair = text[end] == u'\r' && end + 1 < text.size() && text[end + 1] == u'\n';
  return end + (isPair ? 2 : 1);
}

/// The line height that plain-text widgets use.
double placeLine(QTextLine& line, double top, int width) {
  line.setLeadingIncluded(true);
  line.setLineWidth(width);
  line.setPosition({0, top});
  return line.height() + (line.leading() < 0 ? qCeil(line.leading()) : 0);
}

} // namespace

WrappedText::WrappedText(const QString& text, const QFont& font, int width, int mostLines)
    : WrappedText(text, font, width, mostLines, true) {
}

WrappedText::WrappedText(const QString& text, const QFont& font, int width, int mostLines, bool isWhole)
    : m_font(font), m_width(std::max(1, width)), m_linesLeft(mostLines), m_alignment(alignmentOf(text)) {
  qsizetype start = 0;
  for (;;) {
    const qsizetype end = paragraphEnd(text, start);
    const bool isLast = end == text.size();
    addParagraph(text.sliced(start, end - start), isLast && isWhole);
    if (isLast || m_linesLeft == 0)
      break;
    start = afterParagraph(text, end);
  }
  m_isComplete = m_isComplete && isWhole;
}

WrappedText WrappedText::beginningOf(std::string_view text, const QFont& font, int width, int lines) {
  // The narrowest letters take about a quarter of the average.
  const int average = std::max(1, QFontMetrics(font).averageCharWidth());
  const auto most = static_cast<std::size_t>(lines) * static_cast<std::size_t>(width / average + 8) * 4;
  if (text.size() <= most)
    return {fromUtf8(text), font, width, lines};
  std::size_t end = most;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
    --end;
  return {fromUtf8(text.substr(0, end)), font, width, lines, false};
}

Qt::Alignment WrappedText::alignmentOf(const QString& text) {
  return QStringView(text).first(std::min(text.size(), decisiveBeginning)).isRightToLeft() ? Qt::AlignRight
                                                                                           : Qt::AlignLeft;
}

WrappedText::WrappedText(WrappedText&&) noexcept = default;
WrappedText& WrappedText::operator=(WrappedText&&) noexcept = default;
WrappedText::~WrappedText() = default;

std::unique_ptr<QTextLayout> WrappedText::makeLayout(const QString& text, bool isRightToLeft) const {
  auto layout = std::make_unique<QTextLayout>(text, m_font);
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  option.setAlignment(m_alignment);
  option.setTextDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
  layout->setTextOption(option);
  layout->setCacheEnabled(true);
  return layout;
}

void WrappedText::addParagraph(const QString& paragraph, bool isLast) {
  const bool isRightToLeft = paragraph.isRightToLeft();
  auto layout = makeLayout(paragraph, isRightToLeft);
  int lines = 0;
  qsizetype elidedFrom = -1;
  layout->beginLayout();
  while (m_linesLeft > 0) {
    QTextLine line = layout->createLine();
    if (!line.isValid())
      break;
    --m_linesLeft;
    const double height = placeLine(line, m_height, m_width);
    const bool endsText = isLast && line.textStart() + line.textLength() >= paragraph.size();
    if (m_linesLeft == 0 && !endsText) {
      elidedFrom = line.textStart();
    } else {
      ++lines;
      m_height += height;
    }
  }
  layout->endLayout();
  m_pieces.push_back({std::move(layout), lines});
  if (elidedFrom >= 0)
    elide(paragraph.sliced(elidedFrom), isRightToLeft);
}

void WrappedText::elide(const QString& rest, bool isRightToLeft) {
  m_isComplete = false;
  QString line = rest.section(QChar(QChar::LineSeparator), 0, 0);
  while (!line.isEmpty() && line.back().isSpace())
    line.chop(1);
  auto layout =
      makeLayout(QFontMetrics(m_font).elidedText(line + ellipsis, Qt::ElideRight, m_width), isRightToLeft);
  layout->beginLayout();
  if (QTextLine made = layout->createLine(); made.isValid())
    m_height += placeLine(made, m_height, m_width);
  layout->endLayout();
  m_pieces.push_back({std::move(layout), 1});
}

int WrappedText::height() const {
  return qCeil(m_height);
}

void WrappedText::paint(QPainter& painter, const QPointF& topLeft) const {
  for (const auto& [layout, lines] : m_pieces) {
    for (int line = 0; line < lines; ++line)
      layout->lineAt(line).draw(&painter, topLeft);
  }
}

} // namespace notlet
