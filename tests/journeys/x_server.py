"""What the X server knows and assistive technology does not: places, shapes, workspaces, the keyboard's owner."""
from Xlib import X, display, error
from Xlib.ext import shape  # noqa: F401  Its calls are methods of windows.
from Xlib.protocol import event


class XServer:
    def __init__(self, name):
        self.display = display.Display(name)
        self.root = self.display.screen().root

    def close(self):
        self.display.close()

    def windows(self, name=None, start=None):
        """The windows on screen with this title, the lowest first."""
        found = []
        try:
            for window in (start or self.root).query_tree().children:
                if window.get_attributes().map_state != X.IsViewable:
                    continue
                if name is None or self.name(window) == name:
                    found.append(window)
                found += self.windows(name, window)
        except error.XError:
            pass  # It went while we looked.
        return found

    def window(self, name):
        return next(iter(self.windows(name)), None)

    def name(self, window):
        try:
            title = (window.get_full_text_property(self.atom("_NET_WM_NAME"))
                     or window.get_full_text_property(self.atom("WM_NAME")))
            return title.decode() if isinstance(title, bytes) else title
        except error.XError:
            return None

    def active_name(self):
        """The title of the window that the window manager calls active."""
        values = self.property(self.root, "_NET_ACTIVE_WINDOW")
        return self.name(self.display.create_resource_object("window", values[0])) if values and values[0] else None

    def keyboard_name(self):
        """The title of the window that typing goes to."""
        window = self.display.get_input_focus().focus
        while not isinstance(window, int):
            name = self.name(window)
            if name:
                return name
            window = window.query_tree().parent
        return None

    def frame(self, window):
        """Left, top, width and height on the screen."""
        size = window.get_geometry()
        corner = self.root.translate_coords(window, 0, 0)
        return corner.x, corner.y, size.width, size.height

    def middle(self, window):
        left, top, width, height = self.frame(window)
        return left + width // 2, top + height // 2

    def covers(self, window, x, y):
        """Whether the point, seen from the window's corner, belongs to the window's shape."""
        area = window.shape_get_rectangles(shape.SK.Bounding)
        return any(box.x <= x < box.x + box.width and box.y <= y < box.y + box.height for box in area.rectangles)

    def color(self, window, x, y):
        """What is seen at the point, seen from the window's corner, as a colour code."""
        left, top, _, _ = self.frame(window)
        blue, green, red = self.root.get_image(left + x, top + y, 1, 1, X.ZPixmap, 0xFFFFFFFF).data[:3]
        return f"{red:02X}{green:02X}{blue:02X}"

    def property(self, window, name):
        found = window.get_full_property(self.atom(name), X.AnyPropertyType)
        return list(found.value) if found else []

    def states(self, window):
        return {self.display.get_atom_name(atom) for atom in self.property(window, "_NET_WM_STATE")}

    def has_owner(self, selection):
        return self.display.get_selection_owner(self.atom(selection)) != X.NONE

    def stacking(self):
        """The titles of the managed windows, the lowest first."""
        numbers = self.property(self.root, "_NET_CLIENT_LIST_STACKING")
        return [self.name(self.display.create_resource_object("window", number)) for number in numbers]

    def grab(self, keysym, modifiers):
        """Takes a key combination away from all others, until this connection closes."""
        for locks in (0, X.LockMask, X.Mod2Mask, X.LockMask | X.Mod2Mask):
            self.root.grab_key(self.display.keysym_to_keycode(keysym), modifiers | locks, False, X.GrabModeAsync,
                               X.GrabModeAsync)
        self.display.sync()

    def ask_to_close(self, window):
        """As the cross in the window's frame does, through the window manager."""
        message = event.ClientMessage(window=window, client_type=self.atom("_NET_CLOSE_WINDOW"),
                                      data=(32, [X.CurrentTime, 2, 0, 0, 0]))
        self.root.send_event(message, X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        self.display.sync()

    def ungrab_all(self):
        self.root.ungrab_key(X.AnyKey, X.AnyModifier)
        self.display.sync()

    def atom(self, name):
        return self.display.intern_atom(name)
