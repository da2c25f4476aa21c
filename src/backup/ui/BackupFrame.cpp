#include "BackupFrame.h"

#include "JobState.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "WebSpace.h"
#include "frmMain.h"

#include <QAction>
#include <QCheckBox>
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

const QColor Red(255, 0, 0);   // the colour number FF
const QColor Green(0, 192, 0); // the colour number C000

void paint(QWidget *widget, StatusColour colour, QPalette::ColorRole role)
{
    QPalette palette = widget->palette();
    const QColor standard = widget->parentWidget() ? widget->parentWidget()->palette().color(role)
                                                   : palette.color(role);
    palette.setColor(role, colour == StatusColour::Red     ? Red
                           : colour == StatusColour::Green ? Green
                                                           : standard);
    widget->setPalette(palette);
}

QLineEdit *statusBox(const QString &name, QWidget *parent)
{
    auto *box = new QLineEdit(parent);
    box->setObjectName(name);
    box->setReadOnly(true);
    return box;
}

} // namespace

BackupFrame::BackupFrame(frmMain &window, WebSpace &webSpace, QWidget *parent)
    : QWidget(parent), m_window(window), m_webSpace(webSpace)
{
    setObjectName(QStringLiteral("BackupFrame"));
    m_jobs = std::make_unique<BackupJobs>(m_list, m_webSpace.context(), *this);
    chooseFiles = [this] { return showFileSearch(); };
    chooseFolder = [this](const QString &start) { return showFolderDialog(start); };
    chooseFile = [this](const QString &start) { return showOpenDialog(start); };

    auto *layout = new QVBoxLayout(this);
    m_listArea = buildListArea();
    layout->addWidget(m_listArea, 3);
    layout->addWidget(buildStatusArea(), 0);

    m_window.placeRing(12, m_addNew);
    m_window.placeRing(13, m_scan);
    m_window.centralWidget()->installEventFilter(this);
}

BackupFrame::~BackupFrame() = default;

QPushButton *BackupFrame::makeButton(const QString &name, const QString &caption, QWidget *parent,
                                     void (BackupFrame::*handler)())
{
    auto *button = new QPushButton(caption, parent);
    button->setObjectName(name);
    connect(button, &QPushButton::clicked, this, handler);
    return button;
}

