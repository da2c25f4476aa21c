// The picture path that sizing takes, on a file that claims to be a JPEG or a GIF: the size
// read (EXIF orientation applied), the decode at the scale a copy needs, the scaling, and the
// JPEG and GIF written.
// fuzz-options: -max_len=131072
#include "FuzzSupport.h"
#include "PictureSizing.h"

#include <QFile>
#include <QFileInfo>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    // The first byte picks the name the picture has and the sizes asked for.
    const bool gif = data[0] & 1;
    const double largePercent = 5 + (data[0] >> 1) % 60;
    const double smallPercent = 1 + (data[0] >> 4) % 8;
    const QString folder = Fuzz::home() + QStringLiteral("/images");
    const QString source = folder + (gif ? QStringLiteral("/in.gif") : QStringLiteral("/in.jpg"));
    Fuzz::writeFile(source, Fuzz::bytes(data + 1, size - 1));
    const QString large = folder + QStringLiteral("/Lrg_in.jpg");
    const QString small = folder + QStringLiteral("/Sml_in.gif");
    QFile::remove(large);
    QFile::remove(small);

    QString error;
    const QSize shown = PictureSize(source, &error);
    FUZZ_CHECK(shown.isValid() || !error.isEmpty());

    const SizeResult sized = SizePhoto(source, large, largePercent, small, smallPercent);
    if (!sized.loadError.isEmpty()) {
        FUZZ_CHECK(!QFileInfo::exists(large) && !QFileInfo::exists(small));
        return 0;
    }
    FUZZ_CHECK(shown.isValid());
    if (sized.largeMessage.isEmpty()) {
        const QSize want = ScaledSize(shown, largePercent);
        const QSize made = PictureSize(large);
        FUZZ_CHECK_MSG(made == want, QStringLiteral("%1x%2 for %3x%4")
                                         .arg(made.width())
                                         .arg(made.height())
                                         .arg(want.width())
                                         .arg(want.height()));
    }
    if (QFileInfo::exists(small) && sized.smallMessage.isEmpty())
        FUZZ_CHECK(PictureSize(small) == ScaledSize(shown, smallPercent));
    return 0;
}
