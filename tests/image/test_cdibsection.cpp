#include "PictureFiles.h"
#include "TestMain.h"
#include "cDIBSection.h"

#include <QClipboard>
#include <QFile>
#include <QImageReader>
#include <QTemporaryDir>
#include <QtEndian>

namespace {

QImage pattern(int w, int h)
{
    QImage image(w, h, QImage::Format_RGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            image.setPixel(x, y, qRgb((x * 37 + y) & 255, (y * 11) & 255, (x * y) & 255));
    return image;
}

bool samePixels(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return false;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if ((a.pixel(x, y) & 0xFFFFFF) != (b.pixel(x, y) & 0xFFFFFF))
                return false;
    return true;
}

} // namespace

class TestCDIBSection : public QObject
{
    Q_OBJECT
private slots:
    void scanLineIsRoundedToFourBytes_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("bytes");
        QTest::newRow("zero") << 0 << 0;
        QTest::newRow("negative") << -3 << 0;
        QTest::newRow("one pixel") << 1 << 4;
        QTest::newRow("seven") << 7 << 28;
    }
    void scanLineIsRoundedToFourBytes()
    {
        QFETCH(int, width);
        QFETCH(int, bytes);
        cDIBSection dib;
        dib.Create(width, 3);
        QCOMPARE(dib.BytesPerScanLine(), bytes);
        QCOMPARE(dib.Width(), width);
    }

    void createFillsTheHeaderAndFreesOnClearUp()
    {
        cDIBSection dib;
        QVERIFY(dib.Create(5, 3));
        QCOMPARE(dib.ColorBit(), short(32));
        QCOMPARE(dib.dataSize(), 5 * 4 * 3);
        QVERIFY(dib.DIBSectionBitsPtr() != nullptr);
        QVERIFY(dib.hdc() != nullptr);
        QCOMPARE(dib.hDIB().pixel(4, 2), 0xFF000000u);
        dib.ClearUp();
        QVERIFY(dib.DIBSectionBitsPtr() == nullptr);
        QVERIFY(dib.hdc() == nullptr);
        // The header stays.
        QCOMPARE(dib.Width(), 5);
        QCOMPARE(dib.Height(), 3);
        QCOMPARE(dib.ColorBit(), short(32));
    }

    void aSurfaceTooLargeIsRefusedWithoutAllocating()
    {
        cDIBSection dib;
        QVERIFY(!dib.Create(30000, 30000));
        QVERIFY(dib.GetLastErrorMessage().contains(QStringLiteral("too large")));
        QVERIFY(dib.DIBSectionBitsPtr() == nullptr);
        QVERIFY(!dib.Create(0, 10));
    }

    void createFromFileOnAMissingFileKeepsTheOldSurface()
    {
        cDIBSection dib;
        QVERIFY(dib.CreateFromImage(pattern(6, 4), 0, 0, -1, -1));
        const QImage before = dib.hDIB().copy();
        QVERIFY(!dib.CreateFromFile(TestHomePath() + QStringLiteral("/no such picture.bmp")));
        QVERIFY(samePixels(dib.hDIB(), before));
        QCOMPARE(dib.Width(), 6);
    }

    void createFromFileReadsAPictureAndRefusesAHugeOneUnread()
    {
        QTemporaryDir dir;
        const QString png = dir.filePath(QStringLiteral("p.png"));
        QVERIFY(pattern(9, 5).save(png));
        cDIBSection dib;
        QVERIFY(dib.CreateFromFile(png));
        QVERIFY(samePixels(dib.hDIB(), pattern(9, 5)));

        const QString huge = dir.filePath(QStringLiteral("huge.jpg"));
        QVERIFY(WriteJpegClaimingSize(huge, 30000, 30000));
        QFile f;
        QCOMPARE(QImageReader(huge).size(), QSize(30000, 30000));
        QVERIFY(!dib.CreateFromFile(huge));
        QVERIFY(dib.GetLastErrorMessage().contains(QStringLiteral("30000 x 30000")));
        QCOMPARE(dib.Width(), 9); // the old surface stays

        const QString junk = dir.filePath(QStringLiteral("junk.jpg"));
        f.setFileName(junk);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("not a picture at all");
        f.close();
        QVERIFY(!dib.CreateFromFile(junk));
        QVERIFY(!dib.GetLastErrorMessage().isEmpty());
    }

