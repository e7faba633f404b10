#!/usr/bin/env python3
"""Measure a release build and print its figures as Markdown, each beside its floor from the same run.

usage: bench.py BUILD_DIRECTORY [--quick]

Benchmarks of the rules and the store come from Google Benchmark. Dictation hears a synthetic voice, at the pace at
which people speak. Windows are measured from outside, on an X server of their own: time from starting a program until
its window is painted and takes typing, time from a key to the changed picture, memory, and wake-ups while nothing
happens. Programs take turns, so that a machine whose speed drifts slows all of them. Nothing here fails because a
figure is high.
"""
import json
import os
import pathlib
import platform
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

SIZES = (0, 10_000, 100_000, 1_000_000)
HOT_KEY = "Control+Super_L+j"
# What is timed in the archive, in one go: a title, the steps on the way there, and the step.
ARCHIVE = (
    ("the archive appears", "wait,Control+s", "=a"),
    ("first search key \"r\"", "wait,slash", "@r"),
    ("last key of \"report\"", "e,p,o,r", "@t"),
    ("last key of \"the\"", ",".join(["BackSpace"] * 6 + ["t", "h"]), "@e"),
    ("a key that leaves nothing", "", "@z"),
    ("back to everything", "BackSpace,BackSpace,BackSpace", "@BackSpace"),
    ("the first row becomes active", "", "=Down"),
    ("one notch of the wheel", "", "@wheel"),
    ("the next row becomes active", "", "=j"),
    ("a row is opened for editing", "", "=e"),
)


# What finds notlets on the command line, beside the plainest way to find a word in the store.
FINDING = {
    "sqlite3, LIKE": ["sqlite3", "STORE", "SELECT content FROM NotletEntry WHERE content LIKE '%printer%'"],
    "notlet search printer": ["NOTLET", "search", "printer"],
    "notlet search встреча": ["NOTLET", "search", "встреча"],
    "notlet list --tag work": ["NOTLET", "list", "--tag", "work"],
}


def machine():
    with open("/proc/cpuinfo") as info:
        models = [line.split(":", 1)[1].strip() for line in info if line.startswith("model name")]
    return f"{models[0] if models else platform.machine()}, {len(models)} cores, {platform.release()}"


def google_benchmark(command):
    done = subprocess.run([*command, "--benchmark_format=json", "--benchmark_out_format=json"],
                          stdout=subprocess.PIPE, check=True)
    return json.loads(done.stdout)["benchmarks"]


def print_benchmarks(title, rows):
    print(f"\n### {title}\n\n| What | Time | Besides |\n|---|---:|---|")
    for row in rows:
        name = row["name"].replace("/real_time", "").replace("/", " · ")
        known = {"name", "family_index", "per_family_instance_index", "run_name", "run_type", "repetitions",
                 "repetition_index", "threads", "iterations", "real_time", "cpu_time", "time_unit"}
        besides = ", ".join(f"{key} {row[key]:g}" for key in row if key not in known)
        print(f"| {name} | {row['real_time']:.3g} {row['time_unit']} | {besides} |")


def print_dictation(build):
    print("\n### Dictation\n\n| What | Measured | Besides |\n|---|---:|---|")
    done = subprocess.run([build / "bench" / "dictation_bench", build / "bin"], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True, check=True)
    for line in done.stdout.splitlines():
        print("| " + " | ".join(line.split("\t")) + " |")


class Display:
    """A private X server with a window manager."""

    def __init__(self, root):
        self.children = []
        self.environment = {"PATH": os.environ["PATH"], "HOME": str(root), "LC_ALL": "C.UTF-8",
                            "QT_QPA_PLATFORM": "xcb", "XDG_RUNTIME_DIR": str(root / "run")}
        (root / "run").mkdir(mode=0o700)
        reader, writer = os.pipe()
        self.start(["Xvfb", "-displayfd", str(writer), "-screen", "0", "1280x800x24", "-nolisten", "tcp",
                    "-noreset", "-dpi", "96"], pass_fds=(writer,))
        os.close(writer)
        with os.fdopen(reader) as number:
            self.environment["DISPLAY"] = ":" + number.readline().strip()
        self.start(["openbox"])
        for _ in range(500):
            done = subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], env=self.environment,
                                  stdout=subprocess.PIPE, check=False)
            if b"window id" in done.stdout:
                return
            time.sleep(0.02)
        sys.exit("bench: the window manager did not start")

    def start(self, command, environment=None, **options):
        child = subprocess.Popen(command, env=environment or self.environment, stdin=subprocess.DEVNULL,
                                 stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options)
        self.children.append(child)
        return child

    def close(self):
        for child in reversed(self.children):
            if child.poll() is None:
                child.terminate()
                child.wait()


