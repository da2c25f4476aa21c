#include "PickerFixtures.h"

#include <QApplication>
#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QMessageBox>
#include <QPainter>

bool WriteTestJpeg(const QString &path, int width, int height, int exifOrientation)
{
    QImage image(width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.fillRect(0, 0, width / 2, height, Qt::red);
    painter.fillRect(width / 2, 0, width - width / 2, height, Qt::blue);
    painter.end();
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "JPEG", 95))
        return false;
    if (exifOrientation != 1) {
        // APP1 "Exif" with one IFD entry: Orientation (0x0112), SHORT, 1 value.
        QByteArray app1("\xFF\xE1\x00\x22"
                        "Exif\x00\x00"
                        "MM\x00\x2A\x00\x00\x00\x08"
                        "\x00\x01"
                        "\x01\x12\x00\x03\x00\x00\x00\x01\x00\x00\x00\x00"
                        "\x00\x00\x00\x00",
                        36);
        app1[29] = char(exifOrientation);
        jpeg.insert(2, app1);
    }
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(jpeg) == jpeg.size();
}

bool WriteTextFile(const QString &path, const QByteArray &text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

MessageCatcher::MessageCatcher()
{
    m_timer.setInterval(10);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            texts.append(box->text());
            box->done(QMessageBox::Ok);
        }
    });
    m_timer.start();
}
