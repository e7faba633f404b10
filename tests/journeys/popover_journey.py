"""The quick capture from any program: hot key, both kinds of tray, none at all, and closing the main window."""
import os
import signal

from gi.repository import GLib
from Xlib import XK, X

from journey import HOT_KEY, ITEM, POPOVER, PROPERTIES, Journey, main
from virtual_desktop import await_value
from x_server import XServer

TAKEN = "Control-Command-J is already registered by another app."
MENU = "com.canonical.dbusmenu"
MENU_ENTRIES = ("Quick Notlet", "Open Notlet", "Settings…", "Quit Notlet")
UPPER_RIGHT = (892, 8, 380, 260)


class PopoverJourney(Journey):
    def take_hot_key(self):
        """Another program has the key combination."""
        robber = XServer(self.desktop.environment["DISPLAY"])
        self.addCleanup(robber.close)
        robber.grab(XK.XK_j, X.ControlMask | X.Mod4Mask)
        return robber

    def escape(self):
        # The first leaves the editor.
        self.desktop.keys("Escape", "Escape")
        self.await_gone(POPOVER)

    def frame(self):
        return self.server.frame(self.await_window(POPOVER))

    # From another program and back

    def test_it_takes_the_keyboard_and_gives_it_back(self):
        self.open()
        self.open_other()
        self.open_popover()
        self.desktop.type("Buy milk")
        self.await_text("Buy milk", POPOVER)
        self.desktop.keys("Return")
        self.await_stored("Buy milk")
        self.await_text("", POPOVER)
        self.desktop.type("stays open")
        self.await_text("stays open", POPOVER)
        self.click_other()
        self.await_gone(POPOVER)
        self.desktop.type("elsewhere")
        self.await_typed_elsewhere("elsewhere")

    def test_the_keys_that_close_it_give_the_keyboard_back(self):
        self.open_other()
        self.start_in_background()
        click_close = lambda: self.desktop.click(self.desktop.control("push button", "Close Quick Notlet"))
        for count, close in enumerate((self.escape, click_close, self.escape), 1):
            self.open_popover()
            self.desktop.type("x")
            self.await_text("x" * count, POPOVER)
            close()
            self.await_gone(POPOVER)
            self.await_keyboard("Other program")
        self.desktop.type("mine")
        self.await_typed_elsewhere("mine")

    def test_the_hot_key_again_returns_to_the_editor(self):
        self.open_other()
        self.start_in_background()
        self.open_popover()
        self.desktop.type("one")
        self.desktop.keys("Tab")
        await_value(lambda: not self.desktop.has_state(self.editor(POPOVER), "FOCUSED"), "another control to be chosen")
        self.desktop.keys(HOT_KEY)
        await_value(lambda: self.desktop.has_state(self.editor(POPOVER), "FOCUSED"), "the editor to be chosen")
        self.desktop.type(" two")
        self.await_text("one two", POPOVER)

    def test_its_draft_survives_closing_and_a_kill(self):
        self.open_other()
        self.start_in_background()
        self.open_popover()
        self.desktop.type("half a sen")
        self.click_other()
        self.await_gone(POPOVER)
        self.open_popover()
        self.await_text("half a sen", POPOVER)
        self.await_draft("popover", "half a sen")
        self.desktop.end(self.program, signal.SIGKILL)
        self.start_in_background()
        self.open_popover()
        self.desktop.type("tence")
        self.desktop.keys("Return")
        self.await_stored("half a sentence")

    def test_it_stays_for_a_message_of_its_own(self):
        self.open_other()
        self.start_in_background()
        self.desktop.notlet("add", "first")
        store = self.desktop.place("data", "notlet", "Notlet.store")
        self.open_popover()
        self.desktop.type("precious")
        self.await_text("precious", POPOVER)
        os.rename(store, store + ".away")
        self.desktop.keys("Return")
        self.desktop.control("label", "Your draft is still here. Please try again.")
        os.rename(store + ".away", store)
        self.desktop.keys("Return")
        self.await_keyboard(POPOVER)
        self.desktop.keys("Return")
        self.await_stored("precious", "first")

    def test_its_corners_follow_the_compositor(self):
        self.start_in_background()
        compositor = self.start_compositor()
        self.open_popover()
        self.await_cut(POPOVER, 7, False)
        self.desktop.end(compositor)
        self.await_cut(POPOVER, 7, True)
        # The window that is made anew for the desktop has kept what was in it, and takes more.
        self.desktop.type("still ")
        self.await_text("still ", POPOVER)
        self.escape()
        self.open_popover()
        self.desktop.type("here")
        self.await_text("still here", POPOVER)
        self.start_compositor()
        self.escape()
        self.open_popover()
        self.await_cut(POPOVER, 7, False)
        self.await_text("still here", POPOVER)

    def test_windows_stay_within_reach_when_a_monitor_goes(self):
        self.split_screen()
        self.open()
        window = str(self.await_window("Notlet").id)
        self.desktop.output("xdotool", "windowmove", "--sync", window, "700", "100", "mousemove", "900", "400")
        self.close_main_window()
        self.await_gone("Notlet")
        self.open_popover()
        self.await_frame(POPOVER, (1280 - 8 - 380, 8, 380, 260))
        self.remove_monitor("right")
        self.await_frame(POPOVER, (640 - 8 - 380, 8, 380, 260))
        self.desktop.notlet()
        self.await_keyboard("Notlet")
        left, top, width, _ = self.server.frame(self.await_window("Notlet"))
        self.assertTrue(0 <= left and left + width <= 640 and top < 200, (left, top, width))

    # The tray in which icons are windows

    def test_the_icon_in_the_tray_toggles_it(self):
        self.start_tray()
        self.open_other()
        self.start_in_background()
        icon = self.server.frame(self.await_icon())
        middle = icon[0] + icon[2] // 2, icon[1] + icon[3] // 2
        for _ in range(2):
            self.await_single_click()
            self.desktop.click_at(*middle)
            self.await_keyboard(POPOVER)
            left, top, width, _ = self.frame()
            self.assertEqual(top, icon[1] + icon[3] + 6)
            self.assertEqual(left + width, 1280 - 8)
            self.desktop.type("x")
            self.await_single_click()
            self.desktop.click_at(*middle)
            self.await_gone(POPOVER)
            self.assert_stays(lambda: not self.server.window(POPOVER))
            self.await_keyboard("Other program")
        self.await_draft("popover", "xx")
        self.await_single_click()
        self.desktop.output("xdotool", "mousemove", *map(str, middle), "click", "--repeat", "2", "--delay", "100", "1")
        self.await_keyboard(POPOVER)
        self.assert_stays(lambda: self.server.window(POPOVER))

    def test_the_icons_menu(self):
        self.start_tray()
        self.open_other()
        self.start_in_background()
        self.choose("Quick Notlet")
        self.await_keyboard(POPOVER)
        self.desktop.type("kept")
        self.await_text("kept", POPOVER)
        self.choose("Open Notlet")
        self.await_keyboard("Notlet")
        self.choose("Quit Notlet")
        self.assertEqual(self.program.wait(10), 0)
        self.assertEqual(self.draft("popover"), "kept")

    def choose(self, entry):
        """By keyboard, as assistive technology does not see the menu."""
        number = MENU_ENTRIES.index(entry)
        left, top, _, height = self.server.frame(self.await_icon())
        before = len(self.server.windows("Notlet"))
        # At a place of its own, or two choices soon after each other are a double click.
        self.desktop.click_at(left + 1 + 6 * number, top + height // 2, button=3)
        await_value(lambda: len(self.server.windows("Notlet")) > before, "the menu")
        self.desktop.keys(*["Down"] * (number + 1), "Return")

    def test_trays_come_and_go(self):
        self.open_other()
        self.start_in_background()
        for _ in range(2):
            self.open_popover()
            self.assertEqual(self.frame(), UPPER_RIGHT)
            self.click_other()
            tray = self.start_tray()
            icon = self.server.frame(self.await_icon())
            self.open_popover()
            self.assertEqual(self.frame()[1], icon[1] + icon[3] + 6)
            self.escape()
            self.desktop.end(tray)
            await_value(lambda: not self.server.has_owner("_NET_SYSTEM_TRAY_S0"), "the tray to go")

    # The tray to which icons are described

    def choose_described(self, service, entry):
        path = self.desktop.call(service, "/StatusNotifierItem", PROPERTIES, "Get",
                                 GLib.Variant("(ss)", (ITEM, "Menu")))[0]
        _, (_, _, entries) = self.desktop.call(service, path, MENU, "GetLayout",
                                               GLib.Variant("(iias)", (0, -1, ["label"])))
        labels = {attributes["label"].replace("_", ""): number for number, attributes, _ in entries
                  if "label" in attributes}
        self.assertEqual(tuple(labels), MENU_ENTRIES)
        number = labels[entry]
        self.desktop.call(service, path, MENU, "Event",
                          GLib.Variant("(isvu)", (number, "clicked", GLib.Variant("i", 0), 0)))

    def test_a_described_icon_toggles_it(self):
        self.run_beside("notifier_host.py")
        self.open_other()
        self.start_in_background()
        service = self.await_item()
        self.activate(service)
        self.await_keyboard(POPOVER)
        self.desktop.type("kept")
        self.activate(service)
        self.await_gone(POPOVER)
        self.await_keyboard("Other program")
        self.activate(service)
        self.await_keyboard(POPOVER)
        # The panel tells of a click on it after the program has seen the click itself.
        self.await_single_click()
        self.desktop.click_at(700, 750)
        self.await_gone(POPOVER)
        self.tell_of_click(service)
        self.assert_stays(lambda: not self.server.window(POPOVER))
        self.choose_described(service, "Quick Notlet")
        self.await_keyboard(POPOVER)
        self.choose_described(service, "Quit Notlet")
        self.assertEqual(self.program.wait(10), 0)
        self.assertEqual(self.draft("popover"), "kept")

    def test_described_trays_come_and_go(self):
        self.start_in_background()
        for _ in range(2):
            host = self.run_beside("notifier_host.py")
            self.activate(self.await_item())
            self.await_keyboard(POPOVER)
            self.escape()
            self.desktop.end(host)

    # Without the hot key, and without the main window

    def test_a_hot_key_that_is_taken_is_named_until_it_is_free(self):
        robber = self.take_hot_key()
        self.open()
        self.desktop.control("label", TAKEN)
        self.desktop.type("goes on")
        self.await_text("goes on")
        robber.ungrab_all()
        self.open_other()
        window = self.desktop.control("frame", "Notlet")
        await_value(lambda: not self.desktop.has_state(window, "ACTIVE"), "the program to notice")
        self.desktop.notlet()
        await_value(lambda: not self.desktop.controls("label", TAKEN), "the notice to go")
        self.open_popover()

    def close_main_window(self):
        self.await_keyboard("Notlet")
        self.server.ask_to_close(self.await_window("Notlet"))

    def test_a_closed_window_leaves_the_program_and_a_notification(self):
        shown = self.desktop.place("shown")
        self.run_beside("notification_service.py", shown)
        await_value(lambda: self.desktop.provider("org.freedesktop.Notifications"), "the service")
        self.open()
        self.close_main_window()
        self.await_gone("Notlet")
        await_value(lambda: os.path.exists(shown), "the notification")
        self.open_popover()
        self.escape()
        self.desktop.notlet()
        self.close_main_window()
        self.await_gone("Notlet")
        self.open_popover()
        with open(shown) as texts:
            self.assertEqual(texts.read(), "Notlet keeps running when its window is closed. To write a notlet, press "
                                           "Control+Super+J. To end it, start Notlet again and press Control+Q in its "
                                           "window.\n")

    def test_a_closed_window_says_so_when_it_is_next_open_without_notifications(self):
        self.open()
        self.close_main_window()
        self.await_gone("Notlet")
        self.open_popover()
        self.desktop.notlet()
        await_value(lambda: any(label.get_name().startswith("Notlet keeps running")
                                for label in self.desktop.controls("label", within="Notlet")), "the notice")

    def test_a_window_that_nothing_brings_back_ends_the_program(self):
        self.take_hot_key()
        self.open()
        self.desktop.control("label", TAKEN)
        self.desktop.type("kept")
        self.await_text("kept")
        self.close_main_window()
        self.assertEqual(self.program.wait(10), 0)
        self.assertEqual(self.draft("main-window"), "kept")

    def test_a_tray_that_goes_brings_the_window_back(self):
        self.take_hot_key()
        tray = self.start_tray()
        self.open()
        self.await_icon()
        self.close_main_window()
        # The icon has the same title, but only the window is the window manager's.
        await_value(lambda: "Notlet" not in self.server.stacking(), "the window to go")
        self.desktop.end(tray)
        # Not only with the look around some seconds after the start.
        await_value(lambda: "Notlet" in self.server.stacking(), "the window to come back", 1.5)
        self.assertIsNone(self.program.poll())


if __name__ == "__main__":
    main()
