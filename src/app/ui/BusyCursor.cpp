#include "BusyCursor.h"

#include <QApplication>

void BusyCursor::set(bool busy)
{
    if (busy == m_busy || !qApp)
        return;
    m_busy = busy;
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}
