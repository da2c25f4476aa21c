#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

// Writes a real JPEG file of width x height: left half red, right half blue. With an EXIF
// orientation other than 1 the file carries it, so a reader that applies it turns the picture.
bool WriteTestJpeg(const QString &path, int width, int height, int exifOrientation = 1);
// Writes a file with the given text (a "picture" that isn't one, a page, ...).
bool WriteTextFile(const QString &path, const QByteArray &text);

// While it lives, answers every message box that comes up with its default button and keeps
// the texts, so a test can drive a form whose handler shows one.
class MessageCatcher final : public QObject
{
    Q_OBJECT
public:
    MessageCatcher();
    QStringList texts;

private:
    QTimer m_timer;
};
