#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/ChildProcess.h"

namespace notlet {

/// An X server of a test's own, on a display that nobody else uses.
class VirtualDisplay {
 public:
  /// The server picks the number of its display.
  explicit VirtualDisplay(std::vector<std::string> serverCommand = {"Xvfb", "-screen", "0", "1280x800x24",
                                                                    "-nolisten", "tcp", "-noreset", "-dpi",
                                                                    "96"});

  /// As in the variable DISPLAY.
  [[nodiscard]] const std::string& name() const { return m_name; }
  /// Returns when the window manager (openbox) has taken over.
  void startWindowManager();
  void stopWindowManager();
  /// Ends it as a crash would.
  void killServer();

 private:
  std::unique_ptr<ChildProcess> m_server;
  std::string m_name;
  std::unique_ptr<ChildProcess> m_windowManager;
};

} // namespace notlet
