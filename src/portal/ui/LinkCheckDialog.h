#pragma once

#include "LinkCheck.h"

#include <QDialog>
#include <QList>

class QLabel;
class QProgressBar;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

// One Page Link to check: where its record is and what it shows.
struct CheckedLink
{
    QString category; // the Category's name
    QString name;     // the Page Link's name (its file's, less ".ptr")
    QString path;     // its .ptr
    QString url;
};

// frmCheckLinks: the Page Links with the answer to each as it comes (CheckList: ok, moved with
// the new address, dead with the reason), the count so far (CheckStatus, CheckProgress), Cancel
// (CancelCheckButton) that stops the check at once, and Update Moved Links (UpdateMovedButton)
// that points the ticked moved links at their new addresses. The window stays in use
// throughout: the check runs on a thread of its own.
class LinkCheckDialog final : public QDialog
{
    Q_OBJECT
public:
    LinkCheckDialog(QList<CheckedLink> links, LinkCheckOptions options, QWidget *parent = nullptr);
    ~LinkCheckDialog() override;

    // Starts the check (the dialog shows first).
    void start();
    bool running() const { return m_checker.running(); }
    const QList<CheckedLink> &links() const { return m_links; }
    const QList<LinkCheckOutcome> &outcomes() const { return m_outcomes; }
    QTreeWidget *list() const { return m_list; }
    QString statusText() const;

    void CancelCheckButton_Click();
    // Points every ticked moved link at its new address; returns how many were changed.
    int UpdateMovedButton_Click();

signals:
    // A link's answer came (or it was updated to its new address: verdict Ok).
    void linkMarked(const QString &path, LinkVerdict verdict, const QString &text);
    void checkFinished(bool cancelled);
    // Links were pointed at new addresses.
    void linksUpdated(const QStringList &paths);

protected:
    void reject() override;

private:
    void checked(int index, const LinkCheckOutcome &outcome);
    void ended(bool cancelled);
    void showCounts();
    void markItem(QTreeWidgetItem *item, LinkVerdict verdict, const QString &text);

    QList<CheckedLink> m_links;
    QList<LinkCheckOutcome> m_outcomes;
    LinkChecker m_checker;
    int m_done = 0;
    bool m_cancelled = false;
    bool m_ended = false;

    QLabel *m_status = nullptr;
    QProgressBar *m_progress = nullptr;
    QTreeWidget *m_list = nullptr;
    QPushButton *m_cancel = nullptr;
    QPushButton *m_update = nullptr;
    QPushButton *m_close = nullptr;
};

// What the list and File21 show for a verdict: "ok", "moved", "dead", "not checked".
QString VerdictWord(LinkVerdict verdict);
