#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks that each file of src/ and sim/ includes the headers of the names that it uses, those of the
libraries and ours, itself or by way of headers of ours. No build of every day finds a missing one: they
precompile the libraries and translate files of a folder together. Prints the findings; exit status 1 when
there is one.

usage: tools/check_includes.py [FILE...]"""

import functools
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# Names of std:: by header. A name under several headers is satisfied by each of them.
STANDARD = {
    "algorithm": "all_of any_of clamp copy copy_n count count_if equal fill find find_if max max_element min"
                 " min_element minmax move_backward none_of nth_element replace_if reverse rotate sort"
                 " stable_sort transform unique upper_bound ranges",
    "array": "array get tuple_size_v",
    "atomic": "atomic",
    "bit": "bit_cast endian",
    "cctype": "isdigit tolower toupper",
    "charconv": "chars_format from_chars from_chars_result to_chars",
    "chrono": "chrono",
    "cmath": "abs asin atan atan2 ceil cos exp fabs floor fmax hypot isfinite isinf isnan llround log log10"
             " lround nan pow remainder round sin sqrt trunc",
    "complex": "abs arg complex conj norm polar",
    "concepts": "floating_point integral same_as",
    "csignal": "signal",
    "cstddef": "ptrdiff_t size_t",
    "cstdint": "int16_t int32_t int64_t int8_t uint16_t uint32_t uint64_t uint8_t uintmax_t",
    "cstdio": "fflush fprintf fputc fputs fwrite printf rename snprintf",
    "cstdlib": "_Exit abs getenv",
    "cstring": "memcpy strerror",
    "ctime": "time time_t tm",
    "deque": "deque",
    "filesystem": "filesystem",
    "fstream": "ifstream",
    "functional": "function greater identity less",
    "initializer_list": "initializer_list",
    "istream": "getline istream",
    "iterator": "back_inserter begin end istreambuf_iterator size",
    "limits": "numeric_limits",
    "map": "map",
    "memory": "construct_at destroy_at make_shared make_unique shared_ptr unique_ptr",
    "numbers": "numbers",
    "numeric": "accumulate",
    "optional": "nullopt optional",
    "set": "set",
    "span": "span",
    "stdexcept": "logic_error runtime_error",
    "string": "erase erase_if getline string to_string",
    "string_view": "string_view",
    "system_error": "errc error_code generic_category",
    "thread": "this_thread",
    "tuple": "ignore tie",
    "type_traits": "conditional_t is_arithmetic_v is_const_v is_enum_v is_same_v remove_const_t",
    "unordered_map": "unordered_map",
    "utility": "as_const exchange forward in_place_index move pair swap",
    "variant": "get get_if holds_alternative variant visit",
    "vector": "erase erase_if vector",
}
# What a header promises besides its own names: the containers bring size_t, begin and end.
CONTAINERS = ("array", "deque", "map", "set", "span", "string", "string_view", "unordered_map", "vector")
ALSO = {
    "size_t": (*CONTAINERS, "algorithm", "cstdio", "cstring", "functional", "memory", "optional", "charconv"),
    "ptrdiff_t": CONTAINERS, "move": (*CONTAINERS, "algorithm", "functional", "memory", "optional"),
    "begin": CONTAINERS, "end": CONTAINERS, "size": CONTAINERS, "ios": ("fstream", "istream"),
    "errc": ("charconv",), "error_code": ("filesystem",), "copy": (), "string": ("fstream",),
}
# Names of the toolkit whose header is not called like them.
TOOLKIT = {
    "QGuiApplication": ("QApplication",), "QByteArrayView": ("QByteArray",), "QChar": ("QString",), "QFontMetricsF": ("QFontMetrics",),
    "QInternal": ("QPaintEngine", "QImage"), "QKeyCombination": ("QKeyEvent", "QAction", "QShortcut"),
    "QKeySequence": ("QAction", "QShortcut", "QKeyEvent"), "QLineF": ("QPainter", "QPaintEngine"),
    "QListWidgetItem": ("QListWidget",), "QStringLiteral": ("QString",), "QRgb": ("QImage", "QPixmap"),
    "QTextCharFormat": ("QTextCursor", "QTextBlock", "QTextDocument"),
    "QTextFragment": ("QTextBlock",), "QTextImageFormat": ("QTextCursor", "QTextBlock", "QTextDocument"),
    "QWIDGETSIZE_MAX": ("QWidget",), "QMessageLogContext": ("QtGlobal",),
}
# ... and what comes with every header of the toolkit that has it in its interface, base classes among it.
VALUES = set("""QAbstractButton QByteArray QColor QCoreApplication QEvent QFont QFontMetrics QFrame QIODevice QIcon
    QLayout QList QMargins QMetaObject QObject QPaintDevice QPalette QPen QPixmap QPoint QPointF QRect QRectF QSize
    QSizeF QSizePolicy QString QStringLiteral QTransform QUrl QVariant QWIDGETSIZE_MAX QWidget""".split())
EVENTS = re.compile(r"Q(?!Session)\w+Event$")
OURS = {"QFAC", "QK_VERSION"}
# What the headers of ours declare: types, constants and functions at the left margin.
DECLARED = re.compile(
    r"^(?:template <[^;{]*>\s*)?(?:(?:enum class|struct|class) (\w+)[^;]*?\{|using (\w+) =|"
    r"(?:inline )?(?:constexpr|const) [^;={(]*?\b(\w+)(?:\{|\[| =)|"
    r"(?:inline |constexpr |\[\[\w+\]\] )*[\w:][\w:<>,&* ]*?[ &*](\w+)\()", re.MULTILINE)
ENUMERATORS = re.compile(r"\benum (?:class )?\w+[^{;]*\{([^}]*)\}")
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]+(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)
NOT_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|R"\((.|\n)*?\)"|"(?:\\.|[^"\\\n])*"', re.DOTALL)
PROVIDERS = {}
for header, names in STANDARD.items():
    for each in names.split():
        PROVIDERS.setdefault(each, set()).add(header)
for each, headers in ALSO.items():
    PROVIDERS.setdefault(each, set()).update(headers)


@functools.cache
def includes(path):
    """(library headers, headers of ours) that a file names itself."""
    ours, library = set(), set()
    for own, other in INCLUDE.findall(path.read_text(encoding="utf-8")):
        if other:
            library.add(other)
            continue
        found = next((at / own for at in (ROOT / "src", ROOT, path.parent) if (at / own).is_file()), None)
        if found:
            ours.add(found.resolve())
    return library, ours


@functools.cache
def reached(path):
    """All library headers that a file includes, itself or by way of headers of ours."""
    return set().union(*(includes(each)[0] for each in headers(path)))


@functools.cache
def code_of(path):
    """The text of a file without comments and strings."""
    return NOT_CODE.sub(" ", path.read_text(encoding="utf-8"))


@functools.cache
def words(path):
    return frozenset(re.findall(r"\w+", code_of(path)))


@functools.cache
def forward(path):
    """The types that a header declares without defining them."""
    return frozenset(re.findall(r"^\s*(?:class|struct) (\w+);", code_of(path), re.MULTILINE))


@functools.cache
def ours_by_name():
    """{name: the headers of ours that declare it}"""
    found = {}
    for folder in ("src", "sim"):
        for path in (ROOT / folder).rglob("*.h"):
            for declared in DECLARED.finditer(code_of(path)):
                found.setdefault(next(filter(None, declared.groups())), set()).add(path.resolve())
    return found


@functools.cache
def headers(path):
    """The file and all headers of ours that it includes, directly or not."""
    seen, waiting = set(), [path]
    while waiting:
        at = waiting.pop()
        if at not in seen:
            seen.add(at)
            waiting += includes(at)[1]
    return seen


def declares(code, name):
    """True if the text itself has the name: a type, a function, a variable, a member or an enumerator."""
    return (re.search(rf"(?:struct|class|using|enum class|namespace)\s+(?:\w+::)?{name}\b|"
                      rf"^\s*(?:[\w:<>,&*()]+ )+[&*]*(?:\w+(?: = \w+)?, )*{name}(?:\(|\{{| =|\[|;|,)", code, re.MULTILINE)
            or any(re.search(rf"\b{name}\b", each) for each in ENUMERATORS.findall(code)))


def missing_ours(path):
    """(name, header) of each name of ours whose header the file does not reach. A word that any header
    which it reaches has too may be something else, such as a member, and is passed."""
    code = code_of(path)
    there = headers(path)
    for name in sorted(words(path) & ours_by_name().keys()):
        owners = {each for each in ours_by_name()[name] if each.is_relative_to(ROOT / "src")
                  or path.is_relative_to(ROOT / "sim") or path.is_relative_to(ROOT / "src/app")}
        if not owners or owners & there or any(name in words(each) and not (path.suffix == ".cpp" and name in forward(each))
                               for each in there if each != path):
            continue
        if re.search(rf"(?<![.>:\w])(?:(?!std)[a-z]\w*::)*{name}\b(?![>&*])", code) and not declares(code, name):
            yield name, min(owners)


def findings(path):
    """One line for each name whose header is missing."""
    code = code_of(path)
    for name, header in missing_ours(path):
        yield f"{name}: #include \"{header.relative_to(ROOT).as_posix().removeprefix('src/')}\""
    there = reached(path)
    for name in sorted(set(re.findall(r"\bstd::(\w+)", code))):
        wanted = PROVIDERS.get(name)
        if wanted is None:
            yield f"std::{name}: enter the name in tools/check_includes.py"
        elif not wanted & there:
            yield f"std::{name}: #include <{min(wanted, key=lambda each: each in ALSO.get(name, ()))}>"
    for name in sorted(set(re.findall(r"\bQ[A-Z]\w+", code)) - OURS):
        if name in VALUES and any(each.startswith("Q") for each in there):
            continue
        if EVENTS.match(name):  # one header has them all; a mere pointer needs none
            declared = path.suffix == ".h" or not re.search(rf"\b{name}\b(?!\s*\*\s*[,)])", code)
            if declared or any(EVENTS.match(each) for each in there):
                continue
        if name not in there and not set(TOOLKIT.get(name, ())) & there:
            if re.search(rf"^\s*class {name};", code, re.MULTILINE):
                continue
            yield f"{name}: #include <{TOOLKIT.get(name, (name,))[0]}>"


def main():
    paths = [pathlib.Path(each).resolve() for each in sys.argv[1:]] or sorted(
        each for folder in ("src", "sim") for suffix in ("*.h", "*.cpp")
        for each in (ROOT / folder).rglob(suffix))
    found = [f"{path.relative_to(ROOT)}: {each}" for path in paths for each in findings(path)]
    print("\n".join(found) if found else f"includes: {len(paths)} files in order")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
