#pragma once

#include "FtpTestServer.h"
#include "Settings.h"

#include <QElapsedTimer>
#include <QList>
#include <QString>
#include <QTest>
#include <QTimer>

#include <netdb.h>
#include <sys/socket.h>

#include <atomic>
#include <memory>
#include <thread>

// The faults of a server that does not answer as it should, as every place that connects meets
// them: the fault's name for FtpTestServer, the error number it ends as, and whether it comes at
// the login or only once a data connection is wanted.
struct ServerFault
{
    QString fault;
    int number = 0;
    bool atLogin = true;
    // The wait it makes ends by a limit (so Cancel can end it sooner); the others end at once.
    bool waits = true;
};

inline QList<std::pair<const char *, ServerFault>> ServerFaults()
{
    return {
        {"accepts and never greets", {QStringLiteral("silent"), 12002, true, true}},
        {"greets and never answers USER", {QStringLiteral("mute-user"), 12002, true, true}},
        {"half a reply line, then closed", {QStringLiteral("half-reply"), 12030, true, false}},
        {"connection refused", {QStringLiteral("refuse-connection"), 12029, true, false}},
        {"a name that does not resolve", {QStringLiteral("unresolvable"), 12007, true, false}},
        {"passive port where nothing listens",
         {QStringLiteral("pasv-dead-port"), 12029, false, false}},
        {"data connection that sends nothing", {QStringLiteral("data-silent"), 12002, false, true}},
    };
}

// The error number a connection to the unresolvable name ends with on this machine: 12007 when
// the system's resolver says at once that the name does not exist, the time-out when it gives
// no answer within the connect limit (no resolver reachable). Measured, not assumed.
inline int UnresolvableNumber(int connectLimitMs)
{
    auto answered = std::make_shared<std::atomic<bool>>(false);
    std::thread([answered] {
        addrinfo *found = nullptr;
        getaddrinfo("no-such-host.invalid", "21", nullptr, &found);
        if (found)
            freeaddrinfo(found);
        *answered = true;
    }).detach();
    QElapsedTimer clock;
    clock.start();
    while (!*answered && clock.elapsed() < connectLimitMs)
        QTest::qWait(20);
    return *answered ? 12007 : 12002;
}

// Every wait on the server bounded by seconds (connecting, any reply, a stalled transfer).
inline void SetServerLimits(const QString &seconds)
{
    SaveSetting(QStringLiteral("ConnectTimeout"), seconds);
    SaveSetting(QStringLiteral("ReplyTimeout"), seconds);
    SaveSetting(QStringLiteral("StallTimeout"), seconds);
}

// Counts the turns of the event loop (a timer that asks for one every 10 ms) from its making to
// stop(), and how long that was: the loop was served throughout when it turned at least once
// for every 250 ms, however loaded the machine.
struct LoopTurns
{
    int turns = 0;
    qint64 measured = 0;
    bool running = true;
    QElapsedTimer clock;
    QTimer ticker;
    LoopTurns()
    {
        clock.start();
        QObject::connect(&ticker, &QTimer::timeout, [this] {
            if (running)
                ++turns;
        });
        ticker.start(10);
    }
    void stop()
    {
        if (!running)
            return;
        running = false;
        measured = clock.elapsed();
        ticker.stop();
    }
    bool servedThroughout() const { return turns >= measured / 250; }
    QString report() const { return QStringLiteral("%1 turns in %2 ms").arg(turns).arg(measured); }
};
