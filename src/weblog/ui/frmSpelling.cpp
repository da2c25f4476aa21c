#include "frmSpelling.h"

#include "WordChecker.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTextEdit>

frmSpelling::frmSpelling(SpellingSession &session, WordChecker &checker, QWidget *parent)
    : QDialog(parent), m_session(session), m_checker(checker)
{
    setObjectName(QStringLiteral("frmSpelling"));
    setWindowTitle(QStringLiteral("Spelling: ") + checker.dictionaryName());
    setModal(true);
    auto *grid = new QGridLayout(this);

    m_word = new QLabel(this);
    m_word->setObjectName(QStringLiteral("SpellWord"));
    grid->addWidget(m_word, 0, 0);
    m_context = new QTextEdit(this);
    m_context->setObjectName(QStringLiteral("SpellContext"));
    m_context->setReadOnly(true);
    m_context->setMinimumSize(420, 90);
    grid->addWidget(m_context, 1, 0);

    grid->addWidget(new QLabel(QStringLiteral("Change To:"), this), 2, 0);
    m_changeTo = new QLineEdit(this);
    m_changeTo->setObjectName(QStringLiteral("SpellChangeTo"));
    grid->addWidget(m_changeTo, 3, 0);
    grid->addWidget(new QLabel(QStringLiteral("Suggestions:"), this), 4, 0);
    m_suggestions = new QListWidget(this);
    m_suggestions->setObjectName(QStringLiteral("SpellSuggestions"));
    grid->addWidget(m_suggestions, 5, 0);

    auto *buttons = new QVBoxLayout;
    const auto button = [&](const char *name, const char *caption) {
        auto *made = new QPushButton(QString::fromLatin1(caption), this);
        made->setObjectName(QString::fromLatin1(name));
        made->setAutoDefault(false);
        buttons->addWidget(made);
        return made;
    };
    QPushButton *ignore = button("SpellIgnore", "Ignore");
    QPushButton *ignoreAll = button("SpellIgnoreAll", "Ignore All");
    m_change = button("SpellChange", "Change");
    m_changeAll = button("SpellChangeAll", "Change All");
    QPushButton *add = button("SpellAdd", "Add");
    add->setToolTip(QStringLiteral("Adds the word to your own word list"));
    buttons->addStretch(1);
    QPushButton *cancel = button("SpellCancel", "Cancel");
    grid->addLayout(buttons, 1, 1, 5, 1);
    m_change->setDefault(true);

    connect(ignore, &QPushButton::clicked, this, &frmSpelling::Ignore_Click);
    connect(ignoreAll, &QPushButton::clicked, this, &frmSpelling::IgnoreAll_Click);
    connect(m_change, &QPushButton::clicked, this, &frmSpelling::Change_Click);
    connect(m_changeAll, &QPushButton::clicked, this, &frmSpelling::ChangeAll_Click);
    connect(add, &QPushButton::clicked, this, &frmSpelling::Add_Click);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_suggestions, &QListWidget::currentTextChanged, m_changeTo, &QLineEdit::setText);
    connect(m_suggestions, &QListWidget::itemDoubleClicked, this, &frmSpelling::Change_Click);
    // An empty replacement would take the word out of the text: Change waits for a word.
    connect(m_changeTo, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_change->setEnabled(!text.trimmed().isEmpty());
        m_changeAll->setEnabled(!text.trimmed().isEmpty());
    });
    showCurrent();
}

void frmSpelling::showCurrent()
{
    const Misspelling *word = m_session.current();
    if (!word) {
        // Closed once the dialog has come up; before that, it is not shown at all.
        if (isVisible())
            accept();
        else
            setResult(QDialog::Accepted);
        return;
    }
    m_word->setText(QStringLiteral("Not in Dictionary: <b>%1</b>").arg(word->word.toHtmlEscaped()));
    qsizetype at = 0;
    const QString context = m_session.context(&at);
    m_context->setHtml(context.left(at).toHtmlEscaped() +
                       QStringLiteral("<span style=\"color:#c00000; font-weight:bold\">") +
                       context.mid(at, word->length).toHtmlEscaped() + QStringLiteral("</span>") +
                       context.mid(at + word->length).toHtmlEscaped());
    const QStringList suggestions = m_checker.suggestions(word->word);
    m_suggestions->clear();
    m_suggestions->addItems(suggestions);
    m_changeTo->setText(suggestions.isEmpty() ? word->word : suggestions.first());
    if (!suggestions.isEmpty())
        m_suggestions->setCurrentRow(0);
    m_changeTo->setFocus();
    m_changeTo->selectAll();
}

void frmSpelling::Ignore_Click()
{
    m_session.ignore();
    showCurrent();
}

void frmSpelling::IgnoreAll_Click()
{
    m_session.ignoreAll();
    showCurrent();
}

void frmSpelling::Change_Click()
{
    m_session.change(m_changeTo->text().trimmed());
    showCurrent();
}

void frmSpelling::ChangeAll_Click()
{
    m_session.changeAll(m_changeTo->text().trimmed());
    showCurrent();
}

void frmSpelling::Add_Click()
{
    m_session.add();
    showCurrent();
}
