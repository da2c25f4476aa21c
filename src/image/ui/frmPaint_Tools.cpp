#include "frmPaint.h"

#include "CursorFile.h"
#include "Folders.h"
#include "PaintCanvas.h"
#include "PaintColorBar.h"
#include "PaintToolBox.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPixmap>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

void frmPaint::buildTools()
{
    // The tool box at the left of the picture, the colours below both.
    m_toolBox = new PaintToolBox(this);
    m_colorBar = new PaintColorBar(this);
    auto *central = new QWidget(this);
    central->setObjectName(QStringLiteral("picFrame"));
    auto *outer = new QVBoxLayout(central);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);
    auto *middle = new QHBoxLayout;
    middle->setContentsMargins(0, 0, 0, 0);
    middle->setSpacing(0);
    middle->addWidget(m_toolBox);
    middle->addWidget(m_scroll, 1);
    outer->addLayout(middle, 1);
    outer->addWidget(m_colorBar);
    setCentralWidget(central);

    PaintDocument &doc = *m_document;
    connect(m_toolBox, &PaintToolBox::toolPressed, this, [&doc] { doc.FinishTool(); });
    connect(m_toolBox, &PaintToolBox::toolClicked, this, &frmPaint::optTools_Click);
    connect(m_toolBox, &PaintToolBox::dotSizeClicked, this, [this, &doc](int size) {
        doc.setDotSize(size);
        documentChanged();
    });
    connect(m_toolBox, &PaintToolBox::fillModeClicked, this, [this, &doc](int mode) {
        doc.setFillMode(mode);
        documentChanged();
    });
    connect(m_toolBox, &PaintToolBox::brushShapeClicked, this, [this, &doc](int shape) {
        doc.setBrushShape(shape);
        documentChanged();
    });
    connect(m_colorBar, &PaintColorBar::foreColorClicked, this,
            [&doc](int colour) { doc.setForeColor(colour); });
    connect(m_colorBar, &PaintColorBar::fillColorClicked, this,
            [&doc](int colour) { doc.setFillColor(colour); });
    connect(m_colorBar, &PaintColorBar::foreColorDoubleClicked, this,
            &frmPaint::mnuForegroundColor_Click);
    connect(m_colorBar, &PaintColorBar::fillColorDoubleClicked, this,
            &frmPaint::mnuFillColor_Click);
    connect(m_colorBar, &PaintColorBar::hintPane, this, &frmPaint::showHintPane);
    m_paneHint->setMinimumHeight(2 * m_paneHint->fontMetrics().lineSpacing());
}

std::optional<QCursor> frmPaint::toolCursor(const QString &file)
{
    if (file.isEmpty())
        return QCursor(Qt::ArrowCursor);
    const auto known = m_cursors.constFind(file);
    if (known != m_cursors.constEnd())
        return *known;
    const CursorImage art =
        ReadCursorFile(Folders::ProgramFolder() + QStringLiteral("/Cursors/") + file);
    if (!art.ok())
        return std::nullopt;
    const QCursor cursor(QPixmap::fromImage(art.image), art.hotSpot.x(), art.hotSpot.y());
    m_cursors.insert(file, cursor);
    return cursor;
}

void frmPaint::optTools_Click(int tool)
{
    PaintDocument &doc = *m_document;
    if (tool == doc.CurrentTool()) {
        if (tool == 14)
            popUpFilterMenu();
        return;
    }
    const ToolEntry *entry = ToolTable::find(tool);
    if (!entry)
        return;
    if (!toolCursor(QLatin1String(entry->cursorFile))) {
        showPaintError(PaintErrorText(4));
        documentChanged(); // the button of the tool still chosen comes back
        return;
    }
    doc.selectTool(tool);
    if (tool == 14)
        popUpFilterMenu();
}

void frmPaint::popUpFilterMenu()
{
    auto *menu = findChild<QMenu *>(QStringLiteral("mnuFilterTools"));
    QAbstractButton *button = m_toolBox->toolButton(14);
    if (!menu || !button)
        return;
    for (QAction *action : menu->actions())
        action->setChecked(action->objectName() ==
                           QStringLiteral("mnuTFilter_%1").arg(m_document->filterNumber()));
    menu->popup(button->mapToGlobal(QPoint(button->width(), 0)));
}

void frmPaint::showHintPane(int pane)
{
    switch (pane) {
    case 1:
        m_paneHint->setText(QStringLiteral("Click to set the foreground color; ") +
                            QStringLiteral("Right-click to set the background color"));
        break;
    case 2:
        m_paneHint->setText(QStringLiteral("Double-click ") +
                            QStringLiteral("to set the foreground color with custom color"));
        break;
    case 3:
        m_paneHint->setText(QStringLiteral("Double-click ") +
                            QStringLiteral("to set the background color with custom color"));
        break;
    default:
        m_paneHint->setText(m_toolHint);
        break;
    }
}

void frmPaint::pictureChanged(const QRect &area)
{
    if (m_canvas)
        m_canvas->showPicture(area);
}

void frmPaint::overlayChanged()
{
    if (!m_canvas || !m_document)
        return;
    m_canvas->syncOverlay();
    m_canvas->setCursor(
        toolCursor(m_document->toolCursorFile()).value_or(QCursor(Qt::ArrowCursor)));
}

QPoint frmPaint::scrollPosition() const
{
    return {m_scroll->horizontalScrollBar()->value(), m_scroll->verticalScrollBar()->value()};
}

void frmPaint::scrollTo(const QPoint &position)
{
    // The scroll bars keep to their ranges; one with nothing to scroll stays where it is.
    m_scroll->horizontalScrollBar()->setValue(position.x());
    m_scroll->verticalScrollBar()->setValue(position.y());
}
