#include "frmDialogPg.h"

#include "DirListBox.h"
#include "FileListModel.h"
#include "Folders.h"
#include "LocalDrives.h"
#include "PictureLoader.h"
#include "frmZoom.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <cmath>

namespace {

const QString OpenCaption = QStringLiteral("View Directory Contents");
const QString CloseCaption = QStringLiteral("Close Content View");
const QSize PreviewSize(280, 210);

QString cleanFolder(const QString &folder)
{
    return folder.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
}

QPushButton *button(const QString &name, const QString &caption, QWidget *parent)
{
    auto *widget = new QPushButton(caption, parent);
    widget->setObjectName(name);
    widget->setAutoDefault(false);
    widget->setDefault(false);
    return widget;
}

QLabel *label(const QString &name, const QString &text, QWidget *parent)
{
    auto *widget = new QLabel(text, parent);
    widget->setObjectName(name);
    return widget;
}

} // namespace

frmDialogPg::frmDialogPg(bool PickerShowsImages, const QString &startFolder, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmDialogPg"));
    setWindowTitle(QStringLiteral("Select Directory"));
    buildForm();
    resize(760, 480);

    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("Timer1"));
    m_timer->setInterval(500);
    connect(m_timer, &QTimer::timeout, this, &frmDialogPg::Timer1_Timer);
    m_timer->start();

    m_files->setPattern(PickerShowsImages ? ImagePattern() : AllFilesPattern());
    if (!m_dir->setPath(startFolder))
        m_dir->setPath(QDir::homePath());
}

QString frmDialogPg::PickFolder(QWidget *parent, const QString &startFolder, bool PickerShowsImages)
{
    frmDialogPg dialog(PickerShowsImages, startFolder, parent);
    dialog.exec();
    return dialog.NewPath();
}

QString frmDialogPg::ImagePattern()
{
    // Read as a list parted by ";", the first and last items hold the quotes and match
    // nothing: .bmp, .gif and .jpg files are what is listed.
    return QStringLiteral("\"(*.dib *.bmp *.gif *.jpg *.htm)|*.dib;*.bmp;*.gif;*.jpg;*.htm\"");
}

QString frmDialogPg::SharedFilesFolder(const QString &sharedDesktop)
{
    const QString allUsers = QStringLiteral("All Users");
    const qsizetype at = sharedDesktop.indexOf(allUsers);
    if (at < 0)
        return sharedDesktop;
    return sharedDesktop.left(at + allUsers.size()) + QStringLiteral("/Documents");
}

