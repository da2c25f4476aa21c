// The template walker on a page template a user edited (placeholders, stray and unmatched
// marks, placeholders inside placeholders) and on the texts a user typed that it puts in.
#include "FuzzSupport.h"
#include "TemplateState.h"
#include "TemplateWalker.h"

#include <QIODevice>
#include <QTextStream>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // The template, then the user's texts, cut at NUL bytes.
    const QList<QByteArray> parts = Fuzz::parts(Fuzz::bytes(data, size), 8);
    QString templateText = QString::fromUtf8(parts[0]);
    TemplateState state;
    state.PageTitle = QString::fromUtf8(parts[1]);
    state.PageGroupInfo = QString::fromUtf8(parts[2]);
    state.section.BlogText = QString::fromUtf8(parts[3]);
    state.section.PhotoPath = QString::fromUtf8(parts[4]);
    state.File3 = QString::fromUtf8(parts[5]).split(QLatin1Char('\n'));
    state.CurrentPhotoRow = parts[6].isEmpty() ? 0 : int(qint8(parts[6].at(0)));
    state.photoInfo = [&parts](const QString &entry) -> std::optional<QString> {
        if (entry.isEmpty())
            return std::nullopt;
        return QString::fromUtf8(parts[7]);
    };
    state.blogPage.MainTitle = state.PageTitle;
    state.section.DisplayedSubTitle = state.PageGroupInfo;
    state.section.ShowLine = state.PageTitle.left(5);
    state.pointer.Category = state.PageGroupInfo;
    state.ShowPointersCk = size % 2;
    state.ShowCommentCk = size % 3;
    state.PortalColumns = parts[6].size() > 1 ? int(qint8(parts[6].at(1))) : 3;
    state.File11Selected = state.PageTitle;

    QTextStream in(&templateText, QIODevice::ReadOnly);
    QString page;
    QTextStream out(&page, QIODevice::WriteOnly);
    const TemplateWalkResult result = FillTemplate(in, out, state);
    out.flush();
    FUZZ_CHECK(result.linesWritten <= result.linesRead);
    FUZZ_CHECK(result.complete || !result.error.isEmpty());
    FUZZ_CHECK(page.count(QLatin1Char('\n')) >= result.linesWritten);
    const qsizetype lines =
        templateText.count(QLatin1Char('\n')) + templateText.count(QLatin1Char('\r')) + 1;
    FUZZ_CHECK(result.linesRead <= lines);

    // Each placeholder on its own.
    const QString token = QStringLiteral("!!") + state.PageTitle.left(40) + QStringLiteral("!!");
    const QString text = GetActionData(token, state);
    (void)text;
    FUZZ_CHECK(EscapeMarks(state.PageTitle).count(QLatin1Char('!')) <=
               state.PageTitle.count(QLatin1Char('!')));
    FUZZ_CHECK(GetFileName(state.section.PhotoPath).size() <= state.section.PhotoPath.size());
    return 0;
}
