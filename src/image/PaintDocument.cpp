#include "PaintDocument.h"

#include "GifFile.h"
#include "RasterOps.h"
#include "cDIBProcess.h"
#include "cDIBSection.h"
#include "mdlEffect.h"
#include "mdlFilter.h"

#include <QClipboard>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageWriter>

#include <cmath>

namespace {

QRgb pixelOf(int colour)
{
    return PixelOfColor(colour);
}

// Puts the finished file in place of the old one: the old file goes, the new one takes its name.
bool replaceFile(const QString &temporary, const QString &path)
{
    if (QFileInfo::exists(path) && !QFile::remove(path))
        return false;
    return QFile::rename(temporary, path);
}

} // namespace

QString PaintErrorText(int number, const QString &text)
{
    switch (number) {
    case 1:
        return QStringLiteral("Cannot write to the disk.\r\nMake sure the disk is not full or "
                              "write-protected.");
    case 2:
        return QStringLiteral("Cannot print the file.\r\nMake sure the print is ready.");
    case 3:
        return QStringLiteral("Cannot open the file.\r\nThe file may be corrupt or not a valid "
                              "picture file.");
    case 4:
        return QStringLiteral("Cannot drawing using the selected tool.\r\nThe needed file may be "
                              "missing.");
    default:
        return text;
    }
}

PaintDocument::PaintDocument(PaintHost &host) : m_host(host)
{
    m_font = QFont(QStringLiteral("Arial"), 10);
    selectTool(m_currentTool);
}

PaintDocument::~PaintDocument() = default;

QString PaintDocument::Caption() const
{
    if (m_pictureFile.isEmpty())
        return QStringLiteral("untitled - ") + QStringLiteral("Paint");
    return m_pictureFile + QStringLiteral(" - ") + QStringLiteral("Paint");
}

