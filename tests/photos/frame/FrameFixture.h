#pragma once

#include "JobState.h"
#include "PhotoFrame.h"
#include "PhotoPage.h"
#include "ScriptedUi.h"

#include <QColor>
#include <QQueue>
#include <QSize>
#include <QString>
#include <QStringList>

#include <memory>

class QListWidget;
class QWidget;

// Writes a real JPEG picture of size at path: a plain colour with a red mark in its top left
// corner, so that a turn can be told from the pixels.
bool MakeJpeg(const QString &path, QSize size = QSize(64, 48),
              QColor colour = QColor(40, 120, 200));

// One Send a Photo Page frame on screen (offscreen), with a fresh record, a source folder of
// real pictures, the working folder under the temporary HOME, and scripted answers.
class FrameFixture
{
public:
    FrameFixture();
    ~FrameFixture();

    QString sourceFolder() const { return m_source; }
    QString workingFolder() const;
    QString sourceFile(const QString &name) const { return m_source + QLatin1Char('/') + name; }
    QString readyFile(const QString &name) const;

    // Puts pictures into the source folder and re-reads the list.
    void addPictures(const QStringList &names, QSize size = QSize(64, 48));

    PhotoFrame &frame() { return *m_frame; }
    PhotoPage &page() { return *m_page; }
    ScriptedUi &ui() { return m_ui; }
    JobState &state() { return m_state; }

    template <typename T> T *find(const QString &name) const
    {
        return m_frame->findChild<T *>(name);
    }
    QListWidget *file2() const;
    QListWidget *file3() const;
    QStringList names(QListWidget *list) const;

    // Selects exactly the given names in File2 (by clicks with Ctrl, as a user does).
    void selectSource(const QStringList &names);
    // Clicks a button by its name.
    void click(const QString &name);
    // Clicks a row of a list by its text.
    void clickRow(QListWidget *list, const QString &text,
                  Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    // Sends a focus-out event to a widget, as leaving it does.
    void leave(QWidget *widget);

    // Answers of the plain input box, in order; every question asked is recorded.
    QQueue<QString> inputAnswers;
    QStringList inputQuestions;
    QStringList inputDefaults;
    // Answers of the folder chooser.
    QQueue<QString> folderAnswers;
    // Where Print List writes its PDF.
    QString pdfPath;
    // Steps of the guide rings reached.
    QList<int> steps;

private:
    QString m_source;
    ScriptedUi m_ui;
    JobState m_state;
    std::unique_ptr<PhotoPage> m_page;
    std::unique_ptr<PhotoFrame> m_frame;
};
