#pragma once

#include <QMetaType>
#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <memory>
#include <thread>

// Whether the addresses of Page Links still lead to a page: each is asked for with HEAD (GET
// when the server refuses HEAD with 405 or 501), redirects followed one by one, several
// addresses at once, each within a time limit of its own.

enum class LinkVerdict
{
    Unchecked, // not asked yet, or the check was cancelled before its answer
    Ok,        // a page answered (also after a temporary redirect, or 401/403/429: it is there)
    Moved,     // the page is at another address now: every redirect on the way was permanent
    Dead,      // no page: 404, 410, another error, no connection, no answer in time
};

struct LinkCheckOutcome
{
    LinkVerdict verdict = LinkVerdict::Unchecked;
    long status = 0;       // the last HTTP status received, 0 when none came
    QString finalUrl;      // where the redirects ended ("" when there was none)
    QStringList redirects; // each hop as "301 https://new.example/"
    bool usedGet = false;  // HEAD was refused, so GET was sent
    QString text;          // what the list shows: "OK", "404 Not Found", "Connection refused"...
};
Q_DECLARE_METATYPE(LinkCheckOutcome)

struct LinkCheckOptions
{
    int parallel = 6;      // addresses asked at once
    int timeoutMs = 15000; // for one address, its redirects included
    int maxRedirects = 10;
};

// The reason phrase of an HTTP status ("Not Found" for 404), "" for one it doesn't know.
QString HttpReason(long status);

// Runs one check of a list of addresses on a thread of its own; the signals come on the thread
// that made the object (its event loop must run). Cancel answers at once: requests in flight
// are dropped and finished(true) follows. Destroying the object cancels and waits for the
// thread, which takes no longer than closing the open sockets.
class LinkChecker final : public QObject
{
    Q_OBJECT
public:
    explicit LinkChecker(LinkCheckOptions options = {}, QObject *parent = nullptr);
    ~LinkChecker() override;

    // Starts a check of urls; false when one is running already.
    bool start(const QStringList &urls);
    void cancel();
    bool running() const { return m_running; }

signals:
    // The request for urls[index] went out (its first).
    void requestStarted(int index);
    void checked(int index, const LinkCheckOutcome &outcome);
    // Every address answered (cancelled false), or the check was cancelled.
    void finished(bool cancelled);

private:
    void run(QStringList urls);
    void join();

    LinkCheckOptions m_options;
    std::thread m_thread;
    std::atomic<bool> m_cancel{false};
    std::atomic<void *> m_multi{nullptr}; // the running check's CURLM, for its wake-up
    bool m_running = false;
};
