#include "BookmarkImportDialog.h"

#include <QBrush>
#include <QDialogButtonBox>
#include <QFont>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QThread>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

QString count(int n)
{
    return QLocale(QLocale::English).toString(n);
}

QString plural(int n, const char *one, const char *many)
{
    return count(n) + QLatin1Char(' ') + QString::fromLatin1(n == 1 ? one : many);
}

} // namespace

BookmarkImportDialog::BookmarkImportDialog(const QString &fileName, const BookmarkFileResult &file,
                                           ImportPlan plan, QWidget *parent)
    : QDialog(parent), m_plan(std::move(plan))
{
    setObjectName(QStringLiteral("frmImportBookmarks"));
    setWindowTitle(QStringLiteral("Import Bookmarks"));
    resize(760, 560);
    auto *layout = new QVBoxLayout(this);

    QStringList lines;
    lines << QStringLiteral("<b>%1</b>: %2 in %3.")
                 .arg(fileName.toHtmlEscaped(), plural(file.links + file.notWeb, "link", "links"),
                      plural(file.folderCount, "folder", "folders"));
    if (m_plan.links > 0) {
        int categories = 0;
        for (const ImportCategory &category : m_plan.categories)
            categories += category.links.isEmpty() ? 0 : 1;
        lines << QStringLiteral("%1 will be added to %2 (%3).")
                     .arg(plural(m_plan.links, "Page Link", "Page Links"),
                          plural(categories, "Category", "Categories"),
                          m_plan.newCategories == categories
                              ? QStringLiteral("all of them new")
                              : count(m_plan.newCategories) + QStringLiteral(" of them new"));
    } else {
        lines << QStringLiteral("Every link of the file is in the Portal already: there is "
                                "nothing to add.");
    }
    lines << QStringLiteral("Each folder that holds links becomes a Category named by where it "
                            "stands, as \"Travel - Trains\" for the folder Trains inside Travel.");
    if (m_plan.duplicates > 0)
        lines << QStringLiteral("%1 in its Category already and will be skipped.")
                     .arg(m_plan.duplicates == 1
                              ? QStringLiteral("1 link is")
                              : count(m_plan.duplicates) + QStringLiteral(" links are"));
    if (m_plan.renamed > 0)
        lines << QStringLiteral("%1 changed to be a file name or to stand apart from a link of "
                                "the same name.")
                     .arg(m_plan.renamed == 1
                              ? QStringLiteral("1 name is")
                              : count(m_plan.renamed) + QStringLiteral(" names are"));
    if (m_plan.notWeb > 0)
        lines << QStringLiteral("%1 not web pages (javascript:, place:, file: ...) and left out.")
                     .arg(m_plan.notWeb == 1 ? QStringLiteral("1 link is")
                                             : count(m_plan.notWeb) + QStringLiteral(" links are"));
    m_summary = new QLabel(lines.join(QStringLiteral("<br>")), this);
    m_summary->setObjectName(QStringLiteral("ImportSummary"));
    m_summary->setWordWrap(true);
    m_summary->setTextFormat(Qt::RichText);
    layout->addWidget(m_summary);

    m_tree = new QTreeWidget(this);
    m_tree->setObjectName(QStringLiteral("ImportTree"));
    m_tree->setColumnCount(3);
    m_tree->setHeaderLabels({QStringLiteral("Category / Page Link"), QStringLiteral("Address"),
                             QStringLiteral("Note")});
    m_tree->setUniformRowHeights(true);
    m_tree->header()->resizeSection(0, 300);
    m_tree->header()->resizeSection(1, 280);
    layout->addWidget(m_tree, 1);
    fillTree();

    m_progress = new QProgressBar(this);
    m_progress->setObjectName(QStringLiteral("ImportProgress"));
    m_progress->setRange(0, std::max(1, m_plan.links));
    m_progress->setValue(0);
    m_progress->hide();
    layout->addWidget(m_progress);

    auto *buttons = new QDialogButtonBox(this);
    m_import = buttons->addButton(QStringLiteral("Import"), QDialogButtonBox::AcceptRole);
    m_import->setObjectName(QStringLiteral("ImportButton"));
    m_import->setEnabled(m_plan.links > 0);
    m_import->setDefault(m_plan.links > 0);
    m_cancel = buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    m_cancel->setObjectName(QStringLiteral("CancelImportButton"));
    layout->addWidget(buttons);
    connect(m_import, &QPushButton::clicked, this, &BookmarkImportDialog::ImportButton_Click);
    connect(m_cancel, &QPushButton::clicked, this, &BookmarkImportDialog::CancelImportButton_Click);
}

