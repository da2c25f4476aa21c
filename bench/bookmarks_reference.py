#!/usr/bin/env python3
"""The same bookmarks file read with Python's own HTML parser (html.parser, the standard
library's): folders from <H3> and <DL>, links from <A HREF>, titles with their entities
decoded. Gives the same counts as the program's reader and is timed the same way (the bytes
already in memory, several runs, fastest/median/slowest).

    bench/bookmarks_reference.py <file.html> [runs]
"""
import sys
import time
from html.parser import HTMLParser


class Reader(HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.stack = []
        self.pending = None
        self.reading = None
        self.text = []
        self.href = None
        self.links = 0
        self.folders = {}

    def handle_starttag(self, tag, attrs):
        if tag == "a":
            self.reading = "a"
            self.text = []
            self.href = dict(attrs).get("href", "")
        elif tag == "h3":
            self.reading = "h3"
            self.text = []
        elif tag == "dl":
            path = (self.stack[-1] if self.stack else ()) + ((self.pending,) if self.pending else ())
            self.stack.append(path)
            self.pending = None

    def handle_endtag(self, tag):
        if tag == "a" and self.reading == "a":
            title = " ".join("".join(self.text).split())
            if self.href.startswith(("http://", "https://", "ftp://")):
                self.folders.setdefault(self.stack[-1] if self.stack else (), []).append((title, self.href))
                self.links += 1
            self.reading = None
        elif tag == "h3" and self.reading == "h3":
            self.pending = " ".join("".join(self.text).split())
            self.reading = None
        elif tag == "dl" and self.stack:
            self.stack.pop()

    def handle_data(self, data):
        if self.reading:
            self.text.append(data)


def main():
    data = open(sys.argv[1], "rb").read()
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 7
    times = []
    for _ in range(runs):
        start = time.perf_counter()
        reader = Reader()
        reader.feed(data.decode("utf-8"))
        reader.close()
        times.append(time.perf_counter() - start)
    times.sort()
    print("python html.parser: %d links in %d folders with links" % (reader.links, len(reader.folders)))
    print("  %-26s %d runs: fastest %.3f s, median %.3f s, slowest %.3f s"
          % ("read the file", runs, times[0], times[len(times) // 2], times[-1]))


if __name__ == "__main__":
    main()
