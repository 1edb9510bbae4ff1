#!/usr/bin/env python3
"""Prepares the Markdown of this repository for Doxygen.

usage: markdown.py FILE            prints FILE with a label for its title and for each heading, and with references
                                   instead of links to other Markdown files
       markdown.py --topics FILE   prints a small page for every topic in the table of FILE. The search of the HTML
                                   pages finds only titles, so it finds these

Without labels, the names of the HTML files depend on the version of Doxygen.
"""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


def label(page):
    """Returns the label of a page: client for docs/guide/client.md, decision_0001 for docs/decisions/0001-..."""
    path = Path(page)
    if path.parent.name == "decisions":
        return "decision_" + path.stem.split("-")[0]
    name = path.parent.name if path.stem == "README" else path.stem
    return re.sub(r"\W", "_", name.lower())


def slug(heading):
    """Returns the anchor of a heading, in the form of GitHub and similar sites."""
    return re.sub(r"[^\w-]", "", heading.lower().replace(" ", "-"))


def reference(page, target, text):
    """Returns the reference for a link in page, or None if the target is not a Markdown file of this repository."""
    path, _, anchor = target.partition("#")
    if re.match(r"\w+:", target) or not (path.endswith(".md") or (not path and anchor)):
        return None
    to = (page.parent / path).resolve() if path else page
    if not to.is_file():
        return None
    name = label(to) + ("_" + re.sub(r"\W", "_", anchor) if anchor else "")
    return '@ref %s "%s"' % (name, " ".join(text.replace("`", "").split())) + "\n" * text.count("\n")


def labelled(page, text, used):
    """Adds a label to every heading of the text. If used is empty, the first heading is the title of the page."""

    def heading(match):
        marks, title, given = match.groups()
        name = label(page)
        if used:
            name += "_" + re.sub(r"\W", "_", given or slug(title))
        if name in used:
            return match[0]
        used.add(name)
        return "%s %s {#%s}" % (marks, title.replace("`", ""), name)  # in a heading, Doxygen would show the tags of code

    return re.sub(r"^(#+) (.*?)(?: *\{#(.*)\})?$", heading, text, flags=re.MULTILINE)


def converted(page):
    used = set()
    # The parts with an odd number are code.
    for number, part in enumerate(re.split(r"(^```.*?^```$)", page.read_text(encoding="utf-8"), flags=re.M | re.S)):
        if number % 2 == 0:
            part = labelled(page, part, used)
            part = re.sub(r"(!\[[^]]*\]\()[^)]*/", r"\1", part)  # Doxygen finds images by name, without a folder
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
            word = word.strip("`").lstrip("$_")  # the index of the search has one list for each letter
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