QWidget *BackupFrame::buildListArea()
{
    auto *area = new QWidget(this);
    auto *top = new QHBoxLayout;
    auto *dirLabel = new QLabel(QStringLiteral("FTP Backup Directory Name"), area);
    m_backupDirName = new QLineEdit(area);
    m_backupDirName->setObjectName(QStringLiteral("BackupDirName"));
    m_backupDirName->setMaximumWidth(260);
    dirLabel->setBuddy(m_backupDirName);
    m_overrideCheck =
        new QCheckBox(QStringLiteral("Create a Backup Regardless of Last Backup Date"), area);
    m_overrideCheck->setObjectName(QStringLiteral("OverrideCheck"));
    top->addWidget(dirLabel);
    top->addWidget(m_backupDirName);
    top->addSpacing(24);
    top->addWidget(m_overrideCheck);
    top->addStretch(1);

    auto *listColumn = new QVBoxLayout;
    listColumn->addWidget(new QLabel(QStringLiteral("Files Backed Up"), area));
    m_fileList = new QListWidget(area);
    m_fileList->setObjectName(QStringLiteral("BackupFileList"));
    m_fileList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_fileList->setUniformItemSizes(true);
    listColumn->addWidget(m_fileList, 1);
    m_listView = new QTreeWidget(area);
    m_listView->setObjectName(QStringLiteral("BackupListView"));
    m_listView->setHeaderLabels({QStringLiteral("File"), QStringLiteral("State"),
                                 QStringLiteral("Location"), QStringLiteral("Last Backup"),
                                 QStringLiteral("Times"), QStringLiteral("Sent as")});
    m_listView->setRootIsDecorated(false);
    m_listView->setUniformRowHeights(true);
    m_listView->setSelectionMode(QAbstractItemView::NoSelection);
    m_listView->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_listView->hide();
    listColumn->addWidget(m_listView, 1);

    auto *buttons = new QVBoxLayout;
    m_addNew =
        makeButton(QStringLiteral("AddNewFileButton"), QStringLiteral("Add New Files to Backup"),
                   area, &BackupFrame::AddNewFileButton_Click);
    auto *compressDir = makeButton(QStringLiteral("CreateCompressedDirButton"),
                                   QStringLiteral("Create Compressed Directory"), area,
                                   &BackupFrame::CreateCompressedDirButton_Click);
    m_scan = makeButton(QStringLiteral("ScanAndBackupButton"),
                        QStringLiteral("Scan && Backup Files that are in the List"), area,
                        &BackupFrame::ScanAndBackupButton_Click);
    auto *selected =
        makeButton(QStringLiteral("BackupSelectedButton"), QStringLiteral("Backup Selected Files"),
                   area, &BackupFrame::BackupSelectedButton_Click);
    auto *restore =
        makeButton(QStringLiteral("RestoreButton"), QStringLiteral("Restore from the Web Space"),
                   area, &BackupFrame::RestoreButton_Click);
    restore->setToolTip(QStringLiteral("Fetches the backups of the selected files from the web "
                                       "space and puts them back where they belong."));
    auto *remove = makeButton(QStringLiteral("RemoveThisItemButton"),
                              QStringLiteral("Remove Selected Items from this List"), area,
                              &BackupFrame::RemoveThisItemButton_Click);
    auto *webPage = makeButton(QStringLiteral("BuildBackupWebPageButton"),
                               QStringLiteral("Build a Web Page of All Files"), area,
                               &BackupFrame::BuildBackupWebPageButton_Click);
    auto *ownData =
        makeButton(QStringLiteral("BackupTarnwickButton"), QStringLiteral("Backup Tarnwick"), area,
                   &BackupFrame::BackupTarnwickButton_Click);
    m_listViewButton = new QPushButton(QStringLiteral("Show All Files with their State"), area);
    m_listViewButton->setObjectName(QStringLiteral("ListViewButton"));
    m_listViewButton->setCheckable(true);
    connect(m_listViewButton, &QPushButton::toggled, this, &BackupFrame::showListView);
    for (QPushButton *button :
         {m_addNew, compressDir, m_scan, selected, restore, remove, webPage, ownData}) {
        button->setMinimumHeight(30);
        buttons->addWidget(button);
    }
    buttons->addSpacing(8);
    buttons->addWidget(m_listViewButton);
    buttons->addStretch(1);

    auto *middle = new QHBoxLayout;
    middle->addLayout(listColumn, 1);
    middle->addLayout(buttons, 0);
    auto *column = new QVBoxLayout(area);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(top);
    column->addLayout(middle, 1);

    connect(m_backupDirName, &QLineEdit::textChanged, this, &BackupFrame::BackupDirName_Change);
    connect(m_fileList, &QListWidget::itemClicked, this, [this] { BackupFileList_Click(); });
    connect(m_fileList, &QListWidget::currentItemChanged, this, [this](QListWidgetItem *current) {
        if (current && !m_running)
            BackupFileList_Click();
    });
    return area;
}

