#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>

// What every fuzz target shares. A target is one .cpp file that defines
//
//     extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
//
// and calls one reader of the program on the bytes. Before the first input, HOME points at a
// fresh temporary folder (so ~/Tarnwick and ~/.config/Tarnwick are the target's own) and a
// QCoreApplication exists. A broken promise of the reader is reported with FUZZ_CHECK, which
// aborts, so that the fuzzer keeps the input as a crash.

namespace Fuzz {

// The input as bytes (no copy; valid during the call).
QByteArray bytes(const uint8_t *data, size_t size);
// The temporary HOME of this run.
QString home();
// Writes bytes to path (made anew); aborts when the file can't be written.
void writeFile(const QString &path, const QByteArray &bytes);
// The input cut at its NUL bytes into at most count parts; missing parts are empty.
QList<QByteArray> parts(const QByteArray &input, int count);

[[noreturn]] void fail(const char *condition, const char *file, int line, const QString &detail);

} // namespace Fuzz

#define FUZZ_CHECK(condition)                                                                      \
    do {                                                                                           \
        if (!(condition))                                                                          \
            Fuzz::fail(#condition, __FILE__, __LINE__, QString());                                 \
    } while (false)

#define FUZZ_CHECK_MSG(condition, detail)                                                          \
    do {                                                                                           \
        if (!(condition))                                                                          \
            Fuzz::fail(#condition, __FILE__, __LINE__, (detail));                                  \
    } while (false)
