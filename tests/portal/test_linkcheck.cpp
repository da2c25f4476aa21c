#include "HttpTestServer.h"
#include "LinkCheck.h"
#include "TestMain.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace {

// How long a test waits for the check's events before it gives up: far above what any answer
// takes, and not a bound on speed (each wait ends at the event it waits for).
constexpr int EventWaitMs = 120000;

struct Run
{
    std::unique_ptr<LinkChecker> checker;
    QList<LinkCheckOutcome> outcomes;
    QList<int> started;
    bool finished = false;
    bool cancelled = false;
};

std::unique_ptr<Run> startCheck(const QStringList &urls, LinkCheckOptions options)
{
    auto run = std::make_unique<Run>();
    run->outcomes.resize(urls.size());
    run->checker = std::make_unique<LinkChecker>(options);
    Run *r = run.get();
    QObject::connect(
        r->checker.get(), &LinkChecker::checked, r->checker.get(),
        [r](int index, const LinkCheckOutcome &outcome) { r->outcomes[index] = outcome; });
    QObject::connect(r->checker.get(), &LinkChecker::requestStarted, r->checker.get(),
                     [r](int index) { r->started << index; });
    QObject::connect(r->checker.get(), &LinkChecker::finished, r->checker.get(),
                     [r](bool cancelled) {
                         r->finished = true;
                         r->cancelled = cancelled;
                     });
    r->checker->start(urls);
    return run;
}

} // namespace

// The link check against a real HTTP server on loopback: a page, a permanent and a temporary
// redirect, a missing page, a server that refuses HEAD, a port where nothing listens and a
// server that takes the request and never answers.
class TestLinkCheck : public QObject
{
    Q_OBJECT
private:
    HttpTestServer server;

private slots:
    void initTestCase() { QVERIFY2(server.start(), qPrintable(server.errorString())); }

    void eachAnswerIsMarked()
    {
        const QStringList urls = {server.url("/ok"),        server.url("/moved"),
                                  server.url("/gone"),      server.url("/nohead"),
                                  server.refusedUrl(),      server.url("/silent/1"),
                                  server.url("/temporary"), server.url("/moved-twice"),
                                  server.url("/moved308"),  server.url("/moved-to-gone"),
                                  server.url("/loop"),      server.url("/nohead501"),
                                  server.url("/forbidden")};
        LinkCheckOptions options;
        options.parallel = 4;
        options.timeoutMs = 1500;
        auto run = startCheck(urls, options);
        QTRY_VERIFY_WITH_TIMEOUT(run->finished, EventWaitMs);
        QVERIFY(!run->cancelled);
        QCOMPARE(run->started.size(), urls.size());
        const auto &o = run->outcomes;

        QCOMPARE(o[0].verdict, LinkVerdict::Ok);
        QCOMPARE(o[0].status, 200L);
        QVERIFY(!o[0].usedGet);

        QCOMPARE(o[1].verdict, LinkVerdict::Moved);
        QCOMPARE(o[1].finalUrl, server.url("/ok/new"));
        QCOMPARE(o[1].redirects, (QStringList{"301 " + server.url("/ok/new")}));
        QCOMPARE(o[1].text, "Moved to " + server.url("/ok/new"));

        QCOMPARE(o[2].verdict, LinkVerdict::Dead);
        QCOMPARE(o[2].status, 404L);
        QCOMPARE(o[2].text, QString("404 Not Found"));

        QCOMPARE(o[3].verdict, LinkVerdict::Ok);
        QVERIFY(o[3].usedGet);
        QCOMPARE(o[3].status, 200L);

        QCOMPARE(o[4].verdict, LinkVerdict::Dead);
        QCOMPARE(o[4].text, QString("Connection refused"));
        QCOMPARE(o[4].status, 0L);

        QCOMPARE(o[5].verdict, LinkVerdict::Dead);
        QCOMPARE(o[5].text, QString("No answer within 1.5 s"));

        // A temporary redirect (a login page, say) leaves the link as it is.
        QCOMPARE(o[6].verdict, LinkVerdict::Ok);
        QVERIFY2(o[6].text.contains("for now"), qPrintable(o[6].text));
        QCOMPARE(o[6].finalUrl, server.url("/ok/login"));

        QCOMPARE(o[7].verdict, LinkVerdict::Moved);
        QCOMPARE(o[7].redirects.size(), 2);
        QCOMPARE(o[7].finalUrl, server.url("/ok/new"));

        QCOMPARE(o[8].verdict, LinkVerdict::Moved);
        QCOMPARE(o[8].finalUrl, server.url("/ok/new308"));

        QCOMPARE(o[9].verdict, LinkVerdict::Dead);
        QCOMPARE(o[9].status, 404L);

        QCOMPARE(o[10].verdict, LinkVerdict::Dead);
        QCOMPARE(o[10].text, QString("The redirects go round in a circle"));

        QCOMPARE(o[11].verdict, LinkVerdict::Ok);
        QVERIFY(o[11].usedGet);

        QCOMPARE(o[12].verdict, LinkVerdict::Ok);
        QVERIFY2(o[12].text.startsWith("403 Forbidden"), qPrintable(o[12].text));

        // HEAD first; GET only where HEAD was refused.
        const QStringList requests = server.requests();
        QVERIFY(requests.contains("HEAD /ok"));
        QVERIFY(!requests.contains("GET /ok"));
        QVERIFY(requests.contains("HEAD /nohead"));
        QVERIFY(requests.contains("GET /nohead"));
        QVERIFY(requests.indexOf("HEAD /nohead") < requests.indexOf("GET /nohead"));
        QVERIFY(requests.contains("HEAD /ok/new"));
    }

