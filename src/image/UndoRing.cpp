#include "UndoRing.h"

#include <cstring>
#include <set>

namespace {

QImage rgb32(const QImage &image)
{
    return image.format() == QImage::Format_RGB32 ? image
                                                  : image.convertToFormat(QImage::Format_RGB32);
}

} // namespace

UndoRing::State UndoRing::capture(const QImage &source, const State *previous) const
{
    const QImage image = rgb32(source);
    State state;
    state.used = true;
    state.width = image.width();
    state.height = image.height();
    state.tilesAcross = (state.width + Tile - 1) / Tile;
    const int tilesDown = (state.height + Tile - 1) / Tile;
    state.tiles.resize(size_t(state.tilesAcross) * size_t(tilesDown));
    const bool comparable = previous && previous->used && previous->width == state.width &&
                            previous->height == state.height;
    for (int ty = 0; ty < tilesDown; ++ty) {
        const int top = ty * Tile;
        const int rows = std::min(Tile, state.height - top);
        for (int tx = 0; tx < state.tilesAcross; ++tx) {
            const int left = tx * Tile;
            const qsizetype lineBytes = qsizetype(std::min(Tile, state.width - left)) * 4;
            const size_t index = size_t(ty) * size_t(state.tilesAcross) + size_t(tx);
            if (comparable) {
                const QByteArray &old = previous->tiles[index];
                bool same = true;
                for (int y = 0; y < rows && same; ++y)
                    same = std::memcmp(old.constData() + y * lineBytes,
                                       image.constScanLine(top + y) + left * 4, lineBytes) == 0;
                if (same) {
                    state.tiles[index] = old; // shared, not copied
                    continue;
                }
            }
            QByteArray tile(lineBytes * rows, Qt::Uninitialized);
            for (int y = 0; y < rows; ++y)
                std::memcpy(tile.data() + y * lineBytes, image.constScanLine(top + y) + left * 4,
                            lineBytes);
            state.tiles[index] = std::move(tile);
        }
    }
    return state;
}

QImage UndoRing::picture(const State &state)
{
    if (!state.used || state.width <= 0 || state.height <= 0)
        return QImage();
    QImage image(state.width, state.height, QImage::Format_RGB32);
    if (image.isNull())
        return image;
    const int tilesDown = (state.height + Tile - 1) / Tile;
    for (int ty = 0; ty < tilesDown; ++ty) {
        const int top = ty * Tile;
        const int rows = std::min(Tile, state.height - top);
        for (int tx = 0; tx < state.tilesAcross; ++tx) {
            const int left = tx * Tile;
            const qsizetype lineBytes = qsizetype(std::min(Tile, state.width - left)) * 4;
            const QByteArray &tile =
                state.tiles[size_t(ty) * size_t(state.tilesAcross) + size_t(tx)];
            for (int y = 0; y < rows; ++y)
                std::memcpy(image.scanLine(top + y) + left * 4, tile.constData() + y * lineBytes,
                            lineBytes);
        }
    }
    return image;
}

void UndoRing::reset(const QImage &image)
{
    for (State &state : m_slots)
        state = State();
    m_slots[size_t(m_current)] = capture(image, nullptr);
    m_newest = m_oldest = m_current;
    m_used = true;
}

void UndoRing::record(const QImage &image)
{
    if (!m_used) {
        reset(image);
        return;
    }
    const int previous = m_current;
    m_current = (m_current + 1) % Slots;
    State state = capture(image, &m_slots[size_t(previous)]);
    m_slots[size_t(m_current)] = std::move(state);
    m_newest = m_current;
    if (m_current == m_oldest)
        m_oldest = (m_oldest + 1) % Slots;
}

QImage UndoRing::undo()
{
    if (!canUndo())
        return QImage();
    m_current = (m_current + Slots - 1) % Slots;
    return picture(m_slots[size_t(m_current)]);
}

QImage UndoRing::redo()
{
    if (!canRedo())
        return QImage();
    m_current = (m_current + 1) % Slots;
    return picture(m_slots[size_t(m_current)]);
}

QImage UndoRing::current() const
{
    return picture(m_slots[size_t(m_current)]);
}

qint64 UndoRing::bytesHeld() const
{
    std::set<const char *> seen;
    qint64 bytes = 0;
    for (const State &state : m_slots)
        for (const QByteArray &tile : state.tiles)
            if (seen.insert(tile.constData()).second)
                bytes += tile.size();
    return bytes;
}

int UndoRing::slotsInUse() const
{
    int used = 0;
    for (const State &state : m_slots)
        used += state.used;
    return used;
}
