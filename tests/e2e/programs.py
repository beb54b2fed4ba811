# SPDX-License-Identifier: MIT
"""The real programs for the end-to-end tests: qk47-vna as a text front panel, and qk47-sim behind a
pseudo-terminal. Every wait has a deadline; what was said is kept only when a test fails."""

import concurrent.futures
import os
import pathlib
import queue
import shutil
import subprocess
import sys
import tempfile
import threading
import time
import unittest

DEADLINE = 60  # seconds for any one answer; the machine may be busy
VNA, SIM, LOGS = "", "", "."


class Program:
    """A child process whose lines of output are read as they come."""

    def __init__(self, name, arguments, transcript, environment=None):
        self.name = name
        self.transcript = transcript
        self.lines = queue.Queue()
        self.process = subprocess.Popen(
            arguments, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
            text=True, bufsize=1, env={**os.environ, **(environment or {})})
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            line = line.rstrip("\n")
            self.transcript.append(f"{self.name}: {line}")
            self.lines.put(line)
        self.lines.put(None)

    def next_line(self, deadline):
        """The next line, None at the end of the output."""
        try:
            return self.lines.get(timeout=max(0.01, deadline - time.monotonic()))
        except queue.Empty:
            raise AssertionError(f"{self.name}: no line before the deadline") from None

    def end(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait(DEADLINE)
        self.reader.join(DEADLINE)
        for pipe in (self.process.stdin, self.process.stdout):
            pipe.close()


class Simulator(Program):
    def __init__(self, folder, transcript, *arguments):
        self.link = os.path.join(folder, "vna-line")
        self.control = os.path.join(folder, "bench")
        self.truths = {}
        super().__init__("sim", [SIM, "--link", self.link, "--control", self.control, *arguments],
                         transcript)
        deadline = time.monotonic() + DEADLINE
        while self.next_line(deadline) != f"ready {self.link}":
            pass

    def bench(self, *lines):
        """Bench lines, each of which must be taken; the replies to the last."""
        self.truths = {}  # of what is connected, by frequency
        replies = []
        for line in lines:
            replies = self._say(line)
        return replies

    def _say(self, line):
        self.transcript.append(f"bench> {line}")
        with open(self.control, "w", encoding="ascii") as pipe:
            pipe.write(line + "\n")
        replies = []
        deadline = time.monotonic() + DEADLINE
        while (reply := self.next_line(deadline)) != "ok":
            if reply is None or reply.startswith("error"):
                raise AssertionError(f"bench {line}: {reply}")
            replies.append(reply)
        return replies

    def truth(self, hertz):
        """The device's own S-parameters at a frequency: {"S11": complex, ...}."""
        if hertz not in self.truths:
            words = self._say(f"truth {hertz!r}")[0].split()
            self.truths[hertz] = {words[i]: complex(float(words[i + 1]), float(words[i + 2]))
                                  for i in range(0, 12, 3)}
        return self.truths[hertz]


class Closed:
    """A command that has been closed: its reason when it was refused, else None."""

    def __init__(self, reason, replies, events):
        self.reason, self.replies, self.events = reason, replies, events


class FrontPanel(Program):
    """qk47-vna --console."""

    def __init__(self, folder, transcript, *arguments):
        self.count = 0
        self.events = []
        self.replies = []
        self.closed = {}
        super().__init__("vna", [VNA, "--console", "--folder", os.path.join(folder, "session"),
                                 *arguments], transcript)

    def send(self, line):
        """Sends a command without waiting for it; gives its number."""
        self.count += 1
        self.transcript.append(f"> {line}")
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()
        return self.count

    def _take(self, deadline):
        line = self.next_line(deadline)
        if line is None:
            raise AssertionError("the program ended")
        if line.startswith("= "):
            self.replies.append(line[2:])
        elif line.startswith("! "):
            self.events.append(line[2:])
        elif line.startswith(("ok ", "error ")):
            word, _, rest = line.partition(" ")
            number, _, reason = rest.partition(": ")
            self.closed[int(number)] = Closed(reason if word == "error" else None,
                                              self.replies, self.events)
            self.replies, self.events = [], []

    def until_closed(self, number):
        deadline = time.monotonic() + DEADLINE
        while number not in self.closed:
            self._take(deadline)
        return self.closed[number]

    def until_event(self, text):
        """Waits for an event that begins with text; forgets those before it."""
        deadline = time.monotonic() + DEADLINE
        while True:
            while self.events:
                event = self.events.pop(0)
                if event.startswith(text):
                    return event
            self._take(deadline)

    def run(self, *lines):
        """Commands one after the other, each of which must be done; the replies of the last."""
        replies = []
        for line in lines:
            closed = self.until_closed(self.send(line))
            if closed.reason is not None:
                raise AssertionError(f"{line}: {closed.reason}")
            replies = closed.replies
        return replies

    def refused(self, line):
        closed = self.until_closed(self.send(line))
        if closed.reason is None:
            raise AssertionError(f"{line}: was not refused")
        return closed.reason

    def panel(self, number):
        return self.run("panels")[number - 1].partition(" ")[2]

    def measure(self, button, *prompts):
        """Presses a standard's button and answers its prompts; they must be these."""
        number = self.send(f"click {button}")
        for prompt in prompts:
            event = self.until_event("message ")
            if prompt not in event:
                raise AssertionError(f"{button}: {event}, not {prompt}")
            prompt_answer = self.send("answer ok")
            self.until_closed(prompt_answer)
        closed = self.until_closed(number)
        if closed.reason is not None:
            raise AssertionError(f"{button}: {closed.reason}")

    def restart(self):
        """Re-Start Program, both of its questions answered."""
        number = self.send("click Form1.ReStart")
        for answer in ("yes", "ok"):
            self.until_event("message Re-Start Program")
            self.run(f"answer {answer}")
        closed = self.until_closed(number)
        if closed.reason is not None:
            raise AssertionError(f"Re-Start Program: {closed.reason}")

    def corrected(self, parameter):
        """[(hertz, complex)] of the corrected data."""
        points = []
        for line in self.run(f"data corrected {parameter}"):
            _, hertz, re, im = line.split()
            points.append((float(hertz), complex(float(re), float(im))))
        return points

    def end_of_output(self):
        deadline = time.monotonic() + DEADLINE
        last = None
        while (line := self.next_line(deadline)) is not None:
            last = line
        return last, self.process.wait(DEADLINE)


class EndToEnd(unittest.TestCase):
    """A folder of its own for each test; the transcript is written out when the test fails."""

    PLACE = None  # of the folders; None: that of the system

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="qk-e2e-", dir=self.PLACE)
        self.transcript = []
        self.programs = []
        self.addCleanup(self._end)

    def _end(self):
        for program in self.programs:
            program.end()
        shutil.rmtree(self.folder, ignore_errors=True)
        result = self._outcome.result
        failed = any(test is self for test, _ in result.failures + result.errors)
        if failed:
            log = pathlib.Path(LOGS) / f"{self.id()}.log"
            log.write_text("\n".join(self.transcript) + "\n", encoding="utf-8")
            print(f"log: {log}", file=sys.stderr)

    def simulator(self, *arguments):
        program = Simulator(self.folder, self.transcript, *arguments)
        self.programs.append(program)
        return program

    def front_panel(self, *arguments):
        program = FrontPanel(self.folder, self.transcript, *arguments)
        self.programs.append(program)
        return program

    def on_com(self, number, device):
        """--com arguments: device on one number, nothing behind all others."""
        arguments = []
        for com in range(1, 17):
            arguments += ["--com", f"{com}={device if com == number else '/dev/null/none'}"]
        return arguments


