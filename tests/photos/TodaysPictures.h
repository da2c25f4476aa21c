#pragma once

#include "PictureFixtures.h"

#include <QColorSpace>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QProcess>
#include <QStandardPaths>
#include <QString>

#include <lcms2.h>
#include <libheif/heif.h>

#include <cmath>
#include <cstring>

// Pictures as today's phones and cameras save them, made by the tests themselves from drawn
// scenes: a HEIC (Display P3, turned by its EXIF block), a WebP, a PNG with transparency, a
// 16-bit TIFF, a 50-megapixel JPEG and a ".heic" that holds junk. And the colour-managed
// reference their copies are held to: LittleCMS, CIELAB differences.
namespace TodaysPictures {

// A scene of saturated and soft colours whose halves and corners can be told apart: the top
// half red to yellow, the bottom half blue to green, a white square in the top left corner.
inline QImage scene(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient top(0, 0, width, 0);
    top.setColorAt(0, QColor(220, 30, 40));
    top.setColorAt(1, QColor(240, 200, 60));
    painter.fillRect(0, 0, width, height / 2, top);
    QLinearGradient bottom(0, 0, width, 0);
    bottom.setColorAt(0, QColor(40, 70, 210));
    bottom.setColorAt(1, QColor(60, 190, 90));
    painter.fillRect(0, height / 2, width, height - height / 2, bottom);
    painter.fillRect(0, 0, width / 8, height / 8, Qt::white);
    painter.end();
    return image;
}

// The scene's pixel values taken as Display P3 colours, as a phone saves them.
inline QImage displayP3Scene(int width, int height)
{
    QImage image = scene(width, height);
    image.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    return image;
}

inline QString heifEncoder()
{
    return QStandardPaths::findExecutable(QStringLiteral("heif-enc"));
}

// A HEIC of the Display P3 scene, upright width x height, stored on its side with EXIF
// orientation 6 (turn a quarter to the right to stand upright), carrying the Display P3
// profile. Made as a phone's JPEG first, then by heif-enc, which keeps the profile and the EXIF
// block.
inline bool writeHeic(const QString &path, int width, int height, QString *why = nullptr)
{
    const QString jpeg = path + QStringLiteral(".source.jpg");
    QImage stored = displayP3Scene(width, height).transformed(QTransform().rotate(-90));
    stored.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    if (!Fixtures::writeFile(jpeg, Fixtures::withOrientation(Fixtures::jpegBytes(stored, 95), 6)))
        return false;
    QProcess encoder;
    encoder.start(heifEncoder(), {QStringLiteral("-q"), QStringLiteral("92"), jpeg,
                                  QStringLiteral("-o"), path});
    const bool done = encoder.waitForFinished(-1) && encoder.exitStatus() == QProcess::NormalExit &&
                      encoder.exitCode() == 0;
    if (!done && why)
        *why = QString::fromLocal8Bit(encoder.readAllStandardError()) + encoder.errorString();
    QFile::remove(jpeg);
    return done;
}

// An EXIF block (a little-endian TIFF structure) holding only the orientation tag.
inline QByteArray exifOrientationBlock(quint16 orientation)
{
    QByteArray tiff("II\x2a\x00\x08\x00\x00\x00", 8);
    const char entry[] = {1, 0,                                  // one entry
                          0x12, 0x01, 3, 0, 1, 0, 0, 0,           // 0x0112, SHORT, count 1
                          char(orientation), 0, 0, 0,             // the value
                          0, 0, 0, 0};                            // no next directory
    tiff.append(entry, sizeof entry);
    return tiff;
}

// A HEIC as a phone of today writes it: the scene (upright width x height) stored on its side,
// turned by the file's own "irot" box, with an EXIF block that says orientation 6 as well; in
// sRGB. Written by libheif's encoder directly.
inline bool writeHeicWithOwnTurn(const QString &path, int width, int height)
{
    const QImage stored = scene(width, height)
                              .transformed(QTransform().rotate(-90))
                              .convertToFormat(QImage::Format_RGB888);
    heif_context *context = heif_context_alloc();
    heif_encoder *encoder = nullptr;
    heif_image *image = nullptr;
    bool ok = heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder).code ==
                  heif_error_Ok &&
              heif_image_create(stored.width(), stored.height(), heif_colorspace_RGB,
                                heif_chroma_interleaved_RGB, &image)
                      .code == heif_error_Ok &&
              heif_image_add_plane(image, heif_channel_interleaved, stored.width(),
                                   stored.height(), 8)
                      .code == heif_error_Ok;
    if (ok) {
        int stride = 0;
        uint8_t *plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
        for (int y = 0; y < stored.height(); ++y)
            std::memcpy(plane + qsizetype(y) * stride, stored.constScanLine(y),
                        size_t(stored.width()) * 3);
        heif_encoder_set_lossy_quality(encoder, 92);
        heif_encoding_options *options = heif_encoding_options_alloc();
        options->image_orientation = heif_orientation_rotate_90_cw;
        heif_image_handle *handle = nullptr;
        ok = heif_context_encode_image(context, image, encoder, options, &handle).code ==
             heif_error_Ok;
        heif_encoding_options_free(options);
        const QByteArray exif = exifOrientationBlock(6);
        ok = ok && heif_context_add_exif_metadata(context, handle, exif.constData(),
                                                  int(exif.size()))
                           .code == heif_error_Ok;
        ok = ok && heif_context_write_to_file(context, QFile::encodeName(path).constData()).code ==
                       heif_error_Ok;
        if (handle)
            heif_image_handle_release(handle);
    }
    if (image)
        heif_image_release(image);
    if (encoder)
        heif_encoder_release(encoder);
    heif_context_free(context);
    return ok;
}

