#pragma once

#include <QObject>
#include <optional>

#include "commands/NotificationCenter.h"
#include "navigation/MacSection.h"
#include "shortcuts/MacShortcutCoordinator.h"

namespace notlet {

/// Which section the main window shows, and what changes it: buttons and commands.
class MainNavigation : public QObject {
  Q_OBJECT

 public:
  struct State {
    /// Nothing selected shows the section for writing.
    std::optional<MacSection> selection = MacSection::notlet;

    [[nodiscard]] MacSection shownSection() const { return selection.value_or(MacSection::notlet); }
    bool operator==(const State&) const = default;
  };

  /// Both must outlive the navigation.
  MainNavigation(NotificationCenter& notificationCenter, MacShortcutCoordinator& coordinator,
                 QObject* parent = nullptr);
  ~MainNavigation() override;

  [[nodiscard]] const State& state() const { return m_state; }

  /// The window has come into view, after another of the program's windows may have stood in for it.
  void appear() { publishFlag(); }
  void select(std::optional<MacSection> section);
  void switchToBubbleMode();

 Q_SIGNALS:
  void changed();

 private:
  void observe(CommandName command, MacSection section, std::optional<CommandName> followUp = std::nullopt);
  void publishFlag();

  NotificationCenter& m_notificationCenter;
  MacShortcutCoordinator& m_coordinator;
  State m_state;
};

} // namespace notlet
