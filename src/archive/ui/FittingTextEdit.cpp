#include "archive/ui/FittingTextEdit.h"

#include <QEvent>
#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>

#include "archive/ui/WrappedText.h"
#include "widgets/TextStyle.h"

namespace notlet {

namespace {

/// A text of more characters or lines is long: laying it out would take longer than a key may.
constexpr int mostCharacters = 16'000;
constexpr int mostLines = 600;
/// A plain-text widget scrolls unless it is a little higher than its text.
constexpr int slack = 2;

} // namespace

FittingTextEdit::FittingTextEdit(QWidget* parent) : ExactTextEdit(parent) {
  setFrameShape(QFrame::NoFrame);
  setFont(textFont(TextStyle::body));
  document()->setDocumentMargin(0);
  viewport()->setAutoFillBackground(false); // What is behind shows through.
  setViewportMargins(0, 0, 0, -slack);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setTabChangesFocus(true);
  QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
  connect(this, &QPlainTextEdit::textChanged, this, &FittingTextEdit::adaptToText);
}

void FittingTextEdit::adaptToText() {
  const int before = m_measuredHeight;
  const int width = m_measuredWidth;
  m_measuredWidth = -1;
  if (width < 0 || textHeight(width) != before)
    updateGeometry();
  alignToText();
}

/// A plain-text widget has one alignment for all its paragraphs.
void FittingTextEdit::alignToText() {
  QString beginning;
  for (QTextBlock block = document()->begin();
       block.isValid() && beginning.size() < WrappedText::decisiveBeginning; block = block.next())
    beginning += block.text();
  QTextOption option = document()->defaultTextOption();
  const Qt::Alignment alignment = WrappedText::alignmentOf(beginning);
  if (option.alignment() == alignment)
    return;
  option.setAlignment(alignment);
  document()->setDefaultTextOption(option);
}

void FittingTextEdit::setHeights(int least, int most, bool boundsAllTexts) {
  m_least = least;
  m_most = std::max(least, most);
  m_boundsAllTexts = boundsAllTexts;
  updateGeometry();
}

QRect FittingTextEdit::caretRect() const {
  return cursorRect().translated(viewport()->pos());
}

/// The height of the whole text; more than any bound when it is long.
int FittingTextEdit::textHeight(int width) const {
  if (width == m_measuredWidth)
    return m_measuredHeight;
  m_measuredWidth = width;
  m_measuredHeight = QWIDGETSIZE_MAX;
  if (document()->characterCount() <= mostCharacters && document()->blockCount() <= mostLines) {
    const WrappedText text(exactText(), font(), width, mostLines);
    if (text.isComplete())
      m_measuredHeight = text.height();
  }
  return m_measuredHeight;
}

int FittingTextEdit::heightForWidth(int width) const {
  const int height = textHeight(width);
  const bool isBounded = m_boundsAllTexts || height == QWIDGETSIZE_MAX;
  return std::max(m_least, isBounded ? std::min(height, m_most) : height);
}

QSize FittingTextEdit::sizeHint() const {
  return {0, heightForWidth(width())};
}

void FittingTextEdit::resizeEvent(QResizeEvent* event) {
  // A bar that comes and goes while a text grows would wrap it anew each time.
  const bool isWhole = height() >= textHeight(width());
  setVerticalScrollBarPolicy(isWhole ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
  ExactTextEdit::resizeEvent(event);
  if (hasFocus())
    ensureCursorVisible();
}

void FittingTextEdit::changeEvent(QEvent* event) {
  ExactTextEdit::changeEvent(event);
  if (event->type() == QEvent::FontChange) {
    m_measuredWidth = -1;
    updateGeometry();
  }
}

} // namespace notlet