// A PNG whose right half is clear and left half a half-clear blue.
inline QImage transparentPicture(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width / 2; ++x)
            image.setPixel(x, y, qRgba(0, 0, 255, 255));
    return image;
}

// The scene in 16 bits a channel.
inline QImage deepScene(int width, int height)
{
    return scene(width, height).convertToFormat(QImage::Format_RGBX64);
}

// CIELAB of an sRGB picture, by LittleCMS, one triple a pixel.
inline std::vector<cmsCIELab> toLab(const QImage &sRgb)
{
    const QImage image = sRgb.convertToFormat(QImage::Format_RGB888);
    cmsHPROFILE srgb = cmsCreate_sRGBProfile();
    cmsHPROFILE lab = cmsCreateLab4Profile(nullptr);
    cmsHTRANSFORM transform =
        cmsCreateTransform(srgb, TYPE_RGB_8, lab, TYPE_Lab_DBL, INTENT_PERCEPTUAL, 0);
    std::vector<cmsCIELab> out(size_t(image.width()) * size_t(image.height()));
    for (int y = 0; y < image.height(); ++y)
        cmsDoTransform(transform, image.constScanLine(y), &out[size_t(y) * size_t(image.width())],
                       cmsUInt32Number(image.width()));
    cmsDeleteTransform(transform);
    cmsCloseProfile(lab);
    cmsCloseProfile(srgb);
    return out;
}

// A picture's pixels converted from the colour profile it carries to sRGB by LittleCMS (the
// reference converter), relative colorimetric intent as colour-managed viewers show photos.
inline QImage referenceToSRgb(const QImage &tagged)
{
    const QImage image = tagged.convertToFormat(QImage::Format_RGB888);
    const QByteArray icc = tagged.colorSpace().iccProfile();
    cmsHPROFILE from = cmsOpenProfileFromMem(icc.constData(), cmsUInt32Number(icc.size()));
    cmsHPROFILE srgb = cmsCreate_sRGBProfile();
    cmsHTRANSFORM transform = cmsCreateTransform(from, TYPE_RGB_8, srgb, TYPE_RGB_8,
                                                 INTENT_RELATIVE_COLORIMETRIC, 0);
    QImage out(image.size(), QImage::Format_RGB888);
    for (int y = 0; y < image.height(); ++y)
        cmsDoTransform(transform, image.constScanLine(y), out.scanLine(y),
                       cmsUInt32Number(image.width()));
    cmsDeleteTransform(transform);
    cmsCloseProfile(srgb);
    cmsCloseProfile(from);
    return out;
}

// The mean CIELAB difference (CIE76) between two sRGB pictures of one size.
inline double meanDeltaE(const QImage &a, const QImage &b)
{
    if (a.size() != b.size() || a.isNull())
        return 1e9;
    const std::vector<cmsCIELab> x = toLab(a);
    const std::vector<cmsCIELab> y = toLab(b);
    double sum = 0;
    for (size_t i = 0; i < x.size(); ++i)
        sum += cmsDeltaE(&x[i], &y[i]);
    return sum / double(x.size());
}

// PSNR in dB between two pictures of one size over red, green and blue.
inline double psnr(const QImage &a, const QImage &b)
{
    if (a.size() != b.size() || a.isNull())
        return 0;
    const QImage x = a.convertToFormat(QImage::Format_RGB888);
    const QImage y = b.convertToFormat(QImage::Format_RGB888);
    double squares = 0;
    for (int row = 0; row < x.height(); ++row) {
        const uchar *p = x.constScanLine(row);
        const uchar *q = y.constScanLine(row);
        for (int i = 0; i < x.width() * 3; ++i)
            squares += double(p[i] - q[i]) * double(p[i] - q[i]);
    }
    const double mse = squares / (double(x.width()) * x.height() * 3);
    return mse == 0 ? 99 : 10 * std::log10(255.0 * 255.0 / mse);
}

} // namespace TodaysPictures
