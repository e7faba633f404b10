#include "widgets/ExactTextEdit.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBoundaryFinder>
#include <QTextDocument>
#include <algorithm>

namespace notlet {

namespace {

// What a paragraph separator of the document stands for. It is kept in the format of the separator character
// itself, so that undo, deletion and merging of paragraphs carry it along.
constexpr int separatorProperty = QTextFormat::UserProperty + 1;
enum class Separator { Newline, ParagraphSeparator, Piece };

QTextCharFormat formatOf(Separator separator) {
  QTextCharFormat format;
  if (separator != Separator::Newline)
    format.setProperty(separatorProperty, static_cast<int>(separator));
  return format;
}

/// What stands between the block and the one before it.
Separator separatorBefore(const QTextBlock& block) {
  return static_cast<Separator>(block.charFormat().intProperty(separatorProperty));
}

/// The separators that the formats of a document stand for, by the index of the format.
QList<Separator> separatorsByFormat(const QTextDocument& document) {
  const QList<QTextFormat> formats = document.allFormats();
  QList<Separator> separators;
  separators.reserve(formats.size());
  for (const QTextFormat& format : formats)
    separators.append(static_cast<Separator>(format.intProperty(separatorProperty)));
  return separators;
}

// Stands for a seam between pieces while a text is read. Text documents use this noncharacter for themselves,
// so that no text can hold it.
constexpr QChar seam(0xfdd0);

bool isPieceBoundary(const QTextCursor& cursor, bool before) {
  if (before)
    return cursor.atBlockStart() && cursor.block().previous().isValid() &&
           separatorBefore(cursor.block()) == Separator::Piece;
  return cursor.atBlockEnd() && cursor.block().next().isValid() &&
         separatorBefore(cursor.block().next()) == Separator::Piece;
}

/// Where to end a piece that should end at `wanted`: after a space if one is near, else between characters.
qsizetype pieceEnd(QStringView paragraph, qsizetype start, qsizetype wanted) {
  for (qsizetype position = wanted; position > wanted - 256; --position)
    if (paragraph[position - 1].isSpace())
      return position;
  const qsizetype windowStart = std::max(start, wanted - 256);
  const qsizetype windowLength = std::min<qsizetype>(512, paragraph.size() - windowStart);
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme,
                             paragraph.sliced(windowStart, windowLength).toString());
  finder.setPosition(wanted - windowStart);
  if (finder.isAtBoundary())
    return wanted;
  const qsizetype boundary = finder.toPreviousBoundary();
  return boundary > 0 ? windowStart + boundary : wanted;
}

qsizetype lineEnd(QStringView text, qsizetype start) {
  qsizetype end = start;
  while (end < text.size() && text[end] != u'\n' && text[end] != u'\r' &&
         text[end] != QChar::ParagraphSeparator)
    ++end;
  return end;
}

} // namespace

ExactTextEdit::ExactTextEdit(QWidget* parent) : QPlainTextEdit(parent) {
  setTabChangesFocus(false);
  // Lines are wrapped, yet the widget makes room for a caret behind a full one by scrolling sideways, and
  // stays there.
  connect(horizontalScrollBar(), &QScrollBar::rangeChanged, this,
          [this] { horizontalScrollBar()->setRange(0, 0); });
}

QString ExactTextEdit::exactText() const {
  return exactText(0, document()->characterCount() - 1);
}

// Reads the whole document in one go, then mends the separators: asking block by block takes twenty times as
// long, and this runs at every key.
QString ExactTextEdit::exactText(int from, int to) const {
  QString text = document()->toRawText();
  const QList<Separator> separators = separatorsByFormat(*document());
  const bool hasPieces = separators.contains(Separator::Piece);
  const bool hasOnlyNewlines = !hasPieces && !separators.contains(Separator::ParagraphSeparator);
  text.truncate(to);
  text.remove(0, from);
  if (hasOnlyNewlines)
    return text.replace(QChar::ParagraphSeparator, u'\n');
  for (QTextBlock block = document()->findBlock(from).next(); block.isValid() && block.position() <= to;
       block = block.next()) {
    const Separator separator = separators.value(block.charFormatIndex(), Separator::Newline);
    if (separator == Separator::Newline)
      text[block.position() - 1 - from] = u'\n';
    else if (separator == Separator::Piece)
      text[block.position() - 1 - from] = seam;
  }
  return hasPieces ? text.remove(seam) : text;
}

