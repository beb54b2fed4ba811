# SPDX-License-Identifier: MIT
"""A remote client over a plain socket, and tests over the program with remote control switched on."""

import os
import socket
import sys

import programs


def has_visa():
    try:
        import pyvisa  # noqa: F401
        import pyvisa_py  # noqa: F401
    except ImportError:
        return False
    return True


if not has_visa() and os.environ.get("QK_REMOTE_PYTHON") is None:
    # Debian's interpreter has the packages where another one comes first in the path.
    os.environ["QK_REMOTE_PYTHON"] = "1"
    if os.path.exists("/usr/bin/python3"):
        os.execv("/usr/bin/python3", ["/usr/bin/python3", "-B", *sys.argv])


class Client:
    """A plain socket."""

    def __init__(self, port, address="127.0.0.1"):
        self.socket = socket.create_connection((address, port), timeout=programs.DEADLINE)
        self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.file = self.socket.makefile("rb")

    def write(self, text):
        self.socket.sendall(text.encode("ascii") + b"\n")

    def line(self):
        return self.file.readline().decode("ascii").rstrip("\n")

    def ask(self, text):
        self.write(text)
        return self.line()

    def close(self):
        self.file.close()
        self.socket.close()


class RemoteTest(programs.EndToEnd):
    def start(self, *arguments, pace="fast"):
        self.vna = self.front_panel("--demo", "--pace", pace, *arguments)
        self.vna.run("wait ms 0", "bench noise off")
        lines = [line for line in self.transcript if "scpi: 127.0.0.1:" in line]
        self.port = int(lines[-1].rpartition(":")[2]) if lines else 0

    def connect(self):
        client = Client(self.port)
        self.addCleanup(client.close)
        return client

    def collect(self, client, bench, standard):
        for line in bench:
            self.vna.run(f"bench {line}")
        client.write(f"SENS:CORR:COLL {standard}")
        self.assertEqual(client.ask("*OPC?"), "1")
        self.assertEqual(client.ask("SYST:ERR?"), '0,"No error"')

    def calibrate(self, client, points):
        client.write(f"SENS:FREQ:STAR 100 MHZ;STOP 3 GHZ;:SENS:SWE:POIN {points}")
        client.write("SENS:CORR:COLL:METH INS")
        for port, other in (("1", "2"), ("2", "1")):
            for what, word in (("open", "OPEN"), ("short", "SHOR"), ("load", "LOAD")):
                self.collect(client, [f"port{port} {what}", f"port{other} load"],
                             f"{word},{port}")
        self.collect(client, ["through"], "THRU")
        client.write("SENS:CORR:COLL:SAVE")
        self.assertEqual(client.ask("*OPC?"), "1")
        self.assertEqual(client.ask("SYST:ERR?"), '0,"No error"')
        self.assertEqual(client.ask("SENS:CORR:TYPE?;STAT?;STAT:INT?"), "ALL;1;EXAC")
