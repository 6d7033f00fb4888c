"""Turns the pages of docs that go into the package into HTML that opens from disk, with their pictures beside them."""

import os
import re
import subprocess
import sys

_LINK = re.compile(r'(?<=[ ])(href|src)="([^"]*)"')
_HEADING = re.compile(r"<h(\d)>(.*?)</h\1>")
_RENDER = "import sys; from markdown_it import MarkdownIt; print(MarkdownIt().enable('table').render(sys.stdin.read()))"
_PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>{title}</title>
<style>
body {{ max-width: 52rem; margin: 2rem auto; padding: 0 1rem; font: 1rem/1.5 sans-serif; color: #222 }}
img {{ max-width: 100% }}
pre {{ padding: .75rem; overflow-x: auto; background: #f2f2f2 }}
table {{ border-collapse: collapse }}
th, td {{ padding: .25rem .75rem; border: 1px solid #ccc; text-align: left; vertical-align: top }}
</style>
</head>
<body>
{body}</body>
</html>
"""


def rendered(python, text):
    """Markdown as HTML, by the package that is installed for `python`."""
    return subprocess.run([python, "-c", _RENDER], input=text, check=True, stdout=subprocess.PIPE,
                          encoding="utf-8").stdout


def _html(name):
    return name[:-len(".md")] + ".html"


def _anchor(heading):
    """The name by which links know a heading."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def page(name, body, pages):
    """(HTML, the pictures that it shows) of the page `name`, one of `pages`, whose text is `body`."""
    pictures, headings = [], []

    def link(match):
        kind, target = match.groups()
        path, _, place = target.partition("#")
        if kind == "src" and ":" not in path:
            pictures.append(path)
        elif path in pages:
            target = _html(path) + ("#" + place if place else "")
        elif path and not path.startswith("https://"):
            sys.exit("manual: %s links to %s, which is not in the package; mention it without a link" % (name, path))
        return '%s="%s"' % (kind, target)

    def heading(match):
        headings.append(re.sub(r"<[^>]*>", "", match.group(2)))
        return '<h%s id="%s">%s</h%s>' % (match.group(1), _anchor(headings[-1]), match.group(2), match.group(1))

    body = _HEADING.sub(heading, _LINK.sub(link, body))
    return _PAGE.format(title=headings[0], body=body), pictures


def write(python, docs, pages, folder):
    """Writes the manual into `folder`; {path in it: the file} of the pages and of their pictures."""
    files = {}
    os.makedirs(folder, exist_ok=True)
    for name in pages:
        with open(os.path.join(docs, name), encoding="utf-8") as file:
            html, pictures = page(name, rendered(python, file.read()), pages)
        path = os.path.join(folder, _html(name))
        with open(path, "w", encoding="utf-8") as file:
            file.write(html)
        files[_html(name)] = path
        files.update((picture, os.path.join(docs, picture)) for picture in pictures)
    return files
