#include "frmMain.h"

#include "HelpWindow.h"
#include "InstructionForm.h"
#include "Settings.h"
#include "StepRing.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFrame>
#include <QLayout>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTabBar>
#include <QTimer>

#include <cstdlib>

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

void frmMain::addFunction(ShellFunction function)
{
    const int index = function.index;
    if (index < 0 || index >= FunctionCount || hasFunction(index) || !function.content)
        return;
    const auto at = static_cast<size_t>(index);
    m_tabFrames[at]->layout()->addWidget(function.content);
    for (MenuEntry &entry : function.menuEntries)
        addMenuEntry(entry);
    m_instrMenus[at]->setText(function.instructions.menu);
    m_instrMenus[at]->setVisible(!function.instructions.menu.isEmpty());
    m_functionButtons[at]->setEnabled(true);
    m_tabMenus[at]->setEnabled(true);
    m_tabStrip->setTabEnabled(index, true);
    m_functions[at] = std::move(function);
}

bool frmMain::hasFunction(int index) const
{
    return index >= 0 && index < FunctionCount &&
           m_functions[static_cast<size_t>(index)].content != nullptr;
}

void frmMain::addMenuEntry(MenuEntry entry)
{
    if (QMenu *menu = entry.action ? menuTitled(entry.menu) : nullptr) {
        entry.action->setParent(this);
        menu->addAction(entry.action);
    }
}

QMenu *frmMain::menuTitled(const QString &title)
{
    const auto plain = [](QString text) { return text.remove(QLatin1Char('&')); };
    const auto menus = menuBar()->actions();
    for (QAction *action : menus) {
        if (action->menu() && plain(action->text()) == plain(title))
            return action->menu();
    }
    auto *menu = new QMenu(title, this);
    menuBar()->insertMenu(m_helpMenu->menuAction(), menu);
    return menu;
}

void frmMain::FunctionSelectButton_Click(int index)
{
    if (!hasFunction(index))
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
    if (!hasFunction(index))
        return;
    showTabFrame(index);
    unloadInstructionForms();
    openFunction(index, true);
}

void frmMain::openFunction(int index, bool byTab)
{
    m_startFrame->hide();
    const ShellFunction &function = m_functions[static_cast<size_t>(index)];
    // The function's own first steps (its inner tabs, its lists) come before its instructions.
    if (function.opened)
        function.opened(byTab);
    // The setting is read anew each time, so a page hidden on one function stays hidden there
    // only.
    if (!function.instructions.key.isEmpty() &&
        GetSetting(function.instructions.key, QStringLiteral("Show")) == QStringLiteral("Show"))
        showInstructionForm(index);
    shapeEvent(function.openingStep);
    if (function.shown)
        function.shown();
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
    if (!hasFunction(index))
        return nullptr;
    auto &page = m_instructions[static_cast<size_t>(index)];
    if (!page)
        page = new InstructionForm(index, m_functions[static_cast<size_t>(index)].instructions,
                                   this, [this] { HelpButton_Click(); });
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

bool frmMain::exitConfirmed()
{
    return QMessageBox::question(this, QStringLiteral("Exit"),
                                 QStringLiteral("Are you sure you want to exit from Tarnwick?"),
                                 QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) == QMessageBox::Yes;
}

void frmMain::askExit()
{
    if (exitConfirmed())
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
    if (!exitConfirmed()) {
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
        if (!m_tabFrames[static_cast<size_t>(i)]->isVisible())
            continue;
        const ShellFunction &function = m_functions[static_cast<size_t>(i)];
        if (function.helpContext) {
            if (const int context = function.helpContext(); context > 0)
                return context;
        }
        return function.defaultHelpContext;
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
