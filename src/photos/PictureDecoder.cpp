#include "PictureDecoder.h"

#include <QColorSpace>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <optional>

#include <jpeglib.h>
#include <libheif/heif.h>

namespace {

qint64 bytesOf(QSize size)
{
    return qint64(size.width()) * size.height() * 4;
}

QString damaged(const QString &path, const QString &reason = QString())
{
    return (reason.isEmpty() ? QStringLiteral("The file is damaged or is not a picture") : reason) +
           QStringLiteral(" (") + QFileInfo(path).fileName() + QLatin1Char(')');
}

// The reader's reason, made readable, with the file's name. A file that no reader takes is
// named as damaged or not a picture: its name promised one.
QString readError(const QImageReader &reader, const QString &path)
{
    QString reason = reader.errorString();
    if (reader.error() == QImageReader::UnknownError ||
        reader.error() == QImageReader::UnsupportedFormatError || reason.isEmpty() ||
        reason == QLatin1String("Unknown error"))
        reason.clear();
    return damaged(path, reason);
}

QString tooLargeText(QSize size)
{
    return QStringLiteral("The picture is too large to be sized (%1 x %2 pixels).")
        .arg(size.width())
        .arg(size.height());
}

// Mirrors, then turns a quarter clockwise, as the file's orientation asks.
QImage applyTransformation(QImage image, QImageIOHandler::Transformations transformation)
{
    if (transformation == QImageIOHandler::TransformationNone)
        return image;
    const bool mirror = transformation.testFlag(QImageIOHandler::TransformationMirror);
    const bool flip = transformation.testFlag(QImageIOHandler::TransformationFlip);
    if (mirror || flip)
        image = std::move(image).mirrored(mirror, flip);
    if (transformation.testFlag(QImageIOHandler::TransformationRotate90))
        image = image.transformed(QTransform().rotate(90));
    return image;
}

// Colours converted to sRGB from the space the picture carries; pictures without a profile, or
// with one that can't be converted, are taken as sRGB already.
QImage toSRgb(QImage image)
{
    const QColorSpace space = image.colorSpace();
    const QColorSpace sRgb(QColorSpace::SRgb);
    if (space.isValid() && space != sRgb)
        image.convertToColorSpace(sRgb);
    image.setColorSpace(sRgb);
    return image;
}

// Eight-bit channels, opaque pictures as RGB32 and others premultiplied: what the resampler and
// the writers take.
QImage toEightBit(QImage image)
{
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32_Premultiplied:
    case QImage::Format_RGB888:
    case QImage::Format_Grayscale8:
        return image;
    default:
        return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                             : QImage::Format_RGB32);
    }
}

// libjpeg reports errors by a jump back to the call that set it up. The functions that set
// the jump hold only plain data, so nothing with a destructor is skipped.
struct JpegErrorManager
{
    jpeg_error_mgr manager;
    std::jmp_buf jump;
    char message[JMSG_LENGTH_MAX];
};

void jpegError(j_common_ptr info)
{
    auto *error = reinterpret_cast<JpegErrorManager *>(info->err);
    (*info->err->format_message)(info, error->message);
    std::longjmp(error->jump, 1);
}

void jpegSilent(j_common_ptr, int) {}

struct JpegDecoder
{
    jpeg_decompress_struct info;
    JpegErrorManager error;
    bool created = false;
    JOCTET *icc = nullptr;
    unsigned int iccLength = 0;
    // Where the rows go: the first byte of the picture and the bytes of a line.
    uchar *rows = nullptr;
    qsizetype bytesPerLine = 0;

    ~JpegDecoder()
    {
        if (created)
            jpeg_destroy_decompress(&info);
        std::free(icc);
    }
};

// Reads the header: size, colour model and the embedded profile. false with error.message set
// when the data isn't a JPEG libjpeg can read.
bool jpegHeader(JpegDecoder &d, const uchar *data, unsigned long size)
{
    d.info.err = jpeg_std_error(&d.error.manager);
    d.error.manager.error_exit = jpegError;
    d.error.manager.emit_message = jpegSilent;
    d.error.message[0] = 0;
    if (setjmp(d.error.jump))
        return false;
    jpeg_create_decompress(&d.info);
    d.created = true;
    jpeg_mem_src(&d.info, data, size);
    jpeg_save_markers(&d.info, JPEG_APP0 + 2, 0xffff);
    jpeg_read_header(&d.info, TRUE);
    if (!jpeg_read_icc_profile(&d.info, &d.icc, &d.iccLength)) {
        d.icc = nullptr;
        d.iccLength = 0;
    }
    return true;
}

