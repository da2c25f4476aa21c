// GLib's headers name struct members "signals", which Qt defines as a keyword: they come first.
#include <libgcab.h>

#include "Cabinet.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace {

template <typename T> struct GObjectDeleter
{
    void operator()(T *object) const
    {
        if (object)
            g_object_unref(object);
    }
};
template <typename T> using GObjectPtr = std::unique_ptr<T, GObjectDeleter<T>>;

struct GErrorHolder
{
    GError *error = nullptr;
    ~GErrorHolder()
    {
        if (error)
            g_error_free(error);
    }
    QString text() const
    {
        return error ? QString::fromUtf8(error->message) : QStringLiteral("unknown error");
    }
};

QByteArray localPath(const QString &path)
{
    return QFile::encodeName(path);
}

QString withSlashes(const char *name)
{
    QString text = QString::fromUtf8(name);
    text.replace(u'\\', u'/');
    return text;
}

// The name under which a file of the cabinet is unpacked, or "" when it would leave the folder.
QString safeRelativeName(const QString &name)
{
    if (name.isEmpty() || name.startsWith(u'/'))
        return QString();
    QStringList parts;
    for (const QString &part : name.split(u'/', Qt::SkipEmptyParts)) {
        if (part == QStringLiteral(".."))
            return QString();
        if (part != QStringLiteral("."))
            parts << part;
    }
    return parts.join(u'/');
}

CabinetResult failure(const QString &text)
{
    CabinetResult result;
    result.message = text;
    return result;
}

CabinetResult cancelled(const QString &cabPath)
{
    CabinetResult result;
    result.cancelled = true;
    result.message = QStringLiteral("The work on the cabinet %1 was cancelled.").arg(cabPath);
    return result;
}

GObjectPtr<GCabCabinet> loadCabinet(const QString &cabPath, QString *why)
{
    GObjectPtr<GFile> file(g_file_new_for_path(localPath(cabPath).constData()));
    GErrorHolder err;
    GObjectPtr<GFileInputStream> stream(g_file_read(file.get(), nullptr, &err.error));
    if (!stream) {
        *why = err.text();
        return nullptr;
    }
    GObjectPtr<GCabCabinet> cabinet(gcab_cabinet_new());
    if (!gcab_cabinet_load(cabinet.get(), G_INPUT_STREAM(stream.get()), nullptr, &err.error)) {
        *why = err.text();
        return nullptr;
    }
    return cabinet;
}

QStringList namesOf(GCabCabinet *cabinet)
{
    QStringList names;
    GPtrArray *folders = gcab_cabinet_get_folders(cabinet);
    for (guint i = 0; folders && i < folders->len; ++i) {
        auto *folder = static_cast<GCabFolder *>(g_ptr_array_index(folders, i));
        GSList *files = gcab_folder_get_files(folder);
        for (GSList *item = files; item; item = item->next)
            names << withSlashes(gcab_file_get_name(static_cast<GCabFile *>(item->data)));
        g_slist_free(files);
    }
    return names;
}

// Raises the GLib cancel of a running cabinet job when the caller's flag is up. libgcab looks at
// the GLib cancel at every block it reads or writes, so while the job runs a watcher thread
// hands the flag on, and a cancel stops even a single large file within a block.
class CancelWatch
{
public:
    explicit CancelWatch(const std::atomic<bool> *flag) : m_flag(flag)
    {
        if (m_flag)
            m_watcher = std::thread([this] {
                std::unique_lock<std::mutex> lock(m_lock);
                while (!m_done) {
                    if (m_flag->load()) {
                        g_cancellable_cancel(cancellable.get());
                        return;
                    }
                    m_wake.wait_for(lock, std::chrono::milliseconds(10));
                }
            });
    }
    ~CancelWatch()
    {
        {
            const std::lock_guard<std::mutex> lock(m_lock);
            m_done = true;
        }
        m_wake.notify_all();
        if (m_watcher.joinable())
            m_watcher.join();
    }
    CancelWatch(const CancelWatch &) = delete;
    CancelWatch &operator=(const CancelWatch &) = delete;

    bool raised()
    {
        if (m_flag && m_flag->load())
            g_cancellable_cancel(cancellable.get());
        return g_cancellable_is_cancelled(cancellable.get());
    }

    GObjectPtr<GCancellable> cancellable{g_cancellable_new()};

private:
    const std::atomic<bool> *m_flag = nullptr;
    std::mutex m_lock;
    std::condition_variable m_wake;
    bool m_done = false;
    std::thread m_watcher;
};

gboolean checkCancel(GCabFile *, gpointer data)
{
    return static_cast<CancelWatch *>(data)->raised() ? FALSE : TRUE;
}

struct ExtractState
{
    QDir dest;
    bool overwrite = true;
    QStringList names;
    CancelWatch *cancel = nullptr;
};

gboolean chooseExtractName(GCabFile *file, gpointer data)
{
    auto *state = static_cast<ExtractState *>(data);
    if (state->cancel->raised())
        return FALSE;
    const QString name = safeRelativeName(withSlashes(gcab_file_get_name(file)));
    if (name.isEmpty())
        return FALSE;
    if (!state->overwrite && QFileInfo::exists(state->dest.filePath(name)))
        return FALSE;
    gcab_file_set_extract_name(file, name.toUtf8().constData());
    state->names << name;
    return TRUE;
}

} // namespace

