#include "DirListBox.h"
#include "PickerFixtures.h"
#include "TestMain.h"
#include "TestWidgets.h"
#include "frmDialogPg.h"
#include "frmZoom.h"

#include <QComboBox>
#include <QDir>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

using TestWidgets::child;
using TestWidgets::click;

class TestFrmDialogPg : public QObject
{
    Q_OBJECT
private:
    // Waits, with the event loop live, until the spy has seen count signals. The long guard only
    // ends a wait that would never end; it is no bound on the machine's speed.
    static bool waitForTicks(QSignalSpy &spy, int count)
    {
        while (spy.count() < count) {
            if (!spy.wait(60000))
                return false;
        }
        return true;
    }
    static QStringList listed(frmDialogPg &form)
    {
        auto *view = child<QListView>(form, "File1");
        QStringList names;
        for (int row = 0; row < view->model()->rowCount(); ++row)
            names.append(view->model()->index(row, 0).data().toString());
        return names;
    }
    // Clicks the file of that name in File1, as the user does to see the preview.
    static void clickFile(frmDialogPg &form, const QString &name)
    {
        auto *view = child<QListView>(form, "File1");
        const int row = int(listed(form).indexOf(name));
        QVERIFY2(row >= 0, qPrintable(name));
        const QModelIndex index = view->model()->index(row, 0);
        view->scrollTo(index);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
    }
    static QListWidgetItem *dirItem(frmDialogPg &form, const QString &path)
    {
        auto *dir = child<DirListBox>(form, "Dir1");
        for (int row = 0; row < dir->count(); ++row) {
            if (dir->item(row)->toolTip() == path)
                return dir->item(row);
        }
        return nullptr;
    }
    static void clickDir(frmDialogPg &form, const QString &path, bool twice)
    {
        auto *dir = child<DirListBox>(form, "Dir1");
        QListWidgetItem *item = dirItem(form, path);
        QVERIFY2(item != nullptr, qPrintable(path));
        const QPoint at = dir->visualItemRect(item).center();
        if (twice)
            QTest::mouseDClick(dir->viewport(), Qt::LeftButton, {}, at);
        else
            QTest::mouseClick(dir->viewport(), Qt::LeftButton, {}, at);
    }

    QTemporaryDir m_pictures;

private slots:
    void initTestCase()
    {
        QVERIFY(m_pictures.isValid());
        const QString p = m_pictures.path();
        QVERIFY(WriteTestJpeg(p + QStringLiteral("/wide.jpg"), 560, 140));
        QVERIFY(WriteTestJpeg(p + QStringLiteral("/tall.JPG"), 100, 400));
        QVERIFY(WriteTestJpeg(p + QStringLiteral("/turned.jpg"), 400, 100, 6));
        QVERIFY(WriteTextFile(p + QStringLiteral("/broken.jpg"), "not a picture"));
        QVERIFY(WriteTextFile(p + QStringLiteral("/paint.dib"), "BM"));
        QVERIFY(WriteTextFile(p + QStringLiteral("/page.htm"), "<html></html>"));
        QVERIFY(WriteTextFile(p + QStringLiteral("/notes.txt"), "notes"));
        QVERIFY(QImage(8, 8, QImage::Format_RGB32).save(p + QStringLiteral("/small.bmp")));
        // The smallest GIF there is: one pixel.
        QVERIFY(WriteTextFile(p + QStringLiteral("/anim.gif"),
                              QByteArray("GIF89a\x01\x00\x01\x00\x80\x00\x00\xff\xff\xff\x00\x00"
                                         "\x00\x21\xf9\x04\x01\x00\x00\x00\x00\x2c\x00\x00\x00"
                                         "\x00\x01\x00\x01\x00\x00\x02\x02\x44\x01\x00\x3b",
                                         43)));
        QVERIFY(QDir(p).mkdir(QStringLiteral("Trip")));
        QVERIFY(QDir(p).mkdir(QStringLiteral("another")));
    }

