#!/usr/bin/env python3
"""Writes a bookmarks file in Chromium's export form to standard output: FOLDERS folders in the
bookmarks bar, each with LINKS links, the second half in a subfolder, every link with a PNG icon
as a data URI (the same file the tests make).

    bench/make_bookmarks.py [FOLDERS] [LINKS]
"""
import sys


def icon(index):
    return 'ICON="data:image/png;base64,' + ("iVBORw0KGgoAAAANSUhEUgAAABAAAAAQCAYAAAAf8/9hAAAA%d" % (index % 97)) * 24 + '=="'


def main():
    folders = int(sys.argv[1]) if len(sys.argv) > 1 else 50
    links = int(sys.argv[2]) if len(sys.argv) > 2 else 100
    out = ['<!DOCTYPE NETSCAPE-Bookmark-file-1>\n'
           '<META HTTP-EQUIV="Content-Type" CONTENT="text/html; charset=UTF-8">\n'
           '<TITLE>Bookmarks</TITLE>\n<H1>Bookmarks</H1>\n<DL><p>\n'
           '    <DT><H3 ADD_DATE="1700000000" LAST_MODIFIED="1700000000" '
           'PERSONAL_TOOLBAR_FOLDER="true">Bookmarks bar</H3>\n    <DL><p>\n']
    n = 0
    for folder in range(folders):
        out.append('        <DT><H3 ADD_DATE="1700000000" LAST_MODIFIED="1700000000">Folder %d</H3>\n'
                   '        <DL><p>\n' % folder)
        for link in range(links):
            if link == links // 2:
                out.append('            <DT><H3 ADD_DATE="1700000000">Part %d</H3>\n'
                           '            <DL><p>\n' % folder)
            out.append('            <DT><A HREF="https://site%d.example/page?id=%d" '
                       'ADD_DATE="1700000000" %s>Page %d &amp; more</A>\n' % (n, n, icon(n), n))
            n += 1
        out.append('            </DL><p>\n        </DL><p>\n')
    out.append('    </DL><p>\n</DL><p>\n')
    sys.stdout.write("".join(out))


if __name__ == "__main__":
    main()
