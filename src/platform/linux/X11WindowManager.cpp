#include "platform/linux/X11WindowManager.h"

#include <algorithm>
#include <array>

namespace notlet {

namespace {

/// A window manager that ended leaves its claims behind; its window is gone, though.
bool isRunning(const X11Connection& connection, xcb_atom_t check) {
  const auto window = connection.property(connection.root, check, XCB_ATOM_WINDOW);
  return !window.empty() && connection.property(window.front(), check, XCB_ATOM_WINDOW) == window;
}

} // namespace

X11WindowManager::X11WindowManager(const X11Connection& connection) : m_connection(connection) {
  constexpr auto names = std::to_array<std::string_view>({"_NET_SUPPORTING_WM_CHECK", "_NET_SUPPORTED"});
  const auto atoms = connection.atoms(names);
  if (isRunning(connection, atoms[0]))
    m_supported = connection.property(connection.root, atoms[1], XCB_ATOM_ATOM);
}

bool X11WindowManager::supports(std::string_view hint) const {
  return !m_supported.empty() && std::ranges::find(m_supported, m_connection.atom(hint)) != m_supported.end();
}

} // namespace notlet
