#include "frmMain.h"

#include "HelpWindow.h"
#include "InstructionForm.h"
#include "Settings.h"
#include "StepRing.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFrame>
#include <QMessageBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>

#include <cstdlib>

namespace {

// The step each function raises when it is opened.
constexpr int OpeningStep[frmMain::FunctionCount] = {0, 30, 20, 10, 50, 40};

// The selected tab of a subsystem's tab strip (a QTabBar or a QTabWidget); -1 when absent.
int selectedTab(const QWidget *frame, const QString &name)
{
    if (const auto *bar = frame->findChild<const QTabBar *>(name))
        return bar->currentIndex();
    if (const auto *tabs = frame->findChild<const QTabWidget *>(name))
        return tabs->currentIndex();
    return -1;
}

bool childShown(const QWidget *frame, const QString &name)
{
    const auto *child = frame->findChild<const QWidget *>(name);
    return child && child->isVisible();
}

} // namespace

void frmMain::showTabFrame(int index)
{
    for (QFrame *frame : m_tabFrames)
        frame->hide();
    m_startFrame->hide();
    m_workArea->show();
    m_tabFrames[static_cast<size_t>(index)]->show();
    for (StepRing *ring : m_rings)
        ring->follow();
}

void frmMain::FunctionSelectButton_Click(int index)
{
    if (index < 0 || index >= FunctionCount)
        return;
    unloadInstructionForms();
    m_selectingTab = true;
    m_tabStrip->setCurrentIndex(index);
    m_selectingTab = false;
    showTabFrame(index);
    openFunction(index, false);
}

void frmMain::TabStrip1_Click()
{
    const int index = m_tabStrip->currentIndex();
    if (index < 0 || index >= FunctionCount)
        return;
    showTabFrame(index);
    unloadInstructionForms();
    openFunction(index, true);
}

void frmMain::openFunction(int index, bool byTab)
{
    m_startFrame->hide();
    // The function's own first steps (its inner tabs, its lists) come before its instructions.
    for (const auto &hook : m_functionHooks)
        hook(index, byTab);
    // The setting is read anew each time, so a page hidden on one function stays hidden there
    // only.
    if (GetSetting(InstructionForm::settingKey(index), QStringLiteral("Show")) ==
        QStringLiteral("Show"))
        showInstructionForm(index);
    shapeEvent(OpeningStep[index]);
    if (index == 0)
        DoCleanup();
}

void frmMain::ReturnToStartButton_Click()
{
    for (QFrame *frame : m_tabFrames)
        frame->hide();
    m_workArea->hide();
    m_startFrame->show();
}

void frmMain::unloadInstructionForms()
{
    for (auto &page : m_instructions) {
        if (page) {
            page->hide();
            page->deleteLater();
        }
        page = nullptr;
    }
}

InstructionForm *frmMain::showInstructionForm(int index)
{
    if (index < 0 || index >= FunctionCount)
        return nullptr;
    auto &page = m_instructions[static_cast<size_t>(index)];
    if (!page)
        page = new InstructionForm(index, this, [this] { HelpButton_Click(); });
    page->show();
    page->raise();
    return page;
}

InstructionForm *frmMain::instructionForm(int index) const
{
    if (index < 0 || index >= FunctionCount)
        return nullptr;
    return m_instructions[static_cast<size_t>(index)];
}

void frmMain::askExit()
{
    const auto answer =
        QMessageBox::question(this, QStringLiteral("Exit"),
                              QStringLiteral("Are you sure you want to exit from Tarnwick?"),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer == QMessageBox::Yes)
        emit programEnding(); // at once, the connection left as it is
}

void frmMain::EndProgram(std::function<void()> endingAction)
{
    if (!endingAction)
        endingAction = [] { std::_Exit(0); };
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget *widget : windows)
        widget->hide();
    QApplication::exit(0);
    QTimer::singleShot(0, qApp, std::move(endingAction));
}

void frmMain::closeEvent(QCloseEvent *event)
{
    const auto answer =
        QMessageBox::question(this, QStringLiteral("Exit"),
                              QStringLiteral("Are you sure you want to exit from Tarnwick?"),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer != QMessageBox::Yes) {
        event->ignore();
        return;
    }
    if (m_closeHook)
        m_closeHook();
    event->accept();
    emit programEnding();
}

int frmMain::helpContext() const
{
    if (!isVisible())
        return 1;
    if (m_startFrame->isVisible())
        return 2;
    for (int i = 0; i < FunctionCount; ++i) {
        const QFrame *frame = m_tabFrames[static_cast<size_t>(i)];
        if (!frame->isVisible())
            continue;
        if (const auto &provider = m_helpProviders[static_cast<size_t>(i)]) {
            if (const int context = provider(); context > 0)
                return context;
        }
        switch (i) {
        case 0: {
            const int tab = selectedTab(frame, QStringLiteral("TabStrip2"));
            return tab >= 0 && tab <= 2 ? 3 + tab : 6;
        }
        case 1:
            return childShown(frame, QStringLiteral("BackupListView")) ? 7 : 8;
        case 2:
            return 9;
        case 3: {
            const int tab = selectedTab(frame, QStringLiteral("TabStrip3"));
            const bool picking = childShown(frame, QStringLiteral("BlogItemSelectFrame"));
            switch (tab) {
            case 1:
                return picking ? 11 : 13;
            case 2:
                return picking ? 12 : 13;
            case 3:
                return 14;
            case 4:
                return 15;
            default:
                return 10;
            }
        }
        case 4:
            return 16;
        default:
            return childShown(frame, QStringLiteral("AdvanceSettingFrame")) ? 18 : 17;
        }
    }
    return 2;
}

void frmMain::HelpButton_Click()
{
    showHelpTopic(helpContext());
}

void frmMain::showHelpTopic(int context)
{
    // Over a prompt or message box the main window's help would be blocked by it: that box gets
    // a help window of its own, gone with the box.
    QWidget *modal = QApplication::activeModalWidget();
    if (modal && modal != m_help && !m_help->isAncestorOf(modal)) {
        auto *help = new HelpWindow(modal);
        help->setAttribute(Qt::WA_DeleteOnClose);
        help->showTopic(context);
        return;
    }
    m_help->showTopic(context);
}
