#include "ReadyToSendPage.h"

#include "History.h"
#include "PhotoPage.h"
#include "PictureLoader.h"

#include <QCheckBox>
#include <QEvent>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QVBoxLayout>

namespace {

QPushButton *makeButton(const QString &name, const QString &caption, QWidget *parent)
{
    auto *button = new QPushButton(caption, parent);
    button->setObjectName(name);
    return button;
}

QListWidget *makeFileList(const QString &name, QWidget *parent)
{
    auto *list = new QListWidget(parent);
    list->setObjectName(name);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setUniformItemSizes(true);
    list->setAlternatingRowColors(true);
    list->setStyleSheet(QStringLiteral("QListWidget::item { padding: 3px 4px; }"));
    return list;
}

// Puts names into list; the names selected before stay selected, and the current row stays on
// its name where it still exists.
void fillFileList(QListWidget *list, const QStringList &names)
{
    QSet<QString> selected;
    for (const QListWidgetItem *item : list->selectedItems())
        selected.insert(item->text());
    const QString current = list->currentItem() ? list->currentItem()->text() : QString();

    const QSignalBlocker blocker(list);
    list->clear();
    list->addItems(names);
    for (int i = 0; i < list->count(); ++i) {
        QListWidgetItem *item = list->item(i);
        if (item->text() == current)
            list->setCurrentItem(item, QItemSelectionModel::NoUpdate);
        if (selected.contains(item->text()))
            item->setSelected(true);
    }
}

} // namespace

ReadyToSendPage::ReadyToSendPage(PhotoPage &page, PhotoFrameServices &services, QWidget *parent)
    : QWidget(parent), m_page(page), m_services(services)
{
    setObjectName(QStringLiteral("SelectImagesPage"));
    buildWidgets();
    clearPreview();
}

void ReadyToSendPage::buildWidgets()
{
    auto *columns = new QHBoxLayout;
    columns->setSpacing(14);
    columns->addWidget(buildSourceColumn(), 5);
    columns->addWidget(buildCopyColumn(), 4);
    columns->addWidget(buildReadyColumn(), 6);

    m_titlePrompt = new QCheckBox(QStringLiteral("Prompt for Page Titles"), this);
    m_titlePrompt->setObjectName(QStringLiteral("title_prompt"));
    m_filePrompt = new QCheckBox(QStringLiteral("Prompt for Image Descriptions"), this);
    m_filePrompt->setObjectName(QStringLiteral("file_prompt"));
    m_skipImageInfo =
        new QCheckBox(QStringLiteral("Make the image default description blank"), this);
    m_skipImageInfo->setObjectName(QStringLiteral("Skip_image_info"));

    auto *options = new QHBoxLayout;
    options->setSpacing(18);
    options->addWidget(m_titlePrompt);
    options->addWidget(m_filePrompt);
    options->addWidget(m_skipImageInfo);

    m_buildArea = new QHBoxLayout;
    m_buildArea->setObjectName(QStringLiteral("BuildArea"));
    m_buildArea->addLayout(options);
    m_buildArea->addStretch(1);

    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(10, 10, 10, 10);
    outer->setSpacing(10);
    outer->addLayout(columns, 1);
    outer->addLayout(m_buildArea);
}

QWidget *ReadyToSendPage::buildSourceColumn()
{
    auto *box = new QGroupBox(QStringLiteral("Pictures in the photo directory"), this);
    box->setObjectName(QStringLiteral("SourceFrame"));

    m_copyPath = new QLineEdit(box);
    m_copyPath->setObjectName(QStringLiteral("ChoosenCopyPath_0"));
    m_copyPath->setReadOnly(true);
    m_copyPath->setFocusPolicy(Qt::NoFocus);

    auto *change = makeButton(QStringLiteral("ChangeCopyPathButton"),
                              QStringLiteral("Select Photo Directory"), box);
    connect(change, &QPushButton::clicked, this, &ReadyToSendPage::ChangeCopyPathButton_Click);

    m_file2 = makeFileList(QStringLiteral("File2"), box);
    m_file2->installEventFilter(this);
    connect(m_file2, &QListWidget::itemSelectionChanged, this,
            &ReadyToSendPage::updateSelectionButtons);
    connect(m_file2, &QListWidget::itemClicked, this,
            [this](QListWidgetItem *item) { showPreview(sourcePath(item->text())); });

    auto *selectAll =
        makeButton(QStringLiteral("FromSelectAllButton"), QStringLiteral("Select All"), box);
    connect(selectAll, &QPushButton::clicked, this, &ReadyToSendPage::FromSelectAllButton_Click);
    m_editButtons[5] = makeButton(QStringLiteral("EditButtons_5"), QStringLiteral("Delete"), box);
    m_editButtons[5]->setToolTip(QStringLiteral("Delete the selected pictures from the photo "
                                                "directory itself"));

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(selectAll);
    buttons->addStretch(1);
    buttons->addWidget(m_editButtons[5]);

    auto *layout = new QVBoxLayout(box);
    layout->addWidget(change);
    layout->addWidget(m_copyPath);
    layout->addWidget(m_file2, 1);
    layout->addLayout(buttons);
    return box;
}