void ExactTextEdit::setExactText(const QString& text, UndoStep step) {
  QTextCursor cursor(document());
  if (step == UndoStep::joinsPrevious)
    cursor.joinPreviousEditBlock();
  else
    cursor.beginEditBlock();
  const qsizetype kept = commonStart(text);
  cursor.setPosition(static_cast<int>(kept));
  cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
  cursor.removeSelectedText();
  insertExactly(cursor, text.sliced(kept));
  cursor.endEditBlock();
  setTextCursor(cursor);
}

// What is dictated grows at its end, many times a second, behind a draft that may be long.
qsizetype ExactTextEdit::commonStart(const QString& text) const {
  const QString current = exactText();
  // Where seams stand between the characters, these are not where the text has them.
  if (document()->characterCount() - 1 != current.size())
    return 0;
  const auto end = std::ranges::mismatch(text, current).in1;
  qsizetype kept = std::distance(text.begin(), end);
  if (kept > 0 && text[kept - 1].isHighSurrogate())
    --kept;
  // A paragraph that becomes long gets its pieces from its start on.
  const QStringView before = QStringView(text).first(kept);
  const qsizetype start =
      std::max(before.lastIndexOf(u'\n'), before.lastIndexOf(QChar(QChar::ParagraphSeparator))) + 1;
  return lineEnd(text, kept) - start > longestParagraph ? start : kept;
}

bool ExactTextEdit::isComposing() const {
  const QTextLayout* layout = textCursor().block().layout();
  return layout != nullptr && !layout->preeditAreaText().isEmpty();
}

// Inserts line by line with formats of our own, because a stock insertion passes the format of the separator
// before the caret on to every line that it makes.
void ExactTextEdit::insertExactly(QTextCursor& cursor, const QString& text) const {
  const QStringView view(text);
  cursor.beginEditBlock();
  qsizetype position = 0;
  for (;;) {
    const qsizetype end = lineEnd(view, position);
    if (end - position > longestParagraph) {
      while (end - position > pieceLength) {
        const qsizetype next = pieceEnd(view, position, position + pieceLength);
        cursor.insertText(text.sliced(position, next - position), QTextCharFormat());
        cursor.insertBlock(QTextBlockFormat(), formatOf(Separator::Piece));
        position = next;
      }
    }
    cursor.insertText(text.sliced(position, end - position), QTextCharFormat());
    if (end == view.size())
      break;
    const bool isParagraphSeparator = view[end] == QChar::ParagraphSeparator;
    cursor.insertBlock(QTextBlockFormat(),
                       formatOf(isParagraphSeparator ? Separator::ParagraphSeparator : Separator::Newline));
    const bool isPair = view[end] == u'\r' && end + 1 < view.size() && view[end + 1] == u'\n';
    position = end + (isPair ? 2 : 1);
  }
  cursor.endEditBlock();
}

void ExactTextEdit::keyPressEvent(QKeyEvent* event) {
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (isReturn && !isReadOnly() && !isComposing()) {
    // The keypad's Enter differs from Return by a modifier that nobody holds down.
    const bool isPlain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (isPlain && m_reportsReturn) {
      Q_EMIT returnPressed();
    } else {
      QTextCursor cursor = textCursor();
      insertExactly(cursor, QStringLiteral("\n"));
      setTextCursor(cursor);
      ensureCursorVisible();
    }
    event->accept();
    return;
  }
  if (!isReadOnly())
    deleteAcrossPiece(event);
  QPlainTextEdit::keyPressEvent(event);
}

// The seam between two pieces is no character of the text: deleting there first joins the pieces, so that the
// same key press also takes the character that the user meant.
void ExactTextEdit::deleteAcrossPiece(const QKeyEvent* event) {
  QTextCursor cursor = textCursor();
  if (cursor.hasSelection())
    return;
  if (event->key() == Qt::Key_Backspace && isPieceBoundary(cursor, true))
    cursor.deletePreviousChar();
  else if (event->key() == Qt::Key_Delete && isPieceBoundary(cursor, false))
    cursor.deleteChar();
}

void ExactTextEdit::insertFromMimeData(const QMimeData* source) {
  if (!source->hasText())
    return;
  QTextCursor cursor = textCursor();
  cursor.beginEditBlock();
  cursor.removeSelectedText();
  insertExactly(cursor, source->text());
  cursor.endEditBlock();
  setTextCursor(cursor);
  ensureCursorVisible();
}

QMimeData* ExactTextEdit::createMimeDataFromSelection() const {
  const QTextCursor cursor = textCursor();
  auto* copied = new QMimeData; // The clipboard takes it over.
  copied->setText(exactText(cursor.selectionStart(), cursor.selectionEnd()));
  return copied;
}

} // namespace notlet
