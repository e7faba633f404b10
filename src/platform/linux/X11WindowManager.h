#pragma once

#include <string_view>
#include <vector>

#include "platform/linux/X11Connection.h"

namespace notlet {

/// What the window manager that runs at the moment says it can do.
class X11WindowManager {
 public:
  /// Asks the server; window managers come and go.
  explicit X11WindowManager(const X11Connection& connection);

  /// Whether it knows an extended hint, such as "_NET_WM_STATE_ABOVE"; none does without a window manager.
  [[nodiscard]] bool supports(std::string_view hint) const;

 private:
  X11Connection m_connection;
  std::vector<xcb_atom_t> m_supported;
};

} // namespace notlet
