#include "frmMain.h"

#include "StepRing.h"

#include <QAction>

#include <initializer_list>

namespace {

struct StepRow
{
    int step;
    std::initializer_list<int> visible;
    std::initializer_list<int> green;
    std::initializer_list<int> yellow;
};

// Which rings each step shows, and which of them it colours; the others keep their colour.
const StepRow StepTable[] = {
    {0, {0, 2, 3}, {0}, {}},
    {1, {1, 2, 3}, {2, 3}, {}},
    {3, {1, 2, 3}, {2, 3}, {1}},
    {10, {5, 6}, {5}, {}},
    {11, {6, 23}, {6}, {}},
    {16, {6, 23}, {6, 23}, {}},
    {15, {23}, {23}, {}},
    {12, {7, 24, 25}, {7}, {}},
    {22, {24}, {24}, {}},
    {23, {24, 25}, {24, 25}, {}},
    {24, {8, 9, 15, 26}, {8, 9, 15}, {}},
    {13, {7, 8, 9, 15}, {8, 9, 15}, {}},
    {14, {4, 8, 9, 15}, {8, 9, 15}, {4}},
    {20, {10, 11}, {10}, {}},
    {21, {11}, {11}, {}},
    {30, {12, 13}, {12}, {}},
    {31, {13}, {13}, {}},
    {40, {14, 16}, {14}, {16}},
    {41, {16}, {}, {16}},
    {50, {17, 18, 19, 20}, {17, 18}, {}},
    {51, {19, 20, 21}, {19, 20}, {21}},
    {52, {17, 18, 19, 20, 21}, {17, 18, 19, 20}, {21}},
};

} // namespace

void frmMain::shapeEvent(int step)
{
    for (StepRing *ring : m_rings)
        ring->setShown(false);
    if (!m_highLightSteps->isChecked())
        return;
    for (const StepRow &row : StepTable) {
        if (row.step != step)
            continue;
        for (int index : row.visible)
            m_rings[static_cast<size_t>(index)]->setShown(true);
        for (int index : row.green)
            m_rings[static_cast<size_t>(index)]->setColour(RingGreen);
        for (int index : row.yellow)
            m_rings[static_cast<size_t>(index)]->setColour(RingYellow);
        return;
    }
}

void frmMain::placeRing(int index, QWidget *target)
{
    if (StepRing *r = ring(index))
        r->setTarget(target);
}