    void bestFitKeepsASmallPictureUnlessForced()
    {
        cDIBSection dib;
        QVERIFY(dib.Create(40, 20));
        int left = 0, top = 0, w = 0, h = 0;
        dib.GetBestFitInfo(100, 100, left, top, w, h, false);
        QCOMPARE(QRect(left, top, w, h), QRect(30, 40, 40, 20));
        dib.GetBestFitInfo(100, 100, left, top, w, h, true);
        QCOMPARE(QRect(left, top, w, h), QRect(0, 25, 100, 50));
        // Too wide: fitted by the smaller ratio, 30 / 40 < 100 / 20.
        dib.GetBestFitInfo(30, 100, left, top, w, h, false);
        QCOMPARE(QRect(left, top, w, h), QRect(0, 42, 30, 15));
    }

    void bestFitRoundsHalvesToEven()
    {
        cDIBSection dib;
        QVERIFY(dib.Create(5, 4));
        int left = 0, top = 0, w = 0, h = 0;
        // rx = 2 / 5 = 0.4, ry = 2 / 4 = 0.5: the height is the box's, the width 0.5 * 5 = 2.5.
        dib.GetBestFitInfo(2, 2, left, top, w, h, false);
        QCOMPARE(w, 2);
        QCOMPARE(h, 2);
        QVERIFY(dib.Create(7, 4));
        // ry = 0.5, width 3.5 -> 4.
        dib.GetBestFitInfo(4, 2, left, top, w, h, false);
        QCOMPARE(w, 4);
        QCOMPARE(h, 2);
    }

    void saveBitmapWritesA32BitBmpBottomUp()
    {
        QTemporaryDir dir;
        cDIBSection dib;
        const QImage source = pattern(3, 2);
        QVERIFY(dib.CreateFromImage(source, 0, 0, -1, -1));
        const QString path = dir.filePath(QStringLiteral("a.bmp"));
        QVERIFY(dib.SaveBitmap(path));
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray bytes = f.readAll();
        QCOMPARE(bytes.size(), 54 + 3 * 4 * 2);
        QCOMPARE(bytes.left(2), QByteArray("BM"));
        const auto *b = reinterpret_cast<const uchar *>(bytes.constData());
        QCOMPARE(qFromLittleEndian<quint32>(b + 2), quint32(54 + 24));
        QCOMPARE(qFromLittleEndian<quint32>(b + 6), 0u);
        QCOMPARE(qFromLittleEndian<quint32>(b + 10), 54u);
        QCOMPARE(qFromLittleEndian<quint32>(b + 14), 40u);
        QCOMPARE(qFromLittleEndian<qint32>(b + 18), 3);
        QCOMPARE(qFromLittleEndian<qint32>(b + 22), 2);
        QCOMPARE(qFromLittleEndian<quint16>(b + 26), quint16(1));
        QCOMPARE(qFromLittleEndian<quint16>(b + 28), quint16(32));
        QCOMPARE(qFromLittleEndian<quint32>(b + 30), 0u);
        QCOMPARE(qFromLittleEndian<quint32>(b + 34), 24u);
        // The first row in the file is the bottom one: blue, green, red, unused.
        const QRgb bottomLeft = source.pixel(0, 1);
        QCOMPARE(int(b[54]), qBlue(bottomLeft));
        QCOMPARE(int(b[55]), qGreen(bottomLeft));
        QCOMPARE(int(b[56]), qRed(bottomLeft));
        QVERIFY(samePixels(QImage(path).convertToFormat(QImage::Format_RGB32), source));
    }

    void saveBitmapToAReadOnlyPlaceFails()
    {
        QTemporaryDir dir;
        if (!MakeFolderReadOnly(dir.path()))
            QSKIP("no way to make a folder read-only here");
        cDIBSection dib;
        QVERIFY(dib.Create(4, 4));
        const QString path = dir.filePath(QStringLiteral("x.bmp"));
        const bool written = dib.SaveBitmap(path);
        MakeFolderWritable(dir.path());
        QVERIFY(!written);
        QVERIFY(!QFileInfo::exists(path));
        // Nothing is left open: the same name can be written once the folder allows it.
        QVERIFY(dib.SaveBitmap(path));
        QVERIFY(QFile::remove(path));
    }

