#include "widgets/ThemePalette.h"

#include <algorithm>

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

double weakestContrast(const QColor& color, const QColor& background, const QColor& surface) {
  return std::min(contrastRatio(color, background), contrastRatio(color, surface));
}

/// The color, moved towards `anchor` no further than is needed to stand out from both grounds; the anchor
/// itself when nothing on the way does.
QColor legible(const QColor& color, const QColor& anchor, const QColor& background, const QColor& surface,
               double contrast) {
  constexpr int steps = 20;
  for (int step = 0; step < steps; ++step) {
    const QColor candidate = mixed(color, anchor, static_cast<double>(step) / steps);
    if (weakestContrast(candidate, background, surface) >= contrast)
      return candidate;
  }
  return anchor;
}

void setText(QPalette& palette, QPalette::ColorGroup group, const QColor& color) {
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
    palette.setColor(group, role, color);
}

QPalette paletteOf(const Colors& colors) {
  const auto onGrounds = [&colors](const QColor& color, double contrast) {
    return legible(color, colors.primary, colors.background, colors.surface, contrast);
  };
  const auto towardsText = [&colors](double amount) { return mixed(colors.surface, colors.primary, amount); };
  const QColor faint = onGrounds(mixed(colors.secondary, colors.background, 0.25), 3.0);

  QPalette palette;
  palette.setColor(ThemeRole::background, colors.background);
  for (const auto role :
       {ThemeRole::surface, QPalette::AlternateBase, QPalette::Button, QPalette::ToolTipBase})
    palette.setColor(role, colors.surface);
  palette.setColor(ThemeRole::hover, towardsText(0.04));
  palette.setColor(ThemeRole::pressed, towardsText(0.08));
  palette.setColor(ThemeRole::separator, mixed(colors.background, colors.primary, 0.12));
  palette.setColor(ThemeRole::outline, mixed(colors.background, colors.primary, 0.28));
  setText(palette, QPalette::All, colors.primary);
  setText(palette, QPalette::Disabled, faint);
  palette.setColor(ThemeRole::secondaryText, colors.secondary);
  palette.setColor(QPalette::Disabled, ThemeRole::secondaryText, faint);
  palette.setColor(ThemeRole::placeholder, faint);
  palette.setColor(ThemeRole::accent, colors.accent);
  palette.setColor(ThemeRole::alternateAccent, colors.alternateAccent);
  palette.setColor(ThemeRole::focusRing, onGrounds(colors.accent, 3.0));
  palette.setColor(QPalette::Highlight, colors.accent);
  palette.setColor(ThemeRole::onAccent, strongestOn(colors.accent));
  return palette;
}

} // namespace

QPalette themePalette(const AppTheme& theme, const QPalette& desktop) {
  return paletteOf(theme.followsSystem ? colorsOfDesktop(theme, desktop) : colorsOf(theme));
}

QColor destructiveColor(const QPalette& palette) {
  const QColor background = palette.color(ThemeRole::background);
  const QColor red = luminance(background) < 0.2 ? QColor(255, 105, 97) : QColor(200, 30, 30);
  return legible(red, palette.color(ThemeRole::primaryText), background, palette.color(ThemeRole::surface),
                 4.5);
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
