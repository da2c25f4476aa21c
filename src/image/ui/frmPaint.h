#pragma once

#include "PaintDocument.h"

#include <QCursor>
#include <QHash>
#include <QMainWindow>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

class PaintCanvas;
class PaintColorBar;
class PaintToolBox;
class QAction;
class QLabel;
class QMenu;
class QProgressBar;
class QPushButton;
class QScrollArea;

// "Tarnwick Paint": the paint window. It shows a PaintDocument (the picture, its undo ring, the
// floating selection, the zoom) in picPaint, offers its commands in the File, Edit, Format,
// Effect and Filter menus, its eighteen tools with their option frames in the tool box at the
// left (optTools) and its colours in the bar below (lblForeColor, lblFillColor, lblColor). Long
// work (opening, saving, filters, effects) runs off the window's thread while the window repaints;
// the status bar then shows its progress and a Cancel button.
//
// Opened by the photo function with a picture (OpenPaint) or alone with an empty one. The
// window deletes itself when closed.
class frmPaint final : public QMainWindow, private PaintHost
{
    Q_OBJECT
public:
    explicit frmPaint(QWidget *parent = nullptr);
    ~frmPaint() override;

    // Shows a paint window and opens path in it (nothing when path is ""). The window lives
    // until the user closes it.
    static frmPaint *OpenPaint(const QString &path, QWidget *parent = nullptr);
    // As OpenPaint, and returns only when the window has closed (the event loop runs meanwhile;
    // the window is deleted once control is back in the caller's loop).
    static void OpenPaintAndWait(const QString &path, QWidget *parent = nullptr);

    PaintDocument &document() { return *m_document; }

    // The dialogs the window opens; tests put answers of their own here. Each returns "" (or an
    // invalid colour) when the user cancelled.
    std::function<QString()> chooseOpenFileHook;
    std::function<QString(const QString &current)> chooseSaveFileHook;
    std::function<QString()> choosePdfFileHook; // print when no printer is installed
    std::function<QColor(const QColor &start, const QString &title)> chooseColorHook;
    // False sends Print to a PDF file even when a printer is installed.
    bool usePrinter = true;

    // File menu's Print: the picture at its full size on the printer, or in a PDF file.
    bool mnuPrint_Click();
    void mnuForegroundColor_Click();
    void mnuFillColor_Click();
    void mnuFont_Click();

    // optTools' click: chooses a tool. Its cursor file must be there, or the tool is not chosen
    // and the window says why (ShowPaintError 4). The Filter Brush pops up its filter menu, also
    // when clicked again.
    void optTools_Click(int tool);
    // The cursor of a tool's cursor file in the data folder's Cursors ("" is the arrow); nothing
    // when the file is missing or not a cursor.
    std::optional<QCursor> toolCursor(const QString &file);

signals:
    // The window has accepted a close (it is deleted later).
    void closed();

public:
    // Cancel of the long work under way (the status bar's button).
    void cancelLongWork() { m_cancel = true; }
    bool longWorkRunning() const { return m_longWork; }

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    // PaintHost
    Answer askSaveChanges() override;
    void showPaintError(const QString &text) override;
    QString chooseOpenFile() override;
    QString chooseSaveFile(const QString &current) override;
    bool runLong(const std::function<bool(const FilterProgress &)> &work) override;
    void documentChanged() override;
    void statusHint(int pane, const QString &text) override;
    void pictureChanged(const QRect &area) override;
    void overlayChanged() override;
    QPoint scrollPosition() const override;
    void scrollTo(const QPoint &position) override;

    void buildMenus();
    void buildTools();
    void popUpFilterMenu();
    void showHintPane(int pane);
    QAction *addItem(QMenu *menu, const QString &name, const QString &caption,
                     std::function<void()> handler);
    void showMousePosition(const QPoint &at);
    void UpdateStatusBar(int pane, int percent);

    std::unique_ptr<PaintDocument> m_document;
    PaintCanvas *m_canvas = nullptr;
    PaintToolBox *m_toolBox = nullptr;
    PaintColorBar *m_colorBar = nullptr;
    QHash<QString, QCursor> m_cursors;
    QString m_toolHint;
    QScrollArea *m_scroll = nullptr;
    QLabel *m_paneHint = nullptr;
    QLabel *m_paneSize = nullptr;
    QLabel *m_panePosition = nullptr;
    QProgressBar *m_progress = nullptr;
    QPushButton *m_cancelButton = nullptr;
    std::atomic<bool> m_cancel{false};
    bool m_longWork = false;
    double m_shownZoom = 1.0;
};