// Decodes at scale scaleNum/8 into the rows that start() gives: it is called with the output
// size and sets d.rows and d.bytesPerLine (d.rows null: no memory).
template <typename Start>
bool jpegDecode(JpegDecoder &d, unsigned int scaleNum, Start start)
{
    if (setjmp(d.error.jump))
        return false;
    d.info.scale_num = scaleNum;
    d.info.scale_denom = 8;
    d.info.out_color_space = JCS_EXT_BGRA;
    d.info.dct_method = JDCT_ISLOW;
    jpeg_start_decompress(&d.info);
    start(d, int(d.info.output_width), int(d.info.output_height));
    if (!d.rows) {
        jpeg_abort_decompress(&d.info);
        std::snprintf(d.error.message, sizeof d.error.message, "Out of memory");
        return false;
    }
    while (d.info.output_scanline < d.info.output_height) {
        JSAMPROW row = d.rows + qsizetype(d.info.output_scanline) * d.bytesPerLine;
        jpeg_read_scanlines(&d.info, &row, 1);
    }
    jpeg_finish_decompress(&d.info);
    return true;
}

bool isJpeg(const QByteArray &data)
{
    return data.size() > 3 && uchar(data[0]) == 0xff && uchar(data[1]) == 0xd8 &&
           uchar(data[2]) == 0xff;
}

// The scales n/8 at which a JPEG is decoded. libjpeg can reduce by any n from 1 to 8, but the
// transforms of sizes other than powers of two leave aliasing that no later filter takes out:
// against a Lanczos reference from the whole picture, a 30% copy of a 17.9-megapixel photo
// decoded at 5/8 came out 5.5 dB worse than one decoded whole, and a 30% copy of a 1.9-megapixel
// flower decoded at 6/8 2 dB worse.
constexpr unsigned int JpegScales[] = {1, 2, 4, 8};

// The scale n/8 at which a JPEG of stored size is decoded for wanted (stored orientation)
// within budget bytes.
unsigned int jpegScale(QSize stored, QSize wanted, qint64 budget)
{
    const auto atScale = [stored](unsigned int n) {
        return QSize(int((qint64(stored.width()) * n + 7) / 8),
                     int((qint64(stored.height()) * n + 7) / 8));
    };
    int index = int(std::size(JpegScales)) - 1;
    if (wanted.isValid()) {
        const QSize room(int(std::ceil(wanted.width() * DecodeHeadroom)),
                         int(std::ceil(wanted.height() * DecodeHeadroom)));
        index = 0;
        while (index + 1 < int(std::size(JpegScales)) &&
               (atScale(JpegScales[index]).width() < room.width() ||
                atScale(JpegScales[index]).height() < room.height()))
            ++index;
    }
    while (index > 0 && bytesOf(atScale(JpegScales[index])) > budget)
        --index;
    return JpegScales[index];
}

QSize jpegOutput(QSize stored, unsigned int n)
{
    return QSize(int((qint64(stored.width()) * n + 7) / 8),
                 int((qint64(stored.height()) * n + 7) / 8));
}

// A JPEG in YCbCr or grey, decoded by libjpeg at a reduced scale; nullopt for one that only the
// general reader handles (CMYK).
std::optional<DecodedPicture> decodeJpeg(const QString &path, const QByteArray &data,
                                         const PictureHeader &header, QSize atLeast,
                                         qint64 budget)
{
    JpegDecoder d;
    const auto *bytes = reinterpret_cast<const uchar *>(data.constData());
    if (!jpegHeader(d, bytes, static_cast<unsigned long>(data.size())))
        return DecodedPicture{QImage(), damaged(path, QString::fromLatin1(d.error.message))};
    if (d.info.jpeg_color_space != JCS_YCbCr && d.info.jpeg_color_space != JCS_GRAYSCALE &&
        d.info.jpeg_color_space != JCS_RGB)
        return std::nullopt;
    const QSize stored(int(d.info.image_width), int(d.info.image_height));
    const bool swap = header.transformation.testFlag(QImageIOHandler::TransformationRotate90);
    const QSize wanted = atLeast.isValid() ? (swap ? atLeast.transposed() : atLeast) : QSize();
    const unsigned int n = jpegScale(stored, wanted, budget);
    if (bytesOf(jpegOutput(stored, n)) > budget)
        return DecodedPicture{QImage(), tooLargeText(header.upright())};
    QImage image;
    const bool ok = jpegDecode(d, n, [&image](JpegDecoder &decoder, int width, int height) {
        image = QImage(width, height, QImage::Format_RGB32);
        decoder.rows = image.isNull() ? nullptr : image.bits();
        decoder.bytesPerLine = image.bytesPerLine();
    });
    if (!ok)
        return DecodedPicture{QImage(), damaged(path, QString::fromLatin1(d.error.message))};
    if (d.icc)
        image.setColorSpace(QColorSpace::fromIccProfile(
            QByteArray(reinterpret_cast<const char *>(d.icc), int(d.iccLength))));
    return DecodedPicture{image, QString()};
}

