#include "BuildFixture.h"
#include "Helpers.h"
#include "History.h"
#include "JobState.h"
#include "ScriptedUi.h"
#include "TestMain.h"
#include "TransferUi.h"
#include "UpdatePhotoPage.h"

#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>

using namespace BuildFixture;

// Update a Photo Page: a page taken up again from its History file, changed and sent again;
// and the Preview that builds the page on disk alone.
class TestUpdatePhotoPage : public QObject
{
    Q_OBJECT
    JobState m_state;

private:
    QList<Photo> photos()
    {
        return {{QStringLiteral("One.jpg"), QStringLiteral("00050")},
                {QStringLiteral("Two.jpg"), QStringLiteral("00050")},
                {QStringLiteral("Three.jpg"), QStringLiteral("00060")},
                {QStringLiteral("Four.jpg"), QStringLiteral("00000")}};
    }
    void makeSource(const QString &folder)
    {
        int hue = 0;
        for (const Photo &photo : photos())
            QVERIFY(makePhoto(folder + QLatin1Char('/') + photo.name,
                              QColor::fromHsv(hue += 60, 200, 200)));
    }

private slots:
    void initTestCase() { QVERIFY(installTemplates()); }
    void init()
    {
        m_state.reset();
        ClearHistory(m_state.current<PhotoPage>());
    }

    void aPageIsTakenUpChangedAndSentAgain()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        QTemporaryDir source, working;
        makeSource(source.path());
        PhotoPage &page = m_state.current<PhotoPage>();
        QVERIFY(putOnList(page, source.path(), working.path(), photos()));

        cFTP ftp(m_state);
        ScriptedUi ui;
        JobState &state = m_state;
        SilentTransferUi progress;
        BuildTestWindow window(ftp, server, working.path());
        TransferContext context{ftp, ui, state, window, progress};

        ui.answerPrompt(QStringLiteral("Garden"));
        QCOMPARE(PhotoBuildJob(page, context, window).cmdBuildAll(), PhotoBuildOutcome::Sent);
        QVERIFY(ListPictureFiles(working.path()).isEmpty());

        // Loaded from its History file the list stands as it did.
        ClearHistory(page);
        QVERIFY(LoadHst2(page, QStringLiteral("Garden.hst"), working.path(), ui, state, window));
        QCOMPARE(ListPictureFiles(working.path()),
                 QStringList({QStringLiteral("00000_Four.jpg"), QStringLiteral("00050_One.jpg"),
                              QStringLiteral("00050_Two.jpg"), QStringLiteral("00060_Three.jpg")}));
        QCOMPARE(page.FileName, QStringLiteral("Garden"));
        QCOMPARE(page.PhotoNumber, qint16(4));
        QVERIFY(ui.messages.isEmpty());