QWidget *BackupFrame::buildStatusArea()
{
    auto *box = new QGroupBox(QStringLiteral("State of the File"), this);
    box->setObjectName(QStringLiteral("BackupStatusFrame"));
    m_currentDate = statusBox(QStringLiteral("CurrentDateOfTheFile"), box);
    m_dateModified = statusBox(QStringLiteral("DateModifiedOfItem"), box);
    m_dateBackup = statusBox(QStringLiteral("DateBackupOfItem"), box);
    m_times = statusBox(QStringLiteral("NumberOfBackupTimesOfItem"), box);
    m_location = statusBox(QStringLiteral("LocationPathOfItem"), box);
    m_uploadPath = statusBox(QStringLiteral("UploadpathOfItem"), box);
    m_report = new QLabel(box);
    m_report->setObjectName(QStringLiteral("ReportIfFound"));
    m_fileNotFound = new QLabel(QStringLiteral("File Not Found!"), box);
    m_fileNotFound->setObjectName(QStringLiteral("Label18"));
    m_fileNotFound->hide();
    m_relocate = makeButton(QStringLiteral("RelocateFileButton"),
                            QStringLiteral("Find Where this File Has Gone"), box,
                            &BackupFrame::RelocateFileButton_Click);
    m_relocate->hide();
    m_recompress = makeButton(QStringLiteral("RecompressButton"),
                              QStringLiteral("Update Compressed Directory "), box,
                              &BackupFrame::RecompressButton_Click);
    m_recompress->setEnabled(false);
    auto *copy = makeButton(QStringLiteral("CopyToTheClipboardButton"),
                            QStringLiteral("Copy to the Clipboard"), box,
                            &BackupFrame::CopyToTheClipboardButton_Click);
    m_pagePointer = new QLabel(box);
    m_pagePointer->setObjectName(QStringLiteral("BackupPagePointer"));
    m_pagePointer->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto *grid = new QGridLayout(box);
    const auto row = [&](int at, const QString &caption, QWidget *field, QWidget *beside) {
        grid->addWidget(new QLabel(caption, box), at, 0);
        grid->addWidget(field, at, 1);
        if (beside)
            grid->addWidget(beside, at, 2);
    };
    row(0, QStringLiteral("Date of Current Local File "), m_currentDate, m_fileNotFound);
    row(1, QStringLiteral("Date of Current website file "), m_dateModified, nullptr);
    row(2, QStringLiteral("Date of Last Website Backup"), m_dateBackup, nullptr);
    row(3, QStringLiteral("Number of Times this File Has Been Backed Up"), m_times, m_recompress);
    row(4, QStringLiteral("Location of this File on Your Computer"), m_location, m_relocate);
    row(5, QStringLiteral("Pointer on the Web"), m_uploadPath, copy);
    grid->addWidget(m_report, 6, 1);
    grid->addWidget(m_pagePointer, 7, 0, 1, 3);
    grid->setColumnStretch(1, 1);
    return box;
}

void BackupFrame::loaded()
{
    m_backupDirName->setText(m_window.startup().BackupDirName);
    m_jobs->ChoosenCopyPath = m_window.startup().ChoosenCopyPath;
    refresh();
}

void BackupFrame::BackupDirName_Change()
{
    SaveSetting(SettingKey::BackupDirName, m_backupDirName->text());
}

QString BackupFrame::BackupDirName() const
{
    return m_backupDirName->text();
}

QString BackupFrame::FTPRoot() const
{
    return m_window.FTPRoot()->text();
}

QString BackupFrame::ClientRoot() const
{
    return m_window.ClientRoot()->text();
}

bool BackupFrame::RunWithoutMenu() const
{
    return m_window.RunWithoutMenu()->isChecked();
}

bool BackupFrame::OverrideCheck() const
{
    return m_overrideCheck->isChecked();
}

QStringList BackupFrame::BackupFileList() const
{
    QStringList names;
    names.reserve(m_fileList->count());
    for (int row = 0; row < m_fileList->count(); ++row)
        names << m_fileList->item(row)->text();
    return names;
}

bool BackupFrame::isSelected(int row) const
{
    const QListWidgetItem *item = m_fileList->item(row);
    return item && item->isSelected();
}

void BackupFrame::setSelected(int row, bool selected)
{
    if (QListWidgetItem *item = m_fileList->item(row))
        item->setSelected(selected);
}

void BackupFrame::showFileList(const QStringList &names)
{
    const QSignalBlocker block(m_fileList);
    m_fileList->clear();
    m_fileList->addItems(names);
}

void BackupFrame::addToFileList(const QString &name)
{
    // Where the sorted list box would put it: letter case ignored.
    int row = 0;
    while (row < m_fileList->count() &&
           QString::compare(m_fileList->item(row)->text(), name, Qt::CaseInsensitive) <= 0)
        ++row;
    const QSignalBlocker block(m_fileList);
    m_fileList->insertItem(row, name);
}