// The first bytes of a file: enough to tell a HEIF container.
QByteArray fileHead(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.read(64);
}

bool isHeif(const QByteArray &head)
{
    if (head.size() < 12)
        return false;
    const heif_filetype_result kind =
        heif_check_filetype(reinterpret_cast<const uint8_t *>(head.constData()), int(head.size()));
    return kind == heif_filetype_yes_supported || kind == heif_filetype_maybe;
}

// The orientation tag of an EXIF block (a TIFF structure), as the transformation that turns the
// picture upright; none when the block holds no valid tag.
QImageIOHandler::Transformations exifTransformation(const QByteArray &tiff)
{
    if (tiff.size() < 8)
        return QImageIOHandler::TransformationNone;
    const bool little = tiff.startsWith("II");
    if (!little && !tiff.startsWith("MM"))
        return QImageIOHandler::TransformationNone;
    const auto *bytes = reinterpret_cast<const uchar *>(tiff.constData());
    const auto read16 = [&](qsizetype at) -> quint32 {
        if (at < 0 || at + 2 > tiff.size())
            return 0;
        return little ? quint32(bytes[at] | bytes[at + 1] << 8)
                      : quint32(bytes[at] << 8 | bytes[at + 1]);
    };
    const auto read32 = [&](qsizetype at) -> quint32 {
        return little ? read16(at) | read16(at + 2) << 16 : read16(at) << 16 | read16(at + 2);
    };
    const qsizetype ifd = qsizetype(read32(4));
    const quint32 entries = read16(ifd);
    for (quint32 i = 0; i < entries && i < 512; ++i) {
        const qsizetype entry = ifd + 2 + qsizetype(i) * 12;
        if (read16(entry) != 0x0112)
            continue;
        switch (read16(entry + 8)) {
        case 2:
            return QImageIOHandler::TransformationMirror;
        case 3:
            return QImageIOHandler::TransformationRotate180;
        case 4:
            return QImageIOHandler::TransformationFlip;
        case 5:
            return QImageIOHandler::TransformationFlipAndRotate90;
        case 6:
            return QImageIOHandler::TransformationRotate90;
        case 7:
            return QImageIOHandler::TransformationMirrorAndRotate90;
        case 8:
            return QImageIOHandler::TransformationRotate270;
        default:
            return QImageIOHandler::TransformationNone;
        }
    }
    return QImageIOHandler::TransformationNone;
}

// Whether a HEIF file turns or mirrors its picture by its own boxes ("irot", "imir" among the
// item properties), which libheif applies as it decodes. Walks the boxes of "meta" down to the
// property container.
bool heifHasOwnOrientation(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray data = file.read(4 * 1024 * 1024);
    const auto *bytes = reinterpret_cast<const uchar *>(data.constData());
    const auto read32 = [&](qsizetype at) -> quint64 {
        return at + 4 > data.size() ? 0
                                    : quint64(bytes[at]) << 24 | quint64(bytes[at + 1]) << 16 |
                                          quint64(bytes[at + 2]) << 8 | quint64(bytes[at + 3]);
    };
    // The child boxes of [from, to): type and where the content starts and ends.
    struct Box
    {
        QByteArray type;
        qsizetype content = 0;
        qsizetype end = 0;
    };
    const auto children = [&](qsizetype from, qsizetype to) {
        QList<Box> boxes;
        qsizetype at = from;
        while (at + 8 <= to && boxes.size() < 4096) {
            quint64 size = read32(at);
            qsizetype header = 8;
            if (size == 1) {
                size = read32(at + 8) << 32 | read32(at + 12);
                header = 16;
            } else if (size == 0) {
                size = quint64(to - at);
            }
            if (size < quint64(header) || at + qsizetype(size) > to)
                break;
            boxes.append({data.mid(at + 4, 4), at + header, at + qsizetype(size)});
            at += qsizetype(size);
        }
        return boxes;
    };
    const auto find = [](const QList<Box> &boxes, const char *type) -> const Box * {
        for (const Box &box : boxes) {
            if (box.type == type)
                return &box;
        }
        return nullptr;
    };
    const QList<Box> top = children(0, data.size());
    const Box *meta = find(top, "meta");
    if (!meta)
        return false;
    const QList<Box> inMeta = children(meta->content + 4, meta->end); // a full box
    const Box *iprp = find(inMeta, "iprp");
    if (!iprp)
        return false;
    const QList<Box> inIprp = children(iprp->content, iprp->end);
    const Box *ipco = find(inIprp, "ipco");
    if (!ipco)
        return false;
    const QList<Box> properties = children(ipco->content, ipco->end);
    return find(properties, "irot") || find(properties, "imir");
}

