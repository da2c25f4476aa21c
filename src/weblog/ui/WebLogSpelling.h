#pragma once

#include "WordChecker.h"

#include <QObject>
#include <QString>

#include <memory>

class WebLogFrame;
class frmMain;

// The program's spelling check: Hunspell with the dictionary of the user's language (else
// en_US) and the spelling dialog frmSpelling. It serves the main window as its spell checker
// (the prompt's spelling button) and answers Options > Check Spelling and Check Spelling - All.
// Without a dictionary it is not handed to the window, so those entries stay disabled.
class WebLogSpelling final : public QObject
{
    Q_OBJECT
public:
    // A child of frame; window and frame must outlive it.
    WebLogSpelling(frmMain &window, WebLogFrame &frame);

    // True when a dictionary is installed.
    bool available() const;

    // Text in, checked text out, with the user's answers in the dialog between. With spell
    // checking off, without a dictionary, or without an unknown word the text comes back as it
    // is; a cancel gives back the text as it then stands. Never blanks text.
    QString SpellChecker(const QString &text);
    // Whether the last check ended by Cancel.
    bool lastCancelled() const { return m_cancelled; }

    // Options > Check Spelling: the open section's text (or the photo page's pop-up editor),
    // then "The spelling check is complete.".
    void CheckSpellingMenu_Click();
    // Options > Check Spelling - All: every section of the open Web Log in turn.
    void CheckSpellingAllMenu_Click();

    WordChecker *checker();

private:
    bool checkOpenText();

    frmMain &m_window;
    WebLogFrame &m_frame;
    std::unique_ptr<WordChecker> m_checker;
    bool m_cancelled = false;
};
