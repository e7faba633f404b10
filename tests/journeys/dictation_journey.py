"""Dictation: from a voice to a kept notlet, and what is said when that does not work."""
import json
import os
import sys

from journey import POPOVER, Journey, main
from sound import SoundService
from virtual_desktop import await_value

SENTENCE = "call anna tomorrow about the printer"
KEY_WORDS = ("call", "anna", "tomorrow", "about", "printer")
SPEECH = "Speech Recognition"
# Repeats how long it listened, a hundredth of a second at a time, and hears one sentence in it.
PROGRAM = """
import json, sys
heard = 0
while chunk := sys.stdin.buffer.read1(3200):
    heard += len(chunk)
    if heard > 32000:
        print(json.dumps({"final": "from a program"}), flush=True)
        heard = -1 << 40
    elif heard > 3200:
        print(json.dumps({"partial": "from"}), flush=True)
"""


class DictationJourney(Journey):
    def setUp(self):
        super().setUp()
        self.sound = SoundService(self.desktop)
        self.addCleanup(self.sound.close)

    def begin(self, window="Notlet"):
        self.desktop.press(self.desktop.control("push button", "Start dictation", within=window))
        self.desktop.control("push button", "Stop dictation", within=window)

    def await_stopped(self, window="Notlet"):
        self.desktop.control("push button", "Start dictation", within=window)

    def heard(self, window=None):
        return self.desktop.text(self.editor(window))

    def await_words(self, *words, at_least=None, window=None):
        at_least = at_least or len(words)
        await_value(lambda: sum(word in self.heard(window).split() for word in words) >= at_least,
                    lambda: f"{at_least} of {words} to be heard, and not {self.heard(window)!r}", timeout=60)

    def dismiss(self, message):
        """Says OK to an alert that says so."""
        self.desktop.control("label", SPEECH)
        self.desktop.control("label", message)
        button = self.desktop.control("push button", "OK")
        await_value(lambda: self.desktop.has_state(button, "FOCUSED"), "the alert to take keys")
        self.desktop.keys("Return")
        self.await_stopped()
        await_value(lambda: self.desktop.has_state(self.editor(), "FOCUSED"), "the editor to take keys again")

    def test_words_appear_and_return_keeps_them(self):
        microphone = self.sound.plug_in()
        self.open()
        self.desktop.type("Today")
        self.begin()
        microphone.say(SENTENCE)
        self.await_words("call")
        self.await_words(*KEY_WORDS, at_least=4)
        text = self.heard()
        self.assertTrue(text.startswith("Today "), text)
        self.desktop.keys("Return")
        self.await_text("")
        self.await_stopped()
        stored = self.stored()
        self.assertEqual(len(stored), 1)
        self.assertGreaterEqual(sum(word in stored[0]["content"].split() for word in KEY_WORDS), 4, stored)
        # The model is loaded, and the words of the first dictation stay with it.
        self.begin()
        microphone.say("buy some milk")
        self.await_words("milk")
        self.assertNotIn("printer", self.heard())
        self.desktop.keys("Escape")
        self.await_stopped()
        self.desktop.type("!")
        await_value(lambda: self.heard().endswith("milk!"), "the editor to take what is typed")

    def test_the_popover_stops_listening_when_it_closes(self):
        microphone = self.sound.plug_in()
        self.start_in_background()
        self.open_popover()
        self.desktop.keys("ctrl+m")
        self.desktop.control("push button", "Stop dictation", within=POPOVER)
        microphone.say("remember the milk")
        self.await_words("milk", window=POPOVER)
        before = self.heard(POPOVER)
        self.desktop.keys("Escape", "Escape")
        self.await_gone(POPOVER)
        microphone.say("this is not for you")
        self.assert_stays(lambda: not self.sound.is_heard(), seconds=1)
        self.open_popover()
        self.assertEqual(self.heard(POPOVER), before)

    def test_says_what_is_missing(self):
        self.open()
        start = self.desktop.control("push button", "Start dictation")
        self.desktop.press(start)
        self.dismiss("No microphone was found. Connect one and try again.")

        microphone = self.sound.plug_in()
        self.begin()
        microphone.say("remember the milk")
        self.await_words("milk")
        heard = self.heard()
        self.sound.unplug()
        self.dismiss("The microphone was disconnected.")
        self.assertEqual(self.heard(), heard)

        self.sound.end()
        self.desktop.press(start)
        self.dismiss("No sound service is running on this computer.")
        self.assertEqual(self.heard(), heard)

    def test_a_microphone_that_gives_nothing(self):
        microphone = self.sound.plug_in()
        self.open()
        self.begin()
        microphone.is_dead = True
        self.dismiss("The microphone sends no sound. Check it and try again.")

    def test_a_language_without_a_model(self):
        self.sound.plug_in()
        self.desktop.environment["LC_ALL"] = "fi_FI.UTF-8"
        self.open()
        self.desktop.press(self.desktop.control("push button", "Start dictation"))
        self.dismiss("Speech recognition is currently unavailable. Try again later.")

    def test_a_program_of_the_users_own(self):
        self.sound.plug_in()
        script = self.desktop.place("recogniser.py")
        with open(script, "w") as file:
            file.write(PROGRAM)
        settings = self.desktop.place(".config", "notlet")
        self.desktop.environment["XDG_CONFIG_HOME"] = os.path.dirname(settings)
        os.makedirs(settings)
        with open(os.path.join(settings, "speech.json"), "w") as file:
            json.dump({"program": [sys.executable, script]}, file)
        self.open()
        self.begin()
        self.await_words("from", "a", "program")
        self.desktop.keys("Return")
        self.await_stored("from a program")


if __name__ == "__main__":
    main()
