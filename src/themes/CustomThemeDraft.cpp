#include "themes/CustomThemeDraft.h"

#include <algorithm>

#include "core/HashtagColor.h"
#include "core/Text.h"

namespace notlet {

namespace {

constexpr std::array members{&AppTheme::backgroundHex, &AppTheme::surfaceHex, &AppTheme::primaryHex,
                             &AppTheme::secondaryHex,  &AppTheme::accentHex,  &AppTheme::alternateAccentHex};

/// The digits of a colour code as people type it; nothing when it is none.
std::optional<std::string_view> digitsOf(std::string_view text) {
  std::string_view digits = trimmed(text);
  if (digits.starts_with('#'))
    digits.remove_prefix(1);
  const bool isHexadecimal = digits.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
  return isHexadecimal && (digits.size() == 3 || digits.size() == 6) ? std::optional(digits) : std::nullopt;
}

/// The measure of the Web Content Accessibility Guidelines.
double contrast(Rgb left, Rgb right) {
  constexpr double glare = 0.05;
  const auto [darker, lighter] =
      std::minmax({HashtagColor::relativeLuminance(left), HashtagColor::relativeLuminance(right)});
  return (lighter + glare) / (darker + glare);
}

} // namespace

std::string& codeOf(AppTheme& theme, ThemeColor color) {
  return theme.*members.at(static_cast<std::size_t>(color));
}

const std::string& codeOf(const AppTheme& theme, ThemeColor color) {
  return theme.*members.at(static_cast<std::size_t>(color));
}

CustomThemeDraft::CustomThemeDraft(const AppTheme& theme, QObject* parent)
    : QObject(parent), m_state{.theme = theme, .typedCodes = {}} {
  for (const ThemeColor each : allThemeColors)
    m_state.typedCodes.at(static_cast<std::size_t>(each)) = color(each).hexRGB();
}

bool CustomThemeDraft::isCode(ThemeColor color) const {
  return digitsOf(typedCode(color)).has_value();
}

std::vector<CustomThemeDraft::FaintText> CustomThemeDraft::faintTexts() const {
  std::vector<FaintText> faint;
  for (const ThemeColor text : {ThemeColor::primaryText, ThemeColor::secondaryText}) {
    const double found = contrast(color(text), color(ThemeColor::background));
    if (found < legibleContrast)
      faint.push_back({text, found});
  }
  return faint;
}

bool CustomThemeDraft::canSave() const {
  return !trimmed(m_state.theme.name).empty() &&
         std::ranges::all_of(allThemeColors, [this](ThemeColor each) { return isCode(each); });
}

AppTheme CustomThemeDraft::themeToSave() const {
  AppTheme theme = m_state.theme;
  theme.name = trimmed(m_state.theme.name);
  theme.category = customThemeCategory;
  theme.followsSystem = false;
  return theme;
}

void CustomThemeDraft::setName(const std::string& name) {
  State next = m_state;
  next.theme.name = name;
  update(std::move(next));
}

void CustomThemeDraft::setDark(bool isDark) {
  State next = m_state;
  next.theme.isDark = isDark;
  update(std::move(next));
}

void CustomThemeDraft::setColor(ThemeColor color, Rgb value) {
  State next = m_state;
  codeOf(next.theme, color) = value.hexRGB();
  next.typedCodes.at(static_cast<std::size_t>(color)) = value.hexRGB();
  update(std::move(next));
}

void CustomThemeDraft::typeCode(ThemeColor color, const std::string& text) {
  State next = m_state;
  next.typedCodes.at(static_cast<std::size_t>(color)) = text;
  if (const auto digits = digitsOf(text))
    codeOf(next.theme, color) = Rgb::fromHex(*digits).hexRGB();
  update(std::move(next));
}

void CustomThemeDraft::update(State state) {
  if (state == m_state)
    return;
  m_state = std::move(state);
  Q_EMIT changed();
}

} // namespace notlet
