#include "LinkCheckDialog.h"

#include "BuildStartup.h"

#include <QApplication>
#include <QBrush>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

enum Column
{
    NameColumn,
    CategoryColumn,
    AddressColumn,
    ResultColumn
};

QColor verdictColour(LinkVerdict verdict)
{
    switch (verdict) {
    case LinkVerdict::Ok:
        return QColor(0x1b, 0x7a, 0x2e);
    case LinkVerdict::Moved:
        return QColor(0xb3, 0x5c, 0x00);
    case LinkVerdict::Dead:
        return QColor(0xc0, 0x1c, 0x28);
    case LinkVerdict::Unchecked:
        break;
    }
    return QColor(0x70, 0x70, 0x70);
}

} // namespace

QString VerdictWord(LinkVerdict verdict)
{
    switch (verdict) {
    case LinkVerdict::Ok:
        return QStringLiteral("ok");
    case LinkVerdict::Moved:
        return QStringLiteral("moved");
    case LinkVerdict::Dead:
        return QStringLiteral("dead");
    case LinkVerdict::Unchecked:
        break;
    }
    return QStringLiteral("not checked");
}

LinkCheckDialog::LinkCheckDialog(QList<CheckedLink> links, LinkCheckOptions options,
                                 QWidget *parent)
    : QDialog(parent), m_links(std::move(links)), m_checker(options)
{
    setObjectName(QStringLiteral("frmCheckLinks"));
    setWindowTitle(QStringLiteral("Check Links"));
    resize(820, 520);
    m_outcomes.resize(m_links.size());
    auto *layout = new QVBoxLayout(this);
    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("CheckStatus"));
    m_status->setWordWrap(true);
    layout->addWidget(m_status);
    m_progress = new QProgressBar(this);
    m_progress->setObjectName(QStringLiteral("CheckProgress"));
    m_progress->setRange(0, std::max<int>(1, int(m_links.size())));
    m_progress->setValue(0);
    layout->addWidget(m_progress);

    m_list = new QTreeWidget(this);
    m_list->setObjectName(QStringLiteral("CheckList"));
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setColumnCount(4);
    m_list->setHeaderLabels({QStringLiteral("Page Link"), QStringLiteral("Category"),
                             QStringLiteral("Address"), QStringLiteral("Result")});
    m_list->header()->resizeSection(NameColumn, 190);
    m_list->header()->resizeSection(CategoryColumn, 120);
    m_list->header()->resizeSection(AddressColumn, 240);
    m_list->setUpdatesEnabled(false);
    for (const CheckedLink &link : m_links) {
        auto *item = new QTreeWidgetItem(m_list);
        item->setText(NameColumn, link.name);
        item->setText(CategoryColumn, link.category);
        item->setText(AddressColumn, link.url);
        item->setToolTip(AddressColumn, link.url);
        markItem(item, LinkVerdict::Unchecked, QStringLiteral("waiting"));
    }
    m_list->setUpdatesEnabled(true);
    layout->addWidget(m_list, 1);

    auto *buttons = new QHBoxLayout;
    m_update = new QPushButton(QStringLiteral("Update Moved Links"), this);
    m_update->setObjectName(QStringLiteral("UpdateMovedButton"));
    m_update->setToolTip(QStringLiteral("Point each ticked moved link at its new address"));
    m_update->setEnabled(false);
    m_cancel = new QPushButton(QStringLiteral("Cancel"), this);
    m_cancel->setObjectName(QStringLiteral("CancelCheckButton"));
    m_close = new QPushButton(QStringLiteral("Close"), this);
    m_close->setObjectName(QStringLiteral("CloseCheckButton"));
    buttons->addWidget(m_update);
    buttons->addStretch(1);
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_close);
    layout->addLayout(buttons);

    connect(m_cancel, &QPushButton::clicked, this, &LinkCheckDialog::CancelCheckButton_Click);
    connect(m_update, &QPushButton::clicked, this, [this] { UpdateMovedButton_Click(); });
    connect(m_close, &QPushButton::clicked, this, &LinkCheckDialog::reject);
    connect(&m_checker, &LinkChecker::checked, this, &LinkCheckDialog::checked);
    connect(&m_checker, &LinkChecker::finished, this, &LinkCheckDialog::ended);
    connect(m_list, &QTreeWidget::itemChanged, this, [this] {
        if (m_ended)
            showCounts(); // a tick changed
    });
    connect(&m_checker, &LinkChecker::requestStarted, this, [this](int index) {
        if (QTreeWidgetItem *item = m_list->topLevelItem(index))
            item->setText(ResultColumn, QStringLiteral("asking..."));
    });
    showCounts();
}

LinkCheckDialog::~LinkCheckDialog() = default;

void LinkCheckDialog::start()
{
    QStringList urls;
    for (const CheckedLink &link : m_links)
        urls << link.url;
    if (urls.isEmpty()) {
        ended(false);
        return;
    }
    m_checker.start(urls);
    showCounts();
}

QString LinkCheckDialog::statusText() const
{
    return m_status->text();
}

void LinkCheckDialog::markItem(QTreeWidgetItem *item, LinkVerdict verdict, const QString &text)
{
    const QColor colour = verdictColour(verdict);
    item->setText(ResultColumn, verdict == LinkVerdict::Unchecked
                                    ? text
                                    : VerdictWord(verdict) + QStringLiteral(": ") + text);
    item->setToolTip(ResultColumn, text);
    item->setForeground(ResultColumn, QBrush(colour));
    item->setData(ResultColumn, Qt::UserRole, VerdictWord(verdict));
    QStyle *style = QApplication::style();
    switch (verdict) {
    case LinkVerdict::Ok:
        item->setIcon(NameColumn, style->standardIcon(QStyle::SP_DialogApplyButton));
        break;
    case LinkVerdict::Moved:
        item->setIcon(NameColumn, style->standardIcon(QStyle::SP_ArrowForward));
        break;
    case LinkVerdict::Dead:
        item->setIcon(NameColumn, style->standardIcon(QStyle::SP_MessageBoxCritical));
        break;
    case LinkVerdict::Unchecked:
        item->setIcon(NameColumn, QIcon());
        break;
    }
}

