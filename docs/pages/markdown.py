#!/usr/bin/env python3
"""Prepares the Markdown of this repository for Doxygen.

usage: markdown.py FILE            prints FILE with stable names: its title gets the label of the page, its headings
                                   labels of their own, and links to other Markdown files become references to them
       markdown.py --topics FILE   prints a small page for every topic in the table of FILE, so that the search of the
                                   pages, which looks at titles only, finds it

Without labels, the names of the HTML files depend on the version of Doxygen.
"""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


def label(page):
    """The label of a page: docs/guide/client.md is client, docs/decisions/0001-... is decision_0001."""
    path = Path(page)
    if path.parent.name == "decisions":
        return "decision_" + path.stem.split("-")[0]
    name = path.parent.name if path.stem == "README" else path.stem
    return re.sub(r"\W", "_", name.lower())


def slug(heading):
    """The anchor of a heading, as code hosts make it."""
    return re.sub(r"[^\w-]", "", heading.lower().replace(" ", "-"))


def reference(page, target, text):
    """A link of the Markdown file page as a reference, when it leads to a Markdown file of this repository."""
    path, _, anchor = target.partition("#")
    if re.match(r"\w+:", target) or not (path.endswith(".md") or (not path and anchor)):
        return None
    to = (page.parent / path).resolve() if path else page
    if not to.is_file():
        return None
    name = label(to) + ("_" + re.sub(r"\W", "_", anchor) if anchor else "")
    return '@ref %s "%s"' % (name, " ".join(text.replace("`", "").split())) + "\n" * text.count("\n")


def labelled(page, text, used):
    """The text, whose first line is the title of the page if used is empty, with a label at every heading."""

    def heading(match):
        marks, title, given = match.groups()
        name = label(page)
        if used:
            name += "_" + re.sub(r"\W", "_", given or slug(title))
        if name in used:
            return match[0]
        used.add(name)
        return "%s %s {#%s}" % (marks, title.replace("`", ""), name)  # Doxygen shows the tags of code in a heading

    return re.sub(r"^(#+) (.*?)(?: *\{#(.*)\})?$", heading, text, flags=re.MULTILINE)


def converted(page):
    used = set()
    # The parts with an odd number are code.
    for number, part in enumerate(re.split(r"(^```.*?^```$)", page.read_text(encoding="utf-8"), flags=re.M | re.S)):
        if number % 2 == 0:
            part = labelled(page, part, used)
            part = re.sub(r"(!\[[^]]*\]\()[^)]*/", r"\1", part)  # Doxygen looks for images by their names
            part = re.sub(r"(?<!!)\[([^]]*)\]\(([^) ]*)\)", lambda m: reference(page, m[2], m[1]) or m[0], part)
        yield part


def topics(page):
    used = set()
    for line in page.read_text(encoding="utf-8").split("\n"):
        row = re.match(r"\| ([^|]*) \| (.*) \|$", line)
        if not row or row[1] == "topic" or row[1].startswith("--"):
            continue
        links = re.findall(r"\[([^]]*)\]\(([^) ]*)\)", row[2])
        if not links:
            sys.exit("%s: no link in the row of %s" % (page, row[1]))
        for word in row[1].split(", "):
            word = word.strip("`").lstrip("$_")  # the index of the search is by letters
            name = "topic_" + re.sub(r"\W", "_", word.lower())
            if name in used:
                continue
            used.add(name)
            print("/*! \\page %s %s: %s" % (name, word, ", ".join(text for text, _ in links)))
            for text, target in links:
                print("- %s" % reference(page, target, text))
            print("*/")


if sys.argv[1] == "--topics":
    topics(Path(sys.argv[2]).resolve())
else:
    print("".join(converted(Path(sys.argv[1]).resolve())), end="")
