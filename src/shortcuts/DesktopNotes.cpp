#include "shortcuts/DesktopNotes.h"

namespace notlet {

std::string hotKeyNote(HotKeyRoute route) {
  switch (route) {
  case HotKeyRoute::x11:
    return "Control+Super+J opens Quick Notlet from every program.";
  case HotKeyRoute::portal:
    return "Control+Super+J opens Quick Notlet through your desktop, whose settings may name another key.";
  case HotKeyRoute::none:
    break;
  }
  return "No key opens Quick Notlet from other programs. In your desktop’s keyboard settings, let a key run "
         "“notlet capture”.";
}

std::vector<std::string> desktopLimits(const DesktopCapabilities& capabilities) {
  std::vector<std::string> limits;
  if (capabilities.statusItem == StatusItemRoute::none)
    limits.emplace_back("This desktop has no tray for the icon of Notlet.");
  if (!capabilities.placesWindows)
    limits.emplace_back("The desktop alone decides where windows stand.");
  if (!capabilities.keepsWindowsAbove)
    limits.emplace_back("The bubble does not stay above other windows.");
  if (!capabilities.showsOnAllWorkspaces)
    limits.emplace_back("The bubble stays on one workspace.");
  return limits;
}

} // namespace notlet