    void form()
    {
        frmDialogPg form(true, m_pictures.path());
        QCOMPARE(form.windowTitle(), QStringLiteral("Select Directory"));
        QCOMPARE(child<QPushButton>(form, "Command1_3")->text(), QStringLiteral("Shared files"));
        QCOMPARE(child<QPushButton>(form, "ViewContentButton")->text(),
                 QStringLiteral("View Directory Content"));
        QCOMPARE(child<QPushButton>(form, "CancelButton")->text(), QStringLiteral("Cancel"));
        QCOMPARE(child<QLabel>(form, "Label3")->text(), QStringLiteral("Path:"));
        QCOMPARE(child<QLabel>(form, "Label1")->text(), QStringLiteral("(Double Click to Zoom."));
        QCOMPARE(child<QLabel>(form, "Label2")->text(),
                 QStringLiteral("Only Photo Files Are Show)"));
        QVERIFY(form.findChild<QComboBox *>(QStringLiteral("Drive1")));
        QVERIFY(form.findChild<QFrame *>(QStringLiteral("Frame7")));
        QVERIFY(form.findChild<QLabel *>(QStringLiteral("Image2")));
        QVERIFY(form.findChild<QLabel *>(QStringLiteral("Image5")));
        QVERIFY(form.findChild<QPushButton *>(QStringLiteral("OKButton")));
        QVERIFY(form.findChild<QLineEdit *>(QStringLiteral("NewPath")));
        QCOMPARE(form.dirPath(), m_pictures.path());
        QCOMPARE(form.filePath(), m_pictures.path());
        QCOMPARE(child<QLineEdit>(form, "PathText")->text(), m_pictures.path());
    }

    void missingStartFolderOpensHome()
    {
        frmDialogPg form(true, QStringLiteral("/no/such/folder"));
        QCOMPARE(form.dirPath(), QDir::homePath());
    }

    void imagesOnly()
    {
        frmDialogPg form(true, m_pictures.path());
        QCOMPARE(listed(form),
                 (QStringList{QStringLiteral("anim.gif"), QStringLiteral("broken.jpg"),
                              QStringLiteral("small.bmp"), QStringLiteral("tall.JPG"),
                              QStringLiteral("turned.jpg"), QStringLiteral("wide.jpg")}));
    }

    void everyFile()
    {
        frmDialogPg form(false, m_pictures.path());
        const QStringList names = listed(form);
        QCOMPARE(names.size(), 9);
        QVERIFY(names.contains(QStringLiteral("paint.dib")));
        QVERIFY(names.contains(QStringLiteral("page.htm")));
        QVERIFY(names.contains(QStringLiteral("notes.txt")));
    }

    void contentViewToggles()
    {
        frmDialogPg form(true, m_pictures.path());
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        auto *file1 = child<QListView>(form, "File1");
        auto *button = child<QPushButton>(form, "ViewContentButton");
        QVERIFY(!file1->isVisible());
        QVERIFY(!child<QLabel>(form, "Label1")->isVisible());
        click(form, "ViewContentButton");
        QVERIFY(file1->isVisible());
        QVERIFY(child<QLabel>(form, "Label1")->isVisible());
        QCOMPARE(button->text(), QStringLiteral("Close Content View"));
        click(form, "ViewContentButton");
        QVERIFY(!file1->isVisible());
        QCOMPARE(button->text(), QStringLiteral("View Directory Contents"));
        click(form, "ViewContentButton");
        QVERIFY(file1->isVisible());
    }