class Windows:
    """The programs whose windows are compared, each with a home of its own."""

    def __init__(self, build, root):
        self.build = build
        self.root = root
        self.display = Display(root)
        self.programs = {"empty window": ("Empty window", [str(build / "bench" / "empty_window")], root)}
        for size in SIZES:
            home = root / str(size)
            home.mkdir()
            if size:
                subprocess.run([build / "bench" / "fill_store", home / ".local/share/notlet/Notlet.store", str(size)],
                               check=True)
            self.programs[f"{size:,} notlets"] = ("Notlet", [str(build / "bin" / "notlet-desktop")], home)

    def environment(self, home):
        runtime = home / "runtime"
        runtime.mkdir(mode=0o700, exist_ok=True)
        return {**self.display.environment, "HOME": str(home), "XDG_RUNTIME_DIR": str(runtime)}

    def probe(self, name, steps="=x"):
        return self.probe_program(self.programs[name], steps)

    def probe_program(self, program, steps):
        title, command, home = program
        shutil.rmtree(home / ".local/state", ignore_errors=True)  # The typed key would come back as a draft.
        done = subprocess.run([self.build / "bench" / "window_probe", title, steps, *command],
                              env=self.environment(home), stdout=subprocess.PIPE, check=True)
        return [float(word) for word in done.stdout.split()]

    def print_times(self, runs):
        figures = {name: [] for name in self.programs}
        for run in range(runs + 1):
            for name in self.programs:
                figure = self.probe(name)
                if run:  # The first round warms the caches up.
                    figures[name].append(figure)
        floor = statistics.median(start for start, *_ in figures["empty window"])
        print("\n### From start to a window that takes typing, and from a key to the changed picture\n")
        print("| Program | Start, median | Least | Most | Against the empty window | Key to picture, median |")
        print("|---|---:|---:|---:|---:|---:|")
        for name, pairs in figures.items():
            starts = [start for start, *_ in pairs]
            keys = statistics.median(key for _, key, _ in pairs)
            print(f"| {name} | {statistics.median(starts):.0f} ms | {min(starts):.0f} ms | {max(starts):.0f} ms "
                  f"| {statistics.median(starts) / floor:.2f} | {keys:.1f} ms |")

    def print_quick_capture(self, runs):
        print("\n### From the hot key, with another window in front, to a window that is painted and takes typing\n")
        print("| Program | First time, median | Later, median | Most | Against the empty window | Key to picture, median |")
        print("|---|---:|---:|---:|---:|---:|")
        resident = ("Empty window", [str(self.build / "bench" / "resident_window")], self.root)
        full = self.programs["100,000 notlets"]
        again = f"{HOT_KEY}>Quick Notlet,Escape,Escape,{HOT_KEY}>Quick Notlet,=x"
        cases = {
            "resident empty window": (resident, f"wait,{HOT_KEY}>Resident window,{HOT_KEY},{HOT_KEY}>Resident window,=x"),
            "popover, 100,000 notlets": (full, f"wait,{again}"),
            "panel from the bubble, 100,000 notlets": (full, f"wait,click:26:-26,{again}".replace("Escape,Escape", "Escape")),
        }
        figures = {name: [] for name in cases}
        for _ in range(runs):
            for name, (program, steps) in cases.items():
                figures[name].append(self.probe_program(program, steps)[1:4])
        floor = statistics.median(later for _, later, _ in figures["resident empty window"])
        for name, rows in figures.items():
            first, later, key = (statistics.median(column) for column in zip(*rows))
            print(f"| {name} | {first:.1f} ms | {later:.1f} ms | {max(row[1] for row in rows):.1f} ms "
                  f"| {later / floor:.2f} | {key:.1f} ms |")

    def print_command_line(self, runs):
        print("\n### Finding from the command line: processor time of the whole process\n")
        print("| What | " + " | ".join(f"{size:,} notlets" for size in SIZES[1:]) + " |")
        print("|---|" + "---:|" * len(SIZES[1:]))
        rows = {title: [] for title in FINDING}
        for size in SIZES[1:]:
            home = self.programs[f"{size:,} notlets"][2]
            store = home / ".local/share/notlet/Notlet.store"
            words = {"STORE": str(store), "NOTLET": str(self.build / "bin" / "notlet")}
            times = {title: [] for title in FINDING}
            for run in range(runs + 1):
                for title, command in FINDING.items():
                    spent = processor_time([words.get(word, word) for word in command], self.environment(home))
                    if run:  # The first round warms the caches up.
                        times[title].append(spent)
            floor = statistics.median(times["sqlite3, LIKE"])
            for title, spent in times.items():
                median = statistics.median(spent)
                rows[title].append(f"{median:.1f} ms, {median / floor:.2f}")
        for title, row in rows.items():
            print(f"| {title} | " + " | ".join(row) + " |")

    def print_archive(self, runs):
        print("\n### In the archive, from a key to the changed list: first and last picture\n")
        names = [f"{size:,} notlets" for size in SIZES if size >= 100_000]
        print("| Step | " + " | ".join(f"{name}: first | most | last | most" for name in names) + " |")
        print("|---|" + "---:|" * 4 * len(names))
        steps = ",".join(part for _, before, step in ARCHIVE for part in (before, step) if part)
        cells = {title: [] for title, _, _ in ARCHIVE}
        for name in names:
            waits = steps.replace("wait", "wait,wait,wait,wait") if "1,000,000" in name else steps
            figures = [self.probe(name, waits)[1:] for _ in range(runs)]
            columns = iter(zip(*figures))
            for title, first, last in zip(cells, columns, columns):
                for column in (first, last):
                    cells[title] += [f"{statistics.median(column):.1f} ms", f"{max(column):.1f} ms"]
        for title, row in cells.items():
            print(f"| {title} | " + " | ".join(row) + " |")

    def press(self, *keys):
        subprocess.run(["xdotool", "key", "--clearmodifiers", *keys], env=self.display.environment, check=True)

    def print_resources(self):
        print("\n### Memory when everything is loaded, and wake-ups while idle\n")
        print("| Program | Resident | Of it private | Wake-ups in 5 s | CPU time in 5 s |\n|---|---:|---:|---:|---:|")
        for name in self.programs:
            self.print_resources_of(name)
        for size in SIZES[1:]:
            self.print_resources_of(f"{size:,} notlets", ", archive searched", ("ctrl+s", "a", "slash", "r", "e"))

    def print_resources_of(self, name, besides="", keys=()):
        _, command, home = self.programs[name]
        child = self.display.start(command, self.environment(home))
        time.sleep(3 if "1,000,000" not in name else 8)
        for key in keys:
            self.press(key)
            time.sleep(0.5)
        # The blinking caret is the desktop's wish; without the focus there is none.
        subprocess.run(["xdotool", "key", "--clearmodifiers", "super+d"], env=self.display.environment, check=False)
        other = self.display.start(["xmessage", "-center", "takes the focus"])
        time.sleep(1)
        before = activity(child.pid)
        time.sleep(5)
        after = activity(child.pid)
        resident, private = memory(child.pid)
        print(f"| {name}{besides} | {resident / 1024:.0f} MB | {private / 1024:.0f} MB | {after[0] - before[0]} "
              f"| {(after[1] - before[1]) * 10} ms |")
        for started in (other, child):
            started.terminate()
            started.wait()


