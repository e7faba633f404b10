#include "widgets/TextConversion.h"

#include <QStringConverter>
#include <QStringList>

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
    if (metrics.horizontalAdvance(word) > width)
      word.replace(u'/', QStringLiteral("/\u200B"));
  }
  return words.join(u' ');
}

} // namespace notlet
