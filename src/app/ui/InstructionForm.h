#pragma once

#include <QDialog>

#include <functional>

class QCheckBox;

// The step-by-step instruction window of one function (index 0-5 in the order of the start
// screen): InstructionPagePhoto, InstructionPageBackup, InstructionPageSendFile,
// InstructionPageBlog, InstructionPagePortal, InstructionPageFTPControls. Modeless, above the
// main window. Check1 says whether the page comes up again when the function is opened; ticking
// or unticking it writes its setting at once. MoreHelpButton calls moreHelp.
class InstructionForm final : public QDialog
{
    Q_OBJECT
public:
    InstructionForm(int index, QWidget *parent, std::function<void()> moreHelp);

    int index() const { return m_index; }

    // The setting that holds "Show" or "Hide" for the page of function index.
    static QString settingKey(int index);
    // The form's name, e.g. "InstructionPagePhoto".
    static QString formName(int index);
    // The Help menu's entry for the page, e.g. "Send a File Instructions".
    static QString menuText(int index);
    // The step texts, in order.
    static QStringList steps(int index);

    void Check1_Click();

private:
    int m_index;
    QCheckBox *m_check1 = nullptr;
};
