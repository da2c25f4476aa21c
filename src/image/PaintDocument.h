#pragma once

#include "PaintTool.h"
#include "RowWork.h"
#include "UndoRing.h"

#include <QFont>
#include <QImage>
#include <QString>

#include <algorithm>
#include <functional>
#include <memory>

// What the paint document asks of its window: questions, messages, file names, long work, and
// a redraw. The window implements it with its real dialogs; tests with scripted answers. Every
// call may run the event loop.
class PaintHost
{
public:
    enum class Answer
    {
        Yes,
        No,
        Cancel
    };
    virtual ~PaintHost() = default;

    // "Do you want to save the changes?" with Yes, No and Cancel.
    virtual Answer askSaveChanges() = 0;
    // A message box with the stop icon; text is PaintErrorText's.
    virtual void showPaintError(const QString &text) = 0;
    // The open and save dialogs; "" when cancelled.
    virtual QString chooseOpenFile() = 0;
    virtual QString chooseSaveFile(const QString &current) = 0;
    // Runs work, which reports through the progress it is given and stops when that answers
    // false, while the window stays responsive and offers Cancel. False when cancelled. work
    // may run on another thread: it touches nothing but what it was given.
    virtual bool runLong(const std::function<bool(const FilterProgress &)> &work) = 0;
    // The picture, its size, the selection, the zoom, the menus or the caption changed.
    virtual void documentChanged() = 0;
    // A tool's hint for a pane of the status bar.
    virtual void statusHint(int pane, const QString &text) = 0;
    // A part of the picture changed while a tool drew: only that part needs showing again.
    virtual void pictureChanged(const QRect &) { documentChanged(); }
    // What the tool shows over the picture (its handles, its text box) or its cursor changed.
    virtual void overlayChanged() {}
    // The view's scroll position (hscPaint, vscPaint) and a new one, limited to their ranges.
    virtual QPoint scrollPosition() const { return {}; }
    virtual void scrollTo(const QPoint &) {}
};

// The status bar's hint of a tool: its first line, and the keys it takes on a second.
QString ToolHintText(int tool);

// The text of a paint error by number (0 stands for the given text alone).
QString PaintErrorText(int number, const QString &text = {});

// The document of the paint window: the picture (picPaint), the ring of undo states, the
// floating selection (picSelect), the private clipboard, the zoom, the settings of the menus,
// and the commands of the File, Edit, Effect and Filter menus. It knows no widget: it reaches
// the window only through PaintHost, and its tools through PaintToolContext.
class PaintDocument final : public PaintToolContext
{
public:
    explicit PaintDocument(PaintHost &host);
    ~PaintDocument() override;

    // The floating selection over the picture.
    struct Selection
    {
        bool visible = false;
        QPoint pos;
        QImage image;
    };
    // What the Edit menu offers.
    struct MenuState
    {
        bool undo = false;
        bool redo = false;
        bool selectionCommands = false; // Cut, Copy, Delete, Crop
        bool paste = false;
    };

    // Twips of a pixel, where a size is given in twips.
    static constexpr int TwipsPerPixel = 15;

    // --- File
    // Start-up: a new picture of 6400 x 6000 twips.
    void StartUp();
    // New, after the question when there are changes. False when the user cancelled.
    bool mnuNew_Click();
    bool mnuOpen_Click();
    // Opens a file given by the caller (the same question first); "" opens nothing.
    bool mnuOpen_My_Click(const QString &path);
    // Save under PictureFile (Save As when there is none). False when nothing was saved.
    bool mnuSave_Click();
    bool mnuSaveAs_Click();
    bool mnuSaveAs_My_Click(const QString &path);
    // Asked when the window closes: false keeps it open.
    bool QueryClose();

    // --- Edit
    void mnuUndo_Click();
    void mnuRedo_Click();
    void mnuCut_Click();
    void mnuCopy_Click();
    void mnuPaste_Click();
    void mnuDelete_Click();
    void mnuCrop_Click();
    void mnuClear_Click();
    // Puts an image into the private clipboard (what Copy does with the selection).
    void setClipboard(const QImage &image);

    // --- Undo ring
    void SetImageBuffer();
    void ResetImageBuffer();

    // --- Filters and effects (on the selection when one is shown, else on the picture)
    void ApplyFilter(int filter, int x1 = -1, int y1 = -1, int x2 = -1, int y2 = -1);
    // 0 flip horizontal, 1 flip vertical, 2 stretch by the factors, 3 rotate by the last angle,
    // 4 invert colours. For 2, widthOnly or heightOnly keep the other axis at 1.
    void ImageEffect(int effect, float factorX = 1.0f, float factorY = 1.0f);
    void setResizeAxes(bool widthOnly, bool heightOnly);
    void setRotateClockwise(bool clockwise) { m_clockwise = clockwise; }
    bool rotateClockwise() const { return m_clockwise; }
    void mnuRotate_My_angle(float angle);
    // The handles: the picture takes the new size, the new area in the background colour.
    void ResizePicture(int width, int height);

