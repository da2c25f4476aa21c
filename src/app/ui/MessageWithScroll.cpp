#include "MessageWithScroll.h"

#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

MessageWithScroll::MessageWithScroll(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("MessageWithScroll"));
    setWindowTitle(QStringLiteral("Tarnwick"));
    setModal(true);

    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(QStringLiteral("Text1"));
    m_text->setReadOnly(true);
    m_text->setMinimumSize(520, 300);

    auto *close = new QPushButton(QStringLiteral("OK"), this);
    close->setObjectName(QStringLiteral("Command1"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(close);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 14, 14, 12);
    layout->addWidget(m_text);
    layout->addLayout(buttons);
}

void MessageWithScroll::ShowText(const QString &text)
{
    m_text->setPlainText(text);
    m_text->moveCursor(QTextCursor::Start);
    exec();
}

QString MessageWithScroll::text() const
{
    return m_text->toPlainText();
}
