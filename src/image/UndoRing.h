#pragma once

#include <QByteArray>
#include <QImage>

#include <array>
#include <vector>

// The paint window's ring of undo states: eleven slots, so ten steps can be undone; a new state
// after an undo cuts off the redo states, and a full ring forgets its oldest state.
//
// A state is kept as tiles of 128 x 128 pixels. A tile that equals the same tile of the state
// before it is shared with that state (implicitly, no copy), so a stroke costs the tiles it
// touched, not a picture. A change of size, or a change everywhere (a filter over the whole
// picture), costs one full copy. Memory held: one picture for the first state plus, for every
// later state, the tiles that differ from the state before it; at most Slots pictures.
class UndoRing
{
public:
    static constexpr int Slots = 11;
    static constexpr int Tile = 128;

    // Empties the ring and keeps picture as its only state (at the current position).
    void reset(const QImage &picture);
    // Moves on by one, from 10 to 0, and keeps picture there; the newest state is then this one,
    // and the oldest moves on when the ring is full.
    void record(const QImage &picture);
    bool canUndo() const { return m_used && m_current != m_oldest; }
    bool canRedo() const { return m_used && m_current != m_newest; }
    // Steps back (or on) and gives that state's picture, with its own size; a null image when
    // there is no such step.
    QImage undo();
    QImage redo();
    // The picture of the current state.
    QImage current() const;

    int UndoCurrent() const { return m_current; }
    int UndoNewest() const { return m_newest; }
    int UndoOldest() const { return m_oldest; }
    // Bytes of pixels held, each shared tile counted once.
    qint64 bytesHeld() const;
    // Slots that hold a state (the picBuffer elements made so far).
    int slotsInUse() const;

private:
    struct State
    {
        bool used = false;
        int width = 0;
        int height = 0;
        int tilesAcross = 0;
        std::vector<QByteArray> tiles;
    };
    State capture(const QImage &picture, const State *previous) const;
    static QImage picture(const State &state);

    std::array<State, Slots> m_slots;
    int m_current = 0;
    int m_newest = 0;
    int m_oldest = 0;
    bool m_used = false;
};
