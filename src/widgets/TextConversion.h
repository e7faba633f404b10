#pragma once

#include <QFontMetrics>
#include <QString>
#include <string>
#include <string_view>

namespace notlet {

/// The text in UTF-8. A lone surrogate, which UTF-8 cannot hold, becomes U+FFFD.
[[nodiscard]] std::string toUtf8(QString text);

/// The text of UTF-8; bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] inline QString fromUtf8(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The text with places to break a line in words that are wider than `width` logical pixels, such as paths,
/// which a label would cut off. Only those words get characters (U+200B) that the text did not have.
[[nodiscard]] QString breakable(const QString& text, const QFontMetrics& metrics, int width);

/// The beginning of a text as one line, to be quoted in a sentence of the program, whose other words keep
/// their places whatever the direction of the text.
[[nodiscard]] QString excerptOf(const QString& text);

} // namespace notlet
