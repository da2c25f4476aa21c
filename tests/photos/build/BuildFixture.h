#pragma once

#include "Folders.h"
#include "FtpTestServer.h"
#include "PhotoBuild.h"
#include "PhotoPage.h"
#include "TransferSteps.h"
#include "cFTP.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QStringList>

// The window as the photo build sees it in the tests: a real cFTP on a test server, the web
// site "www.example.com", and a record of what the build showed.
class BuildTestWindow final : public TransferWindow, public PhotoBuildWindow
{
public:
    BuildTestWindow(cFTP &ftp, const FtpTestServer &server, const QString &workingFolder)
        : account_{server.server(), server.user(), server.password()}, m_ftp(ftp)
    {
        options_.ChoosenUploadPath = workingFolder;
        options_.sizingThreads = 2;
    }

    // TransferWindow
    FtpAccount account() const override { return account_; }
    void ReloadFTPList() override { m_ftp.GetDirectoryListing(QStringLiteral("*.*")); }
    QString UploadPath() const override { return uploadPath; }
    void showUploadPath(const QString &directory) override
    {
        uploadPath = QStringLiteral("www.example.com") + directory;
    }
    void cmdDisconnect() override
    {
        ++disconnects;
        m_ftp.CloseConnection();
        uploadPath.clear();
    }

    // PhotoBuildWindow
    PhotoBuildOptions options() const override { return options_; }
    bool titlePrompt() const override { return title_prompt; }
    bool filePrompt() const override { return file_prompt; }
    bool skipImageInfo() const override { return Skip_image_info; }
    bool runWithoutConnections() const override { return RunWithoutMenu; }
    void showProgressFrame(bool show) override { progressShown = show; }
    void setCaption(const QString &text) override { caption = text; }
    void shapeEvent(int step) override { shapeEvents.append(step); }
    void DoCleanup() override { ++cleanups; }
    void setPagePointer(const QString &pointer) override { pagePointer = pointer; }
    void showThumbnail(const QString &path) override { thumbnails.append(path); }

    FtpAccount account_;
    PhotoBuildOptions options_;
    bool title_prompt = false;
    bool file_prompt = false;
    bool Skip_image_info = false;
    bool RunWithoutMenu = false;

    QString uploadPath;
    QString caption;
    QString pagePointer;
    QStringList thumbnails;
    QList<int> shapeEvents;
    bool progressShown = false;
    int disconnects = 0;
    int cleanups = 0;

private:
    cFTP &m_ftp;
};

namespace BuildFixture {

// The default photo templates in the user's Photos folder, as start-up puts them there.
inline bool installTemplates()
{
    Folders::MakeFolderTree();
    const QString staged = QStringLiteral(TARNWICK_STAGED_DATA_DIR);
    for (const char *name : {"Top.txt", "Left.txt", "Right.txt", "End.txt"}) {
        const QString target = Folders::PhotosFolder() + QLatin1Char('/') + QLatin1String(name);
        QFile::remove(target);
        if (!QFile::copy(staged + QLatin1Char('/') + QLatin1String(name), target))
            return false;
    }
    return true;
}

// A real JPEG of the size, one colour with a white band across its top.
inline bool makePhoto(const QString &path, const QColor &colour, int width = 320, int height = 240)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    QPainter painter(&image);
    painter.fillRect(0, 0, width, height / 8, Qt::white);
    painter.end();
    return image.save(path, "JPEG", 90);
}

struct Photo
{
    QString name;  // as the source folder holds it
    QString group; // five digits
    QString rotate = QString();
};

// Puts each photo on the Ready to Send list as the copy buttons do: the picture is copied to
// the working folder as "<group>_<name>" and a row is added to the record.
inline bool putOnList(PhotoPage &page, const QString &sourceFolder, const QString &workingFolder,
                      const QList<Photo> &photos)
{
    for (const Photo &photo : photos) {
        const int n = page.PhotoNumber;
        page.PhotoName[n] = photo.name;
        page.PhotoPath[n] = sourceFolder;
        page.PhotoRotate[n] = photo.rotate;
        page.PhotoOrder[n] = photo.group;
        page.PhotoLeft[n] = n % 2 == 0 ? QStringLiteral("False") : QStringLiteral("True");
        page.PhotoInfo[n] = QStringLiteral("Caption of ") + photo.name;
        ++page.PhotoNumber;
        const QString target =
            workingFolder + QLatin1Char('/') + photo.group + QLatin1Char('_') + photo.name;
        QFile::remove(target);
        if (!QFile::copy(sourceFolder + QLatin1Char('/') + photo.name, target))
            return false;
    }
    return true;
}

// The thumbnails a page shows, in the page's order.
inline QStringList thumbnailsOf(const QString &pagePath)
{
    QFile file(pagePath);
    if (!file.open(QIODevice::ReadOnly))
        return {QStringLiteral("<no page>")};
    const QString text = QString::fromUtf8(file.readAll());
    QStringList found;
    static const QRegularExpression source(QStringLiteral("src=\"(Sml_[^\"]+)\""));
    for (auto it = source.globalMatch(text); it.hasNext();)
        found << it.next().captured(1);
    return found;
}

// Every "Sml_" and "Lrg_" file a page links to.
inline QStringList linksOf(const QString &pagePath)
{
    QFile file(pagePath);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QString text = QString::fromUtf8(file.readAll());
    QStringList found;
    static const QRegularExpression link(QStringLiteral("(?:src|href)=\"((?:Sml|Lrg)_[^\"]+)\""));
    for (auto it = link.globalMatch(text); it.hasNext();)
        found << it.next().captured(1);
    return found;
}

} // namespace BuildFixture
