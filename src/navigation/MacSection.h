#pragma once

#include <array>
#include <string_view>

namespace notlet {

/// The sections of the main window, in the order of their buttons.
enum class MacSection { notlet, archive, themes };

inline constexpr std::array allMacSections{MacSection::notlet, MacSection::archive, MacSection::themes};

[[nodiscard]] constexpr std::string_view title(MacSection section) {
  constexpr std::array<std::string_view, allMacSections.size()> titles{"Notlet", "Archive", "Themes"};
  return titles[static_cast<std::size_t>(section)];
}

} // namespace notlet
