#pragma once

#include <QImage>
#include <QString>

#include <cstdint>
#include <functional>

class QPaintDevice;

// The program's pixel surface: a picture of 32 bits per pixel (blue, green, red, unused in
// memory; QImage::Format_RGB32) that is both a drawing target (open a QPainter on hdc()) and a
// plain array of scan lines (DIBSectionBitsPtr(), BytesPerScanLine()). Rows lie top to bottom in
// memory; only a BMP file written by SaveBitmap holds them bottom-up, as the format wants.
//
// The object owns its pixels. Every operation reports by its result (true for success) and
// throws nothing; GetLastErrorMessage() says why the last Create... failed.
class cDIBSection
{
public:
    // Raster operations of LoadPictureBlt, by their usual numbers.
    static constexpr std::uint32_t SrcCopy = 0xCC0020;
    static constexpr std::uint32_t SrcInvert = 0x660046; // source XOR destination
    static constexpr std::uint32_t SrcAnd = 0x8800C6;
    static constexpr std::uint32_t SrcPaint = 0xEE0086; // source OR destination

    // The largest surface the program makes: 64 megapixels (256 MB), and 32767 pixels a side.
    // A file larger than that is refused before its pixels are decoded.
    static constexpr qint64 MaxPixels = qint64(64) * 1024 * 1024;
    static constexpr int MaxSide = 32767;
    // True when a surface of that size may be made.
    static bool SizeAllowed(qint64 width, qint64 height);

    cDIBSection() { ClearUp(); }
    ~cDIBSection() { ClearUp(); }
    cDIBSection(const cDIBSection &) = delete;
    cDIBSection &operator=(const cDIBSection &) = delete;

    // ((width * bits + 31) \ 32) * 4; 0 for a width of 0 or less.
    int BytesPerScanLine() const;
    // Frees the pixels. Width, Height and ColorBit keep their last values.
    void ClearUp();
    short ColorBit() const { return m_header.bitCount; }

    // Puts the part (destX, destY, width, height; a size below 0 stands for the whole surface)
    // on the system clipboard as a bitmap. With asDIB set it shows "Copy as bitmap and retry"
    // through the notice handler and copies nothing. The result is true whatever happened.
    bool CopyToClipboard(int destX, int destY, int width = -1, int height = -1, bool asDIB = false);

    // A new surface of that size, every pixel 0 (black). False for a size of 0 or less, or one
    // beyond SizeAllowed, or when memory runs out; the surface is then empty.
    bool Create(int width, int height);
    // Fills the header for width x height and makes the pixels into out.
    bool CreateDIB(int width, int height, QImage &out);
    // Reads a picture file through the photo decoder (PictureDecoder.h): bitmaps, JPEG, GIF, PNG,
    // WebP, TIFF and HEIC, upright as the file's orientation says, in sRGB, a transparent
    // picture laid on white. False, with the old surface untouched, for a missing or unreadable
    // file or one whose size SizeAllowed refuses (told before any pixel is decoded).
    bool CreateFromFile(const QString &fileName);
    // Copies a part of bitmap (source X, Y, width, height; a size below 0 takes the bitmap's).
    bool CreateFromHandle(const QImage &bitmap, int srcX, int srcY, int width, int height);
    // As CreateFromHandle, through a 32-bit conversion, so palette pictures keep their colours.
    bool CreateFromImage(const QImage &bitmap, int srcX, int srcY, int width, int height);
    // A packed DIB: a 40-byte header followed by its pixels (bottom-up rows for a positive
    // height). 16, 24 and 32 bits per pixel are read; fewer bits, a colour table, compression or
    // a block shorter than the header says give false.
    bool CreateFromPackedDIBPointer(const uchar *packed, qsizetype size);
    bool CreateFromPicture(const QImage &picture, int srcX, int srcY, int width, int height);

    uchar *DIBSectionBitsPtr() { return m_image.isNull() ? nullptr : m_image.bits(); }
    int dataSize() const { return int(m_header.sizeImage); }

    // Fits the picture into a box of W x H and centres it (see the .cpp for the rule).
    void GetBestFitInfo(int boxWidth, int boxHeight, int &left, int &top, int &width, int &height,
                        bool force) const;

    // The drawing target (null when empty) and the pixels.
    QPaintDevice *hdc() { return m_image.isNull() ? nullptr : &m_image; }
    const QImage &hDIB() const { return m_image; }
    QImage &image() { return m_image; }
    int Height() const { return m_header.height; }
    int Width() const { return m_header.width; }

    // Puts source (from srcX, srcY) at destX, destY with a raster operation; a size below 0
    // takes the whole surface. Parts outside either picture are left out.
    void LoadPictureBlt(const QImage &source, int destX = 0, int destY = 0, int width = -1,
                        int height = -1, int srcX = 0, int srcY = 0,
                        std::uint32_t rasterOp = SrcCopy);
    // Draws (a part of) the surface onto dest. Modes: 1 and 2 copy at the same size, 3 and 4
    // stretch to width x height with smooth (area-averaging) scaling. A size below 0 stands for
    // the whole surface. Other modes do nothing and give false.
    bool PaintPicture(QImage &dest, int mode, int destX = 0, int destY = 0, int width = -1,
                      int height = -1, int srcX = 0, int srcY = 0, int srcWidth = -1,
                      int srcHeight = -1, std::uint32_t rasterOp = SrcCopy);

    // Writes the surface as a 32-bit BMP file (created anew). False when the file can't be
    // created or a write fails; the file is closed in any case.
    bool SaveBitmap(const QString &fileName);

    QString GetLastErrorMessage() const { return m_lastError; }

    // Where the class's one message goes (by default to qWarning); the windows set a message
    // box. Not thread-safe: set it once at start-up.
    static void setNoticeHandler(std::function<void(const QString &)> handler);

    // The 40-byte header as held.
    struct InfoHeader
    {
        std::uint32_t size = 40;
        std::int32_t width = 0;
        std::int32_t height = 0;
        std::uint16_t planes = 1;
        std::uint16_t bitCount = 32;
        std::uint32_t compression = 0;
        std::uint32_t sizeImage = 0;
        std::int32_t xPelsPerMeter = 0;
        std::int32_t yPelsPerMeter = 0;
        std::uint32_t clrUsed = 0;
        std::uint32_t clrImportant = 0;
    };
    const InfoHeader &header() const { return m_header; }

private:
    bool adopt(const QImage &image, int srcX, int srcY, int width, int height);

    InfoHeader m_header;
    QImage m_image;
    QString m_lastError;
};
