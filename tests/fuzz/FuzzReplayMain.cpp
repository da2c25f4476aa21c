// The main of a fuzz target built without libFuzzer: runs the target once on every file named on
// the command line, or in the folders named there, so that the normal suite replays each seed
// and each input that once broke a reader. A path after "--if-present" may be missing (a target
// whose reader has never been broken has no folder of regressions).
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

int runFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
        return 1;
    }
    const QByteArray input = file.readAll();
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(input.constData()),
                           size_t(input.size()));
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    LLVMFuzzerInitialize(&argc, &argv);
    int inputs = 0;
    int failures = 0;
    bool ifPresent = false;
    for (int i = 1; i < argc; ++i) {
        const QString path = QString::fromLocal8Bit(argv[i]);
        if (path == QLatin1String("--if-present")) {
            ifPresent = true;
            continue;
        }
        if (ifPresent && !QFileInfo::exists(path)) {
            ifPresent = false;
            continue;
        }
        ifPresent = false;
        if (QFileInfo(path).isDir()) {
            QDirIterator it(path, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
            QStringList files;
            while (it.hasNext())
                files.append(it.next());
            files.sort();
            for (const QString &file : files) {
                failures += runFile(file);
                ++inputs;
            }
        } else {
            failures += runFile(path);
            ++inputs;
        }
    }
    std::printf("%d inputs replayed\n", inputs);
    return failures == 0 && inputs > 0 ? 0 : 1;
}
