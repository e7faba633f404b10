"""A private desktop for journeys: X server, session bus, window manager and assistive technology.

Everything lives in a throw-away home directory and ends with the object. One desktop per process, because
the assistive-technology library keeps its first bus connection.
"""
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib  # noqa: E402

from x_server import XServer  # noqa: E402


class Timeout(AssertionError):
    pass


def await_value(produce, what, timeout=15.0):
    """Calls `produce` until it gives something true, and returns that."""
    end = time.monotonic() + timeout
    while True:
        value = produce()
        if value:
            return value
        if time.monotonic() > end:
            raise Timeout(f"waited {timeout} s for {what() if callable(what) else what}")
        time.sleep(0.02)


class VirtualDesktop:
    def __init__(self, programs, size="1280x800"):
        self.programs = programs
        self.size = size
        self.children = []
        self.pipes = []
        self.servers = {}
        self.connections = {}
        self.root = tempfile.mkdtemp(prefix="notlet-journey-")
        home = os.path.join(self.root, "home")
        self.environment = {
            "PATH": os.environ["PATH"], "HOME": home, "LC_ALL": "C.UTF-8", "TZ": "UTC",
            "XDG_RUNTIME_DIR": os.path.join(self.root, "run"),
            "XDG_DATA_HOME": os.path.join(home, "data"),
            "XDG_STATE_HOME": os.path.join(home, "state"),
            "XDG_CONFIG_HOME": os.path.join(home, ".config"),
            "QT_QPA_PLATFORM": "xcb",
            # Without these two the toolkit leaves assistive technology alone under a bare window manager.
            "QT_ACCESSIBILITY": "1", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
        }
        for name in ("ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]
        os.makedirs(home)
        os.makedirs(self.environment["XDG_RUNTIME_DIR"], mode=0o700)

    # Start and end

    def __enter__(self):
        try:
            self._start()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(self, *_):
        self.close()

    def _start(self):
        self.start_display()
        self.start_bus()
        self.start(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"])
        await_value(lambda: "unix:" in self.output(
            "gdbus", "call", "--session", "--dest", "org.a11y.Bus", "--object-path", "/org/a11y/bus",
            "--method", "org.a11y.Bus.GetAddress"), "the assistive-technology bus")
        os.environ.update(self.environment)  # The assistive-technology library reads them in this process.
        Atspi.init()

    def start_display(self):
        """Starts an X server with a window manager, on which everything is from now on. Gives the server."""
        reader, writer = os.pipe()
        server = self.start(["Xvfb", "-displayfd", str(writer), "-screen", "0", self.size + "x24", "-nolisten", "tcp",
                             "-noreset", "-dpi", "96"], pass_fds=(writer,))
        os.close(writer)
        with os.fdopen(reader) as numbers:
            self.environment["DISPLAY"] = ":" + numbers.readline().strip()
        self.start(["openbox"])
        await_value(lambda: self.server.property(self.server.root, "_NET_SUPPORTING_WM_CHECK"), "the window manager")
        return server

    def start_bus(self):
        """Starts a session bus, which everything uses from now on. Gives it."""
        bus = self.start(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"],
                         stdout=subprocess.PIPE)
        self.pipes.append(bus.stdout)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().decode().strip()
        return bus

    def close(self):
        for child in reversed(self.children):
            self.end(child)
        for pipe in self.pipes:
            pipe.close()
        shutil.rmtree(self.root, ignore_errors=True)

    def start(self, command, **options):
        """Starts a program of which the desktop takes care; its output goes to the log of the desktop."""
        with open(os.path.join(self.root, "log"), "ab") as log:
            options.setdefault("stdout", log)
            child = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL, stderr=log, **options)
        self.children.append(child)
        return child

    def end(self, child, number=signal.SIGTERM, timeout=15):
        """Sends the signal and gives the exit status; kills what does not go."""
        if child.poll() is None:
            child.send_signal(number)
        try:
            return child.wait(timeout)
        except subprocess.TimeoutExpired:
            child.kill()
            child.wait()
            raise

    def start_script(self, name, *arguments):
        """Starts a program that stands beside this file, with the interpreter that runs this one."""
        script = os.path.join(os.path.dirname(os.path.abspath(__file__)), name)
        return self.start([sys.executable, script, *arguments])

    @property
    def server(self):
        name = self.environment["DISPLAY"]
        if name not in self.servers:
            self.servers[name] = XServer(name)
        return self.servers[name]

    def call(self, service, path, interface, method, arguments=None):
        """The answer to a call over the session bus, as plain values."""
        address = self.environment["DBUS_SESSION_BUS_ADDRESS"]
        if address not in self.connections:
            self.connections[address] = Gio.DBusConnection.new_for_address_sync(
                address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
        return self.connections[address].call_sync(service, path, interface, method, arguments, None,
                                                   Gio.DBusCallFlags.NO_AUTO_START, 5000).unpack()

    def provider(self, service):
        """Number of the process that has the name on the session bus; None without one."""
        bus = "org.freedesktop.DBus"
        try:
            return self.call(bus, "/org/freedesktop/DBus", bus, "GetConnectionUnixProcessID",
                             GLib.Variant("(s)", (service,)))[0]
        except GLib.Error:
            return None

    def log(self):
        with open(os.path.join(self.root, "log"), errors="replace") as log:
            return log.read()

    def output(self, *command):
        done = subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False)
        return done.stdout.decode(errors="replace")

    # The programs

    def notlet(self, *arguments):
        """What the command line prints; it must succeed."""
        done = subprocess.run([os.path.join(self.programs, "notlet"), *arguments], env=self.environment,
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)
        assert done.returncode == 0, done.stderr.decode(errors="replace")
        return done.stdout.decode()

    def open_notlet(self):
        """Starts the program and waits until its window takes typing."""
        child = self.start([os.path.join(self.programs, "notlet-desktop")])
        await_value(lambda: self.active_window_name() == "Notlet" or child.poll() is not None, "the window")
        assert child.poll() is None, self.log()
        return child

    def place(self, *parts):
        return os.path.join(self.environment["HOME"], *parts)

    # Keys, mouse and windows

    def type(self, text, delay=8):
        self.output("xdotool", "type", "--delay", str(delay), "--", text)

    def hold(self, key, seconds=1.0):
        """Holds a key for so long that it repeats."""
        self.output("xdotool", "keydown", key, "sleep", str(seconds), "keyup", key)

    def keys(self, *names):
        self.output("xdotool", "key", "--clearmodifiers", *names)

    def click(self, control):
        x, y, width, height = self.extents(control)
        self.click_at(x + width // 2, y + height // 2)

    def click_at(self, x, y, button=1):
        self.output("xdotool", "mousemove", str(x), str(y), "click", str(button))

    def drag(self, start, end):
        between = [(start[0] + (end[0] - start[0]) * step // 5, start[1] + (end[1] - start[1]) * step // 5)
                   for step in range(1, 6)]
        moves = [word for x, y in between for word in ("mousemove", str(x), str(y))]
        self.output("xdotool", "mousemove", str(start[0]), str(start[1]), "mousedown", "1", *moves, "mouseup", "1")

    def active_window_name(self):
        """The title of the active window, once typing goes to it: the window manager is quicker to call it active."""
        name = self.server.active_name()
        return name if name == self.server.keyboard_name() else None

    def windows(self, name):
        found = self.output("xdotool", "search", "--onlyvisible", "--name", name).split()
        return [int(word) for word in found if word.isdigit()]

    # Controls, as assistive technology sees them

    def controls(self, role=None, name=None, text=None, within=None):
        """The controls on screen with this role, name and text, in the window named; each may be left open."""
        start = [Atspi.get_desktop(0)] if within is None else self._windows(within)
        return [control for node in start for control in self._walk(node) if self._fits(control, role, name, text)]

    def control(self, role=None, name=None, text=None, within=None, timeout=15.0):
        return await_value(lambda: next(iter(self.controls(role, name, text, within)), None),
                           f"a control with role {role!r}, name {name!r}, text {text!r} in {within!r}", timeout)

    def _windows(self, name):
        applications = self._children(Atspi.get_desktop(0))
        return [window for application in applications for window in self._children(application)
                if self._fits(window, None, name, None)]

    def _walk(self, node):
        for child in self._children(node):
            yield child
            yield from self._walk(child)

    @staticmethod
    def _children(node):
        try:
            children = [node.get_child_at_index(index) for index in range(node.get_child_count())]
        except GLib.Error:  # It went while we looked.
            return []
        return [child for child in children if child is not None]

    def _fits(self, control, role, name, text):
        try:
            return ((role is None or control.get_role_name() == role)
                    and (name is None or control.get_name() == name)
                    and (text is None or self.text(control) == text)
                    and control.get_state_set().contains(Atspi.StateType.SHOWING))
        except GLib.Error:
            return False

    @staticmethod
    def text(control):
        content = control.get_text_iface()
        return content.get_text(0, content.get_character_count()) if content else None

    @staticmethod
    def has_state(control, state):
        return control.get_state_set().contains(getattr(Atspi.StateType, state))

    @staticmethod
    def extents(control):
        box = control.get_component_iface().get_extents(Atspi.CoordType.SCREEN)
        return box.x, box.y, box.width, box.height

    @staticmethod
    def press(control):
        control.get_action_iface().do_action(0)
