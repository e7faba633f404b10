#pragma once

#include <array>
#include <string>
#include <string_view>

#include "shortcuts/MacShortcutConfig.h"

namespace notlet {

/// The texts of the shortcut configuration, each of which names a key.
enum class ShortcutField {
  leader,
  notlet,
  archive,
  search,
  edit,
  remove,
  next,
  nextAlternate,
  previous,
  previousAlternate,
};

inline constexpr std::array allShortcutFields{
    ShortcutField::leader,   ShortcutField::notlet,
    ShortcutField::archive,  ShortcutField::search,
    ShortcutField::edit,     ShortcutField::remove,
    ShortcutField::next,     ShortcutField::nextAlternate,
    ShortcutField::previous, ShortcutField::previousAlternate,
};

/// When the key of a field is looked at.
enum class ShortcutUse {
  /// Always, with its modifiers.
  leader,
  /// Once, after the leader, with any modifiers.
  afterLeader,
  /// Where no text is typed, without modifiers.
  direct,
};

[[nodiscard]] ShortcutUse useOf(ShortcutField field);
/// How the settings call the field.
[[nodiscard]] std::string_view title(ShortcutField field);

[[nodiscard]] const std::string& valueOf(const MacShortcutConfig& config, ShortcutField field);
void setValue(MacShortcutConfig& config, ShortcutField field, std::string value);

} // namespace notlet
