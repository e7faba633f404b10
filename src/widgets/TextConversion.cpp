#include "widgets/TextConversion.h"

#include <QStringConverter>
#include <QStringList>
#include <QTextBoundaryFinder>

namespace notlet {

namespace {

void replaceLoneSurrogates(QString& text) {
  for (qsizetype index = 0; index < text.size(); ++index) {
    if (!text[index].isSurrogate())
      continue;
    if (text[index].isHighSurrogate() && index + 1 < text.size() && text[index + 1].isLowSurrogate())
      ++index;
    else
      text[index] = QChar::ReplacementCharacter;
  }
}

constexpr qsizetype longestExcerpt = 60;

/// The last place at or before this one that is between two characters as the user sees them.
qsizetype boundaryBefore(const QString& text, qsizetype position) {
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
  finder.setPosition(position);
  return finder.isAtBoundary() ? position : finder.toPreviousBoundary();
}

QString breakableAnywhere(const QString& word) {
  QString broken;
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, word);
  for (qsizetype from = 0, to = finder.toNextBoundary(); to > 0; from = to, to = finder.toNextBoundary())
    broken += QChar(0x200B) + word.sliced(from, to - from);
  return broken.sliced(1);
}

/// Turns the text around it, or ends the isolation that keeps it from doing so.
bool isDirectionControl(QChar character) {
  return (character >= QChar(0x202A) && character <= QChar(0x202E)) ||
         (character >= QChar(0x2066) && character <= QChar(0x2069));
}

} // namespace

// Converts in place: this runs at every key, on texts of megabytes too.
std::string toUtf8(QString text) {
  if (!text.isValidUtf16())
    replaceLoneSurrogates(text);
  std::string bytes;
  QStringEncoder encoder(QStringConverter::Utf8);
  bytes.resize_and_overwrite(static_cast<std::size_t>(encoder.requiredSpace(text.size())),
                             [&](char* buffer, std::size_t) {
                               return static_cast<std::size_t>(encoder.appendToBuffer(buffer, text) - buffer);
                             });
  return bytes;
}

QString breakable(const QString& text, const QFontMetrics& metrics, int width) {
  QStringList words = text.split(u' ');
  for (QString& word : words) {
    if (metrics.horizontalAdvance(word) <= width)
      continue;
    QStringList parts = word.split(u'/');
    for (QString& part : parts) {
      if (metrics.horizontalAdvance(part) > width)
        part = breakableAnywhere(part);
    }
    word = parts.join(QStringLiteral("/\u200B"));
  }
  return words.join(u' ');
}

QString excerptOf(const QString& text) {
  // Enough for the white space that goes.
  QString line = text.left(4 * longestExcerpt).simplified();
  line.removeIf(isDirectionControl);
  if (text.size() > 4 * longestExcerpt || line.size() > longestExcerpt)
    line = line.left(boundaryBefore(line, std::min(longestExcerpt, line.size()))) + u'…';
  return QChar(0x2068) + line + QChar(0x2069);
}

} // namespace notlet