QWidget *ReadyToSendPage::buildCopyColumn()
{
    auto *column = new QWidget(this);
    column->setObjectName(QStringLiteral("CopyFrame"));

    const QString captions[3] = {QStringLiteral("Copy"), QStringLiteral("Rotate Left && Copy"),
                                 QStringLiteral("Rotate Right && Copy")};
    auto *copyBox = new QGroupBox(QStringLiteral("Copy to the Ready to Send list"), column);
    copyBox->setObjectName(QStringLiteral("CopyBox"));
    auto *copyLayout = new QVBoxLayout(copyBox);
    for (int i = 0; i < 3; ++i) {
        m_copyButtons[i] = makeButton(QStringLiteral("CopyButton_%1").arg(i), captions[i], copyBox);
        m_copyButtons[i]->setMinimumHeight(32);
        copyLayout->addWidget(m_copyButtons[i]);
    }
    connect(m_copyButtons[0], &QPushButton::clicked, this, &ReadyToSendPage::CopyPhotoPlain);
    connect(m_copyButtons[1], &QPushButton::clicked, this, &ReadyToSendPage::CopyPhotoLeft);
    connect(m_copyButtons[2], &QPushButton::clicked, this, &ReadyToSendPage::CopyPhotoRight);

    m_preFix = new QLineEdit(QStringLiteral("50"), copyBox);
    m_preFix->setObjectName(QStringLiteral("PreFix"));
    m_preFix->setMaximumWidth(90);
    m_preFix->installEventFilter(this);
    auto *groupRow = new QHBoxLayout;
    groupRow->addWidget(new QLabel(QStringLiteral("Group Number "), copyBox));
    groupRow->addWidget(m_preFix);
    groupRow->addStretch(1);
    copyLayout->addLayout(groupRow);

    // Shown while a copy runs: how far it is, and its Cancel.
    m_copyProgress = new QLabel(copyBox);
    m_copyProgress->setObjectName(QStringLiteral("CopyProgress"));
    m_cancelCopy =
        makeButton(QStringLiteral("CancelCopy"), QStringLiteral("Cancel"), copyBox);
    m_cancelCopy->setToolTip(QStringLiteral("Stop copying: the pictures not yet begun stay "
                                            "selected"));
    connect(m_cancelCopy, &QPushButton::clicked, this, &ReadyToSendPage::CancelCopy_Click);
    auto *progressRow = new QHBoxLayout;
    progressRow->addWidget(m_copyProgress, 1);
    progressRow->addWidget(m_cancelCopy);
    copyLayout->addLayout(progressRow);
    m_copyProgress->hide();
    m_cancelCopy->hide();

    m_currentImage = new QLabel(column);
    m_currentImage->setObjectName(QStringLiteral("CurrentImage"));
    m_currentImage->setAlignment(Qt::AlignCenter);
    m_currentImage->setMinimumSize(200, 150);
    m_currentImage->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    m_currentImage->setFrameShape(QFrame::StyledPanel);
    m_currentImage->setStyleSheet(QStringLiteral(
        "#CurrentImage { background: #3c3f41; color: #b8bcbf; border-radius: 4px; }"));
    m_currentImage->setWordWrap(true);
    m_currentImage->installEventFilter(this);
    auto *zoomHint = new QLabel(QStringLiteral("(Double-Click to Zoom) "), column);
    zoomHint->setObjectName(QStringLiteral("Image6"));
    zoomHint->setAlignment(Qt::AlignCenter);
    zoomHint->setEnabled(false);

    auto *paint = new QPushButton(QStringLiteral("Paint"), column);
    paint->setObjectName(QStringLiteral("Command4"));
    paint->setToolTip(QStringLiteral("Open the picture shown above in the paint window"));
    connect(paint, &QPushButton::clicked, this, &ReadyToSendPage::Command4_Click);
    auto *under = new QHBoxLayout;
    under->addWidget(zoomHint, 1);
    under->addWidget(paint);

    auto *layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(copyBox);
    layout->addWidget(m_currentImage, 1);
    layout->addLayout(under);
    return column;
}

