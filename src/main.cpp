#include "frmMain.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tarnwick"));
    QApplication::setOrganizationName(QStringLiteral("Tarnwick"));
    QApplication::setApplicationVersion(QStringLiteral(TARNWICK_VERSION));
    // The window's own close question decides; no window closing behind it ends the program.
    QApplication::setQuitOnLastWindowClosed(false);

    frmMain window;
    QObject::connect(&window, &frmMain::programEnding, &app, [] {
        const auto windows = QApplication::topLevelWidgets();
        for (QWidget *widget : windows)
            widget->hide();
        QApplication::exit(0);
    });
    window.Load();
    window.show();
    return QApplication::exec();
}
