#!/usr/bin/env python3
"""The 12-term correction of 1024 points as vectorised numpy writes it: the yardstick of the
correction benchmark. Prints seconds a point (the best of several runs)."""

import timeit

import numpy as np

POINTS = 1024


# Device-dependent isolation, then the twelve-term solution: the same work as the program's own.
def correct(raw, fwd, rev):
    s11, s21, s12, s22 = raw
    x = s11 - fwd["ED"]
    y = s22 - rev["ED"]
    g1 = x / (fwd["ES"] * x + fwd["ERT"])
    g2 = y / (rev["ES"] * y + rev["ERT"])
    fwd["EX"] = fwd["I1"] * g1 + fwd["I0"] + fwd["I2"] * g2
    rev["EX"] = rev["I1"] * g1 + rev["I0"] + rev["I2"] * g2
    a = (s11 - fwd["ED"]) / fwd["ERT"]
    b = (s21 - fwd["EX"]) / fwd["ETT"]
    c = (s12 - rev["EX"]) / rev["ETT"]
    d = (s22 - rev["ED"]) / rev["ERT"]
    w = (1 + a * fwd["ES"]) * (1 + d * rev["ES"]) - b * fwd["EL"] * rev["EL"] * c
    return (
        (a * (1 + d * rev["ES"]) - b * fwd["EL"] * c) / w,
        b * (1 + d * (rev["ES"] - fwd["EL"])) / w,
        c * (1 + a * (fwd["ES"] - rev["EL"])) / w,
        (d * (1 + a * fwd["ES"]) - b * rev["EL"] * c) / w,
    )


def main():
    random = np.random.default_rng(1)

    def array(scale):
        return scale * (random.standard_normal(POINTS) + 1j * random.standard_normal(POINTS))

    def terms():
        return {name: array(0.1) for name in ("ED", "ES", "EL", "I0", "I1", "I2")} | {
            name: 1 + array(0.1) for name in ("ERT", "ETT")}

    raw = [array(0.5) for _ in range(4)]
    fwd, rev = terms(), terms()
    runs = 200
    best = min(timeit.repeat(lambda: correct(raw, fwd, rev), number=runs, repeat=15))
    print(best / runs / POINTS)


if __name__ == "__main__":
    main()
