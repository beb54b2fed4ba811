# SPDX-License-Identifier: MIT
"""The texts in the program's source: every string literal with the calls that it is an argument of."""

import re

TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|R"(?P<d>[^(\s]*)\((?P<raw>.*?)\)(?P=d)"'
                   r'|"(?P<text>(?:\\.|[^"\\\n])*)"|\'(?:\\.|[^\'\\\n])+\''
                   r"|(?P<word>[A-Za-z_]\w*)|(?P<mark>[(){}\[\];])|(?P<other>[^\s\w])|\d[\w.']*",
                   re.DOTALL)
ESCAPES = {"n": "\n", "t": "\t", "r": "\r", '"': '"', "\\": "\\", "0": "\0"}


class Text:
    def __init__(self, line, text, calls):
        self.line, self.text, self.calls = line, text, calls

    def __repr__(self):
        return f"{self.line}: {self.text!r} {self.calls}"


def plain(literal):
    return re.sub(r"\\(.)", lambda found: ESCAPES.get(found[1], found[1]), literal)


def texts(source):
    """Each string literal of C++ source (neighbours joined, includes left out) with the names of what it
    is in: the functions called, the types made, and the variable or member that a list belongs to."""
    source = re.sub(r"^[ \t]*#[ \t]*include[^\n]*", "", source, flags=re.MULTILINE)
    found, stack = [], []
    word, joined = None, False
    for token in TOKEN.finditer(source):
        if token[0].startswith(("//", "/*")):
            continue
        text = token["raw"] if token["raw"] is not None else token["text"]
        if text is not None:
            text = text if token["raw"] is not None else plain(text)
            if joined:
                found[-1].text += text
            else:
                line = source.count("\n", 0, token.start()) + 1
                found.append(Text(line, text, [name for name in stack if name]))
            joined = True
            continue
        joined = False
        if token["word"]:
            word = token["word"]
        elif token["mark"] in ("(", "{", "["):
            stack.append(word)
            word = None
        elif token["mark"] in (")", "}", "]"):
            if stack:
                word = stack.pop()  # ShowMessage(...)(...) and kRows[]{...} keep their name
        elif token["mark"] == ";":
            word = None
        elif token[0] not in ("=", ":", "<", ">", "*", "&", "."):
            word = None
    return found
