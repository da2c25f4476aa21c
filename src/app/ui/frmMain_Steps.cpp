#include "frmMain.h"

#include "StepRing.h"

#include <QAction>

void frmMain::shapeEvent(int step)
{
    for (StepRing *ring : m_rings)
        ring->setShown(false);
    if (!m_highLightSteps->isChecked())
        return;
    // Each function brings the rows of its own steps.
    for (const ShellFunction &function : m_functions) {
        for (const StepRow &row : function.steps) {
            if (row.step != step)
                continue;
            for (int index : row.visible)
                if (StepRing *r = ring(index))
                    r->setShown(true);
            for (int index : row.green)
                if (StepRing *r = ring(index))
                    r->setColour(RingGreen);
            for (int index : row.yellow)
                if (StepRing *r = ring(index))
                    r->setColour(RingYellow);
            return;
        }
    }
}

void frmMain::placeRing(int index, QWidget *target)
{
    if (StepRing *r = ring(index))
        r->setTarget(target);
}
