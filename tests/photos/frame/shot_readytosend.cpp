// Draws the Send a Photo Page frame with a dozen pictures on the Ready to Send list and saves a
// picture of it: shot_readytosend <output.png> [settings.png] [history.png]. Run it on a real
// screen (xvfb-run) to look at the layout.
#include "FrameFixture.h"

#include "History.h"
#include "ReadyToSendPage.h"
#include "TestMain.h"

#include <QApplication>
#include <QFont>
#include <QImage>
#include <QLinearGradient>
#include <QListWidget>
#include <QPainter>
#include <QTabWidget>
#include <QTest>

namespace {

// A small landscape: sky, hills and a sun, in the colours of one hue.
void paintLandscape(const QString &path, int hue, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, size.height());
    sky.setColorAt(0, QColor::fromHsv(hue, 90, 250));
    sky.setColorAt(1, QColor::fromHsv((hue + 30) % 360, 40, 255));
    painter.fillRect(image.rect(), sky);
    painter.setBrush(QColor(255, 230, 140));
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QPoint(size.width() * 3 / 4, size.height() / 4), size.height() / 9,
                        size.height() / 9);
    painter.setBrush(QColor::fromHsv((hue + 120) % 360, 140, 150));
    QPolygon hills;
    hills << QPoint(0, size.height()) << QPoint(0, size.height() * 2 / 3)
          << QPoint(size.width() / 3, size.height() / 2)
          << QPoint(size.width() * 2 / 3, size.height() * 3 / 4)
          << QPoint(size.width(), size.height() * 3 / 5) << QPoint(size.width(), size.height());
    painter.drawPolygon(hills);
    painter.end();
    image.save(path, "JPG", 90);
}

} // namespace

int main(int argc, char *argv[])
{
    UseTemporaryHome();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tarnwick"));
    QApplication::setOrganizationName(QStringLiteral("Tarnwick"));
    QApplication::setFont(QFont(QStringLiteral("Liberation Sans"), 10));
    if (argc < 2)
        return 2;

    FrameFixture f;
    const QStringList names = {QStringLiteral("Arrival.jpg"),    QStringLiteral("Beach walk.jpg"),
                               QStringLiteral("Boats.jpg"),      QStringLiteral("Cliffs.jpg"),
                               QStringLiteral("Dinner.jpg"),     QStringLiteral("Harbour.jpg"),
                               QStringLiteral("Lighthouse.jpg"), QStringLiteral("Market.jpg"),
                               QStringLiteral("Old town.jpg"),   QStringLiteral("Sunset.jpg"),
                               QStringLiteral("Village.jpg"),    QStringLiteral("Waves.jpg"),
                               QStringLiteral("Way home.jpg"),   QStringLiteral("Zoo.jpg")};
    for (int i = 0; i < names.size(); ++i)
        paintLandscape(f.sourceFile(names[i]), (i * 47) % 360, QSize(640, 480));
    f.frame().readyToSend()->refreshSource();
    f.frame().resize(1264, 700);

    f.selectSource(names.mid(0, 11));
    f.click(QStringLiteral("CopyButton_0"));
    f.selectSource({names[11]});
    f.click(QStringLiteral("CopyButton_2"));
    f.page().PhotoInfo[1] = QStringLiteral("A long walk on the beach before breakfast");
    f.page().FileName = QStringLiteral("Summer by the sea");
    f.frame().readyToSend()->SaveAll();
    f.clickRow(f.file3(), QStringLiteral("00050_Beach walk.jpg"));
    f.selectSource({names[12]});
    QTest::qWait(200);
    f.frame().grab().save(QString::fromLocal8Bit(argv[1]));
    if (const QByteArray pdf = qgetenv("TARNWICK_SHOT_PDF"); !pdf.isEmpty()) {
        f.pdfPath = QString::fromLocal8Bit(pdf);
        f.frame().readyToSend()->PrintList();
    }

    auto *tabs = f.find<QTabWidget>(QStringLiteral("TabStrip2"));
    for (int tab = 1; tab < 3 && argc > 1 + tab; ++tab) {
        tabs->setCurrentIndex(tab == 1 ? PhotoFrame::SettingsTab : PhotoFrame::UpdatePhotoPageTab);
        QTest::qWait(100);
        f.frame().grab().save(QString::fromLocal8Bit(argv[1 + tab]));
    }
    return 0;
}
