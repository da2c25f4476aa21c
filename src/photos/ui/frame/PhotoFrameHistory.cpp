#include "PhotoFrameHistory.h"

#include "Folders.h"
#include "Helpers.h"
#include "History.h"
#include "JobUi.h"
#include "PhotoPage.h"

#include <QDir>
#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const QString Tarnwick = QStringLiteral("Tarnwick");
const QString NoFileSelected = QStringLiteral("No file has been selected.");

} // namespace

PhotoFrameHistory::PhotoFrameHistory(PhotoPage &page, PhotoFrameServices &services, QWidget *parent)
    : QWidget(parent), m_page(page), m_services(services)
{
    setObjectName(QStringLiteral("UpdatePhotoPage"));

    auto *frame = new QGroupBox(QStringLiteral("History"), this);
    frame->setObjectName(QStringLiteral("HistoryFrame"));

    m_file4 = new QListWidget(frame);
    m_file4->setObjectName(QStringLiteral("File4_0"));
    m_file4->setSelectionMode(QAbstractItemView::SingleSelection);
    m_file4->setAlternatingRowColors(true);
    connect(m_file4, &QListWidget::itemSelectionChanged, this, &PhotoFrameHistory::updateButtons);

    m_showHst = new QPushButton(QStringLiteral("Show History File Details"), frame);
    m_showHst->setObjectName(QStringLiteral("ShowHst"));
    connect(m_showHst, &QPushButton::clicked, this, &PhotoFrameHistory::ShowHst_Click);
    m_deleteHst = new QPushButton(QStringLiteral("Delete the Selected History File"), frame);
    m_deleteHst->setObjectName(QStringLiteral("DeleteHstButton"));
    m_deleteHst->setEnabled(false);
    connect(m_deleteHst, &QPushButton::clicked, this, &PhotoFrameHistory::DeleteHstButton_Click);

    m_file4->setStyleSheet(QStringLiteral("QListWidget::item { padding: 3px 4px; }"));
    m_file4->setMinimumWidth(320);
    m_file4->setMaximumWidth(560);
    for (QPushButton *button : {m_showHst, m_deleteHst}) {
        button->setMinimumHeight(32);
        button->setMinimumWidth(button->sizeHint().width() + 24);
    }
    auto *hint = new QLabel(QStringLiteral("Each page saved or sent is kept here as a History "
                                           "file. Choose one to see what it holds."),
                            frame);
    hint->setWordWrap(true);
    hint->setMaximumWidth(320);

    auto *buttons = new QVBoxLayout;
    buttons->addWidget(hint);
    buttons->addSpacing(8);
    buttons->addWidget(m_showHst);
    buttons->addWidget(m_deleteHst);
    buttons->addStretch(1);

    auto *listRow = new QHBoxLayout;
    listRow->setSpacing(14);
    listRow->addWidget(m_file4, 1);
    listRow->addLayout(buttons);
    listRow->addStretch(1);

    auto *pointerCaption = new QLabel(QStringLiteral("Web Page Pointer"), frame);
    m_pagePointer = new QLabel(frame);
    m_pagePointer->setObjectName(QStringLiteral("FTP_page_pointer"));
    m_pagePointer->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pagePointer->setWordWrap(true);
    auto *pointerRow = new QHBoxLayout;
    pointerRow->addWidget(pointerCaption);
    pointerRow->addWidget(m_pagePointer, 1);

    // The thumbnails' addresses, for a user who links to one picture: a few lines to read and
    // copy from, not to edit.
    auto *thumbnailsCaption = new QLabel(QStringLiteral("Thumbnail Pointers"), frame);
    m_thumbnailPointers = new QPlainTextEdit(frame);
    m_thumbnailPointers->setObjectName(QStringLiteral("FTP_pointer"));
    m_thumbnailPointers->setReadOnly(true);
    m_thumbnailPointers->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_thumbnailPointers->setMaximumHeight(
        5 * m_thumbnailPointers->fontMetrics().lineSpacing() +
        2 * m_thumbnailPointers->frameWidth() + 8 +
        m_thumbnailPointers->style()->pixelMetric(QStyle::PM_ScrollBarExtent));

    auto *frameLayout = new QVBoxLayout(frame);
    frameLayout->addLayout(listRow, 1);
    frameLayout->addLayout(pointerRow);
    frameLayout->addWidget(thumbnailsCaption);
    frameLayout->addWidget(m_thumbnailPointers);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 10, 10, 10);
    layout->addWidget(frame);

    refreshFiles();
}

void PhotoFrameHistory::refreshFiles()
{
    const QString selected = selectedFile();
    QStringList names = QDir(Folders::HistoryFolder())
                            .entryList({QStringLiteral("*.hst")}, QDir::Files, QDir::NoSort);
    std::sort(names.begin(), names.end(), [](const QString &a, const QString &b) {
        return a.compare(b, Qt::CaseInsensitive) < 0;
    });
    const QSignalBlocker blocker(m_file4);
    m_file4->clear();
    m_file4->addItems(names);
    const auto found = m_file4->findItems(selected, Qt::MatchExactly);
    if (!selected.isEmpty() && !found.isEmpty())
        found.first()->setSelected(true);
    updateButtons();
}

QString PhotoFrameHistory::selectedFile() const
{
    const auto selected = m_file4->selectedItems();
    return selected.isEmpty() ? QString() : selected.first()->text();
}

// The delete button waits for the first file chosen and then stays: with nothing selected it
// says so. ShowHst is always there and says the same.
void PhotoFrameHistory::updateButtons()
{
    if (!selectedFile().isEmpty())
        m_deleteHst->setEnabled(true);
}

void PhotoFrameHistory::ShowHst_Click()
{
    const QString name = selectedFile();
    if (name.isEmpty()) {
        m_services.ui->Message(NoFileSelected, Tarnwick);
        return;
    }
    m_page.FileName = name;
    const HistoryResult read = ReadHistory(m_page);
    emit recordReplaced();
    if (!read.ok) {
        m_services.ui->Message(QStringLiteral("Select a History file and retry."), Tarnwick,
                               JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return;
    }
    ShowHistory(m_page, *m_services.ui);
}

void PhotoFrameHistory::DeleteHstButton_Click()
{
    if (m_services.ui->Message(
            QStringLiteral("Are you sure you want to delete the selected items?"),
            QStringLiteral("Delete Files"), JobUi::Buttons::OkCancel, JobUi::Icon::Question,
            JobUi::Answer::Cancel) != JobUi::Answer::Ok)
        return;
    const QString name = selectedFile();
    if (name.isEmpty()) {
        m_services.ui->Message(NoFileSelected, Tarnwick);
        return;
    }
    const QString path = Folders::HistoryFolder() + QLatin1Char('/') + name;
    if (!QFileInfo(path).isFile()) {
        m_services.ui->Message(QStringLiteral("File not found."), Tarnwick);
        refreshFiles();
        return;
    }
    DoKill(path);
    refreshFiles();
}

void PhotoFrameHistory::setPagePointer(const QString &pointer)
{
    m_pagePointer->setText(pointer);
}

QString PhotoFrameHistory::pagePointer() const
{
    return m_pagePointer->text();
}

void PhotoFrameHistory::setThumbnailPointers(const QString &pointers)
{
    QString shown = pointers;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (shown.endsWith(QLatin1Char('\n')))
        shown.chop(1);
    m_thumbnailPointers->setPlainText(shown);
}

QString PhotoFrameHistory::thumbnailPointers() const
{
    return m_thumbnailPointers->toPlainText();
}
