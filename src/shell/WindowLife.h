#pragma once

#include <string>

#include "platform/Defaults.h"

namespace notlet {

/// What brings the program back once its main window is closed.
struct WaysBack {
  /// The icon in the tray is shown.
  bool statusItem = false;
  /// The bubble, or the panel that it expands into, is on screen.
  bool bubble = false;
  bool hotKey = false;

  bool operator==(const WaysBack&) const = default;
};

/// Whether the program lives on without its main window, and whether the user knows that it does.
class WindowLife {
 public:
  /// The defaults must outlive this object.
  explicit WindowLife(Defaults& defaults) : m_defaults(defaults) {}

  /// A program that nobody could reach any more ends with its main window.
  [[nodiscard]] static bool keepsRunning(const WaysBack& waysBack);

  /// The user has never been told that the program keeps running.
  [[nodiscard]] bool mustExplain() const;
  /// To be called when explanation() was shown by the desktop, or read in the window.
  void noteExplained();
  /// How the program that keeps running is reached and ended, in whole sentences (UTF-8).
  [[nodiscard]] static std::string explanation(const WaysBack& waysBack);

 private:
  Defaults& m_defaults;
};

} // namespace notlet
