#pragma once

#include <QRect>

#include "archive/ui/HashtagChips.h"
#include "archive/ui/WrappedText.h"
#include "core/NotletEntry.h"
#include "widgets/VirtualListView.h"

namespace notlet {

/// What the painted rows of the archive and the active one have in common, in pixels.
namespace RowMeasures {
/// From the edges of the list to the card of a row, and from there to its content.
inline constexpr QMargins cardMargins{8, 2, 8, 2};
inline constexpr QMargins contentMargins{12, 12, 12, 12};
inline constexpr double cardRadius = 10;
inline constexpr int partSpacing = 8;
inline constexpr int collapsedLines = 3;
} // namespace RowMeasures

/// The line under a notlet's text: "Nov 16, 2026 at 8:16 PM", for the user's language and time zone.
[[nodiscard]] QString creationText(const NotletEntry& notlet);

/// Paints the card of the active row: raised, and with a ring when the list has the keyboard.
void paintRowCard(QPainter& painter, const QRect& row, const QPalette& palette, bool isFocused);

/// A notlet as a row that is not active: at most three lines of its text, its date, its hashtags. Laid out
/// once for a width, then painted.
class MacArchiveRow {
 public:
  MacArchiveRow(const NotletEntry& notlet, int width);

  [[nodiscard]] int width() const { return m_width; }
  [[nodiscard]] int height() const { return m_height; }
  [[nodiscard]] const HashtagChips& chips() const { return m_chips; }
  /// Where the chips are, from the top left of the row.
  [[nodiscard]] QRect chipArea() const;
  void paint(QPainter& painter, const QRect& rect, const QPalette& palette,
             const VirtualListRows::PaintState& state, int chipOffset) const;

 private:
  int m_width;
  WrappedText m_text;
  QString m_date;
  HashtagChips m_chips;
  int m_dateTop = 0;
  int m_height = 0;
};

} // namespace notlet
