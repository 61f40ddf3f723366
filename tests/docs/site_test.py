#!/usr/bin/env python3
"""The site that Doxygen makes: every link leads somewhere, guides have a list of contents, lists describe what they
list, and the chapters of the reference come before its members.

site_test.py FOLDER
"""

import html.parser
import pathlib
import re
import sys
import urllib.parse

folder = pathlib.Path(sys.argv[1])
faults = []


class Page(html.parser.HTMLParser):
    """What a page links to, and the places in it."""

    def __init__(self, path):
        super().__init__()
        self.targets = []
        self.places = set()
        self.text = path.read_text(encoding="utf-8")
        self.feed(self.text)

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name in ("href", "src") and value:
                self.targets.append(value)
            elif name in ("id", "name") and value:
                self.places.add(value)


pages = {path.name: Page(path) for path in folder.glob("*.html")}
links = 0
for name, page in pages.items():
    for target in set(page.targets):
        if re.match(r"https?:|mailto:|javascript:|data:", target):
            continue
        # Doxygen announces a list of nested classes even if all of them are private, and then leaves it out.
        if target == "#nested-classes" and name.startswith("class"):
            continue
        links += 1
        path, _, place = target.partition("#")
        path = urllib.parse.unquote(path) or name
        if not (folder / path).is_file():
            faults.append(f"{name} leads to {target}, which is not there")
        elif place and path in pages and urllib.parse.unquote(place) not in pages[path].places:
            faults.append(f"{name} leads to {target}, a place that is not there")

# Guides: a list of contents with all their headings.
guides = [name for name in pages if name.startswith("md_docs_")]
for name in guides:
    contents = re.search(r'<div class="toc">(.*?)</div>', pages[name].text, re.DOTALL)
    headings = re.findall(r'<h[12]><a class="anchor" id="([^"]+)"', pages[name].text)
    if headings and contents is None:
        faults.append(f"{name} has no list of contents")
    faults += [f"{name}: the list of contents leaves out {heading}"
               for heading in headings if contents is not None and f'href="#{heading}"' not in contents[1]]

# The records: a description of each member in the list. And the list of all records.
described = 0
for name, page in pages.items():
    if not re.match(r"structa|structo|structp|structs", name) or name.endswith("-members.html"):
        continue
    for member in re.findall(r'<tr class="memitem:([^"]+)"', page.text):
        if f'<tr class="memdesc:{member}"' in page.text:
            described += 1
        else:
            faults.append(f"{name}: a member is listed without a description: {member}")
undescribed = re.findall(r'>(\w+)</a></td><td class="desc"></td>', pages["annotated.html"].text)
faults += [f"annotated.html lists {record} without a description" for record in undescribed]

# The header: what it says as a whole, then its members.
header = pages["pavo__zorv_8h.html"].text
chapters = [header.find(f"</a>\n{chapter}</h1>") for chapter in ("Records", "Decoding", "Encoding", "Copying", "Threads")]
members = header.find('class="memberdecls"')
if -1 in chapters or members == -1 or max(chapters) > members:
    faults.append(f"the chapters of pavo_zorv.h are not before its members: {chapters}, {members}")

if len(pages) < 50 or links < 2000 or len(guides) < 8 or described < 150:
    faults.append(f"too little was found: {len(pages)} pages, {links} links, {len(guides)} guides, {described} members")
for fault in faults:
    print(fault, file=sys.stderr)
sys.exit(1 if faults else 0)
