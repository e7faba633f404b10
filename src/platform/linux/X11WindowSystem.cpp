#include "platform/linux/X11WindowSystem.h"

#include <QApplication>
#include <QEvent>
#include <QRegion>
#include <QStandardPaths>
#include <QWidget>
#include <QWindow>
#include <algorithm>

#include "platform/linux/X11UserTime.h"
#include "platform/linux/X11WindowManager.h"

namespace notlet {

namespace {

constexpr std::uint32_t everyWorkspace = 0xFFFFFFFF;
constexpr std::uint32_t addState = 1;
constexpr std::uint32_t sourceIsApplication = 1;

xcb_window_t nativeWindow(WindowID window) {
  return static_cast<xcb_window_t>(window);
}

/// Asking a window that is not on the server yet for its number would put it there.
QWindow* qtWindow(WindowID id) {
  const auto windows = QGuiApplication::allWindows();
  const auto found = std::ranges::find_if(
      windows, [id](const QWindow* window) { return window->handle() != nullptr && window->winId() == id; });
  return found == windows.end() ? nullptr : *found;
}

xcb_window_t focusedWindow() {
  const QWindow* window = QGuiApplication::focusWindow();
  return window == nullptr ? static_cast<xcb_window_t>(XCB_NONE) : nativeWindow(window->winId());
}

/// KDE's own colours for that tone; empty where they are not installed.
std::string colorSchemeFile(FrameTone tone) {
  if (tone == FrameTone::desktop)
    return {};
  const QString name = tone == FrameTone::dark ? QStringLiteral("BreezeDark") : QStringLiteral("BreezeLight");
  return QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                                QStringLiteral("color-schemes/%1.colors").arg(name))
      .toStdString();
}

} // namespace

X11WindowSystem::X11WindowSystem(const X11Connection& connection, X11UserTime& userTime)
    : m_connection(connection),
      m_userTime(userTime),
      m_atoms(atomsOf(connection)),
      m_compositorWatch(connection),
      m_mouseWatch(connection),
      m_managerActivates(X11WindowManager(connection).supports("_NET_ACTIVE_WINDOW")) {
  connect(&m_compositorWatch, &X11CompositorWatch::changed, this, &WindowSystem::compositorChanged);
  connect(&m_mouseWatch, &X11MouseWatch::pressed, this, &WindowSystem::mousePressed);
  qApp->installNativeEventFilter(this);
}

X11WindowSystem::~X11WindowSystem() = default;

X11WindowSystem::Atoms X11WindowSystem::atomsOf(const X11Connection& connection) {
  constexpr auto names = std::to_array<std::string_view>(
      {"_NET_ACTIVE_WINDOW", "_NET_WM_DESKTOP", "_NET_WM_STATE", "_NET_WM_STATE_STICKY",
       "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER", "_NET_WM_STATE_ABOVE", "_NET_SUPPORTED",
       "_NOTLET_ASKED_FOR_TIME", "_GTK_FRAME_EXTENTS", "_GTK_THEME_VARIANT", "_KDE_NET_WM_COLOR_SCHEME",
       "UTF8_STRING"});
  const auto atoms = connection.atoms(names);
  return {atoms[0],  atoms[1],  atoms[2], {atoms[3], atoms[4], atoms[5]},
          atoms[6],  atoms[7],  atoms[8], atoms[9],
          atoms[10], atoms[11], atoms[12]};
}

bool X11WindowSystem::hasCompositor() const {
  return m_compositorWatch.isCompositing();
}

void X11WindowSystem::noteActivationToken(const std::string& token) {
  if (const auto time = timeOfActivationToken(token))
    m_userTime.note(*time);
}

void X11WindowSystem::activate(WindowID id) {
  const xcb_window_t window = nativeWindow(id);
  if (const auto time = m_userTime.take())
    return activateAt(window, *time);
  // Adding nothing to a property changes nothing, but the server says at what time it was done.
  m_waitingForTime.push_back(window);
  m_connection.setProperty(XCB_PROP_MODE_APPEND, window, m_atoms.askedForTime, XCB_ATOM_CARDINAL, {});
  xcb_flush(m_connection.handle);
}