    // --- Zoom
    double ZoomFactor() const { return m_zoom; }
    void ResetZoom();
    QPoint zoomAnchor() const { return m_zoomAnchor; }

    // --- Tools
    int CurrentTool() const { return m_currentTool; }
    // Chooses a tool by number; false when the table has no tool of that number yet.
    bool selectTool(int number);
    void mousePress(const ToolEvent &event);
    void mouseMove(const ToolEvent &event);
    void mouseRelease(const ToolEvent &event);
    void FinishTool();
    // What the tool shows over the picture, and the window's events on it: a drag of one of
    // Curve's handles, and the text box's edits, keys (true when the tool took the key), a
    // press on it and the loss of its focus.
    ToolOverlay toolOverlay() const;
    void dragHandle(int index, QPoint delta);
    void textEdited(const QString &text);
    bool textKey(int key);
    void textPressed();
    void textFocusLost();
    // The cursor file of the tool (in the data folder's Cursors; "" for the arrow).
    QString toolCursorFile() const;
    // Pane 0: the hint of the current tool.
    void UpdateStatusBar(int pane);

    // --- State
    const QImage &picture() const { return m_picture; }
    const Selection &selection() const { return m_selection; }
    bool SelectionLifted() const { return m_selectionLifted; }
    const QImage &clipboard() const { return m_clipboard; }
    const UndoRing &undoRing() const { return m_ring; }
    MenuState menuState() const { return m_menus; }
    bool Dirty() const { return m_dirty; }
    QString PictureFile() const { return m_pictureFile; }
    QString Caption() const;

    void setForeColor(int colour) override;
    void setFillColor(int colour) override;
    void setFont(const QFont &font) { m_font = font; }
    void setBorderStyle(int style) { m_borderStyle = style; }
    void setFillStyle(int style) { m_fillStyle = style; }
    void setDotSize(int size) { m_dotSize = std::clamp(size, 0, 7); }
    int DotSize() const { return m_dotSize; }
    void setFillMode(int mode) { m_fillMode = mode; }
    void setBrushShape(int shape) { m_brushShape = shape; }
    void setFilterNumber(int filter) { m_filterNumber = filter; }

    // --- PaintToolContext
    QImage &surface() override { return m_picture; }
    void surfaceChanged(const QRect &area) override;
    int foreColor() const override { return m_foreColor; }
    int fillColor() const override { return m_fillColor; }
    int backColor() const override { return m_backColor; }
    int penWidth() const override { return m_dotSize + 1; }
    int borderStyle() const override { return m_borderStyle; }
    int fillMode() const override { return m_fillMode; }
    int fillStyle() const override { return m_fillStyle; }
    int brushShape() const override { return m_brushShape; }
    int filterNumber() const override { return m_filterNumber; }
    QFont font() const override { return m_font; }
    void recordState() override { SetImageBuffer(); }
    void applyFilter(int filter, const QRect &region) override;
    void selectArea(const QRect &area) override;
    void liftSelection(bool keepPixels) override;
    void moveSelection(const QPoint &topLeft) override;
    void commitSelection() override { CommitSelection(); }
    void dropSelection() override;
    bool selectionVisible() const override { return m_selection.visible; }
    QRect selectionArea() const override;
    void zoomAt(const QPoint &point, bool zoomOut) override;
    QPoint scrollPosition() const override { return m_host.scrollPosition(); }
    void scrollTo(const QPoint &position) override { m_host.scrollTo(position); }
    void setCursorFile(const QString &file) override;
    void overlayChanged() override { m_host.overlayChanged(); }
    void showHint(int pane, const QString &text) override;

    void CommitSelection();

private:
    bool askToSave();
    void newPicture();
    bool load(const QString &path);
    bool writeFile(const QString &path);
    void setSelectionCommands(bool enabled);
    void fillBackground(QImage &image, const QRect &area) const;
    void changed() { m_host.documentChanged(); }

    PaintHost &m_host;
    QImage m_picture;
    UndoRing m_ring;
    Selection m_selection;
    bool m_selectionLifted = false;
    QImage m_clipboard;
    MenuState m_menus;
    bool m_dirty = false;
    QString m_pictureFile;

    double m_zoom = 1.0;
    QPoint m_zoomAnchor;

    int m_currentTool = 4;
    std::unique_ptr<PaintTool> m_tool;
    QString m_cursorOverride;

    int m_foreColor = 0x000000;
    int m_fillColor = 0xFFFFFF;
    int m_backColor = 0xFFFFFF;
    QFont m_font;
    int m_borderStyle = 0;
    int m_fillStyle = 0;
    int m_dotSize = 0;
    int m_fillMode = 0;
    int m_brushShape = 0;
    int m_filterNumber = 2;

    float m_factorX = 1.0f;
    float m_factorY = 1.0f;
    bool m_widthOnly = false;
    bool m_heightOnly = false;
    float m_angle = 0.0f;
    bool m_clockwise = true;
};
