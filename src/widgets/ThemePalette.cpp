#include "widgets/ThemePalette.h"

#include <algorithm>
#include <array>
#include <limits>
#include <ranges>
#include <vector>

#include "core/HashtagColor.h"
#include "core/Rgb.h"

namespace notlet {

namespace {

struct Colors {
  QColor background;
  QColor surface;
  QColor primary;
  QColor secondary;
  QColor accent;
  QColor alternateAccent;
};

Colors colorsOf(const AppTheme& theme) {
  return {colorFromHex(theme.backgroundHex), colorFromHex(theme.surfaceHex),
          colorFromHex(theme.primaryHex),    colorFromHex(theme.secondaryHex),
          colorFromHex(theme.accentHex),     colorFromHex(theme.alternateAccentHex)};
}

Colors colorsOfDesktop(const AppTheme& theme, const QPalette& desktop) {
  const QColor background = desktop.color(QPalette::Window);
  const QColor primary = desktop.color(QPalette::WindowText);
  return {background,
          desktop.color(QPalette::Base),
          primary,
          mixed(primary, background, 0.35),
          desktop.color(QPalette::Highlight),
          colorFromHex(theme.alternateAccentHex)};
}

double luminance(const QColor& color) {
  return HashtagColor::relativeLuminance(color.redF(), color.greenF(), color.blueF());
}

/// The weakest contrast of a luminance with several others.
double weakestContrast(double luminance, std::span<const double> others) {
  double weakest = std::numeric_limits<double>::max();
  for (const double other : others)
    weakest = std::min(weakest, (std::max(luminance, other) + 0.05) / (std::min(luminance, other) + 0.05));
  return weakest;
}

double weakestContrast(const QColor& color, std::span<const QColor> grounds) {
  const auto contrasts = grounds | std::views::transform([&color](const QColor& ground) {
                           return contrastRatio(color, ground);
                         });
  return std::ranges::min(contrasts);
}

std::array<QColor, 2> groundsOf(const QPalette& palette) {
  return {palette.color(ThemeRole::background), palette.color(ThemeRole::surface)};
}

void setText(QPalette& palette, QPalette::ColorGroup group, const QColor& color) {
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
    palette.setColor(group, role, color);
}

/// What is disabled stands back behind its ground, but can be made out.
QColor faded(const QColor& color, const QColor& ground, std::span<const QColor> grounds) {
  constexpr double strength = 0.4;
  return legible(mixed(ground, color, strength), grounds, Contrast::disabled);
}

void setGrounds(QPalette& palette, const Colors& colors) {
  palette.setColor(ThemeRole::background, colors.background);
  for (const auto role :
       {ThemeRole::surface, QPalette::AlternateBase, QPalette::Button, QPalette::ToolTipBase})
    palette.setColor(role, colors.surface);
  palette.setColor(ThemeRole::hover, touchedGround(colors.surface, colors.primary, 0.04));
  palette.setColor(ThemeRole::pressed, touchedGround(colors.surface, colors.primary, 0.08));
  palette.setColor(ThemeRole::separator, mixed(colors.background, colors.primary, 0.12));
  palette.setColor(ThemeRole::outline, mixed(colors.background, colors.primary, 0.28));
}

/// Many themes take their secondary text from the syntax colours of an editor, where it may be hard to read.
void setTexts(QPalette& palette, const Colors& colors) {
  const std::array grounds = {colors.background, colors.surface, rowUnderPointer(palette)};
  const QColor secondary = legible(colors.secondary, grounds, Contrast::text);
  const QColor faint = mixed(secondary, colors.background, 0.25);
  // It says what a field is for, so it is text to be read and not an ornament.
  const QColor placeholder = legible(faint, grounds, Contrast::text);
  const QColor disabled = legible(faint, grounds, Contrast::symbol);
  setText(palette, QPalette::Disabled, disabled);
  palette.setColor(ThemeRole::secondaryText, secondary);
  palette.setColor(QPalette::Disabled, ThemeRole::secondaryText, disabled);
  palette.setColor(ThemeRole::placeholder, placeholder);
  palette.setColor(QPalette::Disabled, ThemeRole::placeholder, disabled);
}

void setAccents(QPalette& palette, const Colors& colors) {
  const QColor tint = mixed(colors.background, colors.accent, selectedTint);
  const std::array grounds = {colors.background, colors.surface, palette.color(ThemeRole::hover), tint};
  const QColor ring = legible(colors.accent, grounds, Contrast::symbol);
  const QColor onAccent = strongestOn(colors.accent);
  palette.setColor(ThemeRole::accent, colors.accent);
  palette.setColor(ThemeRole::alternateAccent, colors.alternateAccent);
  palette.setColor(ThemeRole::focusRing, ring);
  palette.setColor(QPalette::Highlight, colors.accent);
  palette.setColor(ThemeRole::onAccent, onAccent);

  const std::array fadedAccent = {mixed(colors.background, colors.accent, 0.4)};
  palette.setColor(QPalette::Disabled, ThemeRole::accent, fadedAccent.front());
  palette.setColor(QPalette::Disabled, ThemeRole::onAccent,
                   faded(strongestOn(fadedAccent.front()), fadedAccent.front(), fadedAccent));
  palette.setColor(QPalette::Disabled, ThemeRole::focusRing, faded(ring, colors.surface, grounds));
}

QPalette paletteOf(Colors colors) {
  // Only a theme that somebody made can need this; those of the catalog have a legible text.
  colors.primary = legible(colors.primary, std::array{colors.background, colors.surface}, Contrast::text);
  QPalette palette;
  setText(palette, QPalette::All, colors.primary);
  setGrounds(palette, colors);
  setTexts(palette, colors);
  setAccents(palette, colors);
  return palette;
}

} // namespace

QPalette themePalette(const AppTheme& theme, const QPalette& desktop) {
  return paletteOf(theme.followsSystem ? colorsOfDesktop(theme, desktop) : colorsOf(theme));
}

QColor destructiveColor(const QPalette& palette) {
  const auto [background, surface] = groundsOf(palette);
  const std::array grounds = {background, surface, palette.color(ThemeRole::hover)};
  const QColor red = luminance(background) < 0.2 ? QColor(255, 105, 97) : QColor(200, 30, 30);
  const QColor readable = legible(red, grounds, Contrast::text);
  return palette.currentColorGroup() == QPalette::Disabled ? faded(readable, surface, grounds) : readable;
}

QColor loudness(const QPalette& palette) {
  return mixed(palette.color(ThemeRole::surface), destructiveColor(palette), 0.22);
}

QColor controlOutline(const QPalette& palette) {
  const auto grounds = groundsOf(palette);
  const QColor outline = palette.color(ThemeRole::outline);
  const bool isDisabled = palette.currentColorGroup() == QPalette::Disabled;
  return legible(outline, grounds, isDisabled ? Contrast::disabled : Contrast::symbol);
}

QColor rowUnderPointer(const QPalette& palette) {
  return touchedGround(palette.color(ThemeRole::background), palette.color(ThemeRole::primaryText), 0.025);
}

QColor quietFocusRing(const QPalette& palette) {
  const QColor ring = palette.color(ThemeRole::focusRing);
  const QColor quiet = mixed(ring, palette.color(ThemeRole::surface), 0.4);
  return weakestContrast(quiet, groundsOf(palette)) >= Contrast::symbol ? quiet : ring;
}

QColor scrollThumb(const QPalette& palette) {
  const QColor thumb = mixed(palette.color(ThemeRole::surface), palette.color(ThemeRole::primaryText), 0.28);
  return legible(thumb, groundsOf(palette), Contrast::symbol);
}

QColor touchedGround(const QColor& ground, const QColor& text, double amount) {
  const QColor towards = mixed(ground, text, amount);
  return contrastRatio(text, towards) >= Contrast::text ? towards : mixed(ground, strongestOn(text), amount);
}

QColor legible(const QColor& color, std::span<const QColor> grounds, double contrast) {
  std::vector<double> luminances;
  std::ranges::transform(grounds, std::back_inserter(luminances), luminance);
  QColor best = color;
  double bestContrast = weakestContrast(luminance(color), luminances);
  constexpr int steps = 100; // Each as fine as a screen can show.
  for (int step = 1; bestContrast < contrast && step <= steps; ++step) {
    for (const QColor end : {QColor(Qt::white), QColor(Qt::black)}) {
      // Measured as it will be shown, with eight bits a channel.
      const QColor candidate(mixed(color, end, static_cast<double>(step) / steps).rgb());
      const double reached = weakestContrast(luminance(candidate), luminances);
      if (reached <= bestContrast)
        continue;
      best = candidate;
      bestContrast = reached;
    }
  }
  return best;
}

QColor mixed(const QColor& from, const QColor& to, double amount) {
  const auto between = [amount](float start, float end) {
    return static_cast<float>(start + (end - start) * static_cast<float>(amount));
  };
  return QColor::fromRgbF(between(from.redF(), to.redF()), between(from.greenF(), to.greenF()),
                          between(from.blueF(), to.blueF()));
}

double contrastRatio(const QColor& left, const QColor& right) {
  const auto [darker, lighter] = std::minmax({luminance(left), luminance(right)});
  return (lighter + 0.05) / (darker + 0.05);
}

QColor strongestOn(const QColor& background) {
  const QColor black = Qt::black;
  const QColor white = Qt::white;
  return contrastRatio(black, background) >= contrastRatio(white, background) ? black : white;
}

QColor colorFromHex(std::string_view code) {
  const Rgb rgb = Rgb::fromHex(code);
  return {rgb.red, rgb.green, rgb.blue};
}

} // namespace notlet
