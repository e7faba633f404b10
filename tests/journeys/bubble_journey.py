"""The bubble and the panel that it opens into: on every workspace, through drags, monitors and compositors."""
import contextlib

from journey import BUBBLE, HOT_KEY, PANEL, Journey, main
from virtual_desktop import await_value

SIDE = 64
MARGIN = 8
EVERY_WORKSPACE = 0xFFFFFFFF
# Where it stands at first: its middle is 56 left of and 96 below the corner of the screen.
FIRST_PLACE = (1280 - 56 - 32, 96 - 32, SIDE, SIDE)


class BubbleJourney(Journey):
    def open_bubble(self):
        """Starts the program and switches to the bubble; another program then has the keyboard."""
        self.open_other()
        self.open()
        self.enter_bubble_mode()
        self.await_keyboard("Other program")

    def bubble(self):
        return self.server.frame(self.await_window(BUBBLE))

    def panel(self):
        return self.server.frame(self.await_window(PANEL))

    def click_bubble(self):
        self.desktop.click_at(*self.server.middle(self.await_window(BUBBLE)))
        self.await_expanded()

    def await_expanded(self):
        self.await_keyboard(PANEL)
        self.await_gone(BUBBLE)

    def await_opened(self):
        """The panel grows out of the bubble; what is not there yet takes no mouse."""
        await_value(lambda: self.server.covers(self.await_window(PANEL), 20, 20), "the panel to be whole")

    def await_collapsed(self):
        self.await_window(BUBBLE)
        self.await_gone(PANEL)

    # Life

    def test_it_writes_and_gives_the_keyboard_back(self):
        self.open_bubble()
        self.assertEqual(self.bubble(), FIRST_PLACE)
        self.desktop.type("mine")
        self.await_typed_elsewhere("mine")
        self.click_bubble()
        self.desktop.type("Buy milk")
        self.await_text("Buy milk", PANEL)
        self.desktop.keys("Return")
        self.await_stored("Buy milk")
        self.desktop.type("half a sen")
        self.await_text("half a sen", PANEL)
        self.desktop.keys("Escape")
        self.await_collapsed()
        self.await_keyboard("Other program")
        self.desktop.type("again")
        self.await_typed_elsewhere("mineagain")
        self.click_bubble()
        self.desktop.type("tence")
        self.await_text("half a sentence", PANEL)
        self.desktop.click(self.desktop.control("push button", "Close Quick Notlet"))
        self.await_collapsed()
        self.assertEqual(self.bubble(), FIRST_PLACE)

    def test_it_is_above_all_windows_on_every_workspace(self):
        self.open_bubble()
        for workspace in ("1", "0"):
            self.desktop.output("xdotool", "set_desktop", workspace)
            await_value(lambda: self.server.property(self.server.root, "_NET_CURRENT_DESKTOP") == [int(workspace)],
                        "the workspace")
            self.assert_everywhere(BUBBLE)
        other = self.await_window("Other program")
        self.desktop.output("xdotool", "windowmove", str(other.id), "1100", "60")
        self.desktop.output("xdotool", "windowactivate", "--sync", str(other.id))
        self.assertEqual(self.server.stacking()[-1], BUBBLE)
        self.click_bubble()
        self.desktop.output("xdotool", "set_desktop", "1")
        await_value(lambda: not self.server.window("Other program"), "the workspace")
        self.assert_everywhere(PANEL)
        self.desktop.keys(HOT_KEY)
        self.await_keyboard(PANEL)
        self.desktop.type("on the second workspace")
        self.await_text("on the second workspace", PANEL)
        self.desktop.output("xdotool", "set_desktop", "0")

    def assert_everywhere(self, name):
        window = self.await_window(name)
        await_value(lambda: self.server.property(window, "_NET_WM_DESKTOP") == [EVERY_WORKSPACE], "all workspaces")
        await_value(lambda: {"_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR"} <= self.server.states(window),
                    "the states")
        self.assertEqual(self.server.stacking()[-1], name)

    # Dragging

    def test_it_stands_where_it_was_dragged_to(self):
        self.open_bubble()
        self.desktop.drag((1224, 96), (524, 396))
        self.await_frame(BUBBLE, (492, 364, SIDE, SIDE))
        self.assert_stays(lambda: not self.server.window(PANEL))
        self.await_keyboard("Other program")
        self.click_bubble()
        # Its lower right corner is that of the bubble.
        self.await_frame(PANEL, (492 + SIDE - 380, 364 + SIDE - 260, 380, 260))
        self.await_opened()
        self.desktop.drag((300, 195), (500, 295))
        self.await_frame(PANEL, (376, 268, 380, 260))
        self.desktop.keys("Escape")
        place = (376 + 380 - SIDE, 268 + 260 - SIDE, SIDE, SIDE)
        self.await_frame(BUBBLE, place)
        self.desktop.end(self.program)
        self.open()
        self.enter_bubble_mode()
        self.await_frame(BUBBLE, place)
        self.desktop.drag((place[0] + 32, place[1] + 32), (1279, 0))
        self.await_frame(BUBBLE, (1280 - MARGIN - SIDE, MARGIN, SIDE, SIDE))

    def test_a_click_that_moves_by_a_hair_does_not_open_it(self):
        self.open_bubble()
        self.desktop.output("xdotool", "mousemove", "1224", "96", "mousedown", "1", "mousemove", "1225", "96",
                            "mouseup", "1")
        self.await_frame(BUBBLE, (FIRST_PLACE[0] + 1, *FIRST_PLACE[1:]))
        self.assert_stays(lambda: not self.server.window(PANEL))

    # Ways in and out

    def test_hot_key_and_icon(self):
        self.run_beside("notifier_host.py")
        self.open_bubble()
        service = self.await_item()
        for _ in range(2):
            self.activate(service)
            self.await_expanded()
            self.desktop.type("x")
            self.activate(service)
            self.await_collapsed()
            self.await_keyboard("Other program")
        self.await_draft("panel", "xx")
        for _ in range(2):
            self.desktop.keys(HOT_KEY)
            self.await_expanded()
        self.desktop.notlet("open", "notlet:x")
        self.await_expanded()
        self.desktop.type("y")
        self.await_text("xxy", PANEL)

    def test_every_way_back_to_the_main_window(self):
        self.open_bubble()
        for leave in (
                lambda: self.desktop.notlet(),
                lambda: (self.click_bubble(), self.desktop.notlet()),
                lambda: (self.click_bubble(),
                         self.desktop.click(self.desktop.control("push button", "Return to Main App"))),
                lambda: (self.click_bubble(), self.desktop.keys("ctrl+s", "j"))):
            leave()
            self.await_keyboard("Notlet")
            self.await_gone(BUBBLE)
            self.await_gone(PANEL)
            self.desktop.keys("ctrl+End")
            self.desktop.type("x")
            self.enter_bubble_mode()
        self.click_bubble()
        self.desktop.keys("ctrl+s", "a")
        self.await_keyboard("Notlet")
        self.desktop.control("label", "No notlets yet")
        self.desktop.keys("ctrl+s", "j")
        self.await_text("xxxx")

    # Screens and compositors

    def test_it_follows_monitors_that_come_and_go(self):
        self.split_screen()
        self.open_bubble()
        # From the main monitor to the other one.
        self.desktop.drag((640 - 56, 96), (1240, 760))
        self.await_frame(BUBBLE, (1208, 728, SIDE, SIDE))
        self.remove_monitor("right")
        self.await_frame(BUBBLE, (640 - MARGIN - SIDE, 728, SIDE, SIDE))
        self.click_bubble()
        self.await_frame(PANEL, (640 - MARGIN - 380, 800 - MARGIN - 260, 380, 260))
        # In place of the one before, as it has the same output.
        self.set_monitor("small", "480/130x400/110+0+0", "screen")
        self.await_frame(PANEL, (480 - MARGIN - 380, 400 - MARGIN - 260, 380, 260))
        self.desktop.type("still here")
        self.await_text("still here", PANEL)
        self.desktop.keys("Escape")
        self.await_frame(BUBBLE, (480 - MARGIN - SIDE, 400 - MARGIN - SIDE, SIDE, SIDE))

    def test_it_returns_to_the_monitor_of_the_last_run(self):
        self.split_screen()
        self.open_bubble()
        self.desktop.drag((640 - 56, 96), (960, 400))
        place = (960 - SIDE // 2, 400 - SIDE // 2, SIDE, SIDE)
        self.await_frame(BUBBLE, place)
        await_value(self.is_stored, "the place to be stored")
        for is_there in (True, False):
            self.desktop.end(self.program)
            if not is_there:
                self.remove_monitor("right")
                place = (place[0] - 640, *place[1:])
            self.open()
            self.enter_bubble_mode()
            self.await_frame(BUBBLE, place)

    def is_stored(self):
        with contextlib.suppress(FileNotFoundError), open(self.desktop.place("state", "notlet", "defaults.json")) as file:
            return "macFloatingBubbleNormalizedY" in file.read()
        return False

    def test_corners_follow_the_compositor(self):
        self.open_bubble()
        # Without a compositor nothing is smoothed, and the window is cut along its edge.
        self.await_cut(BUBBLE, 9, True)
        compositor = self.start_compositor()
        self.await_cut(BUBBLE, 9, False)
        # The shadow has grown around it.
        self.await_frame(BUBBLE, (FIRST_PLACE[0] - 8, FIRST_PLACE[1] - 8, SIDE + 16, SIDE + 16))
        self.click_bubble()
        self.await_cut(PANEL, 7, False)
        self.desktop.end(compositor)
        self.await_cut(PANEL, 7, True)
        self.desktop.keys("Escape")
        self.await_collapsed()
        self.await_cut(BUBBLE, 9, True)
        self.await_frame(BUBBLE, FIRST_PLACE)


if __name__ == "__main__":
    main()
