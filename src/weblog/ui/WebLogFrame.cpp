#include "WebLogFrame.h"

#include "JobState.h"
#include "JobUi.h"

#include <QBoxLayout>
#include <QEvent>
#include <QFocusEvent>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>

QString ToRecordText(const QString &boxText)
{
    QString text = boxText;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    return text;
}

QString ToBoxText(const QString &recordText)
{
    QString text = recordText;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text;
}

WebLogFrame::WebLogFrame(BlogRecords &records, WebLogServices services, QWidget *parent)
    : QWidget(parent), m_records(records), m_services(std::move(services))
{
    setObjectName(QStringLiteral("WebLogFrame"));
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);

    m_tabStrip = new QTabBar(this);
    m_tabStrip->setObjectName(QStringLiteral("TabStrip3"));
    for (const char *title :
         {"Web Logs", "Page Settings", "Sections", "Pointers and Comments", "Master Page"})
        m_tabStrip->addTab(QString::fromLatin1(title));
    m_tabStrip->setExpanding(false);
    column->addWidget(m_tabStrip);

    QWidget *(WebLogFrame::*const builders[5])() = {
        &WebLogFrame::buildWebLogsPage, &WebLogFrame::buildSettingsPage,
        &WebLogFrame::buildSectionsPage, &WebLogFrame::buildPointersPage,
        &WebLogFrame::buildMasterPage};
    for (int i = 0; i < 5; ++i) {
        auto *frame = new QFrame(this);
        frame->setObjectName(QStringLiteral("BlogPageFrame_%1").arg(i + 1));
        frame->setFrameShape(QFrame::StyledPanel);
        auto *inner = new QVBoxLayout(frame);
        inner->addWidget((this->*builders[i])());
        column->addWidget(frame, 1);
        m_pages[static_cast<size_t>(i)] = frame;
    }

    auto *bar = new QHBoxLayout;
    m_label2 = new QLabel(this);
    m_label2->setObjectName(QStringLiteral("Label2"));
    QFont bold = m_label2->font();
    bold.setBold(true);
    m_label2->setFont(bold);
    m_preview = new QPushButton(QStringLiteral("Preview"), this);
    m_preview->setObjectName(QStringLiteral("BlogPreviewButton"));
    m_build = new QPushButton(QStringLiteral("Build Web Log"), this);
    m_build->setObjectName(QStringLiteral("BlogBuild"));
    for (QPushButton *button : {m_preview, m_build})
        button->setMinimumHeight(34);
    m_build->setMinimumWidth(160);
    bar->addWidget(m_label2, 1);
    bar->addWidget(m_preview);
    bar->addWidget(m_build);
    column->addLayout(bar);

    connect(m_tabStrip, &QTabBar::tabBarClicked, this, [this](int tab) { TabStrip3_Click(tab); });
    enableWebLogFrames(false);
    showPage(0);
}

QFrame *WebLogFrame::BlogPageFrame(int element) const
{
    return element >= 1 && element <= 5 ? m_pages[static_cast<size_t>(element - 1)] : nullptr;
}

bool WebLogFrame::webLogOpen() const
{
    return m_pages[1]->isEnabled();
}

void WebLogFrame::enableWebLogFrames(bool enabled)
{
    for (int element : {2, 3, 4})
        BlogPageFrame(element)->setEnabled(enabled);
}

void WebLogFrame::showPage(int tab)
{
    for (QFrame *frame : m_pages)
        frame->hide();
    if (tab >= 0 && tab < 5)
        m_pages[static_cast<size_t>(tab)]->show();
}

void WebLogFrame::TabStrip3_Click(int tab)
{
    if (tab < 0)
        return;
    BlogText_LostFocus();
    for (QLineEdit *field : {m_ptrCategory, m_dispName, m_ptrUrl})
        field->setEnabled(false);
    // Tabs but the list and the sections need an open Web Log.
    if (tab != 0 && tab != 2 && !webLogOpen()) {
        message(QStringLiteral("You need to select or create a page to view."));
        tab = 0;
    }
    m_tabStrip->setCurrentIndex(tab);
    showPage(tab);
    if (tab == 4)
        refreshWebLogs();
}

void WebLogFrame::opened(bool byTab)
{
    refreshWebLogs();
    refreshMasterPointers();
    if (!byTab) {
        m_tabStrip->setCurrentIndex(0);
        showPage(0);
    }
}

int WebLogFrame::helpContext() const
{
    switch (m_tabStrip->currentIndex()) {
    case 0:
    case 1:
        return 10;
    case 2:
        if (m_itemSelectFrame->isVisible())
            return m_uploadList ? 11 : 12;
        return 13;
    case 3:
        return 14;
    case 4:
        return 15;
    default:
        return 10;
    }
}

void WebLogFrame::shapeEvent(int step)
{
    if (m_services.shapeEvent)
        m_services.shapeEvent(step);
}

void WebLogFrame::message(const QString &text, const QString &title)
{
    m_services.ui->Message(text, title, JobUi::Buttons::Ok, JobUi::Icon::Information);
}

bool WebLogFrame::confirm(const QString &text, const QString &title)
{
    return m_services.ui->Message(text, title, JobUi::Buttons::OkCancel, JobUi::Icon::Question) ==
           JobUi::Answer::Ok;
}

QString WebLogFrame::ask(const QString &question, const QString &defaultText, int maxLength)
{
    return AskUser(*m_services.ui, *m_services.state, question, defaultText, QStringLiteral("Hide"),
                   maxLength);
}

QString WebLogFrame::selectedName(QListWidget *list) const
{
    const QList<QListWidgetItem *> items = list->selectedItems();
    return items.isEmpty() ? QString() : items.first()->text();
}

void WebLogFrame::fillList(QListWidget *list, const QStringList &names)
{
    const QSignalBlocker block(list);
    list->clear();
    list->addItems(names);
}

bool WebLogFrame::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut) {
        if (watched == m_orderItem)
            OrderItem_LostFocus();
        else if (watched == m_blogDirName)
            BlogDirName_LostFocus();
    } else if (event->type() == QEvent::FocusIn && watched == m_blogDirName && webLogOpen()) {
        // Told each time the user goes into the field, not when the focus comes back to it.
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if (reason == Qt::MouseFocusReason || reason == Qt::TabFocusReason ||
            reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason)
            QMetaObject::invokeMethod(
                this,
                [this] {
                    message(QStringLiteral("Changing this directory will only change the "
                                           "directory destination on the web space."));
                },
                Qt::QueuedConnection);
    }
    return QWidget::eventFilter(watched, event);
}
