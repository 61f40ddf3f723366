#!/usr/bin/env python3
"""What Doxygen reads of a guide, for the site: with a list of contents, headings that links can lead to, as they do where
Markdown is shown, and links to files of the project that are beside the pages.

site_filter.py PAGE, from the root folder. If the environment has ZORV_INSPECT_PAGE, zorv-inspect.html is put beside
the pages, and its guide leads to it.
"""

import os
import pathlib
import posixpath
import re
import sys

page = pathlib.PurePosixPath(pathlib.Path(sys.argv[1]).resolve().relative_to(pathlib.Path.cwd()))


def identifier(path, heading):
    """The identifier of a heading, of which each has one in the whole site."""
    words = re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")
    return re.sub(r"\W", "_", f"{path}-{words}")


def link(found):
    """A link to a heading, or to a file that is not a page."""
    path, _, heading = found[1].partition("#")
    target = posixpath.normpath(page.parent / path) if path else str(page)
    if heading:
        return f"](#{identifier(target, heading)})"
    beside = not path.endswith(".md") and posixpath.dirname(target) != "docs"
    return f"]({posixpath.basename(target)})" if beside else found[0]


text = pathlib.Path(sys.argv[1]).read_text(encoding="utf-8")
# Doxygen does not read a link whose text is broken over two lines.
text = re.sub(r"(\[[^\]\n`]*)\n([^\]\n`]*\]\()", r"\1 \2", text)
code = False
contents = page.name != "index.md"
for line in text.splitlines():
    code ^= line.startswith("```")
    if not code:
        line = re.sub(r"\]\((?!\w+:)([^)\s]+)\)", link, line)
        if line.startswith("# ") and contents:
            contents = False
            line += "\n\n[TOC]"
        elif line.startswith("##"):
            browser = line == "## In a browser" and "ZORV_INSPECT_PAGE" in os.environ
            line += f" {{#{identifier(page, line.lstrip('#'))}}}"
            if browser:
                line += "\n\n[Open the page here](zorv-inspect.html), with the samples to play with."
    print(line)
