#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes a guide as PDF from Markdown pages: title with version and date, contents, parts, numbered
chapters and sections, bookmarks, and links between pages that work in the PDF.

usage: guide.py OUT.pdf TITLE VERSION PAGE.md          a guide of one page
       guide.py OUT.pdf TITLE VERSION README.md        parts ("## ") and pages (links) from a list

Prints what is wrong with the pages, one line each, and exits with status 1; nothing is written then.
Needs the Debian packages weasyprint and python3-markdown-it."""

import datetime
import html
import logging
import os
import pathlib
import re
import subprocess
import sys

import markdown_it

HERE = pathlib.Path(__file__).resolve().parent
LISTED = re.compile(r"^(?:## (?P<part>.+)|- \[(?P<title>[^]]+)\]\((?P<page>[^)]+\.md)\).*)$")
PIXELS_AN_INCH = 125
SHORT_TABLE = 9  # rows
AUTHOR = "the QK47-20-09 VNA Control developers"
KEYWORDS = ("vector network analyser, VNA, QK47-20-09, S-parameters, calibration, Smith chart, "
            "time domain, Touchstone, SCPI")
NOTHING = ("http:", "https:", "mailto:")


def anchor(heading):
    """The fragment of a heading, as hosts of Markdown make it: "Message boxes" is message-boxes."""
    kept = re.sub(r"[^\w\- ]", "", heading.lower())
    return kept.replace(" ", "-")


class Page:
    """A page as tokens, with the places in it that a link can name."""

    def __init__(self, path, parser):
        self.path = path
        self.id = "page-" + path.stem
        self.tokens = parser.parse(path.read_text(encoding="utf-8"))
        self.headings = []  # level, text, id
        for token, inline in zip(self.tokens, self.tokens[1:]):
            if token.type == "heading_open":
                level = int(token.tag[1])
                text = "".join(c.content for c in inline.children
                               if c.type in ("text", "code_inline"))
                place = self.id if level == 1 else f"{self.id}--{anchor(text)}"
                self.headings.append((level, text, place))

    @property
    def title(self):
        return next((text for level, text, _ in self.headings if level == 1), None)

    def links(self):
        """Each link and picture: (attribute, value)."""
        for token in self.tokens:
            for child in token.children or ():
                if child.type == "link_open":
                    yield "href", child.attrs["href"], child
                elif child.type == "image":
                    yield "src", child.attrs["src"], child


class Guide:
    def __init__(self, title, version, first):
        self.title, self.version = title, version
        self.parser = markdown_it.MarkdownIt("commonmark").enable("table")
        self.wrong = []
        self.parts = []  # (title or None, pages)
        if first.name == "README.md":
            self.read_list(first)
        else:
            self.parts.append((None, [Page(first, self.parser)]))
        self.pages = {page.path.resolve(): page for _, pages in self.parts for page in pages}
        for page in self.pages.values():
            self.check(page)

    def read_list(self, path):
        for line in path.read_text(encoding="utf-8").splitlines():
            found = LISTED.match(line)
            if not found:
                continue
            if found["part"]:
                self.parts.append((found["part"], []))
            elif not self.parts:
                self.wrong.append(f"{path.name}: {found['page']} is in no part")
            else:
                page = Page(path.parent / found["page"], self.parser)
                self.parts[-1][1].append(page)
                if page.title != found["title"]:
                    self.wrong.append(f"{path.name}: {found['page']} is called \"{page.title}\"")
        listed = {page.path.name for _, pages in self.parts for page in pages}
        self.wrong += [f"{path.name}: {page.name} is not in the list"
                       for page in sorted(path.parent.glob("[0-9]*.md")) if page.name not in listed]

    def check(self, page):
        name = page.path.name
        if page.title is None:
            self.wrong.append(f"{name}: no heading of the first rank")
        places = [place for _, _, place in page.headings]
        self.wrong += [f"{name}: two headings have the place #{place.rpartition('--')[2]}"
                       for place in sorted({p for p in places if places.count(p) > 1})]
        for attribute, value, token in page.links():
            if attribute == "src":
                picture = (page.path.parent / value).resolve()
                if not picture.is_file():
                    self.wrong.append(f"{name}: there is no picture {value}")
                token.attrs["src"] = picture.as_uri()
                continue
            if value.startswith(NOTHING):
                continue
            file, _, place = value.partition("#")
            target = self.pages.get((page.path.parent / file).resolve()) if file else page
            if target is None:
                self.wrong.append(f"{name}: {value} is not in this guide")
                continue
            token.attrs["href"] = "#" + (f"{target.id}--{place}" if place else target.id)
            if place and token.attrs["href"][1:] not in [p for _, _, p in target.headings]:
                self.wrong.append(f"{name}: there is no heading for {value}")
            token.attrs["class"] = "ref"

    # ------------------------------------------------------------------------------------- HTML

    def body(self, page, number):
        """The page with numbered headings; pictures alone in a paragraph become figures."""
        tokens, at = page.tokens, iter(page.headings)
        section = 0
        for token, inline in zip(tokens, tokens[1:]):
            if token.type != "heading_open":
                continue
            level, _, place = next(at)
            token.attrs["id"] = place
            if number and level <= 2:
                section += level == 2
                mark = f"{number}" if level == 1 else f"{number}.{section}"
                inline.children.insert(0, markdown_it.token.Token("html_inline", "", 0,
                                       content=f'<span class="number">{mark}</span> '))
        text = self.parser.renderer.render(tokens, self.parser.options, {})
        text = re.sub(r"<pre><code[^>]*>.*?</code></pre>", self.code, text, flags=re.DOTALL)
        text = re.sub(r"<table>.*?</table>", self.table, text, flags=re.DOTALL)
        return re.sub(r'<p>(<img [^>]*>)</p>', self.figure, text)

    @staticmethod
    def table(found):
        """A short table stays on one sheet, and of a longer one at least three rows at its head and at
        its foot; one of messages has columns of its own."""
        head, rows = found[0].split("<tbody>")[0], re.findall(r"<tr>.*?</tr>", found[0].split("<tbody>")[1],
                                                              flags=re.DOTALL)
        short = len(rows) <= SHORT_TABLE
        kinds = ["short"] if short else []
        kinds += ["message"] if "<th>Message</th>\n<th>Where</th>" in head else []
        groups = [rows] if short else [rows[:-3], rows[-3:]]
        bodies = "".join(f'<tbody>{"".join(group)}</tbody>' for group in groups)
        room = "" if short else '<div class="room"></div>'
        return f'{room}<table class="{" ".join(kinds)}">{head.removeprefix("<table>")}{bodies}</table>'

    @staticmethod
    def code(found):
        """Code that is longer than half a sheet may go on over it."""
        return found[0].replace("<pre>", '<pre class="long">') if found[0].count("\n") > 24 else found[0]

    @staticmethod
    def figure(found):
        name = re.search(r'alt="([^"]*)"', found[1])[1]
        file = re.search(r'src="file://([^"]*)"', found[1])
        wide = f"max-width:{Picture(file[1]).width / PIXELS_AN_INCH:.2f}in" if file else ""
        return (f'<figure>{found[1][:-1].rstrip("/ ")} style="{wide}"/>'
                f"<figcaption>{name}</figcaption></figure>")

    def contents(self):
        out = ['<nav id="contents"><h1 class="plain">Contents</h1>']
        number = 0
        for part, pages in self.parts:
            out.append(f'<p class="part">{html.escape(part)}</p>')
            for page in pages:
                number += 1
                section = 0
                for level, text, place in page.headings:
                    if level > 2:
                        continue
                    section += level == 2
                    mark = number if level == 1 else f"{number}.{section}"
                    out.append(f'<p class="toc{level}"><a href="#{place}">'
                               f'<span class="number">{mark}</span> {html.escape(text)}</a></p>')
        return "\n".join(out) + "</nav>"

    def document(self, date):
        name, _, kind = self.title.partition(": ")
        out = [f'<html lang="en"><head><title>{html.escape(self.title)}</title>'
               f'<meta name="author" content="{AUTHOR}"/>'
               f'<meta name="description" content="{html.escape(kind)} of {html.escape(name)}, version '
               f'{self.version}"/>'
               f'<meta name="keywords" content="{KEYWORDS}"/>'
               f'<meta name="generator" content="guide.py"/>'
               f'<meta name="dcterms.modified" content="{date}"/></head><body>']
        whole = self.parts[0][0] is not None
        if whole:
            out.append(f'<section id="title"><h1 class="plain">{html.escape(name)}</h1>'
                       f"<p>{html.escape(kind)}</p>"
                       f'<p class="edition">Version {self.version}, {date}</p></section>')
            out.append(self.contents())
        number = 0
        for part, pages in self.parts:
            out.append('<section class="part">')
            if part:
                chapter = html.escape(f"{number + 1} {pages[0].title}" if pages else part)
                out.append(f'<h1 class="part" data-chapter="{chapter}">{html.escape(part)}</h1>')
            for page in pages:
                number += 1
                out.append(f"<article>{self.body(page, number if whole else 0)}</article>")
            out.append("</section>")
        if not whole:
            out.append(f'<p class="edition">Version {self.version}, {date}</p>')
        return "\n".join(out) + "</body></html>"


class Picture:
    """The size of a PNG, from its header."""

    def __init__(self, path):
        head = pathlib.Path(path).read_bytes()[:24]
        self.width = int.from_bytes(head[16:20], "big")
        self.height = int.from_bytes(head[20:24], "big")


def edition(folder):
    """The day of the last change of the pages: of the commit, else of the newest file."""
    try:
        day = subprocess.run(["git", "log", "-1", "--format=%cs", "--", "."], cwd=folder, text=True,
                             capture_output=True, check=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        day = ""
    if day:
        return day
    newest = max(os.path.getmtime(path) for path in folder.glob("*.md"))
    return datetime.date.fromtimestamp(newest).isoformat()


def claim_no_standard(_, pdf):
    """The document is tagged (headings, lists, tables), but not all that PDF/UA asks for: its pictures
    have their names as captions only. The claim in the metadata is taken out."""
    pdf.catalog.pop("Metadata", None)


def main():
    if len(sys.argv) != 5:
        print(__doc__, file=sys.stderr)
        return 2
    out, title, version, first = sys.argv[1:]
    try:
        guide = Guide(title, version, pathlib.Path(first))
    except OSError as error:
        guide = None
        print(f"guide.py: {error}", file=sys.stderr)
    if guide is None or guide.wrong:
        for line in guide.wrong if guide else ():
            print(f"guide.py: {line}", file=sys.stderr)
        return 1
    text = guide.document(edition(pathlib.Path(first).resolve().parent))
    import weasyprint  # slow to load: pages that are refused need none
    logging.getLogger("weasyprint").addFilter(lambda record: "PDF/UA" not in record.msg)
    weasyprint.HTML(string=text).write_pdf(out, stylesheets=[str(HERE / "guide.css")],
                                           variant="pdf/ua-1", finisher=claim_no_standard)
    return 0


if __name__ == "__main__":
    sys.exit(main())
