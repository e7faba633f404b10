"""A sound service without hardware, whose microphone hears what a test says."""
import os
import queue
import subprocess
import tempfile
import threading
import time
import wave

from virtual_desktop import await_value

RATE = 16000
CHUNK = 1024
SILENCE = bytes(2 * CHUNK)


class Microphone:
    """Writes into a pipe what it is to hear, as fast as sound goes by: silence while nobody speaks."""

    def __init__(self, pipe):
        self._chunks = queue.Queue()
        self._is_open = True
        self.is_dead = False
        # Written to and read, so that no end has to wait for the other.
        self._pipe = os.open(pipe, os.O_RDWR | os.O_NONBLOCK)
        self._thread = threading.Thread(target=self._run, daemon=True)
        self._thread.start()

    def _run(self):
        due = time.monotonic()
        while self._is_open:
            if not self.is_dead:
                try:
                    chunk = self._chunks.get_nowait()
                except queue.Empty:
                    chunk = SILENCE
                try:
                    os.write(self._pipe, chunk)
                except BlockingIOError:
                    pass  # Nobody listens.
            due = max(due + CHUNK / RATE, time.monotonic() - 1)
            time.sleep(max(0, due - time.monotonic()))

    def say(self, text):
        """Speaks after a breath; returns at once."""
        with tempfile.NamedTemporaryFile(suffix=".wav") as file:
            subprocess.run(["flite", "-voice", "rms", "-t", text, "-o", file.name], check=True)
            with wave.open(file.name) as sound:
                assert (sound.getframerate(), sound.getnchannels(), sound.getsampwidth()) == (RATE, 1, 2)
                frames = sound.readframes(sound.getnframes())
        for _ in range(5):
            self._chunks.put(SILENCE)
        for start in range(0, len(frames), 2 * CHUNK):
            self._chunks.put(frames[start:start + 2 * CHUNK].ljust(2 * CHUNK, b"\0"))

    def close(self):
        self._is_open = False
        self._thread.join()
        os.close(self._pipe)


class SoundService:
    """PulseAudio for one desktop, with a loudspeaker and nothing else until a microphone is plugged in."""

    def __init__(self, desktop):
        self._desktop = desktop
        folder = tempfile.mkdtemp(dir=desktop.root, prefix="sound-")
        self._pipe = os.path.join(folder, "microphone")
        address = os.path.join(folder, "native")
        desktop.environment["PULSE_SERVER"] = "unix:" + address
        # Its own files are found by these, whatever the desktop has.
        desktop.environment["PULSE_RUNTIME_PATH"] = desktop.environment["PULSE_STATE_PATH"] = folder
        self._server = desktop.start(
            ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--disable-shm=yes", "--realtime=no",
             "--high-priority=no", "--use-pid-file=no",
             "-L", f"module-native-protocol-unix socket={address} auth-anonymous=1",
             "-L", "module-null-sink sink_name=loudspeaker"])
        await_value(lambda: os.path.exists(address), "the sound service")
        self._module = None
        self.microphone = None

    def _control(self, *arguments):
        return self._desktop.output("pactl", *arguments)

    def plug_in(self):
        """A microphone, which is the default input from now on."""
        self._module = self._control("load-module", "module-pipe-source", "source_name=microphone",
                                     f"file={self._pipe}", "format=s16le", f"rate={RATE}", "channels=1").strip()
        self._control("set-default-source", "microphone")
        self.microphone = Microphone(self._pipe)
        return self.microphone

    def unplug(self):
        self._control("unload-module", self._module)
        self._module = None

    def is_heard(self):
        """Whether a program listens."""
        return bool(self._control("list", "short", "source-outputs").strip())

    def end(self):
        """The service goes, as in a crash."""
        if self._server.poll() is None:
            self._desktop.end(self._server)

    def close(self):
        if self.microphone is not None:
            self.microphone.close()
        self.end()
