#include "frmPaint.h"

#include "PaintCanvas.h"
#include "PaintColorBar.h"
#include "PaintToolBox.h"
#include "mdlFilter.h"

#include <QApplication>
#include <QCloseEvent>
#include <QColorDialog>
#include <QEventLoop>
#include <QFileDialog>
#include <QFontDialog>
#include <QFutureWatcher>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPainter>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTimer>
#include <QtConcurrent/QtConcurrentRun>

#include <cmath>

namespace {

const QString pictureFilter = QStringLiteral(
    "Pictures (*.bmp *.dib *.jpg *.jpeg *.gif *.png *.heic *.heif *.webp *.tif *.tiff);;"
    "Bitmap (*.bmp *.dib);;JPEG (*.jpg *.jpeg);;GIF (*.gif);;"
    "Photos of phones and cameras (*.heic *.heif *.webp *.png *.tif *.tiff);;All files (*)");

QColor toQColor(int colour)
{
    return QColor(colour & 255, (colour >> 8) & 255, (colour >> 16) & 255);
}
int toColour(const QColor &c)
{
    return c.red() + 256 * c.green() + 65536 * c.blue();
}

} // namespace

frmPaint::frmPaint(QWidget *parent) : QMainWindow(parent)
{
    setObjectName(QStringLiteral("frmPaint"));
    setWindowTitle(QStringLiteral("Tarnwick Paint"));
    setAttribute(Qt::WA_DeleteOnClose);
    if (parent)
        setWindowFlag(Qt::Window);

    m_document = std::make_unique<PaintDocument>(static_cast<PaintHost &>(*this));

    m_scroll = new QScrollArea(this);
    m_scroll->setObjectName(QStringLiteral("picPaintArea"));
    m_scroll->setBackgroundRole(QPalette::Dark);
    m_scroll->horizontalScrollBar()->setObjectName(QStringLiteral("hscPaint"));
    m_scroll->verticalScrollBar()->setObjectName(QStringLiteral("vscPaint"));
    auto *container = new QWidget;
    container->setObjectName(QStringLiteral("picContainer"));
    m_canvas = new PaintCanvas(*m_document, container);
    m_canvas->move(0, 0);
    m_scroll->setWidget(container);
    connect(m_canvas, &PaintCanvas::mouseAt, this, &frmPaint::showMousePosition);

    statusBar()->setObjectName(QStringLiteral("sta"));
    m_paneHint = new QLabel(this);
    m_paneHint->setObjectName(QStringLiteral("sta_0"));
    m_paneSize = new QLabel(this);
    m_paneSize->setObjectName(QStringLiteral("sta_1"));
    m_panePosition = new QLabel(this);
    m_panePosition->setObjectName(QStringLiteral("sta_2"));
    m_progress = new QProgressBar(this);
    m_progress->setObjectName(QStringLiteral("ProgressBar"));
    m_progress->setRange(0, 100);
    m_progress->setMaximumWidth(160);
    m_progress->hide();
    m_cancelButton = new QPushButton(QStringLiteral("Cancel"), this);
    m_cancelButton->setObjectName(QStringLiteral("CancelButton"));
    m_cancelButton->hide();
    connect(m_cancelButton, &QPushButton::clicked, this, &frmPaint::cancelLongWork);
    statusBar()->addWidget(m_paneHint, 1);
    statusBar()->addPermanentWidget(m_progress);
    statusBar()->addPermanentWidget(m_cancelButton);
    statusBar()->addPermanentWidget(m_paneSize);
    statusBar()->addPermanentWidget(m_panePosition);

    buildMenus();
    buildTools();
    m_document->StartUp();
    resize(760, 560);
}

frmPaint::~frmPaint() = default;

frmPaint *frmPaint::OpenPaint(const QString &path, QWidget *parent)
{
    auto *paint = new frmPaint(parent);
    paint->show();
    QPointer<frmPaint> alive = paint;
    if (!path.isEmpty())
        paint->document().mnuOpen_My_Click(path);
    // The user may have closed it while the picture was read.
    if (alive && alive->isVisible()) {
        alive->raise();
        alive->activateWindow();
    }
    return paint;
}

