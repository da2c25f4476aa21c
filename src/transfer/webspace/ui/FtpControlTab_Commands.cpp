#include "FtpControlTab.h"

#include "BrowserTexts.h"
#include "Folders.h"
#include "HTMLMake.h"
#include "JobState.h"
#include "JobUi.h"
#include "Settings.h"
#include "WaitNotice.h"
#include "cFTP.h"
#include "frmMain.h"

#include <QDir>
#include <QDirIterator>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QStatusBar>
#include <QTime>
#include <QTreeWidget>

namespace {

const QString ParentRow = QStringLiteral("..");

} // namespace

void FtpControlTab::ReloadFTPList()
{
    m_lblDir->setText(QStringLiteral("Current Directory: ") + m_ftp.GetFTPDirectory().trimmed());
    m_ftp.GetDirectoryListing(QStringLiteral("*.*"));
    // What the listing left out is said where the connection's state is shown.
    if (!m_ftp.ListingNote().isEmpty())
        m_window.statusBar()->showMessage(m_ftp.ListingNote());

    m_lv->setUpdatesEnabled(false);
    m_lv->clear();
    QList<QTreeWidgetItem *> rows;
    const cDirList &list = m_ftp.Directory();
    rows.reserve(list.Count() + 1);
    rows.append(new QTreeWidgetItem(QStringList{ParentRow, QString(), QString(), QString()}));
    for (const cDirItem &item : list) {
        const QString size = item.isDirectory() ? DirectorySizeText() : SizeText(item.Size);
        const QString date =
            item.LastWriteTime.isValid()
                ? QLocale::c().toString(item.LastWriteTime, QStringLiteral("yyyy-MM-dd HH:mm"))
                : QString();
        auto *row =
            new QTreeWidgetItem(QStringList{item.Name, size, AttributeText(item.Attributes), date});
        row->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
        rows.append(row);
    }
    m_lv->addTopLevelItems(rows);
    m_lv->setUpdatesEnabled(true);
    // The web address follows the list at once, not only at the next tick of Timer3.
    if (m_ftp.IsConnected())
        showUploadPath(m_ftp.CurrentDirectory());
}

FtpAccount FtpControlTab::account() const
{
    return {m_window.txtServer()->text(), m_window.txtUser()->text(),
            m_window.txtPassword()->text()};
}

QString FtpControlTab::UploadPath() const
{
    return m_window.UploadPath()->text();
}

void FtpControlTab::showUploadPath(const QString &directory)
{
    m_window.UploadPath()->setText(m_window.txtWebSite()->text() + directory.trimmed());
}

TransferContext FtpControlTab::transferContext()
{
    return TransferContext{m_ftp, m_ui, m_state, *this, m_progress};
}

void FtpControlTab::showConnectedStatus()
{
    const QString text = QStringLiteral("Connected to ") + m_window.txtServer()->text() +
                         QStringLiteral(" as ") + m_window.txtUser()->text() +
                         QStringLiteral(" at ") +
                         QLocale::c().toString(QTime::currentTime(), QStringLiteral("HH:mm:ss"));
    m_window.statusBar()->showMessage(text);
}

bool FtpControlTab::waitCancelled() const
{
    return m_wait->cancelled();
}