    void cancelEndsAWaitThatNoTimeLimitWouldEndSoon()
    {
        const int silentBefore = server.silentRequests();
        LinkCheckOptions options;
        options.parallel = 2;
        options.timeoutMs = 3600 * 1000; // an hour: only Cancel can end this check
        auto run = startCheck(
            {server.url("/silent/a"), server.url("/silent/b"), server.url("/ok/never-asked")},
            options);
        // Both requests are at the server, which will never answer them.
        QTRY_VERIFY_WITH_TIMEOUT(server.silentRequests() >= silentBefore + 2, EventWaitMs);
        QVERIFY(!run->finished);
        run->checker->cancel();
        QTRY_VERIFY_WITH_TIMEOUT(run->finished, EventWaitMs);
        QVERIFY(run->cancelled);
        for (const LinkCheckOutcome &outcome : run->outcomes)
            QCOMPARE(outcome.verdict, LinkVerdict::Unchecked);
        QVERIFY(!server.requests().contains("HEAD /ok/never-asked"));
        QVERIFY(!run->checker->running());
    }

    void theTimeLimitOfOneLinkLeavesTheOthersAlone()
    {
        LinkCheckOptions options;
        options.parallel = 1; // one at a time: the silent one first
        options.timeoutMs = 1000;
        auto run = startCheck({server.url("/silent/c"), server.url("/ok/after")}, options);
        QTRY_VERIFY_WITH_TIMEOUT(run->finished, EventWaitMs);
        QCOMPARE(run->outcomes[0].verdict, LinkVerdict::Dead);
        QVERIFY(run->outcomes[0].text.startsWith("No answer within"));
        QCOMPARE(run->outcomes[1].verdict, LinkVerdict::Ok);
    }

    void destroyingARunningCheckEndsIt()
    {
        LinkCheckOptions options;
        options.timeoutMs = 3600 * 1000;
        const int silentBefore = server.silentRequests();
        auto checker = std::make_unique<LinkChecker>(options);
        QVERIFY(checker->start({server.url("/silent/d")}));
        QVERIFY(!checker->start({server.url("/ok")})); // one check at a time
        QTRY_VERIFY_WITH_TIMEOUT(server.silentRequests() > silentBefore, EventWaitMs);
        checker.reset(); // cancels and waits for the thread
    }

    void reasonsOfTheCommonStatuses()
    {
        QCOMPARE(HttpReason(404), QString("Not Found"));
        QCOMPARE(HttpReason(410), QString("Gone"));
        QCOMPARE(HttpReason(299), QString());
    }
};

TARNWICK_TEST_MAIN(TestLinkCheck)
#include "test_linkcheck.moc"