void frmPaint::OpenPaintAndWait(const QString &path, QWidget *parent)
{
    QPointer<frmPaint> paint = OpenPaint(path, parent);
    if (!paint || !paint->isVisible())
        return;
    QEventLoop wait;
    connect(paint.data(), &frmPaint::closed, &wait, &QEventLoop::quit);
    connect(paint.data(), &QObject::destroyed, &wait, &QEventLoop::quit);
    wait.exec();
}

void frmPaint::closeEvent(QCloseEvent *event)
{
    if (m_longWork || !m_document->QueryClose()) {
        event->ignore();
        return;
    }
    event->accept();
    emit closed();
}

// --- PaintHost

PaintHost::Answer frmPaint::askSaveChanges()
{
    const auto answer = QMessageBox::question(
        this, windowTitle(), QStringLiteral("Do you want to save the changes?"),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes);
    if (answer == QMessageBox::Yes)
        return Answer::Yes;
    if (answer == QMessageBox::No)
        return Answer::No;
    return Answer::Cancel;
}

void frmPaint::showPaintError(const QString &text)
{
    QMessageBox box(QMessageBox::Critical, QStringLiteral("Tarnwick Paint"),
                    QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")),
                    QMessageBox::Ok, this);
    box.exec();
}

QString frmPaint::chooseOpenFile()
{
    if (chooseOpenFileHook)
        return chooseOpenFileHook();
    return QFileDialog::getOpenFileName(
        this, QStringLiteral("Open"),
        QStandardPaths::writableLocation(QStandardPaths::PicturesLocation), pictureFilter);
}

QString frmPaint::chooseSaveFile(const QString &current)
{
    if (chooseSaveFileHook)
        return chooseSaveFileHook(current);
    return QFileDialog::getSaveFileName(
        this, QStringLiteral("Save As"), current,
        QStringLiteral("JPEG (*.jpg);;GIF (*.gif);;Bitmap (*.bmp)"));
}

bool frmPaint::runLong(const std::function<bool(const FilterProgress &)> &work)
{
    if (m_longWork)
        return false; // one at a time
    m_longWork = true;
    m_cancel = false;
    std::atomic<int> percent{-1};
    std::atomic<int> phase{4};
    const FilterProgress progress = [this, &percent, &phase](int ph, int pc) {
        phase = ph;
        percent = pc;
        return !m_cancel.load();
    };
    menuBar()->setEnabled(false);
    m_canvas->setEnabled(false);
    m_progress->setValue(0);
    m_progress->show();
    m_cancelButton->show();
    QTimer tick;
    connect(&tick, &QTimer::timeout, this, [this, &percent, &phase] {
        if (percent >= 0) {
            m_progress->setValue(std::clamp(percent.load(), 0, 100));
            UpdateStatusBar(phase, percent);
        }
    });
    tick.start(50);

    QFutureWatcher<bool> watcher;
    QEventLoop loop;
    connect(&watcher, &QFutureWatcher<bool>::finished, &loop, &QEventLoop::quit);
    watcher.setFuture(QtConcurrent::run([&work, &progress] { return work(progress); }));
    if (!watcher.isFinished())
        loop.exec();
    const bool done = watcher.result() && !m_cancel;

    tick.stop();
    m_progress->hide();
    m_cancelButton->hide();
    menuBar()->setEnabled(true);
    m_canvas->setEnabled(true);
    m_longWork = false;
    documentChanged();
    return done;
}

void frmPaint::UpdateStatusBar(int pane, int percent)
{
    if (pane == 4)
        m_paneHint->setText(QStringLiteral("Filtering... ") + QStringLiteral("(") +
                            QString::number(percent) + QStringLiteral("% complete)"));
    else if (pane == 5)
        m_paneHint->setText(QStringLiteral("Retrieving color information... ") +
                            QStringLiteral("(") + QString::number(percent) +
                            QStringLiteral("% complete)"));
}

void frmPaint::statusHint(int pane, const QString &text)
{
    if (!m_paneHint)
        return; // still being built
    if (pane == 0)
        m_toolHint = text;
    m_paneHint->setText(text);
}

void frmPaint::showMousePosition(const QPoint &at)
{
    m_panePosition->setText(QString::number(at.x()) + QStringLiteral(",") +
                            QString::number(at.y()));
}

