#include "shortcuts/ShortcutField.h"

#include <utility>

namespace notlet {

namespace {

template<typename Config>
auto& textOf(Config& config, ShortcutField field) {
  switch (field) {
  case ShortcutField::leader:
    break;
  case ShortcutField::notlet:
    return config.commands.notlet;
  case ShortcutField::archive:
    return config.commands.archive;
  case ShortcutField::search:
    return config.commands.search;
  case ShortcutField::edit:
    return config.commands.edit;
  case ShortcutField::remove:
    return config.commands.remove;
  case ShortcutField::next:
    return config.archiveNavigation.next;
  case ShortcutField::nextAlternate:
    return config.archiveNavigation.nextAlternate;
  case ShortcutField::previous:
    return config.archiveNavigation.previous;
  case ShortcutField::previousAlternate:
    return config.archiveNavigation.previousAlternate;
  }
  return config.leader;
}

} // namespace

ShortcutUse useOf(ShortcutField field) {
  switch (field) {
  case ShortcutField::leader:
    return ShortcutUse::leader;
  case ShortcutField::notlet:
  case ShortcutField::archive:
    return ShortcutUse::afterLeader;
  default:
    return ShortcutUse::direct;
  }
}

std::string_view title(ShortcutField field) {
  switch (field) {
  case ShortcutField::leader:
    break;
  case ShortcutField::notlet:
    return "Notlet";
  case ShortcutField::archive:
    return "Archive";
  case ShortcutField::search:
    return "Search";
  case ShortcutField::edit:
    return "Edit selected notlet";
  case ShortcutField::remove:
    return "Delete selected notlet";
  case ShortcutField::next:
    return "Next";
  case ShortcutField::nextAlternate:
    return "Next alternate";
  case ShortcutField::previous:
    return "Previous";
  case ShortcutField::previousAlternate:
    return "Previous alternate";
  }
  return "Shortcut";
}

const std::string& valueOf(const MacShortcutConfig& config, ShortcutField field) {
  return textOf(config, field);
}

void setValue(MacShortcutConfig& config, ShortcutField field, std::string value) {
  textOf(config, field) = std::move(value);
}

} // namespace notlet
