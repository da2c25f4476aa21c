#pragma once

#include "frmMain.h"

#include <QFrame>
#include <QLayout>
#include <QTabBar>

#include <vector>

// Six functions made for the window's own tests, with the names, settings, steps and help pages
// that the program's functions join with, so that the window can be tried without any of them.
// What each was asked to do is noted in the log.
struct ShellTestLog
{
    std::vector<std::pair<int, bool>> opened; // index, byTab
    int shown = 0;
    int loaded = 0;
    int cleanups = 0;
};

inline FunctionInstructions TestInstructions(int index)
{
    static const char *const Forms[] = {"InstructionPagePhoto",    "InstructionPageBackup",
                                        "InstructionPageSendFile", "InstructionPageBlog",
                                        "InstructionPagePortal",   "InstructionPageFTPControls"};
    static const char *const Keys[] = {"PhotoIntructionView",     "BackupInstructionView",
                                       "SendFileInstructionView", "BlogIntructionView",
                                       "PortalIntructionView",    "FTPControlInstructionView"};
    static const char *const Menus[] = {
        "Send a Photo Page Instructions", "Backup Files Instructions", "Send a File Instructions",
        "Web Log Instructions",           "Portal Instructions",       "FTP Controls Instructions"};
    static const int StepCounts[] = {6, 7, 3, 5, 7, 5};
    FunctionInstructions page;
    page.form = QString::fromLatin1(Forms[index]);
    page.key = QString::fromLatin1(Keys[index]);
    page.title = frmMain::FunctionName(index).replace(QStringLiteral("&&"), QStringLiteral("&"));
    page.menu = QString::fromLatin1(Menus[index]);
    for (int i = 0; i < StepCounts[index]; ++i)
        page.steps << QStringLiteral("Step %1 of %2").arg(i + 1).arg(page.title);
    return page;
}

inline void JoinTestFunctions(frmMain &window, ShellTestLog &log)
{
    static const int OpeningSteps[] = {0, 30, 20, 10, 50, 40};
    static const int DefaultHelp[] = {6, 8, 9, 10, 16, 17};
    const std::vector<std::vector<StepRow>> rows = {
        {{0, {0, 2, 3}, {0}, {}}, {1, {1, 2, 3}, {2, 3}, {}}, {3, {1, 2, 3}, {2, 3}, {1}}},
        {{30, {12, 13}, {12}, {}}, {31, {13}, {13}, {}}},
        {{20, {10, 11}, {10}, {}}, {21, {11}, {11}, {}}},
        {{10, {5, 6}, {5}, {}},
         {11, {6, 23}, {6}, {}},
         {16, {6, 23}, {6, 23}, {}},
         {15, {23}, {23}, {}},
         {12, {7, 24, 25}, {7}, {}},
         {22, {24}, {24}, {}},
         {23, {24, 25}, {24, 25}, {}},
         {24, {8, 9, 15, 26}, {8, 9, 15}, {}},
         {13, {7, 8, 9, 15}, {8, 9, 15}, {}},
         {14, {4, 8, 9, 15}, {8, 9, 15}, {4}}},
        {{50, {17, 18, 19, 20}, {17, 18}, {}},
         {51, {19, 20, 21}, {19, 20}, {21}},
         {52, {17, 18, 19, 20, 21}, {17, 18, 19, 20}, {21}}},
        {{40, {14, 16}, {14}, {16}}, {41, {16}, {}, {16}}},
    };
    for (int i = 0; i < frmMain::FunctionCount; ++i) {
        auto *content = new QFrame;
        content->setObjectName(QStringLiteral("TestContent_%1").arg(i));
        new QVBoxLayout(content);
        ShellFunction function;
        function.index = i;
        function.content = content;
        function.instructions = TestInstructions(i);
        function.openingStep = OpeningSteps[i];
        function.steps = rows[static_cast<size_t>(i)];
        function.defaultHelpContext = DefaultHelp[i];
        // The help page of a tab strip or a frame that the test puts into the content.
        function.helpContext = [content, i] {
            if (i == 0) {
                const auto *strip = content->findChild<QTabBar *>(QStringLiteral("TabStrip2"));
                const int tab = strip ? strip->currentIndex() : -1;
                return tab >= 0 && tab <= 2 ? 3 + tab : 0;
            }
            const auto *frame = content->findChild<QWidget *>(QStringLiteral("ExtraFrame"));
            return frame && frame->isVisible() ? 100 + i : 0;
        };
        function.opened = [&log, i](bool byTab) { log.opened.emplace_back(i, byTab); };
        if (i == 0)
            function.shown = [&window, &log] {
                ++log.shown;
                window.DoCleanup();
            };
        function.loaded = [&log] { ++log.loaded; };
        if (i == 0)
            function.cleanup = [&log] { ++log.cleanups; };
        window.addFunction(std::move(function));
    }
}