        // One photo off the list, and Build All again: the saved name is offered.
        QFile::remove(working.filePath(QStringLiteral("00050_Two.jpg")));
        QVERIFY(
            RemovePhoto(page, FindPhoto(page, QStringLiteral("Two.jpg"), QStringLiteral("00050"))));
        ui.answerPrompt(QString()); // OK on the default
        QCOMPARE(PhotoBuildJob(page, context, window).cmdBuildAll(), PhotoBuildOutcome::Sent);
        QCOMPARE(ui.prompts.last().defaultText, QStringLiteral("Garden"));
        // The folder was there: no word about it.
        QVERIFY(ui.messages.isEmpty());
        const QString folder = server.localPath(QStringLiteral("/Photos/Garden"));
        QCOMPARE(thumbnailsOf(folder + QStringLiteral("/Photos.htm")),
                 QStringList(
                     {QStringLiteral("Sml_00050_One.jpg"), QStringLiteral("Sml_00060_Three.jpg")}));
        // What left the list stays on the web space.
        QVERIFY(QFileInfo(folder + QStringLiteral("/Sml_00050_Two.jpg")).isFile());
        // The old copies were replaced, not added to.
        QCOMPARE(QDir(folder).entryList(QDir::Files).size(), 9);
    }

    void aLoadWithTheSourceGoneCostsOneMessagePerPicture()
    {
        QTemporaryDir working;
        PhotoPage &page = m_state.current<PhotoPage>();
        {
            QTemporaryDir source;
            makeSource(source.path());
            QVERIFY(putOnList(page, source.path(), working.path(), photos()));
            page.FileName = QStringLiteral("Moved");
            QVERIFY(SaveHistory(page).ok);
        }
        ScriptedUi ui;
        JobState &state = m_state;
        cFTP ftp(m_state);
        FtpTestServer server;
        BuildTestWindow window(ftp, server, working.path());
        QVERIFY(LoadHst2(page, QStringLiteral("Moved.hst"), working.path(), ui, state, window));
        QCOMPARE(ui.messages.size(), 4);
        QVERIFY(ui.messages.at(0).text.startsWith(
            QStringLiteral("Image not found. The file One.jpg may have been moved, renamed, or "
                           "deleted. It was located at: ")));
        QVERIFY(ListPictureFiles(working.path()).isEmpty());
        QCOMPARE(page.PhotoNumber, qint16(4));
        QCOMPARE(window.cleanups, 1);
        QVERIFY(ui.statusTexts.contains(QStringLiteral("Transfering images")));
        QCOMPARE(ui.stepTexts.last(), QStringLiteral("4 of 4"));
    }

    void aShortGroupIsPaddedOnTheWayBack()
    {
        QTemporaryDir source, working;
        makeSource(source.path());
        PhotoPage &page = m_state.current<PhotoPage>();
        page.FileName = QStringLiteral("Padded");
        page.PhotoNumber = 2;
        page.PhotoName[0] = QStringLiteral("One.jpg");
        page.PhotoPath[0] = source.path();
        page.PhotoOrder[0] = QStringLiteral("7");
        page.PhotoName[1] = QStringLiteral("Two.jpg");
        page.PhotoPath[1] = source.path();
        page.PhotoOrder[1] = QString();
        QVERIFY(SaveHistory(page).ok);
        ClearHistory(page);

        ScriptedUi ui;
        JobState &state = m_state;
        cFTP ftp(m_state);
        FtpTestServer server;
        BuildTestWindow window(ftp, server, working.path());
        QVERIFY(LoadHst2(page, QStringLiteral("Padded.hst"), working.path(), ui, state, window));
        QCOMPARE(ListPictureFiles(working.path()),
                 QStringList({QStringLiteral("00000_Two.jpg"), QStringLiteral("00007_One.jpg")}));
        QCOMPARE(page.PhotoOrder[0], QStringLiteral("00007"));
    }

    void loadingWithoutASelectionAsksForOne()
    {
        QTemporaryDir working;
        ScriptedUi ui;
        JobState &state = m_state;
        cFTP ftp(m_state);
        FtpTestServer server;
        BuildTestWindow window(ftp, server, working.path());
        QVERIFY(
            !LoadHst2(m_state.current<PhotoPage>(), QString(), working.path(), ui, state, window));
        QCOMPARE(ui.messages.size(), 1);
        QCOMPARE(ui.messages.at(0).text, QStringLiteral("Select a History file and retry."));
    }

    void thePreviewLiesInTheHtmlFolderAndIsWipedFirst()
    {
        QTemporaryDir source, working;
        makeSource(source.path());
        PhotoPage &page = m_state.current<PhotoPage>();
        QVERIFY(putOnList(page, source.path(), working.path(), photos()));
        page.Title = QStringLiteral("Summer");
        page.FileName = QStringLiteral("Summer");
        const QString html = Folders::PhotosHtmlFolder();
        QDir().mkpath(html);
        QFile stray(html + QStringLiteral("/Sml_old.jpg"));
        QVERIFY(stray.open(QIODevice::WriteOnly));
        stray.close();

        cFTP ftp(m_state);
        ScriptedUi ui;
        JobState &state = m_state;
        SilentTransferUi progress;
        FtpTestServer server;
        BuildTestWindow window(ftp, server, working.path());
        TransferContext context{ftp, ui, state, window, progress};
        ui.answerPrompt(QString()); // the name as it is
        QVERIFY(PhotoBuildJob(page, context, window).PhotoPreviewButton());

        QCOMPARE(ui.prompts.size(), 1);
        QCOMPARE(ui.prompts.at(0).text,
                 QStringLiteral("Enter the name of the webpage(no extention, example: 'Trip to "
                                "NY May 2007')..."));
        const QString preview = html + QStringLiteral("/Photos.htm");
        QCOMPARE(ui.openedUrls, QList<QUrl>({QUrl::fromLocalFile(preview)}));
        QVERIFY(!QFileInfo::exists(html + QStringLiteral("/Sml_old.jpg")));
        QFile built(preview);
        QVERIFY(built.open(QIODevice::ReadOnly));
        QVERIFY(QString::fromUtf8(built.readAll()).contains(QStringLiteral("(Preview of) Summer")));
        for (const QString &link : linksOf(preview))
            QVERIFY2(QFileInfo(html + QLatin1Char('/') + link).isFile(), qPrintable(link));
        // Nothing went out, and the working pictures stay.
        QVERIFY(!ftp.IsConnected());
        QCOMPARE(ListPictureFiles(working.path()).size(), 4);
    }
    void leavingThePreviewsPromptBuildsNothing()
    {
        QTemporaryDir source, working;
        makeSource(source.path());
        PhotoPage &page = m_state.current<PhotoPage>();
        QVERIFY(putOnList(page, source.path(), working.path(), photos()));
        cFTP ftp(m_state);
        ScriptedUi ui;
        JobState &state = m_state;
        SilentTransferUi progress;
        FtpTestServer server;
        BuildTestWindow window(ftp, server, working.path());
        TransferContext context{ftp, ui, state, window, progress};
        QDir(Folders::PhotosHtmlFolder()).removeRecursively();
        QVERIFY(!PhotoBuildJob(page, context, window).PhotoPreviewButton());
        QVERIFY(ui.openedUrls.isEmpty());
        QVERIFY(!QFileInfo::exists(Folders::PhotosHtmlFolder() + QStringLiteral("/Photos.htm")));
        QVERIFY(ui.messages.isEmpty());
    }

    // The opener tells a page it can't open; the preview adds nothing of its own.
    void aPreviewThatCantBeOpenedIsToldOnceByTheOpener()
    {
        QTemporaryDir source, working;
        makeSource(source.path());
        PhotoPage &page = m_state.current<PhotoPage>();
        QVERIFY(putOnList(page, source.path(), working.path(), photos()));
        page.FileName = QStringLiteral("Closed");
        cFTP ftp(m_state);
        ScriptedUi ui;
        ui.openUrlResult = false;
        JobState &state = m_state;
        SilentTransferUi progress;
        FtpTestServer server;
        BuildTestWindow window(ftp, server, working.path());
        TransferContext context{ftp, ui, state, window, progress};
        ui.answerPrompt(QString());
        QVERIFY(PhotoBuildJob(page, context, window).PhotoPreviewButton());
        QCOMPARE(ui.openedUrls.size(), 1);
        QVERIFY(ui.messages.isEmpty());
    }
};

TARNWICK_TEST_MAIN(TestUpdatePhotoPage)
#include "test_updatephotopage.moc"
