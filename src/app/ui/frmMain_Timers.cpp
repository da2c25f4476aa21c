#include "frmMain.h"

#include "DriveList.h"

#include <QCoreApplication>
#include <QFutureWatcher>
#include <QLabel>
#include <QLineEdit>
#include <QSysInfo>
#include <QTimer>
#include <QtConcurrent>

#include <cmath>

void frmMain::refreshDrives()
{
    // The scan runs beside the window so that a slow device never freezes it.
    if (m_driveScanRunning)
        return;
    m_driveScanRunning = true;
    auto *watcher = new QFutureWatcher<QString>(this);
    connect(watcher, &QFutureWatcher<QString>::finished, this, [this, watcher] {
        m_removableDrive = watcher->result();
        m_text2->setText(Text2());
        m_driveScanRunning = false;
        watcher->deleteLater();
    });
    watcher->setFuture(QtConcurrent::run(&LastRemovableDrive));
}

QString frmMain::Text2() const
{
    return m_removableDrive.isEmpty() ? QString()
                                      : QStringLiteral("Removable (%1)").arg(m_removableDrive);
}

void frmMain::refreshUploadPath()
{
    const QString directory = m_ftpDirectory ? m_ftpDirectory().trimmed() : QString();
    m_uploadPath->setText(m_txtWebSite->text() + directory);
}

void frmMain::setUploadPathTimerRunning(bool running)
{
    if (running)
        m_timer3->start();
    else
        m_timer3->stop();
}

bool frmMain::uploadPathTimerRunning() const
{
    return m_timer3->isActive();
}

void frmMain::Wait(double seconds)
{
    // Ten ticks of Timer4 to the second; a fraction of a tick rounds to the nearest, halves to
    // even. The window stays live throughout.
    const long turns = std::lrint(seconds * 10.0);
    if (!m_timer4->isActive())
        m_timer4->start();
    for (long i = 0; i < turns; ++i) {
        const int start = m_tickCount;
        while (m_tickCount == start)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

QString frmMain::SystemVersionLine()
{
    return QSysInfo::prettyProductName() + QStringLiteral(" Version ") + QSysInfo::kernelVersion();
}
