#include "TestMain.h"

#include <QDir>
#include <QTemporaryDir>

#include <cstdlib>

namespace {

QTemporaryDir *homeDir()
{
    static QTemporaryDir *dir = new QTemporaryDir(QDir::tempPath() + QStringLiteral("/tarnwick-test-XXXXXX"));
    return dir;
}

} // namespace

void UseTemporaryHome()
{
    const QByteArray home = QFile::encodeName(homeDir()->path());
    setenv("HOME", home.constData(), 1);
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("XDG_DATA_HOME");
    unsetenv("XDG_CACHE_HOME");
    std::atexit([] { delete homeDir(); });
}

void ClearTemporaryHome()
{
    QDir home(homeDir()->path());
    const auto entries = home.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString &name : entries) {
        QFileInfo info(home.filePath(name));
        if (info.isDir() && !info.isSymLink())
            QDir(info.filePath()).removeRecursively();
        else
            QFile::remove(info.filePath());
    }
}

QString TestHomePath() { return homeDir()->path(); }

QString TestDataPath() { return QStringLiteral(TARNWICK_TEST_DATA_DIR); }
