#pragma once

#include <QApplication>
#include <QString>
#include <QTest>

// Points HOME (and so ~/Tarnwick and ~/.config/Tarnwick) at a fresh temporary folder for the
// test program's whole run. Call before the application object is made.
void UseTemporaryHome();
// Empties the temporary HOME again: no data tree, no settings.
void ClearTemporaryHome();
// The temporary HOME.
QString TestHomePath();
// The folder of the tests' own fixture files (tests/data).
QString TestDataPath();

#define TARNWICK_TEST_MAIN(TestObject)                                                             \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        UseTemporaryHome();                                                                        \
        QApplication app(argc, argv);                                                              \
        QApplication::setApplicationName(QStringLiteral("Tarnwick"));                             \
        QApplication::setOrganizationName(QStringLiteral("Tarnwick"));                            \
        TestObject tc;                                                                             \
        return QTest::qExec(&tc, argc, argv);                                                      \
    }
