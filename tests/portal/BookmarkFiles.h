#pragma once

#include <QByteArray>
#include <QString>

// Bookmarks files in the form the browsers export them: the header and indentation, the folder
// and link attributes (dates, icons as data URIs, the toolbar and unfiled marks), entities in
// titles, <HR> separators and <DD> descriptions.
namespace BookmarkFiles {

// A small PNG as a data URI, as the ICON attribute carries it (a 16x16 icon is 300 to 1,500
// characters of base64).
inline QByteArray iconAttribute(int index = 0)
{
    QByteArray base64;
    for (int i = 0; i < 24; ++i)
        base64 +=
            "iVBORw0KGgoAAAANSUhEUgAAABAAAAAQCAYAAAAf8/9hAAAA" + QByteArray::number(index % 97);
    return "ICON=\"data:image/png;base64," + base64 + "==\"";
}

// As Firefox writes it: the "Bookmarks Menu" heading, the toolbar and "Other Bookmarks" as
// marked folders inside the menu, ICON_URI beside ICON, <DD> descriptions, a bookmarklet and a
// place: query.
inline QByteArray firefox()
{
    QByteArray f;
    f += "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n"
         "<!-- This is an automatically generated file.\n"
         "     It will be read and overwritten.\n"
         "     DO NOT EDIT! -->\n"
         "<META HTTP-EQUIV=\"Content-Type\" CONTENT=\"text/html; charset=UTF-8\">\n"
         "<meta http-equiv=\"Content-Security-Policy\"\n"
         "      content=\"default-src 'self'; script-src 'none'; img-src data: *; object-src "
         "'none'\"></meta>\n"
         "<TITLE>Bookmarks</TITLE>\n"
         "<H1>Bookmarks Menu</H1>\n"
         "\n"
         "<DL><p>\n"
         "    <DT><H3 ADD_DATE=\"1700000000\" LAST_MODIFIED=\"1700000100\">Mozilla Firefox</H3>\n"
         "    <DL><p>\n"
         "        <DT><A HREF=\"https://support.mozilla.org/products/firefox\" "
         "ADD_DATE=\"1700000000\" LAST_MODIFIED=\"1700000000\" "
         "ICON_URI=\"https://support.mozilla.org/favicon.ico\" " +
         iconAttribute(1) +
         ">Get Help</A>\n"
         "        <DT><A HREF=\"https://www.mozilla.org/about/\" ADD_DATE=\"1700000000\" "
         "LAST_MODIFIED=\"1700000000\" " +
         iconAttribute(2) +
         ">About Us</A>\n"
         "    </DL><p>\n"
         "    <HR>\n"
         "    <DT><A HREF=\"https://caf\xC3\xA9-du-march\xC3\xA9.example/carte?jour=lundi,mardi\" "
         "ADD_DATE=\"1700000300\" LAST_MODIFIED=\"1700000300\">Caf\xC3\xA9 &amp; "
         "Bar: &quot;Le March\xC3\xA9&quot;</A>\n"
         "    <DD>Lunch on Mondays &amp; Tuesdays\n"
         "    <DT><A HREF=\"https://www.example.org/\" ADD_DATE=\"1700000400\" "
         "LAST_MODIFIED=\"1700000400\" SHORTCUTURL=\"ex\" TAGS=\"home,start\">Example</A>\n"
         "    <DT><H3 ADD_DATE=\"1700000000\" LAST_MODIFIED=\"1700000500\" "
         "PERSONAL_TOOLBAR_FOLDER=\"true\">Bookmarks Toolbar</H3>\n"
         "    <DL><p>\n"
         "        <DT><A HREF=\"https://www.wikipedia.org/\" ADD_DATE=\"1700000600\" "
         "LAST_MODIFIED=\"1700000600\" " +
         iconAttribute(3) +
         ">Wikipedia</A>\n"
         "        <DT><H3 ADD_DATE=\"1700000700\" LAST_MODIFIED=\"1700000800\">News</H3>\n"
         "        <DL><p>\n"
         "            <DT><A "
         "HREF=\"https://www.example.ru/%D0%BD%D0%BE%D0%B2%D0%BE%D1%81%D1%82%D0%B8\" "
         "ADD_DATE=\"1700000900\" LAST_MODIFIED=\"1700000900\">"
         "\xD0\x9D\xD0\xBE\xD0\xB2\xD0\xBE\xD1\x81\xD1\x82\xD0\xB8</A>\n"
         "            <HR>\n"
         "            <DT><H3 ADD_DATE=\"1700001000\" LAST_MODIFIED=\"1700001000\">Local</H3>\n"
         "            <DL><p>\n"
         "                <DT><A HREF=\"https://local.example/paper\" ADD_DATE=\"1700001100\" "
         "LAST_MODIFIED=\"1700001100\">The Local Paper</A>\n"
         "            </DL><p>\n"
         "        </DL><p>\n"
         "    </DL><p>\n"
         "    <DT><H3 ADD_DATE=\"1700000000\" LAST_MODIFIED=\"1700001200\" "
         "UNFILED_BOOKMARKS_FOLDER=\"true\">Other Bookmarks</H3>\n"
         "    <DL><p>\n"
         "        <DT><A HREF=\"javascript:void(document.body.style.background='red')\" "
         "ADD_DATE=\"1700001300\" LAST_MODIFIED=\"1700001300\">Make it red</A>\n"
         "        <DT><A HREF=\"place:sort=8&amp;maxResults=10\" ADD_DATE=\"1700001300\" "
         "LAST_MODIFIED=\"1700001300\">Most Visited</A>\n"
         "        <DT><A HREF=\"https://example.net/a/b\" ADD_DATE=\"1700001400\" "
         "LAST_MODIFIED=\"1700001400\">Slash / Back\\slash | Pipe? Star* &lt;Angle&gt;</A>\n"
         "    </DL><p>\n"
         "</DL>\n";
    return f;
}

// As Chromium writes it: the "Bookmarks" heading, the bookmarks bar as a marked folder,
// "Other bookmarks" as a folder of its own, entities &#39; and &quot;, punycode hosts and
// %-escaped paths.
inline QByteArray chromium()
{
    QByteArray f;
    f += "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n"
         "<!-- This is an automatically generated file.\n"
         "     It will be read and overwritten.\n"
         "     DO NOT EDIT! -->\n"
         "<META HTTP-EQUIV=\"Content-Type\" CONTENT=\"text/html; charset=UTF-8\">\n"
         "<TITLE>Bookmarks</TITLE>\n"
         "<H1>Bookmarks</H1>\n"
         "<DL><p>\n"
         "    <DT><H3 ADD_DATE=\"1700000000\" LAST_MODIFIED=\"1700005000\" "
         "PERSONAL_TOOLBAR_FOLDER=\"true\">Bookmarks bar</H3>\n"
         "    <DL><p>\n"
         "        <DT><A HREF=\"https://example.com/\" ADD_DATE=\"1700000000\" " +
         iconAttribute(4) +
         ">Example Domain</A>\n"
         "        <DT><A HREF=\"https://www.example.org/\" ADD_DATE=\"1700000001\">It&#39;s "
         "the &quot;Org&quot;</A>\n"
         "        <DT><H3 ADD_DATE=\"1700000002\" LAST_MODIFIED=\"1700000003\">Travel</H3>\n"
         "        <DL><p>\n"
         "            <DT><H3 ADD_DATE=\"1700000004\" LAST_MODIFIED=\"1700000005\">Trains</H3>\n"
         "            <DL><p>\n"
         "                <DT><A HREF=\"https://www.bahn.de/\" ADD_DATE=\"1700000006\" " +
         iconAttribute(5) +
         ">Deutsche Bahn \xE2\x80\x93 Fahrkarten</A>\n"
         "                <DT><A HREF=\"https://xn--mnchen-3ya.example/stra%C3%9Fe\" "
         "ADD_DATE=\"1700000007\">M\xC3\xBCnchen Stra\xC3\x9F"
         "e</A>\n"
         "            </DL><p>\n"
         "            <DT><A HREF=\"https://www.sncf-connect.com/\" ADD_DATE=\"1700000008\">"
         "SNCF Connect</A>\n"
         "        </DL><p>\n"
         "    </DL><p>\n"
         "    <DT><H3 ADD_DATE=\"1700000009\" LAST_MODIFIED=\"1700000010\">Other "
         "bookmarks</H3>\n"
         "    <DL><p>\n"
         "        <DT><A HREF=\"https://www.example.co.jp/\" ADD_DATE=\"1700000011\">"
         "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE3\x83\x9A\xE3\x83\xBC\xE3\x82\xB8"
         "</A>\n"
         "        <DT><A HREF=\"chrome://settings/\" ADD_DATE=\"1700000012\">Settings</A>\n"
         "    </DL><p>\n"
         "</DL><p>\n";
    return f;
}

// A Chromium-style file of folders x linksEach links, each with its icon, in two levels
// ("Folder N" in the bar, each with links and a subfolder "Part N" holding the second half).
inline QByteArray large(int folders = 50, int linksEach = 100)
{
    QByteArray f = "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n"
                   "<META HTTP-EQUIV=\"Content-Type\" CONTENT=\"text/html; charset=UTF-8\">\n"
                   "<TITLE>Bookmarks</TITLE>\n<H1>Bookmarks</H1>\n<DL><p>\n"
                   "    <DT><H3 ADD_DATE=\"1700000000\" LAST_MODIFIED=\"1700000000\" "
                   "PERSONAL_TOOLBAR_FOLDER=\"true\">Bookmarks bar</H3>\n    <DL><p>\n";
    int n = 0;
    for (int folder = 0; folder < folders; ++folder) {
        const QByteArray name = QByteArray::number(folder);
        f += "        <DT><H3 ADD_DATE=\"1700000000\" LAST_MODIFIED=\"1700000000\">Folder " + name +
             "</H3>\n        <DL><p>\n";
        for (int link = 0; link < linksEach; ++link, ++n) {
            if (link == linksEach / 2)
                f += "            <DT><H3 ADD_DATE=\"1700000000\">Part " + name +
                     "</H3>\n            <DL><p>\n";
            f += "            <DT><A HREF=\"https://site" + QByteArray::number(n) +
                 ".example/page?id=" + QByteArray::number(n) + "\" ADD_DATE=\"1700000000\" " +
                 iconAttribute(n) + ">Page " + QByteArray::number(n) + " &amp; more</A>\n";
        }
        f += "            </DL><p>\n        </DL><p>\n";
    }
    f += "    </DL><p>\n</DL><p>\n";
    return f;
}

} // namespace BookmarkFiles
