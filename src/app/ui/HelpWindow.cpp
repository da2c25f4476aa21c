#include "HelpWindow.h"

#include "Folders.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

HelpWindow::HelpWindow(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("HelpWindow"));
    setWindowTitle(QStringLiteral("Tarnwick Help"));
    setModal(false);

    m_browser = new QTextBrowser(this);
    m_browser->setObjectName(QStringLiteral("HelpText"));
    m_browser->setOpenExternalLinks(true);
    m_browser->document()->setDocumentMargin(16);

    auto *back = new QPushButton(QStringLiteral("Back"), this);
    back->setObjectName(QStringLiteral("HelpBack"));
    back->setEnabled(false);
    connect(back, &QPushButton::clicked, m_browser, &QTextBrowser::backward);
    connect(m_browser, &QTextBrowser::backwardAvailable, back, &QPushButton::setEnabled);
    auto *contents = new QPushButton(QStringLiteral("Contents"), this);
    contents->setObjectName(QStringLiteral("HelpContents"));
    connect(contents, &QPushButton::clicked, this, [this] {
        m_browser->setSource(QUrl::fromLocalFile(helpFolder() + QStringLiteral("/index.html")));
    });
    auto *close = new QPushButton(QStringLiteral("Close"), this);
    close->setObjectName(QStringLiteral("HelpClose"));
    connect(close, &QPushButton::clicked, this, &QDialog::close);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(back);
    buttons->addWidget(contents);
    buttons->addStretch();
    buttons->addWidget(close);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 10, 10, 10);
    layout->addWidget(m_browser, 1);
    layout->addLayout(buttons);
    resize(680, 620);
}

QString HelpWindow::helpFolder()
{
    return Folders::ProgramFolder() + QStringLiteral("/help");
}

QString HelpWindow::topicFile(int context)
{
    return helpFolder() + QStringLiteral("/%1.html").arg(context);
}

void HelpWindow::showTopic(int context)
{
    m_topic = context;
    const QString file = topicFile(context);
    if (QFileInfo::exists(file)) {
        m_browser->setSource(QUrl::fromLocalFile(file));
    } else {
        m_browser->setHtml(
            QStringLiteral("<h2>Help page not found</h2><p>The help page for this screen could "
                           "not be found. It should be the file:</p><p><tt>%1</tt></p><p>Tarnwick "
                           "may need to be installed again.</p>")
                .arg(file.toHtmlEscaped()));
    }
    show();
    raise();
    activateWindow();
}