void LinkCheckDialog::checked(int index, const LinkCheckOutcome &outcome)
{
    if (index < 0 || index >= m_outcomes.size() || m_ended)
        return;
    m_outcomes[index] = outcome;
    ++m_done;
    QTreeWidgetItem *item = m_list->topLevelItem(index);
    markItem(item, outcome.verdict, outcome.text);
    if (outcome.verdict == LinkVerdict::Moved) {
        // The offer: ticked, the link will be pointed at its new address.
        item->setCheckState(NameColumn, Qt::Checked);
        item->setToolTip(ResultColumn, outcome.redirects.join(QLatin1Char('\n')));
    } else if (!outcome.redirects.isEmpty()) {
        item->setToolTip(ResultColumn, outcome.text + QLatin1Char('\n') +
                                           outcome.redirects.join(QLatin1Char('\n')));
    }
    m_progress->setValue(m_done);
    emit linkMarked(m_links.at(index).path, outcome.verdict, outcome.text);
    showCounts();
}

void LinkCheckDialog::ended(bool cancelled)
{
    if (m_ended)
        return;
    m_ended = true;
    m_cancelled = cancelled || m_cancelled;
    for (int i = 0; i < m_outcomes.size(); ++i) {
        if (m_outcomes.at(i).verdict == LinkVerdict::Unchecked)
            markItem(m_list->topLevelItem(i), LinkVerdict::Unchecked,
                     QStringLiteral("not checked (cancelled)"));
    }
    m_cancel->setEnabled(false);
    showCounts();
    emit checkFinished(m_cancelled);
}

void LinkCheckDialog::showCounts()
{
    int ok = 0, moved = 0, dead = 0;
    for (const LinkCheckOutcome &outcome : m_outcomes) {
        ok += outcome.verdict == LinkVerdict::Ok;
        moved += outcome.verdict == LinkVerdict::Moved;
        dead += outcome.verdict == LinkVerdict::Dead;
    }
    const int total = int(m_links.size());
    const QString counts = QStringLiteral("%1 ok, %2 moved, %3 dead.").arg(ok).arg(moved).arg(dead);
    QString text;
    if (!m_ended && m_checker.running())
        text =
            QStringLiteral("Checking the Page Links: %1 of %2 answered. ").arg(m_done).arg(total) +
            counts;
    else if (!m_ended)
        text = QStringLiteral("%1 Page Links to check.").arg(total);
    else if (m_cancelled)
        text =
            QStringLiteral("The check was cancelled: %1 of %2 answered. ").arg(m_done).arg(total) +
            counts;
    else
        text = QStringLiteral("All %1 Page Links checked: ").arg(total) + counts;
    bool ticked = false;
    for (int i = 0; i < m_outcomes.size(); ++i) {
        if (m_outcomes.at(i).verdict == LinkVerdict::Moved &&
            m_list->topLevelItem(i)->checkState(NameColumn) == Qt::Checked)
            ticked = true;
    }
    if (m_ended && moved > 0)
        text += QStringLiteral(" The moved links are ticked: click Update Moved Links to point "
                               "them at their new addresses.");
    m_status->setText(text);
    m_update->setEnabled(m_ended && ticked);
}

void LinkCheckDialog::CancelCheckButton_Click()
{
    if (m_ended)
        return;
    m_cancelled = true;
    m_checker.cancel();
    // The answer is at once: what has not answered stays unchecked, whatever comes later.
    ended(true);
}

int LinkCheckDialog::UpdateMovedButton_Click()
{
    if (!m_ended)
        return 0;
    QStringList updated;
    for (int i = 0; i < m_outcomes.size(); ++i) {
        LinkCheckOutcome &outcome = m_outcomes[i];
        QTreeWidgetItem *item = m_list->topLevelItem(i);
        if (outcome.verdict != LinkVerdict::Moved || item->checkState(NameColumn) != Qt::Checked)
            continue;
        const CheckedLink &link = m_links.at(i);
        if (!BuildStartup::UpdatePageLinkURL(link.path, outcome.finalUrl)) {
            markItem(item, LinkVerdict::Moved,
                     QStringLiteral("could not be updated: the Page Link's file can't be written"));
            continue;
        }
        m_links[i].url = outcome.finalUrl;
        item->setText(AddressColumn, outcome.finalUrl);
        item->setData(NameColumn, Qt::CheckStateRole, QVariant());
        outcome.verdict = LinkVerdict::Ok;
        outcome.text = QStringLiteral("updated to its new address");
        markItem(item, LinkVerdict::Ok, outcome.text);
        updated << link.path;
        emit linkMarked(link.path, LinkVerdict::Ok, outcome.text);
    }
    showCounts();
    if (!updated.isEmpty()) {
        m_status->setText(m_status->text() + QLatin1Char(' ') +
                          (updated.size() == 1
                               ? QStringLiteral("1 Page Link now leads to its new address.")
                               : QStringLiteral("%1 Page Links now lead to their new addresses.")
                                     .arg(updated.size())));
        emit linksUpdated(updated);
    }
    return int(updated.size());
}

void LinkCheckDialog::reject()
{
    if (!m_ended)
        CancelCheckButton_Click();
    QDialog::reject();
}
