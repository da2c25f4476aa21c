// The paint tools' cursor files, read from the data folder's Cursors when a tool is chosen: a
// file that a user replaced, or that a crash cut short.
// fuzz-options: -max_len=300000
#include "CursorFile.h"
#include "FuzzSupport.h"

#include <QImage>

namespace {

// Pixels that can't be seen are alike whatever their colour.
QImage seen(const QImage &image)
{
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = Fuzz::home() + QStringLiteral("/Tarnwick/Data/Cursors/Pencil.cur");
    Fuzz::writeFile(path, Fuzz::bytes(data, size));
    const CursorImage cursor = ReadCursorFile(path);
    FUZZ_CHECK(cursor.ok() || cursor.image.isNull());
    if (!cursor.ok())
        return 0;
    FUZZ_CHECK(cursor.image.format() == QImage::Format_ARGB32);
    FUZZ_CHECK(cursor.image.width() >= 1 && cursor.image.width() <= 256);
    FUZZ_CHECK(cursor.image.height() >= 1 && cursor.image.height() <= 256);
    FUZZ_CHECK(cursor.image.rect().contains(cursor.hotSpot));

    // What the writer makes of it reads back as the same cursor.
    const CursorImage again = ParseCursor(CursorBytes(cursor.image, cursor.hotSpot));
    FUZZ_CHECK_MSG(again.ok(), again.error);
    FUZZ_CHECK(again.hotSpot == cursor.hotSpot);
    FUZZ_CHECK(seen(again.image) == seen(cursor.image));
    return 0;
}
