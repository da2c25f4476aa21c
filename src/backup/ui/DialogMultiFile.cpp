#include "DialogMultiFile.h"

#include "DirListBox.h"
#include "Folders.h"
#include "LocalDrives.h"
#include "Settings.h"
#include "SettingsKeys.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>

namespace {

const QString FindCaption = QStringLiteral("&Find Files");
const QString CancelCaption = QStringLiteral("Cancel Search");
// How often rows found by the search are moved into the lists.
constexpr int TakeIntervalMs = 50;

} // namespace

DialogMultiFile::DialogMultiFile(QWidget *parent, const QString &start) : QDialog(parent)
{
    setObjectName(QStringLiteral("DialogMultiFile"));
    setWindowTitle(QStringLiteral("Find files to backup"));
    setModal(true);
    resize(900, 620);

    m_drive = new QComboBox(this);
    m_drive->setObjectName(QStringLiteral("Drive1"));
    for (const LocalDrive &drive : LocalDrives())
        m_drive->addItem(drive.label, drive.rootPath);
    m_dir = new DirListBox(this);
    m_dir->setObjectName(QStringLiteral("Dir1"));
    m_dirPath = new QLineEdit(this);
    m_dirPath->setObjectName(QStringLiteral("DirPath"));
    auto *go = new QPushButton(QStringLiteral("Go"), this);
    go->setObjectName(QStringLiteral("DisplayDirButton"));
    auto *browse = new QPushButton(QStringLiteral("..."), this);
    browse->setObjectName(QStringLiteral("BrowseFolderButton"));
    browse->setToolTip(QStringLiteral("Select the desired folder"));
    browse->setAutoDefault(false);
    m_text1 = new QLineEdit(this);
    m_text1->setObjectName(QStringLiteral("Text1"));
    auto *searchLabel = new QLabel(QStringLiteral("Search String"), this);
    searchLabel->setBuddy(m_text1);
    m_check1 = new QCheckBox(QStringLiteral("Include Sub Directories"), this);
    m_check1->setObjectName(QStringLiteral("Check1"));
    m_action = new QPushButton(FindCaption, this);
    m_action->setObjectName(QStringLiteral("cmdAction_0"));
    m_compress = new QCheckBox(QStringLiteral("Compress these files"), this);
    m_compress->setObjectName(QStringLiteral("CompressFileCheck"));
    m_compress->setChecked(GetSetting(SettingKey::Compression, QStringLiteral("1")) ==
                           QLatin1String("1"));
    m_showNames = new QCheckBox(QStringLiteral("Show Names only"), this);
    m_showNames->setObjectName(QStringLiteral("ShowNameCkbox"));
    m_count = new QLabel(this);
    m_count->setObjectName(QStringLiteral("FilesFoundLabel"));
    for (int i = 0; i < 3; ++i) {
        m_lists[i] = new QListWidget(this);
        m_lists[i]->setObjectName(QStringLiteral("List1_%1").arg(i));
        m_lists[i]->setSelectionMode(QAbstractItemView::ExtendedSelection);
        m_lists[i]->setUniformItemSizes(true);
    }
    m_lists[1]->hide();
    m_lists[2]->hide();
    auto *selectAll = new QPushButton(QStringLiteral("Select All"), this);
    selectAll->setObjectName(QStringLiteral("SelectAllDialogButton"));
    auto *inverse = new QPushButton(QStringLiteral("Inverse Selection"), this);
    inverse->setObjectName(QStringLiteral("InverseSelectDialogButton"));
    auto *ok = new QPushButton(QStringLiteral("OK (continue with upload)"), this);
    ok->setObjectName(QStringLiteral("OKButton"));
    ok->setDefault(false);
    ok->setAutoDefault(false);
    auto *cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setObjectName(QStringLiteral("CancelButton"));
    cancel->setAutoDefault(false);
    m_action->setAutoDefault(false);
    go->setAutoDefault(false);

    auto *left = new QVBoxLayout;
    left->addWidget(m_drive);
    left->addWidget(m_dir, 1);
    auto *pathRow = new QHBoxLayout;
    pathRow->addWidget(m_dirPath, 1);
    pathRow->addWidget(go);
    pathRow->addWidget(browse);
    left->addLayout(pathRow);
    auto *searchRow = new QHBoxLayout;
    searchRow->addWidget(searchLabel);
    searchRow->addWidget(m_text1, 1);
    left->addLayout(searchRow);
    left->addWidget(m_check1);
    left->addWidget(m_action);
    left->addWidget(m_compress);

    auto *right = new QVBoxLayout;
    auto *listTop = new QHBoxLayout;
    listTop->addWidget(m_count, 1);
    listTop->addWidget(m_showNames);
    right->addLayout(listTop);
    for (QListWidget *list : m_lists)
        right->addWidget(list, 1);
    auto *selectRow = new QHBoxLayout;
    selectRow->addWidget(selectAll);
    selectRow->addWidget(inverse);
    selectRow->addStretch(1);
    selectRow->addWidget(ok);
    selectRow->addWidget(cancel);
    right->addLayout(selectRow);

    auto *layout = new QHBoxLayout(this);
    layout->addLayout(left, 2);
    layout->addLayout(right, 3);

    m_takeTimer = new QTimer(this);
    m_takeTimer->setInterval(TakeIntervalMs);
    connect(m_takeTimer, &QTimer::timeout, this, &DialogMultiFile::takeFound);
    connect(&m_search, &QFutureWatcher<void>::finished, this, &DialogMultiFile::searchDone);

    connect(m_drive, &QComboBox::activated, this,
            [this](int index) { setFolder(m_drive->itemData(index).toString()); });
    connect(m_dir, &DirListBox::pathChanged, m_dirPath, &QLineEdit::setText);
    connect(go, &QPushButton::clicked, this, &DialogMultiFile::DisplayDirButton_Click);
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString chosen = QFileDialog::getExistingDirectory(
            this, QStringLiteral("Select the desired folder"), m_dir->path());
        if (!chosen.isEmpty())
            setFolder(chosen);
    });
    connect(m_action, &QPushButton::clicked, this, &DialogMultiFile::cmdAction_Click);
    connect(m_compress, &QCheckBox::clicked, this, [this] {
        SaveSetting(SettingKey::Compression,
                    m_compress->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
    });
    connect(m_showNames, &QCheckBox::clicked, this, &DialogMultiFile::ShowNameCkbox_Click);
    connect(selectAll, &QPushButton::clicked, this, &DialogMultiFile::SelectAllDialogButton_Click);
    connect(inverse, &QPushButton::clicked, this,
            &DialogMultiFile::InverseSelectDialogButton_Click);
    connect(ok, &QPushButton::clicked, this, &DialogMultiFile::OKButton_Click);
    connect(cancel, &QPushButton::clicked, this, &DialogMultiFile::CancelButton_Click);

    QString folder = start;
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        folder = Folders::FindSystemFolder(Folders::SystemFolder::Documents);
    if (!setFolder(folder))
        setFolder(QDir::homePath());
}

