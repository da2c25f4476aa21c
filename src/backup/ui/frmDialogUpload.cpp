#include "frmDialogUpload.h"

#include "DirListBox.h"
#include "FileListModel.h"
#include "LocalDrives.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QVBoxLayout>

#include <QEventLoop>
#include <QFutureWatcher>
#include <QMutex>
#include <QtConcurrent/QtConcurrentRun>

frmDialogUpload::frmDialogUpload(const QString &start, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmDialogUpload"));
    setWindowTitle(QStringLiteral("File To Upload"));
    setModal(true);
    resize(720, 520);

    m_drive = new QComboBox(this);
    m_drive->setObjectName(QStringLiteral("Drive1"));
    for (const LocalDrive &drive : LocalDrives())
        m_drive->addItem(drive.label, drive.rootPath);
    m_dir = new DirListBox(this);
    m_dir->setObjectName(QStringLiteral("Dir1"));
    m_model = new FileListModel(this);
    m_files = new QListView(this);
    m_files->setObjectName(QStringLiteral("File1"));
    m_files->setModel(m_model);
    m_files->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_pathText = new QLineEdit(this);
    m_pathText->setObjectName(QStringLiteral("PathText"));
    m_check1 = new QCheckBox(QStringLiteral("Include Sub-directories when uploading"), this);
    m_check1->setObjectName(QStringLiteral("Check1"));
    m_count = new QLabel(this);
    m_count->setObjectName(QStringLiteral("FilesFoundLabel"));
    auto *selectAll = new QPushButton(QStringLiteral("Select All"), this);
    selectAll->setObjectName(QStringLiteral("SelectAllButton"));
    auto *ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("OKButton"));
    auto *cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setObjectName(QStringLiteral("CancelButton"));

    auto *boxes = new QHBoxLayout;
    auto *left = new QVBoxLayout;
    left->addWidget(m_drive);
    left->addWidget(m_dir, 1);
    auto *right = new QVBoxLayout;
    right->addWidget(m_files, 1);
    right->addWidget(selectAll);
    boxes->addLayout(left, 1);
    boxes->addLayout(right, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_check1);
    buttons->addWidget(m_count, 1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(boxes, 1);
    layout->addWidget(m_pathText);
    layout->addLayout(buttons);

    connect(m_drive, &QComboBox::activated, this,
            [this](int index) { setFolder(m_drive->itemData(index).toString()); });
    connect(m_dir, &DirListBox::pathChanged, this, [this](const QString &path) {
        m_model->setPath(path);
        m_pathText->setText(path);
    });
    connect(ok, &QPushButton::clicked, this, &frmDialogUpload::OKButton_Click);
    connect(cancel, &QPushButton::clicked, this, &frmDialogUpload::CancelButton_Click);
    connect(selectAll, &QPushButton::clicked, this, &frmDialogUpload::SelectAllButton_Click);

    if (!setFolder(start))
        setFolder(QDir::homePath());
}

bool frmDialogUpload::setFolder(const QString &folder)
{
    if (!m_dir->setPath(folder))
        return false;
    m_model->setPath(m_dir->path());
    m_pathText->setText(m_dir->path());
    return true;
}

QString frmDialogUpload::chosenFolder() const
{
    return m_pathText->text().trimmed();
}

void frmDialogUpload::OKButton_Click()
{
    if (m_check1->isChecked()) {
        // The same search as the file dialog's, every file below the folder, counted as found.
        m_found.clear();
        QMutex lock;
        std::atomic<bool> cancel{false};
        QFutureWatcher<void> watcher;
        QEventLoop loop;
        connect(&watcher, &QFutureWatcher<void>::finished, &loop, &QEventLoop::quit);
        const QString root = m_dir->path();
        watcher.setFuture(QtConcurrent::run([&] {
            SearchFiles(root, SearchPatterns(QString()), true, cancel,
                        [&](const QList<FoundFile> &rows) {
                            const QMutexLocker locker(&lock);
                            m_found.append(rows);
                        });
        }));
        if (!watcher.isFinished())
            loop.exec();
        m_count->setText(QString::number(m_found.size()) + QStringLiteral("  Files Found  "));
    }
    accept();
}

void frmDialogUpload::CancelButton_Click()
{
    m_pathText->clear();
    QDialog::reject();
}

void frmDialogUpload::reject()
{
    CancelButton_Click();
}

void frmDialogUpload::SelectAllButton_Click()
{
    QApplication::setOverrideCursor(Qt::BusyCursor);
    for (int row = 0; row < m_model->rowCount(); ++row) {
        m_files->selectionModel()->select(m_model->index(row), QItemSelectionModel::Select);
        QCoreApplication::processEvents();
    }
    QApplication::restoreOverrideCursor();
}
