#pragma once

#include <QPalette>
#include <span>

#include "themes/AppTheme.h"

namespace notlet {

/// The palette roles that the views paint with. Each is one of Qt's own roles, so that Qt hands it down from
/// a window to its children.
namespace ThemeRole {
/// Behind everything in a window.
inline constexpr QPalette::ColorRole background = QPalette::Window;
/// Fields, cards and rows on the background.
inline constexpr QPalette::ColorRole surface = QPalette::Base;
/// A surface under the pointer.
inline constexpr QPalette::ColorRole hover = QPalette::Midlight;
/// A surface that is pressed or selected.
inline constexpr QPalette::ColorRole pressed = QPalette::Light;
inline constexpr QPalette::ColorRole primaryText = QPalette::WindowText;
inline constexpr QPalette::ColorRole secondaryText = QPalette::BrightText;
inline constexpr QPalette::ColorRole placeholder = QPalette::PlaceholderText;
/// The theme's accent as it is: for fills.
inline constexpr QPalette::ColorRole accent = QPalette::Link;
/// Black or white, whichever is easier to read on the accent.
inline constexpr QPalette::ColorRole onAccent = QPalette::HighlightedText;
inline constexpr QPalette::ColorRole alternateAccent = QPalette::LinkVisited;
/// The accent, made to stand out from background and surface: for the focus ring and for tinted symbols.
inline constexpr QPalette::ColorRole focusRing = QPalette::Shadow;
/// Hairlines.
inline constexpr QPalette::ColorRole separator = QPalette::Mid;
/// Outlines that should be seen: fields, large pills.
inline constexpr QPalette::ColorRole outline = QPalette::Dark;
} // namespace ThemeRole

/// What the Web Content Accessibility Guidelines (level AA) ask of what is seen on a ground. They ask nothing
/// of what is disabled; here it can still be made out.
namespace Contrast {
inline constexpr double text = 4.5;
/// Symbols, focus rings, the thumb of a scroll bar.
inline constexpr double symbol = 3.0;
inline constexpr double disabled = 2.0;
} // namespace Contrast

/// The palette of a theme. A theme that follows the system takes everything but its alternate accent from the
/// desktop's palette.
///
/// Background, surface and the two accents are the theme's as they are. What is read on them is the theme's
/// as long as it can be read, and else moved as far as Contrast asks; so a legible theme keeps its exact
/// colours. In the disabled group the colours are weaker by themselves, never to be faded once more.
[[nodiscard]] QPalette themePalette(const AppTheme& theme, const QPalette& desktop);

/// For what deletes: a red that can be read on the palette's background and surface.
[[nodiscard]] QColor destructiveColor(const QPalette& palette);

/// The disc on a surface that shows how loud it is behind a microphone in the destructive colour.
[[nodiscard]] QColor loudness(const QPalette& palette);

/// A row of a list, under the pointer.
[[nodiscard]] QColor rowUnderPointer(const QPalette& palette);

/// The outline of what is told by nothing else: an empty field, a box to tick.
[[nodiscard]] QColor controlOutline(const QPalette& palette);

/// The focus ring of what has the focus most of the time: as quiet as it can be and still be seen.
[[nodiscard]] QColor quietFocusRing(const QPalette& palette);

/// The thumb of a scroll bar at rest; it is on both grounds.
[[nodiscard]] QColor scrollThumb(const QPalette& palette);

/// How much of the accent tints the ground of what is selected.
inline constexpr double selectedTint = 0.18;

/// A ground under the pointer or finger: it comes towards the text on it by `amount`, or goes as far away
/// where the text could no longer be read.
[[nodiscard]] QColor touchedGround(const QColor& ground, const QColor& text, double amount);

/// The colour, moved towards black or white, which keeps its hue, no further than the contrast with all the
/// grounds asks; the most legible on the way where none has that contrast.
[[nodiscard]] QColor legible(const QColor& color, std::span<const QColor> grounds, double contrast);

/// Between the two colours; 0 gives `from`, 1 gives `to`.
[[nodiscard]] QColor mixed(const QColor& from, const QColor& to, double amount);

/// How well one colour is read on another, from 1 to 21, by the measure of the Web Content Accessibility
/// Guidelines.
[[nodiscard]] double contrastRatio(const QColor& left, const QColor& right);

/// Black or white, whichever contrasts more with the colour; one of the two always has Contrast::text.
[[nodiscard]] QColor strongestOn(const QColor& background);

[[nodiscard]] QColor colorFromHex(std::string_view code);

} // namespace notlet
