#pragma once

#include <QPalette>

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

/// The palette of a theme. A theme that follows the system takes everything but its alternate accent from the
/// desktop's palette.
[[nodiscard]] QPalette themePalette(const AppTheme& theme, const QPalette& desktop);

/// For what deletes: a red that can be read on the palette's background and surface.
[[nodiscard]] QColor destructiveColor(const QPalette& palette);

/// Between the two colours; 0 gives `from`, 1 gives `to`.
[[nodiscard]] QColor mixed(const QColor& from, const QColor& to, double amount);

/// How well one colour is read on another, from 1 to 21, by the measure of the Web Content Accessibility
/// Guidelines.
[[nodiscard]] double contrastRatio(const QColor& left, const QColor& right);

/// Black or white, whichever contrasts more with the colour.
[[nodiscard]] QColor strongestOn(const QColor& background);

[[nodiscard]] QColor colorFromHex(std::string_view code);

} // namespace notlet