def processor_time(command, environment):
    """Milliseconds that a program computes, in itself and in the system on its behalf."""
    with subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL) as child:
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
    if child.returncode != 0:
        sys.exit(f"bench: {command[0]} failed")
    return (usage.ru_utime + usage.ru_stime) * 1000


def memory(pid):
    """Resident and private kilobytes."""
    fields = {}
    for line in pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines()[1:]:
        key, value, *_ = line.split()
        fields[key] = int(value)
    return fields["Rss:"], fields["Private_Clean:"] + fields["Private_Dirty:"]


def activity(pid):
    """Voluntary context switches of all threads, and processor time in hundredths of a second."""
    switches = 0
    for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
        for line in (task / "status").read_text().splitlines():
            if line.startswith("voluntary_ctxt_switches"):
                switches += int(line.split()[1])
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return switches, int(fields[11]) + int(fields[12])


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    quick = "--quick" in sys.argv[2:]
    print(f"Machine: {machine()}; {time.strftime('%Y-%m-%d')}")
    with tempfile.TemporaryDirectory(prefix="notlet-bench-") as folder:
        root = pathlib.Path(folder)
        print_benchmarks("Text rules", google_benchmark([build / "bench" / "core_bench"]))
        (root / "stores").mkdir()
        print_benchmarks("The store", google_benchmark([build / "bench" / "storage_bench", root / "stores"]))
        print_benchmarks("The archive", google_benchmark([build / "bench" / "archive_bench", root / "stores"]))
        print_dictation(build)
        windows = Windows(build, root)
        try:
            windows.print_times(3 if quick else 15)
            windows.print_quick_capture(3 if quick else 10)
            windows.print_archive(2 if quick else 5)
            windows.print_command_line(3 if quick else 9)
            windows.print_resources()
        finally:
            windows.display.close()


if __name__ == "__main__":
    main()
