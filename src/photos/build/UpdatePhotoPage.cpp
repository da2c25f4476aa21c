#include "UpdatePhotoPage.h"

#include "CopyPhotos.h"
#include "Helpers.h"
#include "History.h"
#include "JobState.h"
#include "JobUi.h"
#include "PhotoBuild.h"
#include "PhotoPage.h"
#include "ReadyListConversions.h"

#include <QFile>
#include <QFileInfo>

#include <deque>

namespace {

const QString Tarnwick = QStringLiteral("Tarnwick");

} // namespace

bool LoadHst2(PhotoPage &page, const QString &historyName, const QString &workingFolder, JobUi &ui,
              JobState &state, PhotoBuildWindow &window)
{
    window.setBusy(true);
    window.DoCleanup();
    // The list of the page that was open goes without a question.
    for (const QString &row : ListPictureFiles(workingFolder))
        DoKill(workingFolder + QLatin1Char('/') + row);

    const auto fail = [&] {
        window.setBusy(false);
        window.refreshReadyList();
        ui.Message(QStringLiteral("Select a History file and retry."), Tarnwick, JobUi::Buttons::Ok,
                   JobUi::Icon::Warning);
        return false;
    };
    if (historyName.trimmed().isEmpty())
        return fail();
    page.FileName = historyName;
    const HistoryResult read = ReadHistory(page);
    if (!read.ok)
        return fail();

    TransferFiles(page, workingFolder, ui, state, window);
    window.setBusy(false);
    return true;
}

int TransferFiles(PhotoPage &page, const QString &workingFolder, JobUi &ui, JobState &state,
                  PhotoBuildWindow &window)
{
    window.showProgressFrame(true);
    ui.SetStatusText(QStringLiteral("Transfering images"));
    ui.SetStepOf(QString());
    ui.ProcessEvents();

    // The pictures are copied on worker threads, several at once (ReadyListConversions), and
    // told about in the record's order.
    int copied = 0;
    ReadyListConversions conversions;
    struct Entry
    {
        int row = 0;
        bool started = false; // false: its picture was not found
    };
    std::deque<Entry> entries;
    const auto finishOldest = [&] {
        const Entry entry = entries.front();
        entries.pop_front();
        if (entry.started && conversions.takeOldest().message.isEmpty()) {
            ++copied;
            return;
        }
        ui.Message(QStringLiteral("Image not found. The file ") + page.PhotoName[entry.row] +
                       QStringLiteral(" may have been moved, renamed, or deleted. It was "
                                      "located at: ") +
                       page.PhotoPath[entry.row],
                   Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
    };
    const int count = page.PhotoNumber;
    for (int i = 0; i < count && PhotoPage::isRow(i); ++i) {
        ui.SetStepOf(QString::number(i + 1) + QStringLiteral(" of ") + QString::number(count));
        ui.ProcessEvents();
        QString &order = page.PhotoOrder[i];
        if (order.size() < 5)
            order = (QStringLiteral("00000") + order).right(5);
        if (order.isEmpty())
            order = QStringLiteral("00000");

        // A picture that went onto the list as a JPEG is converted again from its source.
        const QString source = FindSourceOf(page.PhotoPath[i], page.PhotoName[i]);
        const QString target =
            workingFolder + QLatin1Char('/') + order + QLatin1Char('_') + page.PhotoName[i];
        if (source.isEmpty()) {
            entries.push_back(Entry{i, false});
        } else {
            const qint64 bytes = ReadyListConversions::ConversionBytes(source);
            while (conversions.pending() > 0 &&
                   (!conversions.hasRoom(bytes) || conversions.writes(target)))
                finishOldest();
            conversions.start(source, target, bytes);
            entries.push_back(Entry{i, true});
        }
        if (conversions.pending() == 0) {
            while (!entries.empty())
                finishOldest();
        }
        if (state.UploadCancelled)
            break;
    }
    while (!entries.empty())
        finishOldest();
    window.showProgressFrame(false);
    window.refreshReadyList();
    window.refreshSourceList();
    return copied;
}