BookmarkImportDialog::~BookmarkImportDialog()
{
    if (m_thread) {
        *m_stop = true;
        m_thread->wait(); // one link's write at most
        delete m_thread;
    }
}

QString BookmarkImportDialog::summary() const
{
    return m_summary->text();
}

void BookmarkImportDialog::fillTree()
{
    const QBrush grey(QColor(0x80, 0x80, 0x80));
    m_tree->setUpdatesEnabled(false);
    for (const ImportCategory &category : m_plan.categories) {
        auto *top = new QTreeWidgetItem(m_tree);
        top->setText(0, category.name);
        QStringList notes;
        notes << (category.exists ? QStringLiteral("adds to the Category there")
                                  : QStringLiteral("new Category"));
        notes << plural(int(category.links.size()), "link to add", "links to add");
        if (!category.duplicates.isEmpty())
            notes << plural(int(category.duplicates.size()), "there already", "there already");
        top->setText(2, notes.join(QStringLiteral(", ")));
        top->setToolTip(0, QStringLiteral("From ") + category.sources.join(QStringLiteral("; ")));
        QFont bold = top->font(0);
        bold.setBold(true);
        top->setFont(0, bold);
        for (const ImportLink &link : category.links) {
            auto *item = new QTreeWidgetItem(top);
            item->setText(0, link.name);
            item->setText(1, link.url);
            if (link.renamed) {
                item->setText(2, QStringLiteral("named from \"") + link.title + QLatin1Char('"'));
                item->setToolTip(2, link.title);
            }
        }
        for (const Bookmark &skipped : category.duplicates) {
            auto *item = new QTreeWidgetItem(top);
            item->setText(0, skipped.title);
            item->setText(1, skipped.url);
            item->setText(2, QStringLiteral("there already: skipped"));
            for (int c = 0; c < 3; ++c)
                item->setForeground(c, grey);
        }
    }
    if (m_tree->topLevelItemCount() > 0 && m_tree->topLevelItemCount() <= 12)
        m_tree->expandAll();
    else if (m_tree->topLevelItemCount() > 0)
        m_tree->topLevelItem(0)->setExpanded(true);
    m_tree->setUpdatesEnabled(true);
}

void BookmarkImportDialog::ImportButton_Click()
{
    if (m_writing || m_plan.links == 0)
        return;
    m_writing = true;
    m_import->setEnabled(false);
    m_progress->show();
    m_cancel->setToolTip(
        QStringLiteral("Stop after the link being written; what is written stays"));
    const ImportPlan plan = m_plan;
    const auto stop = m_stop;
    m_thread = QThread::create([this, plan, stop] {
        const ImportResult result =
            BookmarkImport::ApplyBookmarkImport(plan, [this, stop](int done, int total) {
                QMetaObject::invokeMethod(
                    this,
                    [this, done, total] {
                        m_progress->setValue(done);
                        emit progressed(done, total);
                    },
                    Qt::QueuedConnection);
                return !*stop;
            });
        QMetaObject::invokeMethod(
            this, [this, result] { written(result); }, Qt::QueuedConnection);
    });
    m_thread->start();
}

void BookmarkImportDialog::written(const ImportResult &result)
{
    if (m_thread) {
        m_thread->wait();
        delete m_thread;
        m_thread = nullptr;
    }
    m_writing = false;
    m_result = result;
    accept();
    emit imported(result);
}

void BookmarkImportDialog::CancelImportButton_Click()
{
    if (m_writing) {
        *m_stop = true;
        m_cancel->setEnabled(false);
        return;
    }
    QDialog::reject();
}

void BookmarkImportDialog::reject()
{
    CancelImportButton_Click();
}