QWidget *ReadyToSendPage::buildReadyColumn()
{
    auto *box = new QGroupBox(QStringLiteral("Ready to Send"), this);
    box->setObjectName(QStringLiteral("ReadyFrame"));

    m_uploadPath = new QLineEdit(box);
    m_uploadPath->setObjectName(QStringLiteral("ChoosenUploadPath_0"));
    m_uploadPath->setReadOnly(true);
    m_uploadPath->setFocusPolicy(Qt::NoFocus);

    m_file3 = makeFileList(QStringLiteral("File3"), box);
    m_file3->installEventFilter(this);
    connect(m_file3, &QListWidget::itemClicked, this,
            [this](QListWidgetItem *item) { File3_Click(m_file3->row(item)); });
    connect(m_file3, &QListWidget::itemSelectionChanged, this,
            &ReadyToSendPage::updateSelectionButtons);
    m_readyCount = new QLabel(box);
    m_readyCount->setObjectName(QStringLiteral("ReadyCount"));

    const QString captions[8] = {QStringLiteral("Title"),     QStringLiteral("Intro."),
                                 QStringLiteral("Clear All"), QStringLiteral("Save All"),
                                 QStringLiteral("Delete"),    QString(),
                                 QStringLiteral("Close"),     QStringLiteral("Print List")};
    for (int i : {0, 1, 2, 3, 4, 7})
        m_editButtons[i] = makeButton(QStringLiteral("EditButtons_%1").arg(i), captions[i], box);
    m_editButtons[0]->setToolTip(QStringLiteral("Edit the page title"));
    m_editButtons[1]->setToolTip(QStringLiteral("Edit the page introduction"));
    m_editButtons[4]->setToolTip(QStringLiteral("Take the selected pictures off the list"));
    for (int i : {0, 1, 2, 3, 4, 5, 7})
        connect(m_editButtons[i], &QPushButton::clicked, this, [this, i] { EditButtons_Click(i); });

    auto *listButtons = new QGridLayout;
    listButtons->addWidget(m_editButtons[4], 0, 0);
    listButtons->addWidget(m_editButtons[2], 0, 1);
    listButtons->addWidget(m_editButtons[3], 0, 2);
    listButtons->addWidget(m_editButtons[7], 0, 3);
    listButtons->addWidget(m_editButtons[0], 1, 0);
    listButtons->addWidget(m_editButtons[1], 1, 1);

    auto *layout = new QVBoxLayout(box);
    layout->addWidget(m_uploadPath);
    layout->addWidget(m_file3, 1);
    layout->addWidget(m_readyCount);
    layout->addLayout(listButtons);
    layout->addWidget(buildEditPanel());
    return box;
}

QGroupBox *ReadyToSendPage::buildEditPanel()
{
    m_editFrame = new QGroupBox(QStringLiteral("Edit Text"), this);
    m_editFrame->setObjectName(QStringLiteral("EditFrame"));

    m_text1 = new QPlainTextEdit(m_editFrame);
    m_text1->setObjectName(QStringLiteral("Text1"));
    m_text1->setTabChangesFocus(true);
    m_text1->setMinimumHeight(60);
    m_text1->setMaximumHeight(110);
    connect(m_text1, &QPlainTextEdit::textChanged, this, &ReadyToSendPage::Text1_Change);

    m_orderLabel = new QLabel(QStringLiteral("          Order"), m_editFrame);
    m_orderLabel->setObjectName(QStringLiteral("OrderLabel"));
    m_orderPhotos = new QLineEdit(m_editFrame);
    m_orderPhotos->setObjectName(QStringLiteral("OrderPhotos"));
    m_orderPhotos->setMaximumWidth(80);
    m_orderPhotos->installEventFilter(this);

    m_leftRight[0] = new QRadioButton(QStringLiteral("Left  -Image-"), m_editFrame);
    m_leftRight[0]->setObjectName(QStringLiteral("LeftRight_0"));
    m_leftRight[1] = new QRadioButton(QStringLiteral("Right"), m_editFrame);
    m_leftRight[1]->setObjectName(QStringLiteral("LeftRight_1"));
    for (int i = 0; i < 2; ++i)
        connect(m_leftRight[i], &QRadioButton::clicked, this, [this, i] { LeftRight_Click(i); });

    m_editButtons[6] =
        makeButton(QStringLiteral("EditButtons_6"), QStringLiteral("Close"), m_editFrame);
    m_editButtons[6]->setToolTip(QStringLiteral("Close the edit panel"));
    connect(m_editButtons[6], &QPushButton::clicked, this, [this] { EditButtons_Click(6); });

    auto *row = new QHBoxLayout;
    row->addWidget(m_leftRight[0]);
    row->addWidget(m_leftRight[1]);
    row->addWidget(m_orderLabel);
    row->addWidget(m_orderPhotos);
    row->addStretch(1);
    row->addWidget(m_editButtons[6]);

    auto *layout = new QVBoxLayout(m_editFrame);
    layout->addWidget(m_text1);
    layout->addLayout(row);
    m_editFrame->hide();
    return m_editFrame;
}

