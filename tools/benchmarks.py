#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Builds and runs the benchmarks and prints their table of ratios (Markdown). With --quick the
paced sweeps are left out."""

import argparse
import json
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
MODES = ["S11", "S21", "S11+S21", "all four"]
DRAWING_GOALS = {3840: "under 0.15", 1600: "under 0.05"}
SHAPES = ["noise", "steps", "all points on the frame", "a smooth trace", "noise on Smith charts"]
AFTER = {"spline": "spline of 1024 knots built", "decibel_file": "two-port file read, dB",
         "time_response": "time response of 1024 points",
         "points": "road of a point with everything"}


def run_benchmarks(quick):
    subprocess.run([ROOT / "tools/build.sh", "qk47-bench"], check=True)
    command = [ROOT / "build/qk47-bench", "--benchmark_format=json"]
    if quick:
        command.append("--benchmark_filter=-Paced")
    output = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout
    report = json.loads(output)
    return {entry["name"]: entry for entry in report["benchmarks"]}


def micro(seconds):
    return f"{seconds * 1e6:.3g} us"


def session_rows(results):
    def took(name, clock="cpu_time"):
        return results[name][clock]

    save, load = took("SessionSave"), took("SessionLoad")
    written = took("SessionSave", "real_time") / took("SessionBytesRawWrite", "real_time")
    yield ("session of 1024 points saved", "the same bytes written raw, the disk's time with it",
           f"{written:.2f}", "under 5")
    for what, yardstick, name, took_it, goal in (
            ("saved", "the same bytes written raw", "SessionBytesRawWrite", save, ""),
            ("saved", "its numbers turned to text", "SessionNumbersToChars", save, ""),
            ("loaded", "the same bytes read raw", "SessionBytesRawRead", load, "under 5"),
            ("loaded", "its bytes turned to numbers", "SessionNumbersFromChars", load, "")):
        yield (f"session of 1024 points {what}", yardstick,
               f"{took_it / took(name):.2f} ({took_it:.2g} ms)", goal)
    yield ("session of 1024 points saved and loaded", "100 ms", f"{(save + load) / 100:.2f}", "1")
    carried = took("CalInterpolation")
    yield ("calibration of 1024 points carried to 1024", "3 ms",
           f"{carried / 3:.2f} ({carried:.2g} ms)", "1")


def drawing_rows(results):
    """The slowest frame of each shape, over all sizes of traces and scale factors of the screen."""
    worst = {}
    for name, entry in results.items():
        if name.startswith("NoisyFrame/"):
            shape = int(name.split("shape:")[1].split("/")[0])
            worst[shape] = max(worst.get(shape, 0), entry["cpu_time"])
    for shape, took in sorted(worst.items()):
        yield (f"a frame at 3840 by 2100, {SHAPES[shape]}: the slowest of 1 and 4 graphs, 401 and "
               "1024 points, scale factors 1 to 3", "10 ms", f"{took / 10:.2f} ({took:.1f} ms)", "1")
    for name, what in AFTER.items():
        entry = results[f"AfterDrawing/{name}/manual_time"]
        yield (f"after drawing: {what}", "the same without drawing before it",
               f"{entry['ratio']:.2f} ({entry['uncleared']:.1f} without the clearing)", "under 1.6")


def rows(results):
    road = results["RoadOfAPoint/plain"]["share_of_wire"]
    yield ("one point, 36 bytes to four plotted values", "the wire's 3125 us",
           f"{road * 100:.3f} %", "under 0.1 %")
    everything = results["RoadOfAPoint/with_everything"]["share_of_wire"]
    yield ("the same with planes, two networks and system impedance", "the wire's 3125 us",
           f"{everything * 100:.3f} %", "under 0.05 %")
    components = max((entry["share_of_wire"], name) for name, entry in results.items()
                     if name.startswith("RoadOfAPoint/of_"))
    yield (f"one point with the slowest impedance type on four channels "
           f"({components[1].split('/of_')[1].replace('_', ' ')})", "the wire's 3125 us",
           f"{components[0] * 100:.3f} %", "under 0.05 %")
    gate = results["GateOfASweep"]["real_time"] / 1e9
    yield ("gate on a sweep of 1024 points", "2 ms", f"{gate / 0.002:.2f} ({micro(gate)})", "1")
    trust = max((entry["share_of_wire"], name) for name, entry in results.items()
                if name.startswith("HintsAndStatistics/"))
    yield (f"hints and repeated sweeps at a sweep's end, {trust[1].split('/')[1]} points",
           "the wire's time for the sweep", f"{trust[0] * 100:.4f} %", "under 0.02 %")
    band = results["UncertaintyOfAFrame"]["cpu_time"] / 1e9
    yield ("uncertainty of four channels of 1024 points, with known noise, once a frame", "16 ms",
           f"{band / 0.016:.3f} ({micro(band)})", "under 0.1")
    response = results["TimeResponse"]["real_time"] / 1e9
    direct = results["TimeResponseTermByTerm"]["real_time"] / 1e9
    yield ("time response of 1024 points", "its sum term by term",
           f"{response / direct:.4f} ({micro(response)})", "0.05")
    replot = results["ReplotOfEverything"]["real_time"] / 1e9
    yield ("replot of four channels, 1024 points, a time response among them", "10 ms",
           f"{replot / 0.01:.3f} ({micro(replot)})", "1")
    drag = results["MarkerDrag/manual_time"]
    yield ("a marker dragged one step, four graphs of 1024 points at 1600 by 1000", "4 ms",
           f"{drag['ms'] / 4:.2f} ({drag['ms']:.2f} ms)", "1")
    yield ("the same", "a full redraw", f"{drag['of_full_redraw']:.2f}", "")
    for size, what in (("1600/1000", "the same with all additions: axis numbers, remarks, failed limits, both "
                        "bands"), ("3840/2100", "the same at 3840 by 2100")):
        drag = results[f"MarkerDragWithAll/{size}/manual_time"]
        yield (what, "4 ms", f"{drag['ms'] / 4:.2f} ({drag['ms']:.2f} ms)", "1")
    corrected = results["Correct12Term"]["seconds_per_point"]
    yield ("12-term correction of a point", "the wire's 3125 us",
           f"{corrected / 3125e-6 * 100:.4f} % ({micro(corrected)})", "under 0.02 %")
    one_port = results["ComputeTerms/one_port"]["seconds_per_point"]
    for kind in ("one_port", "response", "enhanced", "insertable", "non_insertable"):
        cost = results[f"ComputeTerms/{kind}"]["seconds_per_point"]
        yield (f"terms of the {kind.replace('_', '-')} kind, a point", "one-port",
               f"{cost / one_port:.2f} ({micro(cost)})", "")
    for name, label in (("SplineBuild", "spline of 1024 knots built, a knot"),
                        ("SplineEvaluate", "spline evaluated, a point")):
        cost = results[name]["seconds_per_point"]
        yield (label, "12-term correction of a point", f"{cost / corrected:.2f} ({micro(cost)})", "")
    walk = results["FromCharsWalk"]["cpu_time"] / 1e9
    for name, label in (("decibels", "dB"), ("real_imaginary", "real and imaginary")):
        read = results[f"TouchstoneRead/{name}"]["cpu_time"] / 1e9
        yield (f"two-port file of 1000 points read, {label}", "its bytes turned to numbers",
               f"{read / walk:.2f} ({micro(read)})", "under 3")
    yield from session_rows(results)
    yield from drawing_rows(results)
    for name, entry in results.items():
        if name.startswith("PacedSweeps/"):
            mode, points = (int(part) for part in name.split("/")[1:3])
            yield (f"paced sweeps, {MODES[mode]}, {points} points", "what the wire allows",
                   f"{entry['of_the_wire']:.4f}", "0.99")
        if name.startswith("PacedTimeDomain"):
            yield ("paced sweeps, S11, 1024 points, a channel in the time domain",
                   "what the wire allows", f"{entry['of_the_wire']:.4f}", "0.99")
        if name.startswith(("PacedDrawing/", "PacedDrawingWithAll/")):
            mode, width, height, noisy = (int(part) for part in name.split("/")[1:5])
            what = f"{MODES[mode]}, 401 points, drawn at {width} by {height}"
            what += ", noise alone" if noisy else ""
            what += ", all additions" if "WithAll" in name else ""
            yield (f"paced sweeps, {what}", "what the wire allows", f"{entry['of_the_wire']:.4f}",
                   "0.994")
            yield (f"drawing of {what}", "a core", f"{entry['of_a_core']:.3f}",
                   DRAWING_GOALS[width])


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--quick", action="store_true", help="leave the paced sweeps out")
    results = run_benchmarks(parser.parse_args().quick)
    print("| What | Over | Ratio | Goal |")
    print("|---|---|---|---|")
    for row in rows(results):
        print("| " + " | ".join(row) + " |")
    return 0


if __name__ == "__main__":
    sys.exit(main())
