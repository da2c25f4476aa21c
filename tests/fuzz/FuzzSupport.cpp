#include "FuzzSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

QString &homePath()
{
    static QString path;
    return path;
}

// The process's own temporary HOME, removed at exit. In memory where the system has a place for
// it: the program's writers sync their files to the disk, which would slow every input down.
void makeHome()
{
    char inMemory[] = "/dev/shm/tarnwick-fuzz-XXXXXX";
    char onDisk[] = "/tmp/tarnwick-fuzz-XXXXXX";
    const char *made = mkdtemp(inMemory);
    if (!made)
        made = mkdtemp(onDisk);
    if (!made) {
        std::perror("mkdtemp");
        std::abort();
    }
    homePath() = QString::fromLocal8Bit(made);
    setenv("HOME", made, 1);
    const QByteArray config = QByteArray(made) + "/.config";
    setenv("XDG_CONFIG_HOME", config.constData(), 1);
    std::atexit([] { QDir(homePath()).removeRecursively(); });
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    makeHome();
    static int argc = 1;
    static char name[] = "tarnwick-fuzz";
    static char *argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Tarnwick"));
    QCoreApplication::setApplicationName(QStringLiteral("Tarnwick"));
    return 0;
}

namespace Fuzz {

QByteArray bytes(const uint8_t *data, size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
}

QString home()
{
    return homePath();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(bytes) != bytes.size()) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        std::abort();
    }
}

QList<QByteArray> parts(const QByteArray &input, int count)
{
    QList<QByteArray> result;
    qsizetype start = 0;
    while (result.size() < count - 1) {
        const qsizetype nul = input.indexOf('\0', start);
        if (nul < 0)
            break;
        result.append(input.mid(start, nul - start));
        start = nul + 1;
    }
    result.append(start <= input.size() ? input.mid(start) : QByteArray());
    while (result.size() < count)
        result.append(QByteArray());
    return result;
}

void fail(const char *condition, const char *file, int line, const QString &detail)
{
    std::fprintf(stderr, "%s:%d: broken promise: %s\n", file, line, condition);
    if (!detail.isEmpty())
        std::fprintf(stderr, "  %s\n", qPrintable(detail));
    std::fflush(stderr);
    std::abort();
}

} // namespace Fuzz
