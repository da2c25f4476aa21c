#include "frmPaint.h"

#include "mdlEffect.h"
#include "mdlFilter.h"

#include <QActionGroup>
#include <QMenuBar>

QAction *frmPaint::addItem(QMenu *menu, const QString &name, const QString &caption,
                           std::function<void()> handler)
{
    auto *action = menu->addAction(caption);
    action->setObjectName(name);
    if (handler)
        connect(action, &QAction::triggered, this, [handler = std::move(handler)] { handler(); });
    return action;
}

void frmPaint::buildMenus()
{
    PaintDocument &doc = *m_document;

    QMenu *file = menuBar()->addMenu(QStringLiteral("&File"));
    file->setObjectName(QStringLiteral("mnuFile"));
    addItem(file, QStringLiteral("mnuNew"), QStringLiteral("&New"), [&doc] {
        doc.mnuNew_Click();
    })->setShortcut(QKeySequence::New);
    addItem(file, QStringLiteral("mnuOpen"), QStringLiteral("&Open"), [&doc] {
        doc.mnuOpen_Click();
    })->setShortcut(QKeySequence::Open);
    addItem(file, QStringLiteral("mnuSave"), QStringLiteral("&Save"), [&doc] {
        doc.mnuSave_Click();
    })->setShortcut(QKeySequence::Save);
    addItem(file, QStringLiteral("mnuSaveAs"), QStringLiteral("Save &As..."),
            [&doc] { doc.mnuSaveAs_Click(); });
    file->addSeparator();
    addItem(file, QStringLiteral("mnuPrint"), QStringLiteral("&Print"), [this] {
        mnuPrint_Click();
    })->setShortcut(QKeySequence::Print);
    file->addSeparator();
    addItem(file, QStringLiteral("mnuExit"), QStringLiteral("&Exit"), [this] { close(); });

    QMenu *edit = menuBar()->addMenu(QStringLiteral("&Edit"));
    edit->setObjectName(QStringLiteral("mnuEdit"));
    addItem(edit, QStringLiteral("mnuUndo"), QStringLiteral("&Undo"), [&doc] {
        doc.mnuUndo_Click();
    })->setShortcut(QKeySequence::Undo);
    addItem(edit, QStringLiteral("mnuRedo"), QStringLiteral("&Redo"), [&doc] {
        doc.mnuRedo_Click();
    })->setShortcut(QKeySequence::Redo);
    edit->addSeparator();
    addItem(edit, QStringLiteral("mnuCut"), QStringLiteral("Cu&t"), [&doc] {
        doc.mnuCut_Click();
    })->setShortcut(QKeySequence::Cut);
    addItem(edit, QStringLiteral("mnuCopy"), QStringLiteral("&Copy"), [&doc] {
        doc.mnuCopy_Click();
    })->setShortcut(QKeySequence::Copy);
    addItem(edit, QStringLiteral("mnuPaste"), QStringLiteral("&Paste"), [&doc] {
        doc.mnuPaste_Click();
    })->setShortcut(QKeySequence::Paste);
    addItem(edit, QStringLiteral("mnuDelete"), QStringLiteral("&Delete"), [&doc] {
        doc.mnuDelete_Click();
    })->setShortcut(QKeySequence::Delete);
    addItem(edit, QStringLiteral("mnuCrop"), QStringLiteral("C&rop"),
            [&doc] { doc.mnuCrop_Click(); });
    edit->addSeparator();
    addItem(edit, QStringLiteral("mnuClear"), QStringLiteral("C&lear Picture"),
            [&doc] { doc.mnuClear_Click(); });

    QMenu *format = menuBar()->addMenu(QStringLiteral("F&ormat"));
    format->setObjectName(QStringLiteral("mnuFormat"));
    QMenu *border = format->addMenu(QStringLiteral("&Border Style"));
    border->menuAction()->setObjectName(QStringLiteral("mnuBorderStyle"));
    auto *borders = new QActionGroup(this);
    const char *borderCaptions[] = {"&Solid", "&Dash", "D&ot", "D&ashDot", "Da&shDotDot"};
    for (int i = 0; i < 5; ++i) {
        QAction *a =
            addItem(border, QStringLiteral("mnuBS_%1").arg(i), QLatin1String(borderCaptions[i]),
                    [&doc, i] { doc.setBorderStyle(i); });
        a->setCheckable(true);
        a->setChecked(i == 0);
        borders->addAction(a);
    }
    QMenu *fill = format->addMenu(QStringLiteral("&Fill Style"));
    fill->menuAction()->setObjectName(QStringLiteral("mnuFillStyle"));
    auto *fills = new QActionGroup(this);
    const char *fillCaptions[] = {"&Solid",         "&Transparent",       "&Horizontal Line",
                                  "&Vertical Line", "&Downward Diagonal", "&Upward Diagonal",
                                  "&Cross",         "Diagona&l Cross"};
    for (int i = 0; i < 8; ++i) {
        QAction *a = addItem(fill, QStringLiteral("mnuFS_%1").arg(i),
                             QLatin1String(fillCaptions[i]), [&doc, i] { doc.setFillStyle(i); });
        a->setCheckable(true);
        a->setChecked(i == 0);
        fills->addAction(a);
    }
    format->addSeparator();
    addItem(format, QStringLiteral("mnuForegroundColor"), QStringLiteral("F&oreground Color..."),
            [this] { mnuForegroundColor_Click(); });
    addItem(format, QStringLiteral("mnuFillColor"), QStringLiteral("Fi&ll Color..."),
            [this] { mnuFillColor_Click(); });
    addItem(format, QStringLiteral("mnuFont"), QStringLiteral("&Font..."),
            [this] { mnuFont_Click(); });

    QMenu *effect = menuBar()->addMenu(QStringLiteral("Effe&ct"));
    effect->setObjectName(QStringLiteral("mnuEffect"));
    QMenu *resize = effect->addMenu(QStringLiteral("&Resize"));
    resize->menuAction()->setObjectName(QStringLiteral("mnuResize"));
    auto *axes = new QActionGroup(this);
    const std::pair<const char *, const char *> axisItems[] = {
        {"mnuResizeBoth", "&Both"}, {"mnuResizeWidth", "&Width"}, {"mnuResizeHeight", "&Height"}};
    for (int i = 0; i < 3; ++i) {
        QAction *a =
            addItem(resize, QLatin1String(axisItems[i].first), QLatin1String(axisItems[i].second),
                    [&doc, i] { doc.setResizeAxes(i == 1, i == 2); });
        a->setCheckable(true);
        a->setChecked(i == 0);
        axes->addAction(a);
    }
    resize->addSeparator();
    const int steps[] = {25, 50, 75, 125, 150, 175, 200};
    for (int i = 0; i < 7; ++i) {
        const float factor = float(steps[i]) / 100.0f;
        addItem(resize, QStringLiteral("mnuResizeStep_%1").arg(i),
                QStringLiteral("%1%").arg(steps[i]),
                [&doc, factor] { doc.ImageEffect(EffectStretch, factor, factor); });
    }
    QMenu *flip = effect->addMenu(QStringLiteral("&Flip"));
    flip->menuAction()->setObjectName(QStringLiteral("mnuFlip"));
    addItem(flip, QStringLiteral("mnuFlipHorizontal"), QStringLiteral("&Horizontal"),
            [&doc] { doc.ImageEffect(EffectFlipHorizontal); });
    addItem(flip, QStringLiteral("mnuFlipVertical"), QStringLiteral("&Vertical"),
            [&doc] { doc.ImageEffect(EffectFlipVertical); });
    QMenu *rotate = effect->addMenu(QStringLiteral("R&otate"));
    rotate->menuAction()->setObjectName(QStringLiteral("mnuRotate"));
    auto *directions = new QActionGroup(this);
    QAction *clockwise =
        addItem(rotate, QStringLiteral("mnuRotateClockwise"), QStringLiteral("&Clockwise"),
                [&doc] { doc.setRotateClockwise(true); });
    QAction *anticlockwise =
        addItem(rotate, QStringLiteral("mnuRotateAntiClockwise"), QStringLiteral("&Anti-clockwise"),
                [&doc] { doc.setRotateClockwise(false); });
    for (QAction *a : {clockwise, anticlockwise}) {
        a->setCheckable(true);
        directions->addAction(a);
    }
    clockwise->setChecked(true);
    rotate->addSeparator();
    const int angles[] = {45, 90, 135, 180, 225, 270, 315};
    for (int i = 0; i < 7; ++i) {
        const float angle = float(angles[i]);
        addItem(rotate, QStringLiteral("mnuRotateAngle_%1").arg(i),
                QStringLiteral("%1%2").arg(angles[i]).arg(QChar(0x00B0)),
                [&doc, angle] { doc.mnuRotate_My_angle(angle); });
    }
    addItem(effect, QStringLiteral("mnuInvertColors"), QStringLiteral("&Invert Colors"),
            [&doc] { doc.ImageEffect(EffectInvert); });

    QMenu *filters = menuBar()->addMenu(QStringLiteral("Fi&lter"));
    filters->setObjectName(QStringLiteral("mnuFilter"));
    // The same list for the Filter Brush, popped up when that tool is chosen.
    auto *brushFilters = new QMenu(QStringLiteral("Filter Brush"), this);
    brushFilters->setObjectName(QStringLiteral("mnuFilterTools"));
    auto *brushFilterGroup = new QActionGroup(this);
    for (const FilterMenuEntry &entry : FilterMenu()) {
        const int number = entry.number;
        addItem(filters, QLatin1String(entry.menuName), QLatin1String(entry.caption),
                [&doc, number] { doc.ApplyFilter(number); });
        QAction *a =
            addItem(brushFilters, QStringLiteral("mnuTFilter_%1").arg(number),
                    QLatin1String(entry.caption), [&doc, number] { doc.setFilterNumber(number); });
        a->setCheckable(true);
        a->setChecked(number == doc.filterNumber());
        brushFilterGroup->addAction(a);
    }
}