bool X11WindowSystem::nativeEventFilter(const QByteArray& type, void* message, qintptr* /*result*/) {
  if (type != "xcb_generic_event_t")
    return false;
  switch (eventType(*static_cast<const xcb_generic_event_t*>(message))) {
  case XCB_PROPERTY_NOTIFY:
    propertyChanged(*static_cast<const xcb_property_notify_event_t*>(message));
    break;
  case XCB_MAP_NOTIFY:
    windowShown(static_cast<const xcb_map_notify_event_t*>(message)->window);
    break;
  case XCB_UNMAP_NOTIFY:
    giveKeyboardBack(static_cast<const xcb_unmap_notify_event_t*>(message)->window);
    break;
  case XCB_FOCUS_IN:
    // After Qt has seen the event, too.
    QMetaObject::invokeMethod(this, &X11WindowSystem::followFocus, Qt::QueuedConnection);
    break;
  default:
    break;
  }
  return false;
}

void X11WindowSystem::propertyChanged(const xcb_property_notify_event_t& change) {
  // Another window manager has come.
  if (change.window == m_connection.root && change.atom == m_atoms.supported)
    m_managerActivates.reset();
  if (change.atom == m_atoms.askedForTime && std::erase(m_waitingForTime, change.window) > 0)
    activateAt(change.window, change.time);
}

// Qt tells its widgets 400 ms late that the keyboard has left a hidden window. A window that is shown again
// sooner would have the keyboard without being active.
void X11WindowSystem::followFocus() {
  if (QApplication::activeWindow() != nullptr || QGuiApplication::focusWindow() == nullptr)
    return;
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (widget->windowHandle() == QGuiApplication::focusWindow() && widget->isVisible())
      QApplication::setActiveWindow(widget);
}

void X11WindowSystem::activateAt(xcb_window_t window, xcb_timestamp_t time) {
  // Asking each time would cost more than all the rest.
  if (!m_managerActivates)
    m_managerActivates = X11WindowManager(m_connection).supports("_NET_ACTIVE_WINDOW");
  if (*m_managerActivates)
    m_connection.sendToWindowManager(window, m_atoms.activeWindow,
                                     {sourceIsApplication, time, focusedWindow(), 0, 0});
  else
    takeKeyboard(window, time);
  xcb_flush(m_connection.handle);
}

void X11WindowSystem::takeKeyboard(xcb_window_t window, xcb_timestamp_t time) {
  // The root window has it when one of ours has gone in the meantime.
  if (const auto owner = m_connection.keyboardOwner(); owner && owner != window && owner != m_connection.root)
    m_keyboardBefore[window] = *owner;
  xcb_set_input_focus(m_connection.handle, XCB_INPUT_FOCUS_PARENT, window, time);
}

// The server leaves the keyboard to the root window, where nobody types.
void X11WindowSystem::giveKeyboardBack(xcb_window_t window) {
  const auto taken = m_keyboardBefore.extract(window);
  if (taken.empty() || m_connection.keyboardOwner() != m_connection.root)
    return;
  // It may be gone by now, which is no error.
  const auto asked = xcb_set_input_focus_checked(m_connection.handle, XCB_INPUT_FOCUS_PARENT, taken.mapped(),
                                                 XCB_CURRENT_TIME);
  xcb_discard_reply(m_connection.handle, asked.sequence);
  xcb_flush(m_connection.handle);
}

void X11WindowSystem::putOnAllWorkspaces(WindowID id) {
  hintAllWorkspaces(nativeWindow(id));
  // The window manager takes the hints away from a window that is hidden.
  if (QWindow* window = qtWindow(id)) {
    window->installEventFilter(this);
    m_onAllWorkspaces.emplace_back(window);
  }
}