BackupStatusView BackupFrame::statusView() const
{
    BackupStatusView view = m_view;
    view.CurrentDateOfTheFile = m_currentDate->text();
    view.DateModifiedOfItem = m_dateModified->text();
    view.DateBackupOfItem = m_dateBackup->text();
    view.NumberOfBackupTimesOfItem = m_times->text();
    view.LocationPathOfItem = m_location->text();
    view.UploadpathOfItem = m_uploadPath->text();
    view.ReportIfFound = m_report->text();
    return view;
}

void BackupFrame::showStatus(const BackupStatusView &view)
{
    // A scan shows every entry it walks: only what changes is touched, so that a long walk
    // costs the window little.
    const BackupStatusView before = m_view;
    m_view = view;
    const auto set = [](QLineEdit *box, const QString &text) {
        if (box->text() != text)
            box->setText(text);
    };
    set(m_currentDate, view.CurrentDateOfTheFile);
    set(m_dateModified, view.DateModifiedOfItem);
    set(m_dateBackup, view.DateBackupOfItem);
    set(m_times, view.NumberOfBackupTimesOfItem);
    set(m_location, view.LocationPathOfItem);
    set(m_uploadPath, view.UploadpathOfItem);
    if (m_report->text() != view.ReportIfFound)
        m_report->setText(view.ReportIfFound);
    const auto colour = [](QWidget *widget, StatusColour was, StatusColour now,
                           QPalette::ColorRole role) {
        if (was != now)
            paint(widget, now, role);
    };
    colour(m_currentDate, before.currentDateColour, view.currentDateColour, QPalette::Text);
    colour(m_dateModified, before.dateModifiedColour, view.dateModifiedColour, QPalette::Text);
    colour(m_dateBackup, before.dateBackupColour, view.dateBackupColour, QPalette::Text);
    colour(m_location, before.locationColour, view.locationColour, QPalette::Text);
    colour(m_report, before.reportColour, view.reportColour, QPalette::WindowText);
    m_relocate->setVisible(view.relocateVisible);
    m_fileNotFound->setVisible(view.fileNotFoundVisible);
    m_recompress->setEnabled(view.recompressEnabled);
}

void BackupFrame::enableBackups(bool enable)
{
    showProgressFrame(!enable);
}

void BackupFrame::showProgressFrame(bool show)
{
    m_covering = show;
    m_window.showProgressFrame(show);
    if (show)
        placeProgressFrame();
}

void BackupFrame::placeProgressFrame()
{
    // Over the list and the buttons only: the status view below stays in sight.
    QWidget *cover = m_window.ProgressFrame();
    if (!m_covering || !cover->isVisible() || !m_listArea->isVisible())
        return;
    const QPoint at = m_listArea->mapTo(m_window.centralWidget(), QPoint(0, 0));
    cover->setGeometry(QRect(at, m_listArea->size()));
}

bool BackupFrame::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_window.centralWidget() && event->type() == QEvent::Resize && m_covering)
        QTimer::singleShot(0, this, &BackupFrame::placeProgressFrame);
    return QWidget::eventFilter(watched, event);
}

void BackupFrame::setBusy(bool busy)
{
    m_busy.set(busy);
}

void BackupFrame::setCaption(const QString &caption)
{
    m_window.setWindowTitle(caption);
}

void BackupFrame::shapeEvent(int step)
{
    m_window.shapeEvent(step);
}

QString BackupFrame::sName() const
{
    const auto *field = m_window.findChild<QLineEdit *>(QStringLiteral("sName"));
    return field ? field->text() : QString();
}

void BackupFrame::setSName(const QString &name)
{
    if (auto *field = m_window.findChild<QLineEdit *>(QStringLiteral("sName")))
        field->setText(name);
}

void BackupFrame::setFileToSend(const QString &path)
{
    if (auto *field = m_window.findChild<QLineEdit *>(QStringLiteral("FileToSend")))
        field->setText(path);
}

void BackupFrame::setPagePointer(const QString &pointer)
{
    m_pagePointer->setText(QStringLiteral("Backup web page: ") + pointer);
}