DialogMultiFile::~DialogMultiFile()
{
    stopSearch();
    if (m_cursorSet)
        QApplication::restoreOverrideCursor();
}

void DialogMultiFile::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    // The start folder is searched by itself once the dialog is up.
    if (!m_started) {
        m_started = true;
        QTimer::singleShot(0, this, [this] {
            if (!searching())
                cmdAction_Click();
        });
    }
}

QString DialogMultiFile::folder() const
{
    return m_dir->path();
}

bool DialogMultiFile::setFolder(const QString &folder)
{
    if (!m_dir->setPath(folder))
        return false;
    m_dirPath->setText(m_dir->path());
    return true;
}

void DialogMultiFile::DisplayDirButton_Click()
{
    if (!setFolder(m_dirPath->text().trimmed()))
        QMessageBox::information(this, QStringLiteral("Tarnwick"),
                                 QStringLiteral("Path not found."));
}

bool DialogMultiFile::searching() const
{
    return m_searching;
}

void DialogMultiFile::cmdAction_Click()
{
    if (searching()) {
        m_cancel = true;
        return;
    }
    for (QListWidget *list : m_lists)
        list->clear();
    FindFiles(m_dir->highlightedPath(), m_text1->text());
}

void DialogMultiFile::FindFiles(const QString &root, const QString &pattern)
{
    stopSearch();
    for (QListWidget *list : m_lists)
        list->clear();
    showCount();
    m_cancel = false;
    m_searching = true;
    m_action->setText(CancelCaption);
    if (!m_cursorSet)
        QApplication::setOverrideCursor(Qt::BusyCursor);
    m_cursorSet = true;
    const QList<SearchPattern> patterns = SearchPatterns(pattern);
    const bool subFolders = m_check1->isChecked();
    m_search.setFuture(QtConcurrent::run([this, root, patterns, subFolders] {
        SearchFiles(root, patterns, subFolders, m_cancel, [this](const QList<FoundFile> &rows) {
            const QMutexLocker lock(&m_foundLock);
            m_found.append(rows);
        });
    }));
    m_takeTimer->start();
}