void FtpControlTab::showFailure(const QString &title)
{
    // The user who pressed Cancel knows why the command ended.
    if (waitCancelled())
        return;
    m_ui.Message(m_ftp.GetLastErrorMessage(), title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
}

void FtpControlTab::cmdConnect_Click()
{
    if (m_window.RunWithoutMenu()->isChecked())
        return;
    JobUi &ui = m_ui;
    // A cancelled Connect leaves the tab as before it, ready for the next try.
    const auto cancelled = [this] {
        if (!waitCancelled())
            return false;
        cmdDisconnect_Click();
        return true;
    };
    m_cmdConnect->setEnabled(false);
    const bool opened = m_ftp.OpenConnection(
        m_window.txtServer()->text(), m_window.txtUser()->text(), m_window.txtPassword()->text());
    m_cmdConnect->setEnabled(true);
    if (!opened) {
        if (!waitCancelled())
            ui.Message(m_ftp.GetLastErrorMessage(), QStringLiteral("error"), JobUi::Buttons::Ok,
                       JobUi::Icon::Critical);
        return;
    }
    m_connected = true;
    m_lblSecurity->setText(ConnectedWithText(m_ftp.ConnectionSecurity()));
    m_ftp.SetFTPDirectory(QStringLiteral("/"));
    ReloadFTPList();
    if (cancelled())
        return;
    m_ftp.SetFTPDirectory(m_window.FTPRoot()->text());
    showConnectedStatus();

    ReloadFTPList();
    showUploadPath(m_ftp.CurrentDirectory());
    if (cancelled())
        return;

    const QString clientRoot = m_window.ClientRoot()->text().trimmed();
    if (!clientRoot.isEmpty()) {
        TransferContext context = transferContext();
        EnsureFTPDirectory(context, clientRoot);
        if (cancelled())
            return;
    }

    EnableFTPButtons(true);
    m_window.shapeEvent(41);
}

void FtpControlTab::cmdDisconnect_Click()
{
    m_ftp.CloseConnection();
    m_connected = false;
    m_lblSecurity->clear();
    m_lv->clear();
    EnableFTPButtons(false);
    m_window.setWindowTitle(QStringLiteral("Tarnwick - Ready to Connect"));
    m_window.statusBar()->clearMessage();
    m_window.shapeEvent(40);
}

QString FtpControlTab::selectedName() const
{
    const QTreeWidgetItem *item = m_lv->currentItem();
    if (!item || !item->isSelected())
        return QString();
    return item->text(0);
}

void FtpControlTab::changeDirectory(const QString &path)
{
    m_ftp.SetFTPDirectory(path);
    ReloadFTPList();
}

void FtpControlTab::lv_My_DblClick(QTreeWidgetItem *item)
{
    if (!item)
        return;
    const QString name = item->text(0);
    if (name == ParentRow) {
        m_ftp.SetFTPDirectory(ParentRow);
    } else {
        const cDirItem *entry = m_ftp.Directory().Item(name);
        if (entry && entry->isDirectory()) {
            m_ftp.SetFTPDirectory(name);
        } else if (entry) {
            cmdDownload_Click();
        }
    }
    ReloadFTPList();
}

void FtpControlTab::UpDirButton_Click()
{
    changeDirectory(ParentRow);
}

void FtpControlTab::setDownloadPathChooser(std::function<QString(const QString &)> chooser)
{
    m_downloadChooser = std::move(chooser);
}

void FtpControlTab::cmdDownload_Click()
{
    const QString name = selectedName();
    if (name.isEmpty() || name == ParentRow)
        return;
    QString local;
    if (m_downloadChooser) {
        local = m_downloadChooser(name);
    } else {
        local = QFileDialog::getSaveFileName(
            &m_window, tr("Download File from Server"),
            QDir(Folders::FindSystemFolder(Folders::SystemFolder::Documents)).filePath(name),
            QString(), nullptr, QFileDialog::DontConfirmOverwrite);
    }
    if (local.isEmpty())
        return;
    JobUi &ui = m_ui;
    if (QFileInfo::exists(local) &&
        ui.Message(QStringLiteral("This file exist do you want to over write it?"),
                   QStringLiteral("Need to know.."), JobUi::Buttons::YesNo,
                   JobUi::Icon::Question) != JobUi::Answer::Yes)
        return;
    TransferContext context = transferContext();
    DownloadFileToFTP(context, local, name);
    // The download is a job of its own: its connection ends with it.
    m_ftp.Transfers().Close();
}

void FtpControlTab::cmdUpload_Click()
{
    QMenu menu(this);
    QAction *files = menu.addAction(tr("Choose files..."));
    QAction *folder = menu.addAction(tr("Choose a folder with its sub-folders..."));
    QAction *chosen = menu.exec(m_cmdUpload->mapToGlobal(QPoint(0, m_cmdUpload->height())));
    const QString start = Folders::FindSystemFolder(Folders::SystemFolder::Documents);
    if (chosen == files) {
        const QStringList picked =
            QFileDialog::getOpenFileNames(&m_window, tr("Upload File to Server"), start);
        if (!picked.isEmpty())
            uploadFiles(QFileInfo(picked.first()).absolutePath(), picked);
    } else if (chosen == folder) {
        const QString base =
            QFileDialog::getExistingDirectory(&m_window, tr("Upload File to Server"), start);
        if (!base.isEmpty())
            uploadFolder(base);
    }
}

void FtpControlTab::uploadFolder(const QString &folder)
{
    const QString base = QFileInfo(folder).absoluteFilePath();
    QStringList picked;
    QDirIterator walk(base, QDir::Files | QDir::Hidden | QDir::NoSymLinks,
                      QDirIterator::Subdirectories);
    while (walk.hasNext())
        picked.append(walk.next());
    picked.sort(Qt::CaseInsensitive);
    QStringList folders = {base};
    QDirIterator directories(base,
                             QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden | QDir::NoSymLinks,
                             QDirIterator::Subdirectories);
    while (directories.hasNext())
        folders.append(directories.next());
    folders.sort(Qt::CaseInsensitive);
    // The folder itself becomes a directory on the server, with its sub-folders below.
    uploadFiles(QFileInfo(base).absolutePath(), picked, folders);
}

void FtpControlTab::uploadFiles(const QString &baseFolder, const QStringList &files,
                                const QStringList &folders)
{
    JobUi &ui = m_ui;
    const QDir base(baseFolder);
    m_state.UserResponse.clear();
    m_state.UploadCancelled = false;
    ui.SetStatusText(QStringLiteral("Collecting Files and Information"));
    m_window.showProgressFrame(true);
    ui.ProcessEvents();

    const QString start = m_ftp.GetFTPDirectory().trimmed();

    // The directory of each file, relative to the base folder, in the order first met.
    const auto relativeOf = [&base](const QString &folder) {
        QString relative = base.relativeFilePath(folder);
        relative.replace(QLatin1Char('\\'), QLatin1Char('/'));
        if (relative == QLatin1String("."))
            relative.clear();
        return relative;
    };
    QStringList directories;
    QStringList fileDirectories;
    for (const QString &file : files) {
        const QString relative = relativeOf(QFileInfo(file).absolutePath());
        fileDirectories.append(relative);
        if (!relative.isEmpty() && !directories.contains(relative))
            directories.append(relative);
    }
    // Folders of the selection that hold no file are made all the same.
    for (const QString &folder : folders) {
        const QString relative = relativeOf(QFileInfo(folder).absoluteFilePath());
        if (!relative.isEmpty() && !directories.contains(relative))
            directories.append(relative);
    }

    ui.SetStatusText(QStringLiteral("Creating Directories"));
    for (const QString &directory : directories) {
        if (m_state.skipped() || m_state.UploadCancelled)
            break;
        const QStringList levels = directory.split(QLatin1Char('/'), Qt::SkipEmptyParts);
        for (const QString &level : levels) {
            // A level made by an earlier file is simply entered.
            m_ftp.CreateFTPDirectory(level);
            ReloadFTPList();
            m_ftp.SetFTPDirectory(level);
        }
        for (qsizetype i = 0; i < levels.size(); ++i)
            UpDirButton_Click();
    }

    ui.SetStatusText(QStringLiteral("Sending files"));
    for (qsizetype i = 0; i < files.size(); ++i) {
        if (m_state.skipped() || m_state.UploadCancelled)
            break;
        const QString &directory = fileDirectories.at(i);
        QString remote = start;
        if (!directory.isEmpty())
            remote =
                (start.endsWith(QLatin1Char('/')) ? start : start + QLatin1Char('/')) + directory;
        m_ftp.SetFTPDirectory(remote);
        showUploadPath(m_ftp.CurrentDirectory());
        TransferContext context = transferContext();
        UploadFileToFTP(context, files.at(i));
        // dlgFTP's Cancel answers "!!Skip!!"; the progress frame's CancelButton sets the flag.
        if (m_state.skipped() || m_state.UploadCancelled)
            break;
    }
    // The cancel has done its work: a later press of Cancel must be seen as a new one.
    m_state.UploadCancelled = false;
    // The files went over one connection, which ends with the upload.
    m_ftp.Transfers().Close();

    m_ftp.SetFTPDirectory(start);
    ReloadFTPList();
    showUploadPath(m_ftp.CurrentDirectory());
    m_window.showProgressFrame(false);
}

void FtpControlTab::cmdCreateDir_Click()
{
    JobUi &ui = m_ui;
    const QString name =
        AskUser(ui, m_state, QStringLiteral("Please enter a name for this directory:"), QString(),
                QStringLiteral("Hide"));
    if (name == JobState::Blank || name == JobState::Skip)
        return;
    if (m_ftp.CreateFTPDirectory(name))
        ui.Message(QStringLiteral("Directory ") + name +
                       QStringLiteral(" was successfully created."),
                   QStringLiteral("Tarnwick"));
    else
        showFailure(QStringLiteral("Tarnwick"));
    ReloadFTPList();
}

void FtpControlTab::cmdRename_Click()
{
    const QString oldName = selectedName();
    if (oldName.isEmpty() || oldName == ParentRow)
        return;
    JobUi &ui = m_ui;
    const QString newName =
        AskUser(ui, m_state, QStringLiteral("Please enter a new name for this file:"), oldName,
                QStringLiteral("Hide"));
    if (newName == JobState::Blank || newName == JobState::Skip)
        return;
    if (m_ftp.RenameFTPFile(oldName, newName))
        ui.Message(QStringLiteral("File was successfully renamed"), QStringLiteral("Tarnwick"));
    else
        showFailure(QStringLiteral("Tarnwick"));
    ReloadFTPList();
}

bool FtpControlTab::deleteEntry(const QString &name)
{
    const cDirItem *entry = m_ftp.Directory().Item(name);
    if (!entry)
        return false;
    const bool done = entry->isDirectory() ? m_ftp.RemoveFTPDirectory(entry->Name)
                                           : m_ftp.DeleteFTPFile(entry->Name);
    if (!done)
        showFailure(QStringLiteral("Delete?"));
    return done;
}

void FtpControlTab::cmdDelete_Click()
{
    const QString name = selectedName();
    if (name.isEmpty() || name == ParentRow)
        return;
    if (m_ui.Message(QStringLiteral("Are you sure you want to delete ") + name +
                         QStringLiteral("?"),
                     QStringLiteral("Delete?"), JobUi::Buttons::YesNo,
                     JobUi::Icon::Question) != JobUi::Answer::Yes)
        return;
    deleteEntry(name);
    ReloadFTPList();
}

void FtpControlTab::cmdDeleteAll_Click()
{
    if (m_ui.Message(
            QStringLiteral("Are you sure you want to delete all of the items in this directory?"),
            QStringLiteral("Delete?"), JobUi::Buttons::YesNo,
            JobUi::Icon::Question) != JobUi::Answer::Yes)
        return;
    QStringList names;
    for (int i = 1; i < m_lv->topLevelItemCount(); ++i)
        names.append(m_lv->topLevelItem(i)->text(0));
    for (const QString &name : names) {
        deleteEntry(name);
        if (waitCancelled())
            break;
    }
    ReloadFTPList();
}

void FtpControlTab::DelSelectionButton_Click()
{
    QStringList names;
    for (const QTreeWidgetItem *item : m_lv->selectedItems()) {
        if (item->text(0) != ParentRow)
            names.append(item->text(0));
    }
    if (names.isEmpty())
        return;
    const QString question =
        names.size() == 1 ? QStringLiteral("Are you sure you want to delete ") + names.first() +
                                QStringLiteral("?")
                          : QStringLiteral("Are you sure you want to delete the %1 selected items?")
                                .arg(names.size());
    if (m_ui.Message(question, QStringLiteral("Delete?"), JobUi::Buttons::YesNo,
                     JobUi::Icon::Question) != JobUi::Answer::Yes)
        return;
    for (const QString &name : names) {
        deleteEntry(name);
        if (waitCancelled())
            break;
    }
    ReloadFTPList();
}

void FtpControlTab::MakeFilePointerStdButton_Click()
{
    const QString name = selectedName();
    if (name.isEmpty() || name == ParentRow)
        return;
    const QString path = FilePointerPath(m_window.UploadPath()->text(), name);
    CopyPointer(m_ui, m_state, path, QString(), QStringLiteral("%20"));
}
