#pragma once

#include <QDialog>

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
struct JobState;

// The program's one-line prompt. Ask() copies PromptText, UserResponse, PromptMode and
// PromptMaxLength from the state into the controls, waits modally (the event loop runs) and
// writes the answer back:
//  - OK or Enter: the text, or "||Blank||" when it is empty; PromptMode "True"/"False" when the
//    option buttons showed;
//  - Skip: "!!Skip!!";
//  - Cancel, Escape or the close box: asks "Are you sure you want to cancel?" and, on Yes,
//    "!!Skip!!"; on No the prompt stays.
// PromptMaxLength is 0 again after every answer.
class frmInputBox final : public QDialog
{
    Q_OBJECT
public:
    explicit frmInputBox(QWidget *parent);

    void Ask(JobState &state);

    // The spelling check behind SpellCheckButton; while unset, the button is hidden.
    void setSpellChecker(std::function<QString(const QString &)> checker);

    void InputBoxOK_Click();
    void SkipButton_Click();
    void InputBoxCancel_Click();
    void SpellCheckButton_Click();

protected:
    void reject() override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void load();
    void finish();

    JobState *m_state = nullptr;
    std::function<QString(const QString &)> m_spellChecker;
    QLabel *m_label1 = nullptr;
    QLineEdit *m_text1 = nullptr;
    QRadioButton *m_option[2] = {nullptr, nullptr};
    QPushButton *m_ok = nullptr;
    QPushButton *m_cancel = nullptr;
    QPushButton *m_skip = nullptr;
    QPushButton *m_spell = nullptr;
};