void frmPaint::documentChanged()
{
    if (!m_document || !m_canvas)
        return; // still being built
    const PaintDocument &doc = *m_document;
    setWindowTitle(doc.Caption());
    const auto enable = [this](const char *name, bool on) {
        if (auto *action = findChild<QAction *>(QLatin1String(name)))
            action->setEnabled(on);
    };
    const PaintDocument::MenuState menus = doc.menuState();
    enable("mnuUndo", menus.undo);
    enable("mnuRedo", menus.redo);
    enable("mnuCut", menus.selectionCommands);
    enable("mnuCopy", menus.selectionCommands);
    enable("mnuDelete", menus.selectionCommands);
    enable("mnuCrop", menus.selectionCommands);
    enable("mnuPaste", menus.paste);
    m_paneSize->setText(QString::number(doc.picture().width()) + QStringLiteral("x") +
                        QString::number(doc.picture().height()));
    if (!m_longWork && m_paneHint->text().contains(QStringLiteral("% complete)")))
        m_paneHint->setText(m_toolHint);
    if (m_toolBox)
        m_toolBox->sync(doc.CurrentTool(), doc.DotSize(), doc.fillMode(), doc.brushShape());
    if (m_colorBar)
        m_colorBar->sync(doc.foreColor(), doc.fillColor());
    m_canvas->syncToDocument();
    m_canvas->setCursor(toolCursor(doc.toolCursorFile()).value_or(QCursor(Qt::ArrowCursor)));
    if (doc.ZoomFactor() != m_shownZoom) {
        // The clicked point stays in view.
        m_shownZoom = doc.ZoomFactor();
        const QPoint anchor = doc.zoomAnchor() * m_shownZoom;
        m_scroll->ensureVisible(int(anchor.x()), int(anchor.y()), m_scroll->width() / 2,
                                m_scroll->height() / 2);
    }
}

// --- Print and the common dialogs

bool frmPaint::mnuPrint_Click()
{
    m_document->ResetZoom();
    const QImage picture = m_document->picture();
    QPrinter printer(QPrinter::HighResolution);
    if (usePrinter && !QPrinterInfo::availablePrinters().isEmpty()) {
        QPrintDialog dialog(&printer, this);
        dialog.setObjectName(QStringLiteral("cdlPrint"));
        if (dialog.exec() != QDialog::Accepted)
            return false;
    } else {
        QString pdf;
        if (choosePdfFileHook)
            pdf = choosePdfFileHook();
        else
            pdf = QFileDialog::getSaveFileName(
                this, QStringLiteral("No printer is installed - print to a PDF file"),
                QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
                    QStringLiteral("/Picture.pdf"),
                QStringLiteral("PDF files (*.pdf)"));
        if (pdf.isEmpty())
            return false;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(pdf);
    }
    QPainter painter;
    if (!painter.begin(&printer)) {
        showPaintError(PaintErrorText(2));
        return false;
    }
    // The picture at its full size: its pixels at the screen's 96 to the inch, less when the
    // page is smaller.
    const QRectF page = printer.pageLayout().paintRectPixels(printer.resolution());
    const double scale = printer.resolution() / 96.0;
    QSizeF size(picture.width() * scale, picture.height() * scale);
    if (size.width() > page.width() || size.height() > page.height())
        size.scale(page.size(), Qt::KeepAspectRatio);
    painter.drawImage(QRectF(QPointF(0, 0), size), picture);
    const bool ok = painter.end();
    if (!ok)
        showPaintError(PaintErrorText(2));
    return ok;
}

void frmPaint::mnuForegroundColor_Click()
{
    const QColor start = toQColor(m_document->foreColor());
    const QColor chosen =
        chooseColorHook ? chooseColorHook(start, QStringLiteral("Foreground Color"))
                        : QColorDialog::getColor(start, this, QStringLiteral("Foreground Color"));
    if (chosen.isValid())
        m_document->setForeColor(toColour(chosen));
}

void frmPaint::mnuFillColor_Click()
{
    const QColor start = toQColor(m_document->fillColor());
    const QColor chosen = chooseColorHook
                              ? chooseColorHook(start, QStringLiteral("Fill Color"))
                              : QColorDialog::getColor(start, this, QStringLiteral("Fill Color"));
    if (chosen.isValid())
        m_document->setFillColor(toColour(chosen));
}

void frmPaint::mnuFont_Click()
{
    bool ok = false;
    const QFont font = QFontDialog::getFont(&ok, m_document->font(), this, QStringLiteral("Font"));
    if (ok)
        m_document->setFont(font);
}