    void preview_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QSize>("natural");
        QTest::newRow("wider than the frame") << "wide.jpg" << QSize(560, 140);
        QTest::newRow("taller than the frame") << "tall.JPG" << QSize(100, 400);
        QTest::newRow("turned by its EXIF orientation") << "turned.jpg" << QSize(100, 400);
    }
    void preview()
    {
        QFETCH(QString, name);
        QFETCH(QSize, natural);
        frmDialogPg form(true, m_pictures.path());
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        click(form, "ViewContentButton");
        clickFile(form, name);

        auto *frame = child<QFrame>(form, "Frame7");
        auto *image2 = child<QLabel>(form, "Image2");
        auto *image5 = child<QLabel>(form, "Image5");
        QCOMPARE(image5->size(), natural);
        QVERIFY(!image2->pixmap().isNull());
        const double ratio = double(natural.width()) / natural.height();
        double height = frame->height();
        double width = height * ratio;
        if (frame->width() < width) {
            width = frame->width();
            height = width / ratio;
        }
        QVERIFY(qAbs(image2->width() - width) <= 1);
        QVERIFY(qAbs(image2->height() - height) <= 1);
        QCOMPARE(image2->y(), 0);
        QVERIFY(qAbs(image2->x() - (frame->width() - width) / 2) <= 1);
        if (natural.width() > natural.height()) {
            QCOMPARE(image2->width(), frame->width());
            QCOMPARE(image2->x(), 0);
        }
        // Left half red, right half blue; turned a quarter clockwise, red is on top.
        const QImage shown = image2->pixmap().toImage();
        const QColor first = shown.pixelColor(shown.width() / 8, shown.height() / 8);
        QVERIFY2(first.red() > 200 && first.blue() < 80, qPrintable(first.name()));
        if (name == QStringLiteral("turned.jpg")) {
            const QColor bottom = shown.pixelColor(shown.width() / 2, shown.height() * 7 / 8);
            QVERIFY2(bottom.blue() > 200 && bottom.red() < 80, qPrintable(bottom.name()));
        }
    }

    void arrowKeysMoveThePreview()
    {
        frmDialogPg form(true, m_pictures.path());
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        click(form, "ViewContentButton");
        clickFile(form, QStringLiteral("tall.JPG"));
        auto *image5 = child<QLabel>(form, "Image5");
        QCOMPARE(image5->size(), QSize(100, 400));
        QTest::keyClick(child<QListView>(form, "File1"), Qt::Key_Down); // turned.jpg
        QCOMPARE(image5->size(), QSize(100, 400));
        QTest::keyClick(child<QListView>(form, "File1"), Qt::Key_Down); // wide.jpg
        QCOMPARE(image5->size(), QSize(560, 140));
        QCOMPARE(child<QLabel>(form, "Image2")->width(), child<QFrame>(form, "Frame7")->width());
    }

    void previewOfNoPictureIsEmpty()
    {
        frmDialogPg form(true, m_pictures.path());
        form.show();
        click(form, "ViewContentButton");
        clickFile(form, QStringLiteral("wide.jpg"));
        QVERIFY(!child<QLabel>(form, "Image2")->pixmap().isNull());
        clickFile(form, QStringLiteral("broken.jpg"));
        auto *image2 = child<QLabel>(form, "Image2");
        QVERIFY(image2->pixmap().isNull());
        QTest::mouseDClick(image2, Qt::LeftButton);
        QVERIFY(form.zoomWindow() == nullptr);
    }

    void doubleClickZooms()
    {
        frmDialogPg form(true, m_pictures.path());
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        click(form, "ViewContentButton");
        clickFile(form, QStringLiteral("tall.JPG"));
        auto *image2 = child<QLabel>(form, "Image2");
        QTest::mouseDClick(image2, Qt::LeftButton);
        frmZoom *zoom = form.zoomWindow();
        QVERIFY(zoom != nullptr);
        QVERIFY(zoom->isVisible());
        QCOMPARE(zoom->windowTitle(), QStringLiteral("Zoom - Move edges to zoom"));
        QCOMPARE(zoom->ZoomPicturePath(), m_pictures.path() + QStringLiteral("/tall.JPG"));
        QCOMPARE(zoom->ZoomPictureRatio(), double(image2->width()) / image2->height());
        zoom->close();
        QTRY_VERIFY(form.zoomWindow() == nullptr);
    }

    void okNeedsTheFolderOpened()
    {
        frmDialogPg form(true, m_pictures.path());
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        const QString trip = m_pictures.path() + QStringLiteral("/Trip");
        clickDir(form, trip, false);
        QCOMPARE(child<DirListBox>(form, "Dir1")->highlightedPath(), trip);
        {
            MessageCatcher catcher;
            click(form, "OKButton");
            QCOMPARE(catcher.texts,
                     QStringList{QStringLiteral("The Directory select is not open, double click "
                                                "the directory to select")});
        }
        QVERIFY(form.isVisible());
        QCOMPARE(form.NewPath(), QString());

        clickDir(form, trip, true);
        QTRY_COMPARE(form.dirPath(), trip);
        QCOMPARE(form.filePath(), trip);
        QCOMPARE(child<QLineEdit>(form, "PathText")->text(), trip);
        click(form, "OKButton");
        QVERIFY(!form.isVisible());
        QCOMPARE(form.result(), int(QDialog::Accepted));
        QCOMPARE(form.NewPath(), trip);
    }

    void upAFolder()
    {
        const QString trip = m_pictures.path() + QStringLiteral("/Trip");
        frmDialogPg form(true, trip);
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        clickDir(form, m_pictures.path(), false);
        QCOMPARE(form.dirPath(), trip);
        clickDir(form, m_pictures.path(), true);
        QTRY_COMPARE(form.dirPath(), m_pictures.path());
        QCOMPARE(listed(form).size(), 6);
    }

    void cancel()
    {
        frmDialogPg form(true, m_pictures.path());
        form.show();
        click(form, "CancelButton");
        QVERIFY(!form.isVisible());
        QCOMPARE(form.result(), int(QDialog::Rejected));
        QCOMPARE(form.NewPath(), QString());
    }

    void typedPath()
    {
        frmDialogPg form(true, QDir::homePath());
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        auto *pathText = child<QLineEdit>(form, "PathText");
        {
            MessageCatcher catcher;
            pathText->setText(QStringLiteral("/no/such/place"));
            emit pathText->editingFinished();
            QCOMPARE(catcher.texts, QStringList{QStringLiteral("Path not found - /no/such/place")});
        }
        QCOMPARE(form.dirPath(), QDir::homePath());
        QCOMPARE(pathText->text(), QDir::homePath());

        pathText->setFocus();
        pathText->selectAll();
        QTest::keyClicks(pathText, m_pictures.path());
        QTest::keyClick(pathText, Qt::Key_Return);
        QCOMPARE(form.dirPath(), m_pictures.path());
        QCOMPARE(form.filePath(), m_pictures.path());
        QVERIFY(form.isVisible());
    }

    void typedShortForms_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("folder"); // under the pictures' folder; "~" for home
        QTest::newRow("relative") << "Trip"
                                  << "Trip";
        QTest::newRow("relative up") << "Trip/../another"
                                     << "another";
        QTest::newRow("home") << "~"
                              << "~";
        QTest::newRow("trailing slash") << "Trip/"
                                        << "Trip";
        QTest::newRow("emptied box") << ""
                                     << "";
    }
    void typedShortForms()
    {
        QFETCH(QString, typed);
        QFETCH(QString, folder);
        const QString expected = folder == QStringLiteral("~") ? QDir::homePath()
                                 : folder.isEmpty()            ? m_pictures.path()
                                                               : m_pictures.filePath(folder);
        frmDialogPg form(true, m_pictures.path());
        form.show();
        auto *pathText = child<QLineEdit>(form, "PathText");
        pathText->setText(typed);
        emit pathText->editingFinished();
        QCOMPARE(form.dirPath(), expected);
        QCOMPARE(form.filePath(), expected);
        QCOMPARE(pathText->text(), expected);
    }

    void shortCuts()
    {
        const QString home = QDir::homePath();
        for (const char *name : {"Desktop", "Documents", "Pictures", "Public"})
            QVERIFY(QDir(home).mkpath(QString::fromLatin1(name)));
        frmDialogPg form(true, m_pictures.path());
        form.show();
        const char *buttons[] = {"Command1_0", "Command1_1", "Command1_2", "Command1_3"};
        const char *folders[] = {"Desktop", "Documents", "Pictures", "Public"};
        for (int i = 0; i < 4; ++i) {
            click(form, buttons[i]);
            QCOMPARE(form.dirPath(), home + QLatin1Char('/') + QString::fromLatin1(folders[i]));
            QCOMPARE(form.filePath(), form.dirPath());
        }
    }

    void sharedFiles_data()
    {
        QTest::addColumn<QString>("desktop");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no All Users") << "/home/ann/Public"
                                      << "/home/ann/Public";
        QTest::newRow("All Users") << "C:/Documents and Settings/All Users/Desktop"
                                   << "C:/Documents and Settings/All Users/Documents";
        QTest::newRow("empty") << ""
                               << "";
    }
    void sharedFiles()
    {
        QFETCH(QString, desktop);
        QFETCH(QString, expected);
        QCOMPARE(frmDialogPg::SharedFilesFolder(desktop), expected);
    }

    void driveList()
    {
        frmDialogPg form(true, m_pictures.path());
        auto *drive = child<QComboBox>(form, "Drive1");
        QVERIFY(drive->count() >= 1);
        QCOMPARE(drive->itemData(0).toString(), QStringLiteral("/"));
        form.show();
        emit drive->activated(0);
        QCOMPARE(form.dirPath(), QStringLiteral("/"));
        QCOMPARE(form.filePath(), QStringLiteral("/"));
    }

    void timerBringsThePickerBackOverItsParent()
    {
        QWidget owner;
        owner.show();
        frmDialogPg form(true, m_pictures.path(), &owner);
        form.show();
        auto *timer = form.findChild<QTimer *>(QStringLiteral("Timer1"));
        QVERIFY(timer->isActive());
        QSignalSpy ticks(timer, &QTimer::timeout);
        owner.activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), &owner);
        // The next tick brings the picker back to the top.
        const int before = int(ticks.count());
        QVERIFY(waitForTicks(ticks, before + 1));
        QTRY_COMPARE(QApplication::activeWindow(), &form);

        // With the zoom window open, the picker stays where the user put it, tick after tick.
        click(form, "ViewContentButton");
        clickFile(form, QStringLiteral("wide.jpg"));
        QTest::mouseDClick(child<QLabel>(form, "Image2"), Qt::LeftButton);
        QVERIFY(form.zoomWindow() != nullptr);
        owner.activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), &owner);
        QVERIFY(waitForTicks(ticks, int(ticks.count()) + 2));
        QCoreApplication::processEvents();
        QCOMPARE(QApplication::activeWindow(), &owner);
    }

    void pickFolderReturnsTheChoice()
    {
        QTimer::singleShot(50, this, [] {
            auto *dialog = qobject_cast<frmDialogPg *>(QApplication::activeModalWidget());
            QVERIFY(dialog != nullptr);
            QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("OKButton")),
                              Qt::LeftButton);
        });
        QCOMPARE(frmDialogPg::PickFolder(nullptr, m_pictures.path(), true), m_pictures.path());
        QTimer::singleShot(50, this, [] {
            if (auto *dialog = QApplication::activeModalWidget())
                QTest::keyClick(dialog, Qt::Key_Escape);
        });
        QCOMPARE(frmDialogPg::PickFolder(nullptr, m_pictures.path(), true), QString());
    }
};

TARNWICK_TEST_MAIN(TestFrmDialogPg)
#include "test_frmdialogpg.moc"