void frmDialogPg::buildForm()
{
    m_drive = new QComboBox(this);
    m_drive->setObjectName(QStringLiteral("Drive1"));
    for (const LocalDrive &drive : LocalDrives())
        m_drive->addItem(drive.label, drive.rootPath);

    m_dir = new DirListBox(this);
    m_dir->setObjectName(QStringLiteral("Dir1"));
    m_dir->setMinimumSize(220, 260);

    m_files = new FileListModel(this);
    m_file = new QListView(this);
    m_file->setObjectName(QStringLiteral("File1"));
    m_file->setModel(m_files);
    m_file->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_file->setMinimumWidth(180);
    m_file->hide();

    auto *lists = new QHBoxLayout;
    lists->addWidget(m_dir, 1);
    lists->addWidget(m_file, 1);
    auto *left = new QVBoxLayout;
    left->addWidget(m_drive);
    left->addLayout(lists, 1);

    const QString captions[] = {QStringLiteral("Desktop"), QStringLiteral("Documents"),
                                QStringLiteral("Pictures"), QStringLiteral("Shared files")};
    auto *shortcuts = new QGridLayout;
    for (int i = 0; i < 4; ++i) {
        QPushButton *shortcut = button(QStringLiteral("Command1_%1").arg(i), captions[i], this);
        connect(shortcut, &QPushButton::clicked, this, [this, i] { Command1_Click(i); });
        shortcuts->addWidget(shortcut, i / 2, i % 2);
    }

    m_viewContent =
        button(QStringLiteral("ViewContentButton"), QStringLiteral("View Directory Content"), this);

    m_frame = new QFrame(this);
    m_frame->setObjectName(QStringLiteral("Frame7"));
    m_frame->setFixedSize(PreviewSize);
    m_frame->setFrameShape(QFrame::NoFrame);
    QPalette framePalette = m_frame->palette();
    framePalette.setColor(QPalette::Window, framePalette.color(QPalette::Mid));
    m_frame->setPalette(framePalette);
    m_frame->setAutoFillBackground(true);
    m_image2 = new QLabel(m_frame);
    m_image2->setObjectName(QStringLiteral("Image2"));
    m_image2->setScaledContents(true);
    m_image2->setGeometry(0, 0, 0, 0);
    m_image2->installEventFilter(this);
    m_image5 = new QLabel(m_frame);
    m_image5->setObjectName(QStringLiteral("Image5"));
    m_image5->hide();

    m_label1 = label(QStringLiteral("Label1"), QStringLiteral("(Double Click to Zoom."), this);
    m_label2 = label(QStringLiteral("Label2"), QStringLiteral("Only Photo Files Are Show)"), this);
    m_label1->hide();
    m_label2->hide();

    auto *right = new QVBoxLayout;
    right->addLayout(shortcuts);
    right->addWidget(m_viewContent);
    right->addSpacing(4);
    right->addWidget(m_frame, 0, Qt::AlignHCenter);
    right->addWidget(m_label1, 0, Qt::AlignHCenter);
    right->addWidget(m_label2, 0, Qt::AlignHCenter);
    right->addStretch(1);

    m_pathText = new QLineEdit(this);
    m_pathText->setObjectName(QStringLiteral("PathText"));
    m_newPath = new QLineEdit(this);
    m_newPath->setObjectName(QStringLiteral("NewPath"));
    m_newPath->hide();
    auto *okButton = button(QStringLiteral("OKButton"), QStringLiteral("OK"), this);
    auto *cancelButton = button(QStringLiteral("CancelButton"), QStringLiteral("Cancel"), this);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(label(QStringLiteral("Label3"), QStringLiteral("Path:"), this));
    bottom->addWidget(m_pathText, 1);
    bottom->addSpacing(8);
    bottom->addWidget(okButton);
    bottom->addWidget(cancelButton);

    auto *top = new QHBoxLayout;
    top->addLayout(left, 1);
    top->addLayout(right);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(bottom);

    connect(m_drive, &QComboBox::activated, this, &frmDialogPg::Drive1_Change);
    connect(m_dir, &DirListBox::pathChanged, this, &frmDialogPg::Dir1_Change);
    connect(m_pathText, &QLineEdit::editingFinished, this, &frmDialogPg::PathText_LostFocus);
    connect(m_viewContent, &QPushButton::clicked, this, &frmDialogPg::ViewContentButton_Click);
    connect(m_file, &QListView::clicked, this, &frmDialogPg::File1_Click);
    connect(m_file->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &current) { File1_Click(current); });
    connect(okButton, &QPushButton::clicked, this, &frmDialogPg::OKButton_Click);
    connect(cancelButton, &QPushButton::clicked, this, &frmDialogPg::CancelButton_Click);
}

QString frmDialogPg::NewPath() const
{
    return m_newPath->text();
}

QString frmDialogPg::dirPath() const
{
    return m_dir->path();
}

QString frmDialogPg::filePath() const
{
    return m_files->path();
}

bool frmDialogPg::openFolder(const QString &folder)
{
    if (!m_dir->setPath(folder)) {
        showMessage(QStringLiteral("Path not found - ") + folder);
        return false;
    }
    return true;
}

void frmDialogPg::showMessage(const QString &text)
{
    QMessageBox box(QMessageBox::Information, QStringLiteral("Tarnwick"), text, QMessageBox::Ok,
                    this);
    box.setObjectName(QStringLiteral("PickerMessage"));
    box.exec();
}

void frmDialogPg::Drive1_Change(int index)
{
    openFolder(m_drive->itemData(index).toString());
}

void frmDialogPg::Dir1_Change(const QString &path)
{
    m_files->setPath(path);
    m_pathText->setText(path);
    m_image2->clear();
    m_image2->setGeometry(0, 0, 0, 0);

    // The drive list follows to the drive that holds the folder.
    int best = -1;
    qsizetype bestLength = -1;
    for (int i = 0; i < m_drive->count(); ++i) {
        const QString root = m_drive->itemData(i).toString();
        const bool holds =
            path == root || root == QStringLiteral("/") || path.startsWith(root + QLatin1Char('/'));
        if (holds && root.size() > bestLength) {
            best = i;
            bestLength = root.size();
        }
    }
    if (best >= 0) {
        const QSignalBlocker blocker(m_drive);
        m_drive->setCurrentIndex(best);
    }
}