void DialogMultiFile::takeFound()
{
    QList<FoundFile> rows;
    {
        const QMutexLocker lock(&m_foundLock);
        rows.swap(m_found);
    }
    if (rows.isEmpty())
        return;
    for (const FoundFile &row : std::as_const(rows)) {
        m_lists[0]->addItem(row.folder + row.name);
        m_lists[1]->addItem(row.folder);
        m_lists[2]->addItem(row.name);
    }
    showCount();
}

void DialogMultiFile::searchDone()
{
    if (!m_searching)
        return;
    m_searching = false;
    m_takeTimer->stop();
    takeFound();
    showCount();
    m_action->setText(FindCaption);
    if (m_cursorSet)
        QApplication::restoreOverrideCursor();
    m_cursorSet = false;
    emit searchFinished();
}

void DialogMultiFile::stopSearch()
{
    if (!m_searching)
        return;
    m_cancel = true;
    m_search.waitForFinished();
    searchDone();
}

void DialogMultiFile::showCount()
{
    m_count->setText(QString::number(m_lists[0]->count()) + QStringLiteral("  Files Found  "));
}

QListWidget *DialogMultiFile::visibleList() const
{
    return m_showNames->isChecked() ? m_lists[2] : m_lists[0];
}

void DialogMultiFile::syncSelection(QListWidget *from, QListWidget *to)
{
    for (int row = 0; row < from->count() && row < to->count(); ++row)
        to->item(row)->setSelected(from->item(row)->isSelected());
}

void DialogMultiFile::ShowNameCkbox_Click()
{
    const bool names = m_showNames->isChecked();
    syncSelection(names ? m_lists[0] : m_lists[2], names ? m_lists[2] : m_lists[0]);
    m_lists[0]->setVisible(!names);
    m_lists[2]->setVisible(names);
}

void DialogMultiFile::SelectAllDialogButton_Click()
{
    for (QListWidget *list : m_lists)
        list->selectAll();
}

void DialogMultiFile::InverseSelectDialogButton_Click()
{
    QListWidget *list = visibleList();
    for (int row = 0; row < list->count(); ++row)
        list->item(row)->setSelected(!list->item(row)->isSelected());
}

void DialogMultiFile::OKButton_Click()
{
    if (m_showNames->isChecked())
        syncSelection(m_lists[2], m_lists[0]);
    syncSelection(m_lists[0], m_lists[1]);
    syncSelection(m_lists[0], m_lists[2]);
    if (!m_lists[0]->selectedItems().isEmpty()) {
        stopSearch();
        m_state = QStringLiteral("Pending");
        accept();
        return;
    }
    if (QMessageBox::question(this, QStringLiteral("Need to know..."),
                              QStringLiteral("Nothing was selected. Do you want to exit?"),
                              QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes) {
        stopSearch();
        QDialog::reject();
    }
}

void DialogMultiFile::CancelButton_Click()
{
    m_state = QStringLiteral("Cancelled");
    stopSearch();
    QDialog::reject();
}

void DialogMultiFile::reject()
{
    // Escape and the window's close are the Cancel button.
    CancelButton_Click();
}

FileChoice DialogMultiFile::choice() const
{
    FileChoice picked;
    picked.pending = m_state == QLatin1String("Pending");
    picked.compress = m_compress->isChecked();
    for (int row = 0; row < m_lists[0]->count(); ++row) {
        if (m_lists[0]->item(row)->isSelected())
            picked.files.append({m_lists[1]->item(row)->text(), m_lists[2]->item(row)->text()});
    }
    return picked;
}
