#include "WebLogSpelling.h"

#include "BusyCursor.h"
#include "GuiJobUi.h"
#include "JobUi.h"
#include "WebLogFrame.h"
#include "frmMain.h"
#include "frmSpelling.h"

#include <QAction>
#include <QApplication>
#include <QFrame>
#include <QListWidget>
#include <QPlainTextEdit>

WebLogSpelling::WebLogSpelling(frmMain &window, WebLogFrame &frame)
    : QObject(&frame), m_window(window), m_frame(frame)
{
    setObjectName(QStringLiteral("WebLogSpelling"));
}

bool WebLogSpelling::available() const
{
    return !FindSpellingDictionary().name.isEmpty();
}

WordChecker *WebLogSpelling::checker()
{
    if (!m_checker) {
        BusyCursor busy;
        busy.set(true);
        QCoreApplication::processEvents();
        m_checker = std::make_unique<WordChecker>();
    }
    return m_checker->isReady() ? m_checker.get() : nullptr;
}

QString WebLogSpelling::SpellChecker(const QString &text)
{
    m_cancelled = false;
    if (!m_window.SpellCheckOn()->isChecked() || text.isEmpty())
        return text;
    WordChecker *words = checker();
    if (!words)
        return text;
    SpellingSession session(*words, text);
    if (!session.current())
        return text;
    frmSpelling dialog(session, *words,
                       QApplication::activeModalWidget() ? QApplication::activeModalWidget()
                                                         : static_cast<QWidget *>(&m_window));
    m_cancelled = dialog.exec() != QDialog::Accepted;
    const QString checked = session.text();
    // Whatever happened in the dialog, a text never comes back empty when it wasn't.
    return checked.isEmpty() ? text : checked;
}

// The text that Check Spelling is about: the open section's, or the photo page's pop-up editor.
bool WebLogSpelling::checkOpenText()
{
    QPlainTextEdit *box = nullptr;
    const bool webLogShown = m_window.TabFrame(3) && m_window.TabFrame(3)->isVisible();
    if (webLogShown && m_frame.webLogOpen() && !m_frame.records().section.SubTitle.isEmpty() &&
        m_frame.BlogText()->isVisible())
        box = m_frame.BlogText();
    if (!box) {
        auto *editFrame = m_window.findChild<QWidget *>(QStringLiteral("EditFrame"));
        if (editFrame && editFrame->isVisible())
            box = editFrame->findChild<QPlainTextEdit *>(QStringLiteral("Text1"));
    }
    if (!box || box->toPlainText().isEmpty())
        return false;
    box->setFocus();
    const QString before = box->toPlainText();
    const QString after = SpellChecker(before);
    if (after != before)
        box->setPlainText(after);
    box->setFocus();
    if (box == m_frame.BlogText())
        m_frame.BlogText_LostFocus();
    return true;
}

void WebLogSpelling::CheckSpellingMenu_Click()
{
    if (!checkOpenText() || m_cancelled)
        return;
    m_frame.services().ui->Message(QStringLiteral("The spelling check is complete."),
                                   QStringLiteral("Tarnwick"), JobUi::Buttons::Ok,
                                   JobUi::Icon::Information);
}

void WebLogSpelling::CheckSpellingAllMenu_Click()
{
    auto *editFrame = m_window.findChild<QWidget *>(QStringLiteral("EditFrame"));
    if ((editFrame && editFrame->isVisible()) || !m_frame.webLogOpen() ||
        !m_window.TabFrame(3)->isVisible())
        return;
    m_frame.BlogText_LostFocus();
    m_frame.TabStrip3_Click(2);
    const int count = m_frame.File5()->count();
    for (int row = 0; row < count; ++row) {
        m_frame.openSection(row);
        QCoreApplication::processEvents();
        checkOpenText();
        m_frame.BlogText_LostFocus();
        QCoreApplication::processEvents();
        if (m_cancelled)
            return;
    }
    m_frame.services().ui->Message(QStringLiteral("The spelling check is complete."),
                                   QStringLiteral("Tarnwick"), JobUi::Buttons::Ok,
                                   JobUi::Icon::Information);
}
