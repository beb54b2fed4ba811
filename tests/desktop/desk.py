# SPDX-License-Identifier: MIT
"""A desktop for the real program: a screen of its own (Xvfb), a window manager (openbox), and what a
person does there with keys and mouse (xdotool). Windows go by their titles; what stands in them is
read from the screen, as a person reads it (tesseract)."""

import os
import re
import subprocess
import tempfile
import time

DEADLINE = 120  # seconds for anything to happen; the machine may be busy
# The threads of the reader and of the picture programs wait for each other with the processor busy: one alone
# takes a fifth of the time.
ONE_THREAD = {"OMP_THREAD_LIMIT": "1", "MAGICK_THREAD_LIMIT": "1"}


class Running:
    """A program that another part of the test has started and ends."""

    def __init__(self, pid):
        self.pid = pid


class Desk:
    def __init__(self, size="1600x1000x24", environment=None, display=None, pid=None):
        """A desktop of its own; or that of a display which is there, with the program that runs on
        it."""
        self.server = self.manager = self.program = None
        self.last_read = None, None  # what was asked of which picture, and the answer
        if display is not None:
            self.display = display
            self.environment = {**os.environ, **ONE_THREAD, "DISPLAY": display}
            self.program = Running(pid)
            return
        read, write = os.pipe()
        # Without -noreset the server begins anew when its only client leaves: the question below whether
        # the window manager is up would throw out a manager that is just coming up.
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", size, "-nolisten", "tcp", "-noreset"],
            pass_fds=[write], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as number:
            self.display = ":" + number.readline().strip()
        self.environment = {**os.environ, **ONE_THREAD, "DISPLAY": self.display, **(environment or {})}
        self.environment.pop("QT_QPA_PLATFORM", None)
        self.manager = subprocess.Popen(["openbox"], env=self.environment,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.wait("a window manager", lambda: "window id" in self.output(
            "xprop", "-root", "_NET_SUPPORTING_WM_CHECK"))

    def start(self, vna, folder, *arguments):
        self.program = subprocess.Popen([vna, "--folder", folder, *arguments],
                                        env=self.environment, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.PIPE, text=True)
        self.wait_for("QK47-20-09 VNA Control")

    def end(self):
        for process in (self.program, self.manager, self.server):
            if process is not None and process.poll() is None:
                process.terminate()
                try:
                    process.wait(DEADLINE)
                except subprocess.TimeoutExpired:
                    process.kill()
        if self.program is not None:
            self.program.stderr.close()

    # ---- what is there

    def output(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True,
                              check=False).stdout

    def shot(self, which, path):
        """The picture of a window: which() gives its number, or "root", and is asked anew for each
        try, as a window can go between the question and the picture. By xwd, which does not hold
        the screen; the whole screen by import, as xwd leaves menus of another depth black."""
        deadline = time.monotonic() + DEADLINE
        while True:
            window = which()
            if window == "root":
                take = ["timeout", "20", "import", "-silent", "-window", "root", "xwd:-"]
            else:
                take = ["xwd", "-silent", "-id", window]
            dump = subprocess.run(take, env=self.environment, capture_output=True, check=False,
                                  timeout=DEADLINE)
            if window and dump.returncode == 0:
                subprocess.run(["convert", "xwd:-", path], input=dump.stdout, check=True,
                               env=self.environment, timeout=DEADLINE)
                return
            if time.monotonic() > deadline:
                raise AssertionError(f"no picture of window {window}: {dump.stderr.decode()}")
            time.sleep(0.2)

    def windows(self):
        """{title: id} of the program's visible windows."""
        found = {}
        if self.program is None:
            return found
        for window in self.output("xdotool", "search", "--onlyvisible", "--pid",
                                  str(self.program.pid)).split():
            title = self.output("xdotool", "getwindowname", window).strip()
            if title:
                found[title] = window
        return found

    def active(self):
        return self.output("xdotool", "getactivewindow", "getwindowname").strip()

    def place(self, title):
        """(x, y, width, height) of a window on the screen, without its frame."""
        told = self.output("xwininfo", "-id", self.windows()[title])
        return tuple(int(re.search(rf"{word}: +(-?\d+)", told)[1]) for word in (
            "Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))

    def wait(self, what, condition, seconds=DEADLINE):
        deadline = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > deadline:
                raise AssertionError(f"not before the deadline: {what}; there are "
                                     f"{sorted(self.windows())}, active is {self.active()!r}")
            time.sleep(0.05)

    def wait_for(self, title):
        """Until a window of that title is up and has the keyboard."""
        self.wait(f"window {title!r}",
                  lambda: title in self.windows() and self.active() == title)

    def settle(self):
        """Until screen, window manager and program have handled what they were given: all have been
        found asleep, without a tick of work between, three times in a row."""
        seen = []

        def quiet():
            seen.append([self.work(process.pid)
                         for process in (self.server, self.manager, self.program)])
            return len(seen) >= 3 and seen[-1] == seen[-2] == seen[-3] \
                and all(state == "S" for state, _ in seen[-1])

        self.wait("screen, window manager and program to be idle", quiet)

    @staticmethod
    def work(pid):
        """State and ticks of processor time of a process."""
        with open(f"/proc/{pid}/stat", encoding="ascii", errors="replace") as stat:
            fields = stat.read().rsplit(")", 1)[1].split()
        return fields[0], int(fields[11]) + int(fields[12])

    def wait_gone(self, title):
        self.wait(f"no window {title!r}", lambda: title not in self.windows())

    # ---- what a person does

    def key(self, *keys):
        """Presses keys one after the other, at the pace of a typist. What they do is waited for by
        its condition."""
        for key in keys:
            self.output("xdotool", "key", "--clearmodifiers", key)
            time.sleep(0.05)

    def hold(self, key, seconds):
        """Holds a key down: the screen repeats it after two thirds of a second."""
        self.output("xdotool", "keydown", key, "sleep", str(seconds), "keyup", key)

    def type(self, text):
        self.output("xdotool", "type", "--delay", "20", text)

    def click(self, x, y):
        self.output("xdotool", "mousemove", str(x), str(y), "click", "1")

    def storm(self, first, places, keys):
        """A key, and a tenth of a second later clicks on all the places and further keys, as fast
        as they can be had."""
        clicks = [word for x, y in places for word in ("mousemove", str(x), str(y), "click", "1")]
        self.output("xdotool", "key", first, "sleep", "0.1", *clicks, "key", *keys)

    # ---- what a person sees

    def picture(self, path, title=None):
        """The screen, or a window of it without its frame, as an image file."""
        self.shot(lambda: "root" if title is None else self.windows().get(title, ""), path)

    def words(self, title):
        """{plain text: (x, y)} of the words that can be read in a window, at their middles on the
        screen; the first of those that stand twice."""
        left, top, _, _ = self.place(title)
        table = self.read(lambda: self.windows().get(title, ""), [], ["--psm", "11", "tsv"])
        found = {}
        for line in table.splitlines()[1:]:
            cells = line.split("\t")
            if len(cells) < 12 or not plain(cells[11]):
                continue
            x, y, width, height = (int(cell) / 3 for cell in cells[6:10])
            found.setdefault(plain(cells[11]), (left + x + width / 2, top + y + height / 2))
        return found

    def text(self, title=None, rows=None):
        """All that can be read in a window (None: the one that has the keyboard, as several may
        bear one title), or in so many rows of pixels at its foot: letters and digits alone, so
        that a blank that the reading misses does not count."""
        foot = [] if rows is None else ["-gravity", "South", "-crop", f"x{rows}+0+0", "+repage"]
        return plain(self.read(lambda: self.output("xdotool", "getactivewindow").strip() if title is None
                               else self.windows().get(title, ""), foot, ["--psm", "6"]))

    def read(self, which, crop, how):
        """What tesseract, asked like how, reads in a window or in the part of it that crop (words of
        convert) leaves. A picture that has not changed is not read again. Without compression, which
        would take longer than the reading."""
        with tempfile.TemporaryDirectory() as folder:
            image = os.path.join(folder, "window.ppm")
            self.shot(which, image)
            with open(image, "rb") as file:
                asked = file.read(), crop, how
            if asked != self.last_read[0]:
                large = os.path.join(folder, "large.pgm")
                self.output("convert", image, *crop, "-colorspace", "Gray", "-resize", "300%", large)
                self.last_read = asked, self.output("tesseract", large, "stdout", *how)
            return self.last_read[1]


def plain(text):
    """A text by its letters and digits; what reading confuses is the same."""
    same = str.maketrans("IlO|$", "1101S")
    return re.sub(r"[^A-Za-z0-9]", "", text.translate(same))
