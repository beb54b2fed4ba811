#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A reader of session files written from docs/file-formats.md alone, held against the program.

usage: session_reader.py SESSION_FIELDS_PROGRAM FOLDER

The program writes session files with every field at random, and beside each one the fields as it
holds them itself, "NAME VALUE" a line, numbers as hexadecimal floats. This reader must agree on
every one of them.
"""
import os
import re
import struct
import subprocess
import sys

ITEM = re.compile(rb'[ \t\r\n]*(?:"((?:[^"]|"")*)"|([^,\r\n \t]*))[ \t]*,?')


class Items:
    def __init__(self, data):
        self.data = data
        self.at = 0

    def next(self):
        match = ITEM.match(self.data, self.at)
        self.at = match.end()
        if match.group(1) is not None:
            return 't', match.group(1).replace(b'""', b'"').decode()
        return 'n', match.group(2).decode()

    def t(self):
        kind, text = self.next()
        assert kind == 't', text
        return text

    def bare(self):
        kind, text = self.next()
        assert kind == 'n', text
        return text

    def b(self):
        return {'#TRUE#': 1, '#FALSE#': 0}[self.bare()]

    def i(self):
        value = int(self.bare())
        assert -32768 <= value <= 32767
        return value

    def l(self):
        return int(self.bare())

    def d(self):
        return float(self.bare())

    def s(self):
        return struct.unpack('f', struct.pack('f', self.d()))[0]

    v = d


SAVED = ["ED", "ERT", "ES", "EX", "ETT", "ED'", "ERT'", "ES'", "EX'", "ETT'", "EL", "EL'",
         "IsoFwd0", "IsoRev0", "IsoFwd1", "IsoRev1", "IsoFwd2", "IsoRev2"]


class Session:
    """Every field by name."""

    def __init__(self, data):
        self.fields = {}
        self.items = Items(data)
        self.read()

    def put(self, name, value):
        assert name not in self.fields, name
        self.fields[name] = value

    def line(self, types, *names):
        for kind, name in zip(types, names, strict=True):
            self.put(name, getattr(self.items, kind)())

    def pairs(self, points, prefix, names):
        for k in range(points):
            for name in names:
                self.line('dd', f'{prefix}{name}[{k}].re', f'{prefix}{name}[{k}].im')

    def kit(self, port):
        self.line('t', f'{port}.name')
        self.line('b', f'{port}.male')
        self.line('ssdddd', *[f'{port}.{n}' for n in ('offset', 'delay', 'C0', 'C1', 'C2', 'C3')])

    def mhz(self, name):
        value = self.items.d() * 1e6
        self.put(name, struct.unpack('f', struct.pack('f', value))[0])

    def places(self, m):
        place = int(self.items.v())
        points = [place % 1025]
        digits = place // 1025
        for _ in range(3):
            points.append(digits % 1026 - 1 if digits % 1026 else points[0])
            digits //= 1026
        for graph, point in enumerate(points, 1):
            self.put(f'marker {m}.point {graph}', point)

    def kit_load(self, port):
        self.line('b', f'{port}.load in use')
        self.line('b', f'{port}.load')
        for i in range(101):
            self.mhz(f'{port}.load[{i}].0')
            self.line('ss', f'{port}.load[{i}].1', f'{port}.load[{i}].2')

    def channel(self, c, points):
        name = f'channel {c}.'
        self.line('t', name + 'unit')
        self.line('did', name + 'reference', name + 'position', name + 'scale')
        self.line('t', name + 'parameter')
        self.line('t', name + 'graph')
        self.line('bb', name + 'active', name + 'stored')
        self.line('t', name + 'stored parameter')
        self.line('b', name + 'limits')
        for k in range(1, points + 1):
            p = f'{name}[{k}].'
            self.line('dd', p + 'value', p + 'value2')
            self.line('dd', p + 'memory re', p + 'memory im')
            self.line('ss', p + 'upper', p + 'lower')
            self.line('ss', p + 'smooth', p + 'smooth2')
            self.line('s', p + 'work')

    def fourth_step(self, points):
        for c in range(1, 5):
            self.line('t', f'channel {c}.element')
            self.line('t', f'channel {c}.grid')
            self.line('b', f'channel {c}.gated')
        self.line('i', 'memory number')
        for number in range(1, 5):
            self.line('b', f'memory {number}.shown')
        for number in range(2, 5):
            name = f'memory {number}.'
            for c in range(1, 5):
                self.line('b', f'{name}{c}.valid')
                self.line('t', f'{name}{c}.parameter')
            if not any(self.fields[f'{name}{c}.valid'] for c in range(1, 5)):
                continue
            for c in range(1, 5):
                for k in range(1, points + 1):
                    self.line('dd', f'{name}{c}[{k}].re', f'{name}{c}[{k}].im')
            self.pairs(points, name + 'zo ', ['S11', 'S21', 'S12', 'S22'])
        self.line('t', 'axis')
        self.line('t', 'cable')
        self.line('d', 'velocity factor')
        self.line('t', 'gate')
        self.line('dd', 'gate start', 'gate stop')

    def read(self):
        assert self.items.t() == 'calfile02'
        self.line('ividdd', 'points', 'unit', 'averages', 'start', 'stop', 'step')
        n = self.fields['points']
        for name in ('cal ready', 'cal S11', 'cal S21', 'cal S11S21', 'cal 12', 'averaging',
                     'smoothing'):
            self.line('b', name)
        self.line('t', 'cal kind')
        extended = self.fields['cal kind'] == 'needs version 0.2 or later'
        if extended:
            del self.fields['cal kind']
            self.line('t', 'cal kind')
        self.put('extended', int(extended))
        self.line('btbt', 'memory in use', 'memory function', 'zo conversion', 'display mode')
        assert self.items.b() == (self.fields['display mode'] == 'Memory+')
        self.line('viiii', 'level', 'level target', 'cal level', 'averages set', 'refresh')
        self.line('t', 'plane unit')
        for name in ('active', 'S11', 'S21', 'S22', 'S12'):
            self.line('ss', f'plane {name}', f'delay {name}')
        self.line('t', 'display set')
        self.line('ii', 'active channel', 'smoothing percent')
        self.line('bbb', 'sweep loaded', 'dwell', 'isolation done')
        self.line('tsti', 'dc term', 'resistance', 'window', 'kaiser')
        self.kit('kit 1')
        self.pairs(n, '', SAVED[:5] + ['S11', 'S22', 'S21', 'S12'])
        for c in range(1, 5):
            self.channel(c, n)
        for m in range(1, 5):
            self.line('bbbi', *[f'marker {m}.{x}' for x in ('shown', 'ref', 'active', 'set')])
        self.line('b', 'markers')
        self.kit_load('kit 1')
        self.line('sb', 'zo', 'external match')
        self.line('ddd', 'T1', 'T2', 'dT')
        for _ in range(11):
            self.items.d()
        for c in range(1, 5):
            self.line('i', f'show limits {c}')
        self.line('ii', 'enable limits', 'alarm')
        for c in range(1, 5):
            self.line('i', f'limits applied {c}')
        self.line('ii', 'hold', 'isolation method')
        for m in range(1, 5):
            self.places(m)
        self.line('l', 'markers on memory')
        self.kit('kit 2')
        self.kit_load('kit 2')
        self.pairs(n, '', SAVED[5:])
        self.line('lllllll', *[f'colour {i}' for i in range(7)])
        self.line('iiii', 'print defaults', 'label date', 'label status', 'label show')
        for i in range(5):
            self.line('t', f'label {i}')
        self.line('b', 'interpolated')
        self.line('ddid', 'saved start', 'saved stop', 'saved points', 'saved step')
        self.pairs(self.fields['saved points'], 'saved ', SAVED)
        self.line('b', 'kit 1.thru')
        for i in range(101):
            self.mhz(f'kit 1.thru[{i}].0')
            self.line('ssssssss', *[f'kit 1.thru[{i}].{c}' for c in range(1, 9)])
        self.pairs(n, 'zo ', ['S11', 'S21', 'S12', 'S22'])
        if extended:
            self.fourth_step(n)
        assert self.items.t() == 'EOF'
        assert not self.items.data[self.items.at:].strip()


def told(path):
    """The fields as the program holds them."""
    fields = {}
    with open(path, encoding='utf-8', newline='\n') as file:
        for line in file:
            name, value = line.rstrip('\n').split('\t')
            fields[name] = value
    return fields


def same(mine, theirs):
    if isinstance(mine, str):
        return mine == theirs
    value = float.fromhex(theirs) if 'x' in theirs else float(theirs)
    return struct.pack('d', float(mine)) == struct.pack('d', value)


def main():
    program, folder = sys.argv[1:]
    os.makedirs(folder, exist_ok=True)
    subprocess.run([program, folder, '3'], check=True, timeout=60)
    compared = 0
    for seed in range(1, 4):
        with open(os.path.join(folder, f'{seed}.cal'), 'rb') as file:
            mine = Session(file.read()).fields
        theirs = told(os.path.join(folder, f'{seed}.fields'))
        assert set(mine) == set(theirs), sorted(set(mine) ^ set(theirs))[:10]
        for name, value in mine.items():
            assert same(value, theirs[name]), (seed, name, value, theirs[name])
        compared += len(mine)
    assert compared > 100000, compared
    print(compared, 'fields agree')


if __name__ == '__main__':
    main()