def all_of(suite):
    for test in suite:
        if isinstance(test, unittest.TestSuite):
            yield from all_of(test)
        else:
            yield test


class AtOnce:
    """A runner of so many tests at a time, for those that spend their time waiting."""

    def __init__(self, count):
        self.count = count

    def run(self, suite):
        together = unittest.TestResult()
        began = time.monotonic()

        def one(test):
            result = unittest.TestResult()
            start = time.monotonic()
            test.run(result)
            word = "ok" if result.wasSuccessful() else "FAILED"
            print(f"{test.id()} ... {word} ({time.monotonic() - start:.1f} s)", file=sys.stderr)
            for _, why in result.failures + result.errors:
                print(why, file=sys.stderr)
            return result

        with concurrent.futures.ThreadPoolExecutor(self.count) as pool:
            for result in pool.map(one, list(all_of(suite))):
                together.testsRun += result.testsRun
                together.failures += result.failures
                together.errors += result.errors
                together.unexpectedSuccesses += result.unexpectedSuccesses
        print(f"ran {together.testsRun} tests in {time.monotonic() - began:.1f} s", file=sys.stderr)
        return together


def main(at_once=1):
    global VNA, SIM, LOGS
    VNA, SIM, LOGS = sys.argv[1:4]
    runner = AtOnce(at_once) if at_once > 1 else None
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]], testRunner=runner, verbosity=2)
