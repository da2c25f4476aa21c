#include "frmInputBox.h"

#include "JobState.h"

#include <QApplication>
#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
// QLineEdit's own limit, which stands for "no limit".
constexpr int NoLimit = 32767;
} // namespace

frmInputBox::frmInputBox(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmInputBox"));
    setWindowTitle(QStringLiteral("Tarnwick"));
    setModal(true);

    m_label1 = new QLabel(this);
    m_label1->setObjectName(QStringLiteral("Label1"));
    m_label1->setWordWrap(true);
    m_label1->setMinimumWidth(420);
    m_label1->setTextFormat(Qt::PlainText);

    m_text1 = new QLineEdit(this);
    m_text1->setObjectName(QStringLiteral("Text1"));
    connect(m_text1, &QLineEdit::returnPressed, this, &frmInputBox::InputBoxOK_Click);

    m_option[0] = new QRadioButton(QStringLiteral("Yes"), this);
    m_option[0]->setObjectName(QStringLiteral("Option1_0"));
    m_option[1] = new QRadioButton(QStringLiteral("No"), this);
    m_option[1]->setObjectName(QStringLiteral("Option1_1"));
    auto *group = new QButtonGroup(this);
    group->addButton(m_option[0]);
    group->addButton(m_option[1]);

    m_ok = new QPushButton(QStringLiteral("OK"), this);
    m_ok->setObjectName(QStringLiteral("InputBoxOK"));
    m_cancel = new QPushButton(QStringLiteral("Cancel"), this);
    m_cancel->setObjectName(QStringLiteral("InputBoxCancel"));
    m_skip = new QPushButton(QStringLiteral("Skip"), this);
    m_skip->setObjectName(QStringLiteral("SkipButton"));
    m_spell = new QPushButton(QStringLiteral("Check Spelling"), this);
    m_spell->setObjectName(QStringLiteral("SpellCheckButton"));
    m_spell->setVisible(false);
    for (QPushButton *button : {m_ok, m_cancel, m_skip, m_spell})
        button->setAutoDefault(false);

    connect(m_ok, &QPushButton::clicked, this, &frmInputBox::InputBoxOK_Click);
    connect(m_cancel, &QPushButton::clicked, this, &frmInputBox::InputBoxCancel_Click);
    connect(m_skip, &QPushButton::clicked, this, &frmInputBox::SkipButton_Click);
    connect(m_spell, &QPushButton::clicked, this, &frmInputBox::SpellCheckButton_Click);

    auto *options = new QHBoxLayout;
    options->addWidget(m_option[0]);
    options->addWidget(m_option[1]);
    options->addStretch();

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_spell);
    buttons->addStretch();
    buttons->addWidget(m_skip);
    buttons->addWidget(m_ok);
    buttons->addWidget(m_cancel);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(18, 18, 18, 14);
    layout->setSpacing(10);
    layout->addWidget(m_label1);
    layout->addWidget(m_text1);
    layout->addLayout(options);
    layout->addSpacing(4);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetMinimumSize);
}

void frmInputBox::setSpellChecker(std::function<QString(const QString &)> checker)
{
    m_spellChecker = std::move(checker);
}

void frmInputBox::Ask(JobState &state)
{
    m_state = &state;
    load();
    exec();
    m_state = nullptr;
}

void frmInputBox::load()
{
    JobState &state = *m_state;
    m_label1->setText(state.PromptText);
    m_text1->setMaxLength(NoLimit);
    m_text1->setText(state.UserResponse);
    const bool hideOptions = state.PromptMode == QStringLiteral("Hide");
    m_option[0]->setVisible(!hideOptions);
    m_option[1]->setVisible(!hideOptions);
    m_skip->setVisible(!hideOptions);
    if (!hideOptions) {
        if (state.PromptMode == QStringLiteral("True"))
            m_option[0]->setChecked(true);
        else
            m_option[1]->setChecked(true);
    }
    if (state.PromptMaxLength != 0)
        m_text1->setMaxLength(state.PromptMaxLength);
    m_spell->setVisible(static_cast<bool>(m_spellChecker));
    adjustSize();
    if (QWidget *owner = parentWidget(); owner && owner->isVisible()) {
        const QRect area = owner->frameGeometry();
        move(area.center() - QPoint(width() / 2, height() / 2));
    }
    m_text1->selectAll();
    m_text1->setFocus();
}

void frmInputBox::finish()
{
    m_state->PromptMaxLength = 0;
    m_text1->setMaxLength(NoLimit);
    accept();
}

void frmInputBox::InputBoxOK_Click()
{
    if (!m_state)
        return;
    JobState &state = *m_state;
    state.UserResponse = m_text1->text();
    if (state.UserResponse.isEmpty())
        state.UserResponse = JobState::Blank;
    if (state.PromptMode != QStringLiteral("Hide"))
        state.PromptMode =
            m_option[0]->isChecked() ? QStringLiteral("True") : QStringLiteral("False");
    finish();
}

void frmInputBox::SkipButton_Click()
{
    if (!m_state)
        return;
    m_state->UserResponse = JobState::Skip;
    finish();
}

void frmInputBox::InputBoxCancel_Click()
{
    if (!m_state)
        return;
    const auto answer = QMessageBox::question(this, QStringLiteral("Need to know..."),
                                              QStringLiteral("Are you sure you want to cancel?"),
                                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer != QMessageBox::Yes || !m_state)
        return;
    m_state->UserResponse = JobState::Skip;
    finish();
}

void frmInputBox::SpellCheckButton_Click()
{
    if (!m_spellChecker)
        return;
    // The prompt stays open under the spelling dialog: hiding it would end its wait.
    const QString checked = m_spellChecker(m_text1->text());
    m_text1->setText(checked);
    m_text1->setFocus();
}

void frmInputBox::reject()
{
    // Escape and the close box ask first, as the Cancel button does.
    InputBoxCancel_Click();
}

void frmInputBox::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Enter || event->key() == Qt::Key_Return) {
        InputBoxOK_Click();
        return;
    }
    QDialog::keyPressEvent(event);
}
