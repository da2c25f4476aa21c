#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTextEdit;
class SpellingSession;
class WordChecker;

// The spelling dialog: each unknown word of the session in its context, the dictionary's
// suggestions and the answers Ignore, Ignore All, Change, Change All, Add (to the personal word
// list) and Cancel. It closes by itself (accepted) when the last word is answered; Cancel or
// the close box reject it. The text is the session's: whatever was changed before a cancel
// stays changed.
class frmSpelling final : public QDialog
{
    Q_OBJECT
public:
    frmSpelling(SpellingSession &session, WordChecker &checker, QWidget *parent = nullptr);

    // Shows the current word, or accepts the dialog when there is none.
    void showCurrent();

    void Ignore_Click();
    void IgnoreAll_Click();
    void Change_Click();
    void ChangeAll_Click();
    void Add_Click();

private:
    SpellingSession &m_session;
    WordChecker &m_checker;
    QTextEdit *m_context = nullptr;
    QLabel *m_word = nullptr;
    QLineEdit *m_changeTo = nullptr;
    QListWidget *m_suggestions = nullptr;
    QPushButton *m_change = nullptr;
    QPushButton *m_changeAll = nullptr;
};