void PaintDocument::fillBackground(QImage &image, const QRect &area) const
{
    const QRect r = area.intersected(image.rect());
    const QRgb fill = pixelOf(m_backColor);
    for (int y = r.top(); y <= r.bottom(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        std::fill(line + r.left(), line + r.right() + 1, fill);
    }
}

void PaintDocument::setSelectionCommands(bool enabled)
{
    m_menus.selectionCommands = enabled;
}

// --- Undo ring

void PaintDocument::SetImageBuffer()
{
    m_ring.record(m_picture);
    m_menus.undo = true;
    m_menus.redo = false;
    m_dirty = true;
    changed();
}

void PaintDocument::ResetImageBuffer()
{
    m_ring.reset(m_picture);
    m_menus.undo = false;
    m_menus.redo = false;
    changed();
}

void PaintDocument::mnuUndo_Click()
{
    if (!m_ring.canUndo())
        return;
    ResetZoom();
    if (m_selection.visible)
        CommitSelection();
    else
        FinishTool();
    const QImage state = m_ring.undo();
    if (!state.isNull())
        m_picture = state;
    m_menus.undo = m_ring.canUndo();
    m_menus.redo = true;
    changed();
}

void PaintDocument::mnuRedo_Click()
{
    if (!m_ring.canRedo())
        return;
    ResetZoom();
    if (m_selection.visible) {
        // The floating selection is dropped without being placed.
        m_selection.visible = false;
        setSelectionCommands(false);
    }
    const QImage state = m_ring.redo();
    if (!state.isNull())
        m_picture = state;
    m_menus.undo = true;
    m_menus.redo = m_ring.canRedo();
    FinishTool();
    changed();
}

// --- File

bool PaintDocument::askToSave()
{
    if (!m_dirty)
        return true;
    switch (m_host.askSaveChanges()) {
    case PaintHost::Answer::Yes:
        return mnuSave_Click();
    case PaintHost::Answer::No:
        return true;
    case PaintHost::Answer::Cancel:
        return false;
    }
    return false;
}

void PaintDocument::newPicture()
{
    // What the tool has open ends on the old picture, not on the new one.
    if (m_tool)
        m_tool->finish(*this);
    ResetZoom();
    if (m_picture.isNull())
        m_picture = QImage(1, 1, QImage::Format_RGB32);
    fillBackground(m_picture, m_picture.rect());
    m_pictureFile.clear();
    m_selection = Selection();
    m_selectionLifted = false;
    ResetImageBuffer();
    setSelectionCommands(false);
    m_dirty = false;
    changed();
}

void PaintDocument::StartUp()
{
    m_picture = QImage(6400 / TwipsPerPixel, 6000 / TwipsPerPixel, QImage::Format_RGB32);
    newPicture();
}

bool PaintDocument::mnuNew_Click()
{
    FinishTool(); // an open figure is part of the picture the question is about
    if (!askToSave())
        return false;
    newPicture();
    return true;
}

bool PaintDocument::mnuOpen_Click()
{
    FinishTool();
    if (!askToSave())
        return false;
    const QString path = m_host.chooseOpenFile();
    if (path.isEmpty())
        return false;
    newPicture();
    return load(path);
}

bool PaintDocument::mnuOpen_My_Click(const QString &path)
{
    if (path.isEmpty())
        return false;
    FinishTool();
    if (!askToSave())
        return false;
    newPicture();
    return load(path);
}

bool PaintDocument::load(const QString &path)
{
    auto dib = std::make_shared<cDIBSection>();
    auto ok = std::make_shared<bool>(false);
    // Decoding a large photo takes a while: the window stays live meanwhile.
    const bool finished = m_host.runLong([dib, ok, path](const FilterProgress &progress) {
        *ok = dib->CreateFromFile(path);
        return progress(4, 100);
    });
    if (!finished)
        return false;
    if (!*ok) {
        const QString why = dib->GetLastErrorMessage();
        if (why.contains(QStringLiteral("too large")))
            m_host.showPaintError(PaintErrorText(3) + QStringLiteral("\r\n") + why);
        else
            m_host.showPaintError(PaintErrorText(3));
        changed();
        return false;
    }
    m_picture = dib->hDIB();
    m_pictureFile = path;
    ResetImageBuffer();
    selectTool(15);
    changed();
    return true;
}

bool PaintDocument::mnuSave_Click()
{
    FinishTool();
    if (m_pictureFile.isEmpty())
        return mnuSaveAs_Click();
    ResetZoom();
    if (!writeFile(m_pictureFile))
        return false;
    m_dirty = false;
    changed();
    return true;
}

bool PaintDocument::mnuSaveAs_Click()
{
    const QString path = m_host.chooseSaveFile(m_pictureFile);
    if (path.isEmpty())
        return false;
    return mnuSaveAs_My_Click(path);
}

bool PaintDocument::mnuSaveAs_My_Click(const QString &path)
{
    m_pictureFile = path;
    return mnuSave_Click();
}

bool PaintDocument::writeFile(const QString &path)
{
    const QString lower = path.toLower();
    const qsizetype jpg = lower.indexOf(QStringLiteral(".jpg"));
    const qsizetype gif = lower.indexOf(QStringLiteral(".gif"));
    const QImage picture = m_picture;
    auto written = std::make_shared<bool>(false);
    std::function<bool(const FilterProgress &)> work;
    if (jpg > 0) {
        // The first quality from 100 down to 50 that the writer takes.
        const QString temporary = path.left(jpg) + QStringLiteral("_tmp.jpg");
        work = [picture, temporary, path, written](const FilterProgress &progress) {
            for (int quality = 100; quality >= 50 && !*written; --quality) {
                QImageWriter writer(temporary, "jpeg");
                writer.setQuality(quality);
                *written = writer.write(picture);
            }
            if (*written)
                *written = replaceFile(temporary, path);
            else
                QFile::remove(temporary);
            return progress(4, 100);
        };
    } else if (gif > 0) {
        const QString temporary = path.left(gif) + QStringLiteral("_tmp.gif");
        work = [picture, temporary, path, written](const FilterProgress &progress) {
            *written = WriteGifFile(picture, temporary) && replaceFile(temporary, path);
            return progress(4, 100);
        };
    } else {
        // Any other name is written as a bitmap.
        work = [picture, path, written](const FilterProgress &progress) {
            cDIBSection dib;
            *written = dib.CreateFromImage(picture, 0, 0, -1, -1) && dib.SaveBitmap(path);
            return progress(4, 100);
        };
    }
    if (!m_host.runLong(work))
        return false;
    if (!*written) {
        m_host.showPaintError(PaintErrorText(1));
        return false;
    }
    return true;
}

bool PaintDocument::QueryClose()
{
    return askToSave();
}

// --- Selection and clipboard

void PaintDocument::CommitSelection()
{
    if (!m_selection.visible)
        return;
    m_selection.visible = false;
    BlitRaster(m_picture, m_selection.pos.x(), m_selection.pos.y(), m_selection.image, 0, 0,
               m_selection.image.width(), m_selection.image.height(), cDIBSection::SrcCopy);
    setSelectionCommands(false);
    if (!m_selectionLifted)
        SetImageBuffer();
    changed();
}

void PaintDocument::selectArea(const QRect &area)
{
    const QRect r = area.intersected(m_picture.rect());
    if (r.isEmpty()) {
        dropSelection();
        return;
    }
    m_selection.image = m_picture.copy(r);
    m_selection.pos = r.topLeft();
    m_selection.visible = true;
    m_selectionLifted = false;
    setSelectionCommands(true);
    changed();
}

void PaintDocument::liftSelection(bool keepPixels)
{
    if (!m_selection.visible || m_selectionLifted)
        return;
    if (!keepPixels)
        fillBackground(m_picture, QRect(m_selection.pos, m_selection.image.size()));
    m_selectionLifted = true;
    changed();
}

void PaintDocument::moveSelection(const QPoint &topLeft)
{
    m_selection.pos = topLeft;
    changed();
}

void PaintDocument::dropSelection()
{
    m_selection.visible = false;
    setSelectionCommands(false);
    changed();
}

void PaintDocument::setClipboard(const QImage &image)
{
    m_clipboard = image.convertToFormat(QImage::Format_RGB32);
    m_menus.paste = !m_clipboard.isNull();
    changed();
}

void PaintDocument::mnuCopy_Click()
{
    if (m_selection.image.isNull())
        return;
    setClipboard(m_selection.image);
    // Other programs get it too, as a bitmap.
    cDIBSection dib;
    if (dib.CreateFromImage(m_selection.image, 0, 0, -1, -1))
        dib.CopyToClipboard(0, 0);
}

void PaintDocument::mnuCut_Click()
{
    mnuDelete_Click();
    mnuCopy_Click();
}

void PaintDocument::mnuDelete_Click()
{
    ResetZoom();
    const bool wasVisible = m_selection.visible;
    m_selection.visible = false;
    if (wasVisible && !m_selectionLifted)
        fillBackground(m_picture, QRect(m_selection.pos, m_selection.image.size()));
    setSelectionCommands(false);
    SetImageBuffer();
}

void PaintDocument::mnuPaste_Click()
{
    QImage source = m_clipboard;
    if (source.isNull()) {
        if (const QClipboard *clipboard = QGuiApplication::clipboard())
            source = clipboard->image().convertToFormat(QImage::Format_RGB32);
    }
    if (source.isNull())
        return;
    ResetZoom();
    FinishTool();
    if (!m_selectionLifted)
        CommitSelection();
    m_selection.image = source;
    m_selection.pos = QPoint(0, 0);
    m_selection.visible = true;
    if (m_currentTool != 0)
        selectTool(0);
    setSelectionCommands(true);
    m_selectionLifted = true; // nothing under it is erased
    changed();
}

void PaintDocument::mnuCrop_Click()
{
    if (m_selection.image.isNull())
        return;
    ResetZoom();
    m_selection.visible = false;
    m_picture = m_selection.image.copy();
    setSelectionCommands(false);
    SetImageBuffer();
}

void PaintDocument::mnuClear_Click()
{
    ResetZoom();
    FinishTool();
    fillBackground(m_picture, m_picture.rect());
    SetImageBuffer();
}

// --- Filters and effects

void PaintDocument::applyFilter(int filter, const QRect &region)
{
    int x1 = region.left(), y1 = region.top(), x2 = region.right(), y2 = region.bottom();
    FilterOptions options;
    options.replaceFrom = m_foreColor;
    options.replaceTo = m_fillColor;
    ImageFilter(filter, m_picture, x1, y1, x2, y2, options);
    // Crease and wave move pixels up and down their columns, out of the region.
    if (filter == FilterCrease || filter == FilterWave)
        surfaceChanged(QRect(region.left(), 0, region.width(), m_picture.height()));
    else
        surfaceChanged(region);
}

void PaintDocument::ApplyFilter(int filter, int x1, int y1, int x2, int y2)
{
    ResetZoom();
    const bool onSelection = m_selection.visible;
    if (!onSelection)
        FinishTool();
    QImage work = onSelection ? m_selection.image : m_picture;
    work.detach();
    FilterOptions options;
    // Replace Colors swaps the foreground colour for the fill colour.
    options.replaceFrom = m_foreColor;
    options.replaceTo = m_fillColor;
    auto result = std::make_shared<FilterResult>(FilterResult::Done);
    const bool finished =
        m_host.runLong([&work, filter, x1, y1, x2, y2, options, result](const FilterProgress &p) {
            FilterOptions o = options;
            o.progress = p;
            int a = x1, b = y1, c = x2, d = y2;
            *result = ImageFilter(filter, work, a, b, c, d, o);
            return *result != FilterResult::Cancelled;
        });
    if (!finished || *result == FilterResult::Cancelled)
        return;
    if (onSelection)
        m_selection.image = work;
    else
        m_picture = work;
    SetImageBuffer();
}

void PaintDocument::setResizeAxes(bool widthOnly, bool heightOnly)
{
    m_widthOnly = widthOnly;
    m_heightOnly = heightOnly;
}

void PaintDocument::ImageEffect(int effect, float factorX, float factorY)
{
    ResetZoom();
    const bool onSelection = m_selection.visible;
    if (!onSelection)
        FinishTool();
    const QImage target = onSelection ? m_selection.image : m_picture;
    EffectParameters parameters;
    parameters.background = pixelOf(m_backColor);
    if (effect == EffectStretch) {
        if (m_heightOnly)
            factorX = 1.0f;
        if (m_widthOnly)
            factorY = 1.0f;
        m_factorX = factorX;
        m_factorY = factorY;
        // The result stays below 50000 twips each way; a larger one isn't made.
        if (double(target.width()) * TwipsPerPixel * factorX >= 50000.0 ||
            double(target.height()) * TwipsPerPixel * factorY >= 50000.0)
            return;
        parameters.factorX = factorX;
        parameters.factorY = factorY;
    }
    if (effect == EffectRotate) {
        parameters.angle = m_angle;
        parameters.clockwise = m_clockwise;
    }
    auto result = std::make_shared<std::optional<QImage>>();
    const bool finished =
        m_host.runLong([target, effect, parameters, result](const FilterProgress &progress) {
            EffectParameters p = parameters;
            p.progress = progress;
            *result = ApplyImageEffect(effect, target, p);
            return result->has_value();
        });
    if (!finished || !result->has_value())
        return;
    if (onSelection)
        m_selection.image = **result;
    else
        m_picture = **result;
    SetImageBuffer();
}

void PaintDocument::mnuRotate_My_angle(float angle)
{
    ResetZoom();
    FinishTool();
    m_angle = angle;
    const QImage source = m_picture;
    const int w = source.width();
    const int h = source.height();
    int newWidth = w;
    int newHeight = h;
    if (angle == 90.0f || angle == 270.0f) {
        newWidth = h;
        newHeight = w;
    } else if (angle != 180.0f) {
        // Any other angle: both sides the diagonal, so that no corner is lost.
        newWidth = newHeight = int(std::lrint(std::sqrt(double(w) * w + double(h) * h)));
    }
    if (!cDIBSection::SizeAllowed(newWidth, newHeight)) {
        m_host.showPaintError(PaintErrorText(0, QStringLiteral("The turned picture would be too "
                                                               "large.")));
        return;
    }
    const bool clockwise = m_clockwise;
    const QRgb background = pixelOf(m_backColor);
    const int backColour = m_backColor;
    auto result = std::make_shared<QImage>();
    const bool finished = m_host.runLong([=](const FilterProgress &progress) {
        cDIBSection from;
        cDIBSection turned;
        if (!from.CreateFromImage(source, 0, 0, -1, -1))
            return true;
        cDIBProcess process;
        if (!process.RotateDIB(from, turned, clockwise ? -double(angle) : double(angle), backColour,
                               progress))
            return false;
        QImage canvas(newWidth, newHeight, QImage::Format_RGB32);
        if (canvas.isNull())
            return true;
        canvas.fill(background);
        const QImage &t = turned.hDIB();
        BlitRaster(canvas, (newWidth - t.width()) / 2, (newHeight - t.height()) / 2, t, 0, 0,
                   t.width(), t.height(), cDIBSection::SrcCopy);
        *result = canvas;
        return true;
    });
    if (!finished || result->isNull())
        return;
    m_picture = *result;
    SetImageBuffer();
}

void PaintDocument::ResizePicture(int width, int height)
{
    if (width <= 0 || height <= 0 || !cDIBSection::SizeAllowed(width, height))
        return;
    ResetZoom();
    QImage resized(width, height, QImage::Format_RGB32);
    if (resized.isNull())
        return;
    fillBackground(resized, resized.rect());
    BlitRaster(resized, 0, 0, m_picture, 0, 0, m_picture.width(), m_picture.height(),
               cDIBSection::SrcCopy);
    m_picture = resized;
    SetImageBuffer();
}

// --- Zoom

void PaintDocument::ResetZoom()
{
    if (m_zoom == 1.0)
        return;
    m_zoom = 1.0;
    changed();
}

void PaintDocument::zoomAt(const QPoint &point, bool zoomOut)
{
    m_zoomAnchor = point;
    if (zoomOut) {
        // Not below a view of one pixel.
        const double next = m_zoom / 1.25;
        if (m_picture.width() * next >= 1 && m_picture.height() * next >= 1)
            m_zoom = next;
    } else {
        const double next = m_zoom * 1.25;
        // Refused, without a word, at the limit.
        if (2.0 * m_picture.width() * next >= 100000.0 ||
            2.0 * m_picture.height() * next >= 100000.0)
            return;
        m_zoom = next;
    }
    changed();
}

// --- Tools

QString ToolHintText(int tool)
{
    const ToolEntry *entry = ToolTable::find(tool);
    if (!entry || entry->hint.isEmpty())
        return QString();
    QString text = entry->hint.first();
    if (entry->hint.size() > 1)
        text += QLatin1Char('\n') + entry->hint.mid(1).join(QStringLiteral("; "));
    return text;
}

bool PaintDocument::selectTool(int number)
{
    const ToolEntry *entry = ToolTable::find(number);
    if (!entry)
        return false;
    if (m_tool)
        m_tool->finish(*this);
    m_currentTool = number;
    m_tool = entry->make ? entry->make() : nullptr;
    m_cursorOverride.clear();
    if (number != 0)
        CommitSelection();
    if (number != 1 && number != 17)
        ResetZoom();
    UpdateStatusBar(0);
    changed();
    m_host.overlayChanged();
    return true;
}

// Only the left button draws; the right button reaches Pick Color alone.
static bool reachesTool(int tool, Qt::MouseButton button)
{
    return button == Qt::LeftButton || (button == Qt::RightButton && tool == 1);
}

void PaintDocument::mousePress(const ToolEvent &event)
{
    if (m_tool && reachesTool(m_currentTool, event.button))
        m_tool->press(*this, event);
}

void PaintDocument::mouseMove(const ToolEvent &event)
{
    if (m_tool)
        m_tool->move(*this, event);
}

void PaintDocument::mouseRelease(const ToolEvent &event)
{
    if (!m_tool || !reachesTool(m_currentTool, event.button))
        return;
    m_tool->release(*this, event);
    if (m_tool && m_tool->recordsOnRelease() && event.button == Qt::LeftButton)
        SetImageBuffer();
}

void PaintDocument::FinishTool()
{
    if (m_tool)
        m_tool->finish(*this);
}

ToolOverlay PaintDocument::toolOverlay() const
{
    return m_tool ? m_tool->overlay() : ToolOverlay();
}

void PaintDocument::dragHandle(int index, QPoint delta)
{
    if (m_tool)
        m_tool->dragHandle(*this, index, delta);
}

void PaintDocument::textEdited(const QString &text)
{
    if (m_tool)
        m_tool->textEdited(*this, text);
}

bool PaintDocument::textKey(int key)
{
    return m_tool && m_tool->textKey(*this, key);
}

void PaintDocument::textPressed()
{
    if (m_tool)
        m_tool->textPressed(*this);
}

void PaintDocument::textFocusLost()
{
    if (m_tool)
        m_tool->textFocusLost(*this);
}

QString PaintDocument::toolCursorFile() const
{
    if (!m_cursorOverride.isEmpty())
        return m_cursorOverride;
    const ToolEntry *entry = ToolTable::find(m_currentTool);
    return entry ? QString::fromLatin1(entry->cursorFile) : QString();
}

void PaintDocument::setCursorFile(const QString &file)
{
    m_cursorOverride = file;
    m_host.overlayChanged();
}

void PaintDocument::UpdateStatusBar(int pane)
{
    if (pane == 0)
        m_host.statusHint(0, ToolHintText(m_currentTool));
}

void PaintDocument::setForeColor(int colour)
{
    // An open curve or polygon is drawn with pens made from the foreground colour: it goes
    // before the change and comes back in the new colour after it.
    if (m_tool)
        m_tool->hideOpenFigure(*this);
    m_foreColor = colour;
    if (m_tool)
        m_tool->showOpenFigure(*this);
    changed();
}

void PaintDocument::setFillColor(int colour)
{
    m_fillColor = colour;
    changed();
}

QRect PaintDocument::selectionArea() const
{
    if (!m_selection.visible)
        return QRect();
    return QRect(m_selection.pos, m_selection.image.size());
}

void PaintDocument::surfaceChanged(const QRect &area)
{
    m_host.pictureChanged(area.intersected(m_picture.rect()));
}

void PaintDocument::showHint(int pane, const QString &text)
{
    m_host.statusHint(pane, text);
}
