#pragma once

#include <QWidget>

class FtpControlTab;
class QLabel;
class QLineEdit;
class QPushButton;
class frmMain;

// The Send a File frame: one local file goes into a directory of its own on the web space,
// and the user gets a pointer to it. FileToSend holds the local path, sName the name of the
// directory (cleaned as it is typed; asked for when left empty).
class SendFileFrame final : public QWidget
{
    Q_OBJECT
public:
    SendFileFrame(frmMain &window, FtpControlTab &tab, QWidget *parent = nullptr);

    void SelectAFileButton_Click();
    void SendThisFileButton_Click();

    QLineEdit *FileToSend() const { return m_fileToSend; }
    QLineEdit *sName() const { return m_sName; }

private:
    void sName_Change();

    frmMain &m_window;
    FtpControlTab &m_tab;
    QLineEdit *m_fileToSend = nullptr;
    QPushButton *m_selectButton = nullptr;
    QLineEdit *m_sName = nullptr;
    QPushButton *m_sendButton = nullptr;
    QLabel *m_pointer = nullptr;
    bool m_cleaning = false;
};
