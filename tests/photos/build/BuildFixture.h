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
    void refreshReadyList() override { ++readyRefreshes; }
    void refreshHistoryList() override { ++historyRefreshes; }
    void refreshSourceList() override { ++sourceRefreshes; }
    void selectReadyRow(int row, bool selected) override
    {
        if (selected)
            selectedRows.append(row);
    }
    void showProgressFrame(bool show) override { progressShown = show; }
    void setBusy(bool on) override { busy = on; }
    void setCaption(const QString &text) override { caption = text; }
    void shapeEvent(int step) override { shapeEvents.append(step); }
    void DoCleanup() override { ++cleanups; }
    void setPagePointer(const QString &pointer) override { pagePointer = pointer; }
    void setThumbnailPointers(const QString &pointers) override { thumbnailPointers = pointers; }
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
    QString thumbnailPointers;
    QStringList thumbnails;
    QList<int> selectedRows;
    int readyRefreshes = 0;
    int historyRefreshes = 0;
    int sourceRefreshes = 0;
    bool busy = false;
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

// A camera-like JPEG of 2400 x 1800 at quality 95: soft colour gradients and shapes under a
// fine grain, as a sensor gives it; seed varies the scene.
inline bool makeCameraPhoto(const QString &path, int seed)
{
    QImage image(2400, 1800, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 2400, 1800);
    sky.setColorAt(0, QColor::fromHsv((seed * 37) % 360, 120, 230));
    sky.setColorAt(1, QColor::fromHsv((seed * 37 + 90) % 360, 160, 120));
    painter.fillRect(image.rect(), sky);
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < 12; ++i) {
        painter.setBrush(QColor::fromHsv((seed * 53 + i * 29) % 360, 140, 200));
        painter.drawEllipse(QPoint((seed * 97 + i * 151) % 2400, (seed * 61 + i * 83) % 1800),
                            100 + i * 18, 75 + i * 12);
    }
    painter.end();
    quint32 state = quint32(seed) * 2654435761u + 1;
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            state = state * 1664525u + 1013904223u;
            const int grain = int(state >> 28) * 3 / 4 - 6;
            const QRgb pixel = line[x];
            line[x] = qRgb(qBound(0, qRed(pixel) + grain, 255), qBound(0, qGreen(pixel) + grain, 255),
                           qBound(0, qBlue(pixel) + grain, 255));
        }
    }
    return image.save(path, "JPEG", 95);
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

// The page as a browser shows it: its text without comments; empty when there is no page.
inline QString shownPage(const QString &pagePath)
{
    QFile file(pagePath);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    static const QRegularExpression comment(QStringLiteral("<!--.*?-->"),
                                            QRegularExpression::DotMatchesEverythingOption);
    return QString::fromUtf8(file.readAll()).remove(comment);
}

// The thumbnails a page shows, in the page's order.
inline QStringList thumbnailsOf(const QString &pagePath)
{
    if (!QFileInfo(pagePath).isFile())
        return {QStringLiteral("<no page>")};
    const QString text = shownPage(pagePath);
    QStringList found;
    static const QRegularExpression source(QStringLiteral("src=\"(Sml_[^\"]+)\""));
    for (auto it = source.globalMatch(text); it.hasNext();)
        found << it.next().captured(1);
    return found;
}

// Every "Sml_" and "Lrg_" file a page links to.
inline QStringList linksOf(const QString &pagePath)
{
    const QString text = shownPage(pagePath);
    QStringList found;
    static const QRegularExpression link(QStringLiteral("(?:src|href)=\"((?:Sml|Lrg)_[^\"]+)\""));
    for (auto it = link.globalMatch(text); it.hasNext();)
        found << it.next().captured(1);
    return found;
}

} // namespace BuildFixture