// One HEIF file opened by libheif: its primary picture.
struct HeifFile
{
    heif_context *context = nullptr;
    heif_image_handle *handle = nullptr;
    QString error;

    explicit HeifFile(const QString &path)
    {
        // libheif registers its decoders on first use; several pictures are decoded at once on
        // worker threads, so that is done once, before any of them.
        static const bool initialised = heif_init(nullptr).code == heif_error_Ok;
        Q_UNUSED(initialised);
        context = heif_context_alloc();
        heif_error result = heif_context_read_from_file(context, QFile::encodeName(path).constData(),
                                                        nullptr);
        if (result.code == heif_error_Ok)
            result = heif_context_get_primary_image_handle(context, &handle);
        if (result.code != heif_error_Ok) {
            handle = nullptr;
            error = damaged(path, QString::fromUtf8(result.message));
        }
    }
    ~HeifFile()
    {
        if (handle)
            heif_image_handle_release(handle);
        heif_context_free(context);
    }
    HeifFile(const HeifFile &) = delete;
    HeifFile &operator=(const HeifFile &) = delete;

    // Upright: libheif turns and mirrors the picture as its boxes ask when it decodes.
    QSize size() const
    {
        return QSize(heif_image_handle_get_width(handle), heif_image_handle_get_height(handle));
    }

    // The colour space the picture declares: an ICC profile, or the colour primaries and transfer
    // of its "nclx" box; invalid when it declares none, or one that can't be converted.
    QColorSpace colorSpace() const
    {
        const heif_color_profile_type type = heif_image_handle_get_color_profile_type(handle);
        if (type == heif_color_profile_type_prof || type == heif_color_profile_type_rICC) {
            QByteArray icc(qsizetype(heif_image_handle_get_raw_color_profile_size(handle)), 0);
            if (!icc.isEmpty() &&
                heif_image_handle_get_raw_color_profile(handle, icc.data()).code == heif_error_Ok)
                return QColorSpace::fromIccProfile(icc);
            return QColorSpace();
        }
        heif_color_profile_nclx *nclx = nullptr;
        if (heif_image_handle_get_nclx_color_profile(handle, &nclx).code != heif_error_Ok)
            return QColorSpace();
        QColorSpace space;
        const bool sRgbCurve =
            nclx->transfer_characteristics == heif_transfer_characteristic_IEC_61966_2_1 ||
            nclx->transfer_characteristics == heif_transfer_characteristic_unspecified;
        if (sRgbCurve && nclx->color_primaries != heif_color_primaries_unspecified)
            space = QColorSpace(QPointF(nclx->color_primary_white_x, nclx->color_primary_white_y),
                                QPointF(nclx->color_primary_red_x, nclx->color_primary_red_y),
                                QPointF(nclx->color_primary_green_x, nclx->color_primary_green_y),
                                QPointF(nclx->color_primary_blue_x, nclx->color_primary_blue_y),
                                QColorSpace::TransferFunction::SRgb);
        heif_nclx_color_profile_free(nclx);
        return space;
    }

    // The orientation tag of the picture's EXIF block: a HEIF file may say how to turn its
    // picture there rather than by its own boxes.
    QImageIOHandler::Transformations exifOrientation() const
    {
        heif_item_id id = 0;
        if (heif_image_handle_get_list_of_metadata_block_IDs(handle, "Exif", &id, 1) < 1)
            return QImageIOHandler::TransformationNone;
        QByteArray block(qsizetype(heif_image_handle_get_metadata_size(handle, id)), 0);
        if (block.size() < 4 ||
            heif_image_handle_get_metadata(handle, id, block.data()).code != heif_error_Ok)
            return QImageIOHandler::TransformationNone;
        // The block begins with the offset of the TIFF structure behind its first four bytes.
        const auto *bytes = reinterpret_cast<const uchar *>(block.constData());
        const quint32 offset = quint32(bytes[0]) << 24 | quint32(bytes[1]) << 16 |
                               quint32(bytes[2]) << 8 | quint32(bytes[3]);
        if (offset > quint32(block.size() - 4))
            return QImageIOHandler::TransformationNone;
        return exifTransformation(block.mid(4 + qsizetype(offset)));
    }
};

void releaseHeifImage(void *image)
{
    heif_image_release(static_cast<heif_image *>(image));
}