void frmDialogPg::PathText_LostFocus()
{
    const QString text = m_pathText->text().trimmed();
    // "~" is the home folder, and a relative path goes from the open folder, as in a shell.
    QString folder = text;
    if (folder == QStringLiteral("~") || folder.startsWith(QStringLiteral("~/")))
        folder = QDir::homePath() + folder.mid(1);
    else if (!folder.isEmpty() && QDir::isRelativePath(folder))
        folder = QDir(m_dir->path()).filePath(folder);
    if (folder.isEmpty() ||
        (cleanFolder(folder) == m_dir->path() && m_files->path() == m_dir->path())) {
        m_pathText->setText(m_dir->path());
        return;
    }
    if (!m_dir->setPath(folder)) {
        showMessage(QStringLiteral("Path not found - ") + text);
        // The box shows the open folder again, so OK never hands back a path that isn't there.
        m_pathText->setText(m_dir->path());
        return;
    }
    // The same folder typed again still points both lists at it.
    m_files->setPath(m_dir->path());
    m_pathText->setText(m_dir->path());
}

void frmDialogPg::Command1_Click(int index)
{
    QString folder;
    switch (index) {
    case 0:
        folder = Folders::FindSystemFolder(Folders::SystemFolder::Desktop);
        break;
    case 1:
        folder = Folders::FindSystemFolder(Folders::SystemFolder::Documents);
        break;
    case 2:
        folder = Folders::FindSystemFolder(Folders::SystemFolder::Pictures);
        break;
    default:
        folder = SharedFilesFolder(Folders::FindSystemFolder(Folders::SystemFolder::Shared));
        break;
    }
    openFolder(folder);
}

void frmDialogPg::ViewContentButton_Click()
{
    const bool open = m_viewContent->text() != CloseCaption;
    m_viewContent->setText(open ? CloseCaption : OpenCaption);
    m_file->setVisible(open);
    m_label1->setVisible(open);
    m_label2->setVisible(open);
}

void frmDialogPg::File1_Click(const QModelIndex &index)
{
    m_image2->clear();
    m_image2->setGeometry(0, 0, 0, 0);
    if (!index.isValid())
        return;
    const QString path = m_files->filePath(index.row());
    // Image5 stands for the picture at its natural size; only its size is needed, so the
    // picture itself is decoded once, at the size of the preview.
    const QSize natural = ReadPictureSize(path);
    m_image5->resize(natural.isValid() ? natural : QSize(0, 0));
    if (!natural.isValid() || m_image5->height() <= 0)
        return;

    const double frameWidth = m_frame->width();
    const double frameHeight = m_frame->height();
    const double ratio = double(m_image5->width()) / m_image5->height();
    double height = frameHeight;
    double width = ratio * height;
    if (frameWidth < width) {
        width = frameWidth;
        height = width / ratio;
    }
    const double spare = frameWidth - width;
    const int left = spare > 0 ? int(std::lround(spare / 2)) : 0;
    const QSize size(std::max(1, int(std::lround(width))), std::max(1, int(std::lround(height))));
    const QImage picture = ReadPictureScaled(path, size);
    if (picture.isNull())
        return;
    m_image2->setGeometry(left, 0, size.width(), size.height());
    m_image2->setPixmap(QPixmap::fromImage(
        picture.size() == size
            ? picture
            : picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
}

void frmDialogPg::Image2_DblClick()
{
    const QModelIndex current = m_file->currentIndex();
    if (!current.isValid() || m_image2->pixmap().isNull() || m_image2->height() <= 0)
        return;
    const QString path = m_files->filePath(current.row());
    const double ratio = double(m_image2->width()) / m_image2->height();
    if (m_zoom)
        m_zoom->close();
    m_zoom = frmZoom::ShowPicture(path, ratio, this);
}

void frmDialogPg::OKButton_Click()
{
    if (cleanFolder(m_dir->highlightedPath()) != cleanFolder(m_files->path())) {
        showMessage(QStringLiteral(
            "The Directory select is not open, double click the directory to select"));
        return;
    }
    m_newPath->setText(m_pathText->text());
    accept();
}

void frmDialogPg::CancelButton_Click()
{
    m_newPath->clear();
    reject();
}

void frmDialogPg::Timer1_Timer()
{
    if (!isVisible() || (m_zoom && m_zoom->isVisible()))
        return;
    QWidget *active = QApplication::activeWindow();
    if (active != nullptr && active == parentWidget()) {
        raise();
        activateWindow();
    }
}

bool frmDialogPg::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_image2 && event->type() == QEvent::MouseButtonDblClick) {
        Image2_DblClick();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}
