#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""scikit-rf's classes for other analysers, as Debian ships them, drive the program over a real socket.

The classes are older than the pyvisa and Python that come with them. What they miss there is put back
below: the number form that pyvisa once kept, and a name that Python has moved. Their own code runs as it
is installed, and every message that they send is the one that they send to their analyser."""

import collections
import collections.abc
import sys
import warnings

import programs
import remote_client  # takes a Python that has pyvisa

collections.Iterable = collections.abc.Iterable
warnings.simplefilter("ignore")

import numpy  # noqa: E402
import pyvisa.resources  # noqa: E402


class ValuesFormat:
    """How numbers come: as pyvisa kept it up to version 1.9."""

    def __init__(self):
        self.use_ascii()

    def use_ascii(self, converter="f", separator=",", container=list):
        self.text, self.options = True, {"converter": converter, "separator": separator,
                                         "container": container}

    def use_binary(self, datatype="f", is_big_endian=False, container=list):
        self.text, self.options = False, {"datatype": datatype, "is_big_endian": is_big_endian,
                                          "container": container}


def query_values(resource, message):
    form = resource.values_format
    ask = resource.query_ascii_values if form.text else resource.query_binary_values
    return ask(message, **form.options)


def values_format(resource):
    if not hasattr(resource, "_values_format"):
        resource._values_format = ValuesFormat()
    return resource._values_format


pyvisa.resources.MessageBasedResource.values_format = property(values_format)
pyvisa.resources.MessageBasedResource.query_values = query_values

from skrf.vi.vna import FieldFox, PNA  # noqa: E402

POINTS = 51


class Clients(remote_client.RemoteTest):
    def setUp(self):
        super().setUp()
        self.start("--scpi=0")
        self.client = self.connect()
        self.calibrate(self.client, POINTS)
        self.vna.run("bench filter")

    def open(self, kind):
        vna = kind("127.0.0.1", interface="SOCKET", port=self.port, visa_library="@py",
                   timeout=20000)
        self.addCleanup(vna.close)
        # Its own errors are asked for by itself: each client has a queue of its own.
        self.addCleanup(lambda: self.assertEqual(vna.query("SYST:ERR:ALL?"), '0,"No error"'))
        return vna

    def check(self, network, ports=(1, 2)):
        """A network against the device that is connected to the bench."""
        self.assertEqual(len(network.f), POINTS)
        self.assertAlmostEqual(network.f[0], 100e6)
        self.assertAlmostEqual(network.f[-1], 3e9)
        for hertz, s in zip(network.f, network.s):
            words = self.vna.run(f"bench truth {float(round(hertz))!r}")[0].split()
            truth = {words[i]: complex(float(words[i + 1]), float(words[i + 2]))
                     for i in range(0, 12, 3)}
            for row, receiver in enumerate(ports):
                for column, source in enumerate(ports):
                    name = f"S{receiver}{source}"
                    self.assertLess(abs(s[row][column] - truth[name]), 1e-3, (hertz, name))

    def test_the_class_of_a_handheld_analyser(self):
        vna = self.open(FieldFox)
        self.assertTrue(vna.idn.startswith("QK47,QK47-20-09,"))
        vna.set_frequency_sweep(100, 3000, POINTS, f_unit="mhz")
        vna.initiate_twoport()
        self.assertEqual(vna.n_traces, 4)
        self.check(vna.get_twoport(sweep=True))
        flipped = vna.get_twoport((2, 1))
        self.check(flipped, (2, 1))
        self.assertEqual(len(vna.get_frequency().f), POINTS)
        vna.scpi.set_if_bandwidth(1000)
        self.assertEqual(vna.scpi.query_if_bandwidth(), 1000)
        self.assertGreater(vna.scpi.query_sweep_time(), 0)
        self.assertEqual(vna.scpi.query_instrument(), "NA")
        vna.scpi.set_averaging_count(2)
        self.assertEqual(vna.scpi.query_averaging_count(), 2)
        vna.scpi.set_averaging_count(1)
        # A sweep that goes on stays so.
        vna.scpi.set_continuous_sweep(True)
        vna.sweep()
        self.assertTrue(vna.scpi.query_continuous_sweep())
        vna.scpi.set_continuous_sweep(False)
        vna.wait_until_finished()
        vna.initiate_oneport(2)
        trace = vna.get_trace(1)
        self.assertLess(numpy.max(numpy.abs(trace.s[:, 0, 0] - flipped.s[:, 0, 0])), 1e-3)
        vna.reset()

    def test_the_class_of_a_laboratory_analyser(self):
        vna = self.open(PNA)
        self.assertTrue(vna.idn.startswith("QK47,QK47-20-09,"))
        self.assertEqual(vna.active_channel, 1)
        network = vna.get_twoport((1, 2))
        self.check(network)
        vna.use_binary()
        binary = vna.get_twoport((1, 2), sweep=False)
        self.assertLess(numpy.max(numpy.abs(binary.s - network.s)), 1e-6)
        self.check(vna.get_oneport(1), (1,))
        self.check(vna.get_oneport(2), (2,))
        for number, name in enumerate(("S11", "S21", "S12", "S22")):
            vna.create_meas(f"mine_{name}", name)
        traces = vna.get_list_of_traces()
        self.assertEqual([trace["parameter"] for trace in traces],
                         ["S11", "S11", "S21", "S12", "S22"])
        read = vna.get_traces(traces[1:], sweep=True)
        for trace, at in zip(read, ((0, 0), (1, 0), (0, 1), (1, 1))):
            self.assertLess(numpy.max(numpy.abs(trace.s[:, 0, 0] - network.s[:, at[0], at[1]])),
                            1e-3)
        self.assertEqual(len(vna.get_frequency().f), POINTS)
        # Sweeping goes on after a single sweep when it did before.
        vna.scpi.set_sweep_mode(1, "CONT")
        vna.sweep()
        self.assertEqual(vna.scpi.query_sweep_mode(1), "CONT")
        vna.scpi.set_sweep_mode(1, "HOLD")
        vna.wait_until_finished()
        vna.reset()


if __name__ == "__main__":
    sys.exit(programs.main())
