"""The main job through the real program: write a notlet, keep it, find it again."""
import os
import signal
import subprocess
import time

from journey import PROGRAMS, Journey, main
from virtual_desktop import await_value


class CaptureJourney(Journey):
    def test_a_notlet_with_a_suggested_tag_is_kept_and_found(self):
        self.desktop.notlet("add", "Printer is broken #work")
        self.open()
        self.desktop.type("Call Anna #wo")
        self.desktop.click(self.desktop.control("push button", "Use hashtag work"))
        self.await_text("Call Anna #work ")
        self.desktop.keys("Return")
        self.desktop.control(name="Notletted ✓")
        self.await_text("")
        self.assertIn("Call Anna #work", self.desktop.notlet("search", "anna"))
        self.assertEqual(self.stored()[0]["hashtags"], ["work"])
        await_value(lambda: not self.desktop.controls(name="Notletted ✓"), "the confirmation to go")

    def test_suggestions_are_reached_and_left_by_keyboard(self):
        for text in ("a #work", "b #work", "c #world"):
            self.desktop.notlet("add", text)
        self.open()
        self.desktop.type("x #wor")
        self.desktop.control("push button", "Use hashtag world")
        self.desktop.keys("Tab", "Right", "Return")
        self.await_text("x #world ")
        self.desktop.type("#wo")
        self.desktop.control("push button", "Use hashtag work")
        self.desktop.keys("Tab", "Escape")
        self.desktop.type("r")
        self.await_text("x #world #wor")
        self.assertEqual(len(self.stored()), 3)

    def test_shift_return_makes_a_line_and_the_button_saves(self):
        self.open()
        button = self.desktop.control("push button", "Save notlet")
        self.assertFalse(self.desktop.has_state(button, "ENABLED"))
        self.desktop.type("one")
        self.desktop.keys("shift+Return")
        self.desktop.type("two")
        self.await_text("one\ntwo")
        self.desktop.click(self.desktop.control("push button", "Save notlet"))
        self.await_stored("one\ntwo")
        self.desktop.type("three")
        self.desktop.keys("super+Return")
        self.await_stored("three", "one\ntwo")

    def test_a_killed_program_brings_the_half_sentence_back(self):
        self.open()
        self.desktop.type("half a sen")
        time.sleep(1.0)  # The promise under test: on disk within a second of the last key.
        self.desktop.end(self.program, signal.SIGKILL)
        self.open()
        self.await_text("half a sen")
        self.desktop.type("tence")
        self.desktop.keys("Return")
        self.await_stored("half a sentence")
        self.desktop.end(self.program, signal.SIGKILL)
        self.open()
        self.await_text("")

    def test_every_orderly_end_writes_the_draft_at_once(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            self.open()
            self.desktop.keys("ctrl+a", "Delete")
            self.desktop.type(f"ended by {int(number)}")
            self.await_text(f"ended by {int(number)}")
            self.assertEqual(self.desktop.end(self.program, number), 0)
            self.open()
            self.await_text(f"ended by {int(number)}")
            self.desktop.keys("ctrl+q")
            self.assertEqual(self.program.wait(10), 0)

    def test_a_failed_save_keeps_the_text_and_a_retry_stores_it_once(self):
        self.open()
        store = self.desktop.place("data", "notlet", "Notlet.store")
        self.desktop.type("precious")
        os.rename(store, store + ".away")
        self.desktop.keys("Return")
        self.desktop.control("label", "Your draft is still here. Please try again.")
        os.rename(store + ".away", store)
        self.desktop.keys("Return")
        await_value(lambda: not self.desktop.controls("label", "Your draft is still here. Please try again."),
                    "the alert to close")
        self.await_text("precious")
        self.desktop.keys("Return")
        self.await_stored("precious")

    def test_tags_that_another_program_stores_are_offered_within_a_second(self):
        self.open()
        self.desktop.type("note #fre")
        self.await_text("note #fre")
        self.desktop.notlet("add", "from elsewhere #fresh")
        self.desktop.control("push button", "Use hashtag fresh", timeout=1.5)

    def test_a_second_start_brings_the_first_one_forward(self):
        self.open()
        other = self.desktop.start(["xmessage", "-center", "in front"])
        await_value(lambda: self.desktop.active_window_name() == "xmessage", "the other window")
        second = subprocess.run([os.path.join(PROGRAMS, "notlet-desktop")], env=self.desktop.environment,
                                timeout=10, check=False)
        self.assertEqual(second.returncode, 0)
        await_value(lambda: self.desktop.active_window_name() == "Notlet", "the first window to come forward")
        self.assertEqual(len(self.desktop.windows("^Notlet$")), 1)
        self.desktop.end(other)
        self.desktop.type("still here")
        self.await_text("still here")

    def test_a_foreign_file_in_place_of_the_store_is_named_and_left_alone(self):
        store = self.desktop.place("data", "notlet", "Notlet.store")
        os.makedirs(os.path.dirname(store))
        with open(store, "w") as file:
            file.write("not a store")
        self.program = self.desktop.open_notlet()
        self.desktop.control("label", "Notlet storage is unavailable")
        await_value(lambda: any("Notlet.store" in label.get_name() for label in self.desktop.controls("label")),
                    "the file's name")
        with open(store) as file:
            self.assertEqual(file.read(), "not a store")

    def test_a_paste_of_ten_megabytes_leaves_the_window_quick(self):
        self.open()
        text = "x" * 10_000_000
        owner = subprocess.Popen(["xclip", "-selection", "clipboard", "-quiet"], env=self.desktop.environment,
                                 stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.desktop.children.append(owner)
        owner.stdin.write(text.encode())
        owner.stdin.close()
        self.desktop.keys("ctrl+v")
        draft = self.desktop.place("state", "notlet", "drafts", "main-window.txt")
        await_value(lambda: os.path.exists(draft) and os.path.getsize(draft) == len(text), "the draft", 60)
        self.desktop.type("y")
        await_value(lambda: os.path.getsize(draft) == len(text) + 1, "the key after it", 60)
        self.desktop.keys("Return")
        await_value(lambda: not os.path.exists(draft), "the save", 60)
        self.assertEqual(len(self.desktop.notlet("list", "--json")) > len(text), True)


if __name__ == "__main__":
    main()
