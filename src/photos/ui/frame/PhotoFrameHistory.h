#pragma once

#include "PhotoFrameServices.h"

#include <QWidget>

class QLabel;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
struct PhotoPage;

// The "Update Photo Page" tab of Send a Photo Page: the History files of the pages built so far
// (File4), their details, their deletion, and the pointer of the page sent last.
class PhotoFrameHistory final : public QWidget
{
    Q_OBJECT
public:
    PhotoFrameHistory(PhotoPage &page, PhotoFrameServices &services, QWidget *parent = nullptr);

    // Re-reads the History folder into File4; the selected name stays selected.
    void refreshFiles();
    // The History file selected in File4 ("" when none).
    QString selectedFile() const;

    // ShowHst: reads the selected file into the current record and shows its details.
    void ShowHst_Click();
    // DeleteHstButton: deletes the selected History file after asking.
    void DeleteHstButton_Click();

    // FTP_page_pointer: the pointer of the page's last upload.
    void setPagePointer(const QString &pointer);
    QString pagePointer() const;
    // FTP_pointer: one line per thumbnail of the last upload (lines may end in CR LF).
    void setThumbnailPointers(const QString &pointers);
    QString thumbnailPointers() const;

signals:
    // The current record was replaced by a History file's contents.
    void recordReplaced();

private:
    void updateButtons();

    PhotoPage &m_page;
    PhotoFrameServices &m_services;
    QListWidget *m_file4 = nullptr;
    QPushButton *m_showHst = nullptr;
    QPushButton *m_deleteHst = nullptr;
    QLabel *m_pagePointer = nullptr;
    QPlainTextEdit *m_thumbnailPointers = nullptr;
};
