#pragma once

#include "BackupStatus.h"

#include <QString>
#include <QStringList>

// The Backup page and the main window as the backup jobs see them. Every member may run the
// event loop. Values are read when a job looks at them, so a change made while a job waits
// counts from then on.
class BackupWindow
{
public:
    virtual ~BackupWindow() = default;

    // The page's fields and the window's settings.
    virtual QString BackupDirName() const = 0;
    virtual QString FTPRoot() const = 0;
    virtual QString ClientRoot() const = 0;
    // RunWithoutMenu ("Run Without Connections"): no FTP work at all.
    virtual bool RunWithoutMenu() const = 0;
    // OverrideCheck: "Create a Backup Regardless of Last Backup Date".
    virtual bool OverrideCheck() const = 0;

    // BackupFileList: its entries in order, and their selection.
    virtual QStringList BackupFileList() const = 0;
    virtual bool isSelected(int row) const = 0;
    virtual void setSelected(int row, bool selected) = 0;
    // The list filled anew with names (already sorted).
    virtual void showFileList(const QStringList &names) = 0;
    // One name added to the list where its order puts it.
    virtual void addToFileList(const QString &name) = 0;

    // The status view's boxes as they stand, and new contents for them.
    virtual BackupStatusView statusView() const = 0;
    virtual void showStatus(const BackupStatusView &view) = 0;

    // enableBackups: false shows ProgressFrame over the page's buttons, true hides it.
    virtual void enableBackups(bool enable) = 0;
    virtual void showProgressFrame(bool show) = 0;
    // The hourglass.
    virtual void setBusy(bool busy) = 0;
    // The main window's caption.
    virtual void setCaption(const QString &caption) = 0;
    virtual void shapeEvent(int step) = 0;

    // The Send a File page's fields, where the program's own data goes: the directory name
    // (sName) and the file to send (FileToSend).
    virtual QString sName() const = 0;
    virtual void setSName(const QString &name) = 0;
    virtual void setFileToSend(const QString &path) = 0;

    // The pointer of the backup web page, once it has been sent.
    virtual void setPagePointer(const QString &pointer) = 0;
};