QList<CabinetEntry> CabinetEntriesOf(const QString &folder)
{
    const QDir root(folder);
    QMap<QString, CabinetEntry> sorted;
    QDirIterator it(root.path(), QDir::Files | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (it.fileInfo().isSymLink())
            continue;
        const QString name = root.relativeFilePath(path);
        sorted.insert(name.toLower() + QLatin1Char('\0') + name, {path, name});
    }
    return sorted.values();
}

CabinetResult WriteCabinet(const QString &cabPath, const QList<CabinetEntry> &entries,
                           const std::atomic<bool> *cancel)
{
    CancelWatch watch(cancel);
    GObjectPtr<GCabCabinet> cabinet(gcab_cabinet_new());
    GCabFolder *folder = gcab_folder_new(GCAB_COMPRESSION_MSZIP);
    gcab_cabinet_add_folder(cabinet.get(), folder, nullptr);
    g_object_unref(folder); // the cabinet holds it now

    CabinetResult result;
    for (const CabinetEntry &entry : entries) {
        if (!QFileInfo(entry.sourcePath).isFile())
            return failure(QStringLiteral("%1 is not a file.").arg(entry.sourcePath));
        QString name = entry.nameInCabinet;
        name.replace(u'/', u'\\');
        GObjectPtr<GFile> source(g_file_new_for_path(localPath(entry.sourcePath).constData()));
        GObjectPtr<GCabFile> cabFile(
            gcab_file_new_with_file(name.toUtf8().constData(), source.get()));
        GErrorHolder err;
        if (!gcab_folder_add_file(folder, cabFile.get(), FALSE, nullptr, &err.error))
            return failure(
                QStringLiteral("Could not add %1: %2").arg(entry.sourcePath, err.text()));
        result.names << withSlashes(name.toUtf8().constData());
    }

    const QString partPath = cabPath + QStringLiteral(".part");
    QFile::remove(partPath);
    {
        GObjectPtr<GFile> target(g_file_new_for_path(localPath(partPath).constData()));
        GErrorHolder err;
        GObjectPtr<GFileOutputStream> stream(
            g_file_replace(target.get(), nullptr, FALSE, G_FILE_CREATE_NONE, nullptr, &err.error));
        if (!stream)
            return failure(QStringLiteral("Could not write %1: %2").arg(cabPath, err.text()));
        const bool written =
            !watch.raised() &&
            gcab_cabinet_write_simple(cabinet.get(), G_OUTPUT_STREAM(stream.get()), checkCancel,
                                      &watch, watch.cancellable.get(), &err.error);
        const bool closed = g_output_stream_close(G_OUTPUT_STREAM(stream.get()), nullptr,
                                                  written ? &err.error : nullptr);
        if (!written || !closed) {
            QFile::remove(partPath);
            if (watch.raised())
                return cancelled(cabPath);
            return failure(QStringLiteral("Could not write %1: %2").arg(cabPath, err.text()));
        }
    }
    QFile::remove(cabPath);
    if (!QFile::rename(partPath, cabPath)) {
        QFile::remove(partPath);
        return failure(QStringLiteral("Could not put the cabinet in place at %1.").arg(cabPath));
    }
    result.ok = true;
    return result;
}

CabinetResult ExtractCabinet(const QString &cabPath, const QString &destFolder, bool overwrite,
                             const std::atomic<bool> *cancel)
{
    CancelWatch watch(cancel);
    if (!QFileInfo(cabPath).isFile())
        return failure(QStringLiteral("The cabinet %1 does not exist.").arg(cabPath));
    if (!QDir().mkpath(destFolder))
        return failure(QStringLiteral("Could not make the folder %1.").arg(destFolder));
    QString why;
    GObjectPtr<GCabCabinet> cabinet = loadCabinet(cabPath, &why);
    if (!cabinet)
        return failure(QStringLiteral("Could not read the cabinet %1: %2").arg(cabPath, why));

    ExtractState state{QDir(destFolder), overwrite, {}, &watch};
    GObjectPtr<GFile> dest(g_file_new_for_path(localPath(destFolder).constData()));
    GErrorHolder err;
    const bool ok = gcab_cabinet_extract_simple(cabinet.get(), dest.get(), chooseExtractName,
                                                &state, watch.cancellable.get(), &err.error);
    if (watch.raised()) {
        CabinetResult result = cancelled(cabPath);
        result.names = state.names;
        return result;
    }
    CabinetResult result;
    result.names = state.names;
    if (!ok) {
        result.message =
            QStringLiteral("Could not unpack the cabinet %1: %2").arg(cabPath, err.text());
        return result;
    }
    result.ok = true;
    return result;
}

CabinetResult ListCabinet(const QString &cabPath)
{
    QString why;
    GObjectPtr<GCabCabinet> cabinet = loadCabinet(cabPath, &why);
    if (!cabinet)
        return failure(QStringLiteral("Could not read the cabinet %1: %2").arg(cabPath, why));
    CabinetResult result;
    result.names = namesOf(cabinet.get());
    result.ok = true;
    return result;
}