// A window learns that it is shown before the server does.
bool X11WindowSystem::eventFilter(QObject* receiver, QEvent* event) {
  auto* window = qobject_cast<QWindow*>(receiver);
  if (window != nullptr && event->type() == QEvent::Show)
    hintAllWorkspaces(nativeWindow(window->winId()));
  return QObject::eventFilter(receiver, event);
}

// Qt adds its own states to those that it finds.
void X11WindowSystem::hintAllWorkspaces(xcb_window_t window) const {
  m_connection.setProperty(XCB_PROP_MODE_REPLACE, window, m_atoms.desktop, XCB_ATOM_CARDINAL,
                           {&everyWorkspace, 1});
  auto states = m_connection.property(window, m_atoms.state, XCB_ATOM_ATOM);
  for (const std::uint32_t state : m_atoms.stickyStates)
    if (std::ranges::find(states, state) == states.end())
      states.push_back(state);
  m_connection.setProperty(XCB_PROP_MODE_REPLACE, window, m_atoms.state, XCB_ATOM_ATOM, states);
}

// A window manager that is late takes the hints away for the hiding before it looks at them for the showing.
// On a window that is shown it wants to be asked.
void X11WindowSystem::windowShown(xcb_window_t shown) const {
  const bool isOurs = std::ranges::any_of(m_onAllWorkspaces, [shown](const QWindow* window) {
    return window != nullptr && window->handle() != nullptr && nativeWindow(window->winId()) == shown;
  });
  if (!isOurs)
    return;
  const auto& [sticky, skipTaskbar, skipPager] = m_atoms.stickyStates;
  m_connection.sendToWindowManager(shown, m_atoms.desktop, {everyWorkspace, sourceIsApplication, 0, 0, 0});
  m_connection.sendToWindowManager(shown, m_atoms.state,
                                   {addState, skipTaskbar, skipPager, sourceIsApplication, 0});
  m_connection.sendToWindowManager(shown, m_atoms.state,
                                   {addState, m_atoms.above, sticky, sourceIsApplication, 0});
  xcb_flush(m_connection.handle);
}

// Window managers that do not know the hint see a window that is a little larger.
void X11WindowSystem::setShadow(WindowID id, const QMargins& shadow, const QRegion& body) {
  const QWindow* window = qtWindow(id);
  if (window == nullptr)
    return;
  const double ratio = window->devicePixelRatio();
  const QMargins edges = (QMarginsF(shadow) * ratio).toMargins();
  m_connection.setProperty(
      XCB_PROP_MODE_REPLACE, nativeWindow(id), m_atoms.frameExtents, XCB_ATOM_CARDINAL,
      std::to_array({static_cast<std::uint32_t>(edges.left()), static_cast<std::uint32_t>(edges.right()),
                     static_cast<std::uint32_t>(edges.top()), static_cast<std::uint32_t>(edges.bottom())}));
  std::vector<xcb_rectangle_t> rectangles;
  for (const QRect& part : body) {
    const QRect native(QPointF(part.topLeft() * ratio).toPoint(), QSizeF(part.size() * ratio).toSize());
    rectangles.push_back({static_cast<std::int16_t>(native.x()), static_cast<std::int16_t>(native.y()),
                          static_cast<std::uint16_t>(native.width()),
                          static_cast<std::uint16_t>(native.height())});
  }
  m_connection.setInputShape(nativeWindow(id), rectangles);
  xcb_flush(m_connection.handle);
}

// GNOME and those like it read the one, KDE the other.
void X11WindowSystem::setFrameTone(WindowID id, FrameTone tone) {
  const std::string variant = tone == FrameTone::dark ? "dark" : tone == FrameTone::light ? "light" : "";
  m_connection.setText(nativeWindow(id), m_atoms.gtkVariant, m_atoms.utf8, variant);
  m_connection.setText(nativeWindow(id), m_atoms.kdeColors, XCB_ATOM_STRING, colorSchemeFile(tone));
  xcb_flush(m_connection.handle);
}

void X11WindowSystem::watchMouse(bool watched) {
  m_mouseWatch.setOn(watched);
}

} // namespace notlet
