#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class QAction;
class QWidget;

// One row of the step ring table: the rings that a step shows, and which of them it colours
// green or yellow; the others keep their colour.
struct StepRow
{
    int step = 0;
    std::vector<int> visible;
    std::vector<int> green;
    std::vector<int> yellow;
};

// The step-by-step instruction page of a function.
struct FunctionInstructions
{
    QString form;  // the form's objectName, e.g. "InstructionPagePhoto"
    QString key;   // the setting that holds "Show" or "Hide", e.g. "PhotoIntructionView"
    QString title; // heading, e.g. "Send a Photo Page"
    QString menu;  // the Help menu's entry, e.g. "Send a Photo Page Instructions"
    QStringList steps;
};

// A menu entry that a function adds to one of the window's menus ("File", "Options", "Tools",
// "Help"; a title that the window doesn't have yet makes a new menu before Help).
struct MenuEntry
{
    QString menu;
    QAction *action = nullptr; // the window takes it over
};

// What a function hands the main window when it joins it (frmMain::addFunction). Every part but
// index and content is optional.
struct ShellFunction
{
    int index = -1;             // 0-5: its button on the start screen, its tab and its frame
    QWidget *content = nullptr; // laid into TabFrame(index); the window owns it from then on
    FunctionInstructions instructions;
    int openingStep = 333;      // the step raised each time the function is opened
    std::vector<StepRow> steps; // the rows of the ring table that its steps raise
    // The help page of what the frame shows; 0 leaves the default context of the function.
    std::function<int()> helpContext;
    int defaultHelpContext = 2;
    // The function is being opened by its button or menu (byTab false) or by TabStrip1 (true):
    // its frame already shows; its instruction page and rings follow this.
    std::function<void(bool byTab)> opened;
    // Then, after its instruction page and rings.
    std::function<void()> shown;
    // The end of the window's Load, in the order of the functions' indexes.
    std::function<void()> loaded;
    // DoCleanup: at start-up and each time Send a Photo Page opens.
    std::function<void()> cleanup;
    std::vector<MenuEntry> menuEntries;
};