    void packedDibOf24And16BitsIsRead()
    {
        // 2 x 2, 24 bits, bottom-up: rows of 6 bytes padded to 8.
        QByteArray packed(40 + 16, '\0');
        auto *p = reinterpret_cast<uchar *>(packed.data());
        qToLittleEndian<quint32>(40, p);
        qToLittleEndian<qint32>(2, p + 4);
        qToLittleEndian<qint32>(2, p + 8);
        qToLittleEndian<quint16>(1, p + 12);
        qToLittleEndian<quint16>(24, p + 14);
        const uchar rows[16] = {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0};
        memcpy(p + 40, rows, 16);
        cDIBSection dib;
        QVERIFY(dib.CreateFromPackedDIBPointer(p, packed.size()));
        QCOMPARE(dib.hDIB().pixel(0, 1) & 0xFFFFFF, qRgb(3, 2, 1) & 0xFFFFFF);
        QCOMPARE(dib.hDIB().pixel(1, 0) & 0xFFFFFF, qRgb(12, 11, 10) & 0xFFFFFF);

        qToLittleEndian<quint16>(16, p + 14);
        qToLittleEndian<quint16>(0x7C00, p + 40); // bottom-left: full red
        QVERIFY(dib.CreateFromPackedDIBPointer(p, packed.size()));
        QCOMPARE(dib.hDIB().pixel(0, 1) & 0xFFFFFF, qRgb(255, 0, 0) & 0xFFFFFF);

        qToLittleEndian<quint16>(8, p + 14);
        QVERIFY(!dib.CreateFromPackedDIBPointer(p, packed.size()));
        qToLittleEndian<quint16>(32, p + 14);
        QVERIFY(!dib.CreateFromPackedDIBPointer(p, 40 + 8)); // shorter than it says
    }

    void loadPictureBltCombinesWithTheRasterOp()
    {
        cDIBSection dib;
        QVERIFY(dib.Create(4, 4));
        QImage white(2, 2, QImage::Format_RGB32);
        white.fill(qRgb(255, 255, 255));
        dib.LoadPictureBlt(white, 1, 1, -1, -1);
        QCOMPARE(dib.hDIB().pixel(1, 1), qRgb(255, 255, 255));
        QCOMPARE(dib.hDIB().pixel(3, 3), qRgb(0, 0, 0));
        QImage mask(4, 4, QImage::Format_RGB32);
        mask.fill(qRgb(0x0F, 0xF0, 0x55));
        dib.LoadPictureBlt(mask, 0, 0, -1, -1, 0, 0, cDIBSection::SrcInvert);
        QCOMPARE(dib.hDIB().pixel(1, 1), qRgb(0xF0, 0x0F, 0xAA));
        QCOMPARE(dib.hDIB().pixel(0, 0), qRgb(0x0F, 0xF0, 0x55));
    }

    void paintPictureModes()
    {
        cDIBSection dib;
        QVERIFY(dib.CreateFromImage(pattern(4, 4), 0, 0, -1, -1));
        QImage dest(8, 8, QImage::Format_RGB32);
        dest.fill(qRgb(1, 2, 3));
        QVERIFY(dib.PaintPicture(dest, 1, 2, 2));
        QCOMPARE(dest.pixel(2, 2), pattern(4, 4).pixel(0, 0));
        QCOMPARE(dest.pixel(1, 1), qRgb(1, 2, 3));
        QVERIFY(!dib.PaintPicture(dest, 5));
        QVERIFY(!dib.PaintPicture(dest, 0));
        QImage uniform(2, 2, QImage::Format_RGB32);
        uniform.fill(qRgb(90, 80, 70));
        QVERIFY(dib.CreateFromImage(uniform, 0, 0, -1, -1));
        QVERIFY(dib.PaintPicture(dest, 3, 0, 0, 8, 8));
        QCOMPARE(dest.pixel(7, 7), qRgb(90, 80, 70));
    }

    void copyToClipboardPutsABitmapOrTellsToRetry()
    {
        cDIBSection dib;
        QVERIFY(dib.CreateFromImage(pattern(5, 3), 0, 0, -1, -1));
        QString told;
        cDIBSection::setNoticeHandler([&told](const QString &text) { told = text; });
        QGuiApplication::clipboard()->clear();
        QVERIFY(dib.CopyToClipboard(0, 0, -1, -1, true));
        QCOMPARE(told, QStringLiteral("Copy as bitmap and retry"));
        QVERIFY(QGuiApplication::clipboard()->image().isNull());
        QVERIFY(dib.CopyToClipboard(0, 0));
        const QImage copied = QGuiApplication::clipboard()->image();
        QVERIFY(samePixels(copied.convertToFormat(QImage::Format_RGB32), pattern(5, 3)));
        cDIBSection::setNoticeHandler({});
    }
};

TARNWICK_TEST_MAIN(TestCDIBSection)
#include "test_cdibsection.moc"
