#include "widgets/TextConversion.h"

#include <QStringList>

namespace notlet {

QString breakable(const QString& text, const QFontMetrics& metrics, int width) {
  QStringList words = text.split(u' ');
  for (QString& word : words) {
    if (metrics.horizontalAdvance(word) > width)
      word.replace(u'/', QStringLiteral("/\u200B"));
  }
  return words.join(u' ');
}

} // namespace notlet