DecodedPicture decodeHeif(const QString &path, qint64 budget)
{
    HeifFile file(path);
    if (!file.handle)
        return {QImage(), file.error};
    const QSize size = file.size();
    if (!size.isValid() || size.width() > 65535 || size.height() > 65535 ||
        bytesOf(size) > budget)
        return {QImage(), tooLargeText(size)};
    const bool alpha = heif_image_handle_has_alpha_channel(file.handle);
    heif_image *decoded = nullptr;
    const heif_error result =
        heif_decode_image(file.handle, &decoded, heif_colorspace_RGB,
                          alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB,
                          nullptr);
    if (result.code != heif_error_Ok || !decoded)
        return {QImage(), damaged(path, QString::fromUtf8(result.message))};
    int stride = 0;
    const uint8_t *pixels = heif_image_get_plane_readonly(decoded, heif_channel_interleaved, &stride);
    const int width = heif_image_get_width(decoded, heif_channel_interleaved);
    const int height = heif_image_get_height(decoded, heif_channel_interleaved);
    if (!pixels || width <= 0 || height <= 0) {
        heif_image_release(decoded);
        return {QImage(), damaged(path)};
    }
    // The image wraps libheif's pixels and lets them go with its last copy.
    QImage image(pixels, width, height, stride,
                 alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888, releaseHeifImage,
                 decoded);
    image.setColorSpace(file.colorSpace());
    return {image, QString()};
}

} // namespace

PictureHeader ReadPictureHeader(const QString &path)
{
    PictureHeader header;
    if (!QFileInfo(path).isFile()) {
        header.error = QStringLiteral("File not found: ") + path;
        return header;
    }
    if (isHeif(fileHead(path))) {
        const HeifFile file(path);
        if (!file.handle) {
            header.error = file.error;
            return header;
        }
        header.stored = file.size();
        // The orientation is applied once: by libheif when the file has boxes of its own for
        // it, otherwise as its EXIF block asks.
        header.transformation = heifHasOwnOrientation(path)
                                    ? QImageIOHandler::Transformations(
                                          QImageIOHandler::TransformationNone)
                                    : file.exifOrientation();
        header.heif = true;
        return header;
    }
    QImageReader reader(path);
    // The content decides: a ".dib" is a bitmap, and a file may carry the wrong extension.
    reader.setDecideFormatFromContent(true);
    header.stored = reader.size();
    if (!header.stored.isValid()) {
        header.error = readError(reader, path);
        return header;
    }
    header.transformation = reader.transformation();
    header.reducesWhileDecoding = reader.format() == "jpeg";
    return header;
}

QSize DecodedSize(const PictureHeader &header, QSize atLeast, qint64 budgetBytes)
{
    if (!header.ok())
        return QSize();
    if (!header.reducesWhileDecoding)
        return header.upright();
    const bool swap = header.transformation.testFlag(QImageIOHandler::TransformationRotate90);
    const QSize wanted = atLeast.isValid() ? (swap ? atLeast.transposed() : atLeast) : QSize();
    const QSize out = jpegOutput(header.stored, jpegScale(header.stored, wanted, budgetBytes));
    return swap ? out.transposed() : out;
}

DecodedPicture DecodePicture(const QString &path, QSize atLeast, qint64 budgetBytes)
{
    const PictureHeader header = ReadPictureHeader(path);
    if (!header.ok())
        return {QImage(), header.error};
    if (header.stored.width() > 65535 || header.stored.height() > 65535)
        return {QImage(), tooLargeText(header.upright())};

    std::optional<DecodedPicture> decoded;
    if (header.heif)
        decoded = decodeHeif(path, budgetBytes);
    if (header.reducesWhileDecoding) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return {QImage(), damaged(path, file.errorString())};
        const QByteArray data = file.readAll();
        if (isJpeg(data))
            decoded = decodeJpeg(path, data, header, atLeast, budgetBytes);
    }
    if (!decoded) {
        if (bytesOf(header.stored) > budgetBytes)
            return {QImage(), tooLargeText(header.upright())};
        QImageReader reader(path);
        reader.setDecideFormatFromContent(true);
        reader.setAllocationLimit(int(std::max<qint64>(1, budgetBytes / (1024 * 1024) * 2)));
        QImage image = reader.read();
        if (image.isNull())
            return {QImage(), readError(reader, path)};
        decoded = DecodedPicture{image, QString()};
    }
    if (!decoded->ok())
        return *decoded;
    QImage image = toEightBit(toSRgb(std::move(decoded->image)));
    return {applyTransformation(std::move(image), header.transformation), QString()};
}
