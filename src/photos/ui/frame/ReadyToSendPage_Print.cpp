#include "ReadyToSendPage.h"

#include "History.h"
#include "JobUi.h"
#include "PhotoPage.h"

#include <QDateTime>
#include <QDir>
#include <QImageReader>
#include <QListWidget>
#include <QLocale>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QPrinterInfo>

namespace {

struct ListRow
{
    QString name;
    QString text;
    QString path;
};

} // namespace

QStringList ReadyToSendPage::printLines() const
{
    QStringList lines;
    lines << QStringLiteral("Date: ") +
                 QLocale::c().toString(QDateTime::currentDateTime(),
                                       QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    lines << QStringLiteral("Photo page created from: ") + m_sourceFolder;
    lines << (m_pagePointer.isEmpty() ? QStringLiteral("Uploaded to: Not uploaded Yet")
                                      : QStringLiteral("Uploaded to: ") + m_pagePointer);
    for (int i = 0; i < m_file3->count(); ++i) {
        const QString name = m_file3->item(i)->text();
        const int row = FindPhoto(m_page, RemoveGroupNumber(name), GetGroupNumber(name));
        QString text = PhotoPage::isRow(row) ? m_page.PhotoInfo[row] : QString();
        text.replace(QStringLiteral("\r\n"), QStringLiteral(" "))
            .replace(QLatin1Char('\r'), QLatin1Char(' '));
        lines << name + QStringLiteral("     ") + text;
    }
    return lines;
}

bool ReadyToSendPage::paintList(QPagedPaintDevice &device) const
{
    QPainter painter;
    if (!painter.begin(&device))
        return false;

    const QStringList lines = printLines();
    const QRect page = painter.viewport();
    const int dpi = device.logicalDpiY();
    const int margin = dpi / 2;
    const QRect area = page.adjusted(margin, margin, -margin, -margin);
    const int gap = dpi / 12;
    const int thumb = dpi * 3 / 4;

    QFont heading(QStringLiteral("Liberation Sans"), 14, QFont::Bold);
    QFont normal(QStringLiteral("Liberation Sans"), 10);
    QFont bold = normal;
    bold.setBold(true);

    int y = area.top();
    painter.setFont(heading);
    const QString title = m_page.FileName.isEmpty()
                              ? QStringLiteral("Ready to Send")
                              : QStringLiteral("Ready to Send - ") + m_page.FileName;
    painter.drawText(QRect(area.left(), y, area.width(), dpi), Qt::AlignLeft | Qt::TextWordWrap,
                     title, nullptr);
    y += painter.fontMetrics().height() + gap;

    painter.setFont(normal);
    for (int i = 0; i < 3 && i < lines.size(); ++i) {
        const QRect box = painter.boundingRect(QRect(area.left(), y, area.width(), area.height()),
                                               Qt::TextWordWrap, lines[i]);
        painter.drawText(box, Qt::TextWordWrap, lines[i]);
        y = box.bottom() + gap / 2;
    }
    y += gap;
    painter.drawLine(area.left(), y, area.right(), y);
    y += gap;

    for (int i = 0; i < m_file3->count(); ++i) {
        const QString name = m_file3->item(i)->text();
        const QString line = lines.value(3 + i);
        const QString text = line.mid(name.size() + 5);
        const int textLeft = area.left() + thumb + gap * 2;
        const int textWidth = area.right() - textLeft;
        painter.setFont(normal);
        const QRect textBox = painter.boundingRect(QRect(textLeft, 0, textWidth, area.height()),
                                                   Qt::TextWordWrap, text);
        painter.setFont(bold);
        const int nameHeight = painter.fontMetrics().height();
        const int rowHeight = qMax(thumb, nameHeight + textBox.height()) + gap;
        if (y + rowHeight > area.bottom() && y > area.top()) {
            device.newPage();
            y = area.top();
        }

        QImageReader reader(m_workingFolder + QLatin1Char('/') + name);
        reader.setAutoTransform(true);
        const QSize size = reader.size();
        if (size.isValid())
            reader.setScaledSize(size.scaled(thumb, thumb, Qt::KeepAspectRatio));
        const QImage image = reader.read();
        if (!image.isNull())
            painter.drawImage(QPoint(area.left() + (thumb - image.width()) / 2, y), image);

        painter.drawText(QRect(textLeft, y, textWidth, nameHeight), Qt::AlignLeft, name);
        painter.setFont(normal);
        painter.drawText(QRect(textLeft, y + nameHeight, textWidth, textBox.height()),
                         Qt::TextWordWrap, text);
        y += rowHeight;
    }
    return painter.end();
}

void ReadyToSendPage::PrintList()
{
    const QPrinterInfo printerInfo = QPrinterInfo::defaultPrinter();
    if (m_services.usePrinter && !printerInfo.isNull()) {
        QPrinter printer(printerInfo, QPrinter::HighResolution);
        printer.setDocName(QStringLiteral("Ready to Send"));
        if (!paintList(printer))
            m_services.ui->Message(QStringLiteral("The list could not be printed on ") +
                                       printerInfo.printerName() + QLatin1Char('.'),
                                   QStringLiteral("Tarnwick"), JobUi::Buttons::Ok,
                                   JobUi::Icon::Warning);
        return;
    }

    // No printer here: the list goes to a PDF file of the user's choice.
    if (!m_services.choosePdfFile)
        return;
    const QString suggested =
        (m_page.FileName.isEmpty() ? QStringLiteral("Ready to Send") : m_page.FileName) +
        QStringLiteral(".pdf");
    const QString path = m_services.choosePdfFile(suggested);
    if (path.isEmpty())
        return;
    QPdfWriter writer(path);
    writer.setTitle(QStringLiteral("Ready to Send"));
    writer.setCreator(QStringLiteral("Tarnwick"));
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setResolution(300);
    if (!paintList(writer))
        m_services.ui->Message(QStringLiteral("The list could not be written to ") +
                                   QDir::toNativeSeparators(path) + QLatin1Char('.'),
                               QStringLiteral("Tarnwick"), JobUi::Buttons::Ok,
                               JobUi::Icon::Warning);
}
