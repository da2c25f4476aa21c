#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// The FTP root search: a breadth-first walk of the web space looking for the directory that
// holds a home page and can be written to.
//
// Each directory gets a row when its parent is visited; on that visit the walk probes whether
// the directory can be written to, by making and removing "Test_Directory" inside it. A row
// whose probe failed is "Fixed" and is never taken as the root, however its files are named.
// Row 1 is the login directory "/"; it is never probed and can always be the root. At most
// RootSearch::MaxRows rows are kept: directories beyond that are not walked.

// One entry of the listing the walk reads after each change of directory.
struct RootSearchEntry
{
    QString name;
    bool isDirectory = false;
};

// What the walk needs of the FTP session and the window. Every call may run the event loop.
class RootSearchHost
{
public:
    virtual ~RootSearchHost() = default;
    virtual bool SetFTPDirectory(const QString &path) = 0;
    virtual QString GetFTPDirectory() = 0;
    virtual bool CreateFTPDirectory(const QString &name) = 0;
    virtual bool RemoveFTPDirectory(const QString &name) = 0;
    // ReloadFTPList: lists the current directory (also on screen) and returns its entries,
    // without "..". A listing that fails gives an empty list.
    virtual QList<RootSearchEntry> ReloadFTPList() = 0;
    // The name of the directory about to be probed (Label4 of the Configuration page).
    virtual void ShowSearchName(const QString &name) = 0;
    // How far the walk has come: directories looked at, and found so far.
    virtual void ShowSearchCount(int lookedAt, int found)
    {
        (void)lookedAt;
        (void)found;
    }
    virtual void ProcessEvents() = 0;
    // True once the user has stopped the walk; it then ends at its next step, finding nothing.
    virtual bool Cancelled() { return false; }
};

// The file names that mark a home page, each searched for as part of a listed name.
struct RootSearchOptions
{
    // The texts of the ticked boxes, in lower case: matched against the lower-cased name.
    QStringList ticked;
    // AlternateRootTxt, trimmed: matched against the name as listed, in its own case.
    QString alternate;

    // The six boxes ticked and no alternative name.
    static RootSearchOptions allTicked();
    static const QStringList &BoxTexts(); // default.aspx, default.asp, ... index.htm
};

struct RootSearchResult
{
    bool found = false;
    QString fullPath; // the found row's path, "/" or "/public_html/www"
    QString FTPRoot;  // fullPath without its leading "/": what the FTPRoot key holds
    int rowsFilled = 0;
    bool rowLimitReached = false; // directories were left out because the table was full
    bool cancelled = false;       // the user stopped the walk
};

class RootSearch final
{
public:
    static constexpr int MaxRows = 1000;
    // The directory made and removed to test whether a directory can be written to.
    static const QString ProbeName;

    RootSearch(RootSearchHost &host, RootSearchOptions options);

    // Walks from "/" on a connected session; leaves the session in the last directory visited.
    RootSearchResult run();

    // True when a listed name marks a home page under the options.
    bool matches(const QString &name) const;

    // The rows as they were filled (1-based in the walk; index 0 here is row 1).
    struct Row
    {
        QString RootPrefix;
        QString RootName;
        QString RootStatus;
        QString fullPath() const { return RootPrefix + RootName; }
    };
    const QList<Row> &rows() const { return m_rows; }

private:
    RootSearchHost &m_host;
    RootSearchOptions m_options;
    QList<Row> m_rows;
};