void ReadyToSendPage::setSourceFolder(const QString &folder)
{
    m_sourceFolder = folder;
    m_copyPath->setText(folder);
    m_copyPath->setToolTip(folder);
    m_file2->clearSelection();
    refreshSource();
}

void ReadyToSendPage::setWorkingFolder(const QString &folder)
{
    m_workingFolder = folder;
    m_uploadPath->setText(folder);
    m_uploadPath->setToolTip(folder);
    refreshReady();
}

void ReadyToSendPage::refreshSource()
{
    fillFileList(m_file2, ListSourcePictureFiles(m_sourceFolder));
    updateSelectionButtons();
}

void ReadyToSendPage::refreshReady()
{
    fillFileList(m_file3, ListPictureFiles(m_workingFolder));
    const int count = m_file3->count();
    m_readyCount->setText(count == 1 ? QStringLiteral("1 picture on the list")
                                     : QStringLiteral("%1 pictures on the list").arg(count));
    updateSelectionButtons();
}

void ReadyToSendPage::updateSelectionButtons()
{
    const bool source = !m_file2->selectedItems().isEmpty();
    for (QPushButton *button : m_copyButtons)
        button->setEnabled(source && !m_copying);
    m_editButtons[5]->setEnabled(source);
    m_editButtons[4]->setEnabled(!m_file3->selectedItems().isEmpty());
    const bool any = m_file3->count() > 0;
    m_editButtons[2]->setEnabled(any);
    m_editButtons[7]->setEnabled(any);
}

QString ReadyToSendPage::readyPath(const QString &name) const
{
    return m_workingFolder + QLatin1Char('/') + name;
}

QString ReadyToSendPage::sourcePath(const QString &name) const
{
    return m_sourceFolder + QLatin1Char('/') + name;
}

void ReadyToSendPage::showPreview(const QString &path)
{
    clearPreview();
    // Fitted by the upright size: a photo stored sideways is turned before it is measured.
    const QSize size = ReadPictureSize(path);
    const QSize box = m_currentImage->contentsRect().size();
    const QImage image = size.isValid() && box.isValid()
                             ? ReadPictureScaled(path, size.scaled(box, Qt::KeepAspectRatio))
                             : ReadPicture(path);
    if (image.isNull())
        return; // a file that is not a picture leaves the preview empty
    m_currentImage->setPixmap(QPixmap::fromImage(image));
    m_previewPath = path;
}

void ReadyToSendPage::clearPreview()
{
    m_currentImage->clear();
    m_currentImage->setText(QStringLiteral("Click a picture to see it here"));
    m_previewPath.clear();
}

void ReadyToSendPage::Command4_Click()
{
    if (m_services.openPaint)
        m_services.openPaint(m_previewPath);
}

bool ReadyToSendPage::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut) {
        if (watched == m_preFix)
            PreFix_LostFocus();
        else if (watched == m_orderPhotos)
            OrderPhotos_LostFocus();
    } else if (event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (watched == m_file2 && (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)) {
            if (QListWidgetItem *item = m_file2->currentItem())
                item->setSelected(!item->isSelected());
            return true;
        }
        if (watched == m_file3 &&
            (key->key() == Qt::Key_Backspace || key->key() == Qt::Key_Delete)) {
            DeleteFromReady();
            return true;
        }
        if ((watched == m_preFix || watched == m_orderPhotos) &&
            (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)) {
            if (watched == m_preFix)
                PreFix_LostFocus();
            else
                OrderPhotos_LostFocus();
            return true;
        }
    } else if (event->type() == QEvent::MouseButtonDblClick && watched == m_currentImage) {
        if (!m_previewPath.isEmpty() && m_services.zoomPicture)
            m_services.zoomPicture(m_previewPath);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
