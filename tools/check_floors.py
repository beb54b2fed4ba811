#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks the floors of the house, which src/floors.txt states: a folder under src/ includes only
folders on floors below its own to which it is linked, the simulated instrument shares only
link/serial_port.h with the program, the files of a folder form no include circle, and the table of
docs/architecture.md has the same floors. Prints every breach; exit status 1 when there is one."""

import pathlib
import re
import sys

SIM_SHARES = {"link/serial_port.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')
SUFFIXES = {".h", ".cpp"}


def floors(root):
    """{folder: floor} of src/floors.txt."""
    table = {}
    for line in (root / "src" / "floors.txt").read_text(encoding="utf-8").splitlines():
        words = line.split()
        if words and not line.startswith("#"):
            table[words[1]] = int(words[0])
    return table


def linked(root):
    """{folder: the folders that src/floors.txt links it to, straight or through others}."""
    straight = {}
    for line in (root / "src" / "floors.txt").read_text(encoding="utf-8").splitlines():
        words = (line + " : ").split(" : ")
        if line and not line.startswith("#"):
            straight[words[0].split()[1]] = words[1].split()
    reached = {}
    for folder in sorted(straight, key=floors(root).get):  # those below come first
        reached[folder] = set(straight[folder]).union(*(reached[used] for used in straight[folder]))
    return reached


def told_floors(root):
    """The same of the table in docs/architecture.md."""
    text = (root / "docs" / "architecture.md").read_text(encoding="utf-8")
    return {folder: int(floor) for floor, folder
            in re.findall(r"^\| (\d+) \| `([a-z]+)/` \|", text, re.MULTILINE)}


def includes(path):
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match.group(1)


def check_floors(root):
    breaches = []
    graph = {}
    table, told, links = floors(root), told_floors(root), linked(root)
    for folder in sorted(table.keys() | told.keys()):
        if table.get(folder) != told.get(folder):
            breaches.append(f"{folder}: on floor {table.get(folder)} in src/floors.txt,"
                            f" on floor {told.get(folder)} in docs/architecture.md")
    for path in sorted((root / "src").rglob("*")):
        if path.suffix not in SUFFIXES:
            continue
        name = path.relative_to(root / "src").as_posix()
        folder = name.split("/")[0]
        if folder not in table:
            breaches.append(f"src/{name}: folder {folder} stands on no floor")
            continue
        graph[name] = []
        for number, target in includes(path):
            other = target.split("/")[0]
            if other == "sim":
                if folder != "app":
                    breaches.append(f"src/{name}:{number}: only app/ may use the simulated instrument")
                continue
            if other not in table:
                breaches.append(f"src/{name}:{number}: includes {target}, which stands on no floor")
            elif other == folder:
                graph[name].append(target)
            elif table[other] >= table[folder]:
                breaches.append(f"src/{name}:{number}: includes {target} from floor {table[other]},"
                                f" itself on floor {table[folder]}")
            elif other not in links[folder]:
                breaches.append(f"src/{name}:{number}: includes {target}, and src/floors.txt does not"
                                f" link {folder} to {other}")
    for path in sorted((root / "sim").rglob("*")):
        if path.suffix not in SUFFIXES:
            continue
        for number, target in includes(path):
            if not target.startswith("sim/") and target not in SIM_SHARES:
                breaches.append(f"{path.relative_to(root).as_posix()}:{number}: includes {target};"
                                " the simulated instrument shares only "
                                + ", ".join(sorted(SIM_SHARES)))
    return breaches + circles(graph)


def circles(graph):
    found = []
    state = {}

    def visit(node, trail):
        state[node] = "open"
        for target in graph.get(node, []):
            if state.get(target) == "open":
                start = trail.index(target)
                found.append("include circle: " + " -> ".join(trail[start:] + [target]))
            elif target not in state:
                visit(target, trail + [target])
        state[node] = "done"

    for node in graph:
        if node not in state:
            visit(node, [node])
    return found


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    breaches = check_floors(root)
    for breach in breaches:
        print(breach)
    print(f"floors: {len(breaches)} breach(es)" if breaches else "floors: in order")
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main())
