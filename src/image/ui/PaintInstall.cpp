#include "PaintInstall.h"

#include "frmMain.h"
#include "frmPaint.h"

#include <QAction>

void InstallPaint(frmMain &window)
{
    window.setPictureEditor([&window](const QString &path, bool wait) {
        if (wait)
            frmPaint::OpenPaintAndWait(path, &window);
        else
            frmPaint::OpenPaint(path, &window);
    });
    auto *paint = new QAction(QStringLiteral("&Paint"));
    paint->setObjectName(QStringLiteral("mnuPaint"));
    QObject::connect(paint, &QAction::triggered, &window,
                     [&window] { window.editPicture(QString()); });
    window.addMenuEntry({QStringLiteral("Tools"), paint});
}
