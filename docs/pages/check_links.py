#!/usr/bin/env python3
"""Checks the links and images of the HTML files in a folder. Fails if a file or an anchor does not exist.

usage: check_links.py FOLDER
"""
import re
import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote


class Page(HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.places, self.targets = set(), set()
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name in ("id", "name") and value:
                self.places.add(value)
            elif name in ("href", "src", "data") and value:
                self.targets.add(value)


def main(folder):
    pages = {path.name: Page(path.read_text(encoding="utf-8")) for path in folder.glob("*.html")}
    # The navigation and the search are scripts that contain links.
    for path in [*folder.glob("*.js"), *folder.glob("search/*.js")]:
        script = Page("")
        text = path.read_text(encoding="utf-8", errors="replace")
        script.targets = {t.removeprefix("../") for t in re.findall(r"""["']([\w./-]+\.html(?:#[\w.-]+)?)["']""", text)}
        pages[path.name] = script
    links, broken = 0, []
    # An escaped letter in this file shifts the index of all others, so the search finds nothing.
    if "\\" in (folder / "search/searchdata.js").read_text(encoding="utf-8"):
        broken.append("search/searchdata.js: a name begins with a character that is not a letter")
    for name, page in pages.items():
        for target in sorted(page.targets):
            # Doxygen writes #nested-classes on a page even if all nested classes are private.
            if re.match(r"[a-z]+:", target) or target.startswith("//") or target == "#nested-classes":
                continue
            links += 1
            path, _, place = unquote(target).partition("#")
            path = path or name
            if not (folder / path).exists():
                broken.append("%s: no file %s" % (name, target))
            elif place and path in pages and path.endswith(".html") and place not in pages[path].places:
                broken.append("%s: no place %s" % (name, target))
    if broken:
        print("\n".join(broken))
        sys.exit("%d of %d links are broken" % (len(broken), links))
    print("%d links of %d pages lead somewhere" % (links, len(pages)))


main(Path(sys.argv[1]))
