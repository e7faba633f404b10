#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace notlet {

/// The commands through which the parts of the program meet.
enum class CommandName {
  showMacCapture,
  enterMacFloatingMode,
  collapseMacFloatingCapture,
  stopMacFloatingCapture,
  openGlobalMacQuickNotlet,
  focusMacCaptureInput,
  openMacNotlet,
  openMacArchive,
  focusMacNotletInput,
  focusMacArchiveSearch,
  focusMacArchiveSearchField,
  selectNextMacNotlet,
  selectPreviousMacNotlet,
  selectNextMacHashtag,
  selectPreviousMacHashtag,
  activateSelectedMacHashtag,
  searchMacHashtags,
  clearMacHashtagSearch,
  editSelectedMacNotlet,
  deleteSelectedMacNotlet,
  saveEditingMacNotlet,
  cancelEditingMacNotlet,
};

/// The text form of each name, in the order of the enumeration.
inline constexpr auto commandNameTexts = std::to_array<std::string_view>({
    "showMacCapture",
    "enterMacFloatingMode",
    "collapseMacFloatingCapture",
    "stopMacFloatingCapture",
    "openGlobalMacQuickNotlet",
    "focusMacCaptureInput",
    "openMacNotlet",
    "openMacArchive",
    "focusMacNotletInput",
    "focusMacArchiveSearch",
    "focusMacArchiveSearchField",
    "selectNextMacNotlet",
    "selectPreviousMacNotlet",
    "selectNextMacHashtag",
    "selectPreviousMacHashtag",
    "activateSelectedMacHashtag",
    "searchMacHashtags",
    "clearMacHashtagSearch",
    "editSelectedMacNotlet",
    "deleteSelectedMacNotlet",
    "saveEditingMacNotlet",
    "cancelEditingMacNotlet",
});
static_assert(commandNameTexts.size() == static_cast<std::size_t>(CommandName::cancelEditingMacNotlet) + 1);

[[nodiscard]] constexpr std::string_view text(CommandName name) {
  return commandNameTexts[static_cast<std::size_t>(name)];
}

} // namespace notlet
