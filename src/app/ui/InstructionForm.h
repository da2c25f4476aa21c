#pragma once

#include "ShellFunction.h"

#include <QDialog>

#include <functional>

class QCheckBox;

// The step-by-step instruction window of one function (index 0-5 in the order of the start
// screen), made from the page the function gave when it joined the window. Modeless, above the
// main window. Check1 says whether the page comes up again when the function is opened; ticking
// or unticking it writes the page's setting at once. MoreHelpButton calls moreHelp.
class InstructionForm final : public QDialog
{
    Q_OBJECT
public:
    InstructionForm(int index, const FunctionInstructions &page, QWidget *parent,
                    std::function<void()> moreHelp);

    int index() const { return m_index; }

    void Check1_Click();

private:
    int m_index;
    QString m_key;
    QCheckBox *m_check1 = nullptr;
};
