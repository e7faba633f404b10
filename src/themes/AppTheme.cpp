#include "themes/AppTheme.h"

#include "core/Uuid.h"

namespace notlet {

std::string newCustomThemeID() {
  return std::string(customThemePrefix) + Uuid::random().text();
}

} // namespace notlet

std::size_t std::hash<notlet::AppTheme>::operator()(const notlet::AppTheme& theme) const noexcept {
  std::size_t seed = 0;
  const auto mix = [&seed](std::size_t value) { seed ^= value + 0x9e3779b9U + (seed << 6) + (seed >> 2); };
  for (const std::string* text :
       {&theme.id, &theme.name, &theme.category, &theme.backgroundHex, &theme.surfaceHex, &theme.primaryHex,
        &theme.secondaryHex, &theme.accentHex, &theme.alternateAccentHex})
    mix(std::hash<std::string>{}(*text));
  mix(static_cast<std::size_t>(theme.isDark));
  mix(static_cast<std::size_t>(theme.followsSystem));
  return seed;
}
