#pragma once

#include <QFont>

namespace notlet {

/// The few sizes of text, relative to the desktop's own font.
enum class TextStyle { largeTitle, title, headline, body, subheadline, footnote, caption, caption2 };

/// The font of a style, made from the application's font.
[[nodiscard]] QFont textFont(TextStyle style);
/// The same in another weight.
[[nodiscard]] QFont textFont(TextStyle style, QFont::Weight weight);
/// A heading of a fixed height in pixels, bold.
[[nodiscard]] QFont displayFont(int pixels);

} // namespace notlet
