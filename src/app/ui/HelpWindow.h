#pragma once

#include <QDialog>

class QTextBrowser;

// The program's help window: the pages of the data folder's help/ sub-folder, one per context
// number ("<number>.html"), with links between them. Modeless; one instance per main window.
class HelpWindow final : public QDialog
{
    Q_OBJECT
public:
    explicit HelpWindow(QWidget *parent);

    // Shows the page of the context number; a missing page gets a plain notice instead.
    void showTopic(int context);
    int currentTopic() const { return m_topic; }
    QTextBrowser *browser() const { return m_browser; }

    // The help folder inside the read-only data folder.
    static QString helpFolder();
    static QString topicFile(int context);

private:
    QTextBrowser *m_browser = nullptr;
    int m_topic = 0;
};
