#include "LinkCheck.h"

#include <QSet>
#include <QUrl>

#include <curl/curl.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <map>
#include <mutex>

namespace {

std::mutex multiMutex; // guards the wake-up of a check against the end of its CURLM

void initLibraryOnce()
{
    static const bool done = [] {
        curl_global_init(CURL_GLOBAL_DEFAULT);
        return true;
    }();
    (void)done;
}

using Clock = std::chrono::steady_clock;

// One address on its way: its requests, one after another, share it.
struct Transfer
{
    int index = 0;
    QString firstUrl;
    QString url; // of the present request
    CURL *easy = nullptr;
    bool get = false;
    bool bodyStopped = false;
    bool permanent = true;
    QStringList redirects;
    QSet<QString> visited;
    Clock::time_point deadline;
    char error[CURL_ERROR_SIZE] = {};
};

size_t stopAtBody(char *, size_t, size_t, void *self)
{
    // The status line and headers are all the check needs: the body is not fetched (taking
    // nothing of it ends the transfer).
    static_cast<Transfer *>(self)->bodyStopped = true;
    return 0;
}

size_t ignoreHeader(char *, size_t size, size_t count, void *)
{
    return size * count;
}

bool isWebScheme(const QString &url)
{
    return url.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
           url.startsWith(QLatin1String("https://"), Qt::CaseInsensitive);
}

QByteArray encodedUrl(const QString &url)
{
    const QUrl parsed(url, QUrl::TolerantMode);
    return parsed.isValid() ? parsed.toEncoded() : url.toUtf8();
}

void setUp(Transfer &t, const LinkCheckOptions &options)
{
    CURL *e = t.easy;
    curl_easy_reset(e);
    const QByteArray url = encodedUrl(t.url);
    curl_easy_setopt(e, CURLOPT_URL, url.constData()); // libcurl copies the string
    curl_easy_setopt(e, CURLOPT_PRIVATE, &t);
    curl_easy_setopt(e, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(e, CURLOPT_FOLLOWLOCATION, 0L); // each hop is looked at on its own
    curl_easy_setopt(e, CURLOPT_PROTOCOLS_STR, "http,https,ftp");
    curl_easy_setopt(e, CURLOPT_ERRORBUFFER, t.error);
    curl_easy_setopt(e, CURLOPT_USERAGENT, "Mozilla/5.0 (compatible; Tarnwick link check)");
    curl_easy_setopt(e, CURLOPT_HEADERFUNCTION, &ignoreHeader);
    // A proxy of the environment is used, never for this computer's own addresses.
    static const QByteArray noProxy = [] {
        QByteArray list = qgetenv("no_proxy");
        if (list.isEmpty())
            list = qgetenv("NO_PROXY");
        if (!list.isEmpty())
            list += ',';
        return list + "localhost,127.0.0.1,::1";
    }();
    curl_easy_setopt(e, CURLOPT_NOPROXY, noProxy.constData());
    t.error[0] = '\0';
    t.bodyStopped = false;
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(t.deadline - Clock::now()).count();
    const long ms =
        std::max<long>(1, static_cast<long>(std::min<long long>(left, options.timeoutMs)));
    curl_easy_setopt(e, CURLOPT_TIMEOUT_MS, ms);
    curl_easy_setopt(e, CURLOPT_CONNECTTIMEOUT_MS, ms);
    if (t.get) {
        curl_easy_setopt(e, CURLOPT_HTTPGET, 1L);
        curl_easy_setopt(e, CURLOPT_WRITEFUNCTION, &stopAtBody);
        curl_easy_setopt(e, CURLOPT_WRITEDATA, &t);
    } else {
        curl_easy_setopt(e, CURLOPT_NOBODY, 1L);
    }
}

QString seconds(int ms)
{
    return QString::number(ms / 1000.0, 'g', 3);
}

QString failureText(CURLcode code, const Transfer &t, const LinkCheckOptions &options)
{
    switch (code) {
    case CURLE_COULDNT_CONNECT:
        return QStringLiteral("Connection refused");
    case CURLE_OPERATION_TIMEDOUT:
        return QStringLiteral("No answer within ") + seconds(options.timeoutMs) +
               QStringLiteral(" s");
    case CURLE_COULDNT_RESOLVE_HOST:
        return QStringLiteral("The server's name is not known");
    case CURLE_GOT_NOTHING:
        return QStringLiteral("The server closed the connection without an answer");
    case CURLE_UNSUPPORTED_PROTOCOL:
        return QStringLiteral("Not a web address");
    case CURLE_URL_MALFORMAT:
        return QStringLiteral("Not a valid address");
    default:
        break;
    }
    const QString detail = QString::fromUtf8(t.error).trimmed();
    return detail.isEmpty() ? QString::fromUtf8(curl_easy_strerror(code)) : detail;
}

} // namespace

QString HttpReason(long status)
{
    static const std::map<long, const char *> reasons = {
        {200, "OK"},
        {201, "Created"},
        {202, "Accepted"},
        {203, "Non-Authoritative Information"},
        {204, "No Content"},
        {206, "Partial Content"},
        {300, "Multiple Choices"},
        {301, "Moved Permanently"},
        {302, "Found"},
        {303, "See Other"},
        {304, "Not Modified"},
        {307, "Temporary Redirect"},
        {308, "Permanent Redirect"},
        {400, "Bad Request"},
        {401, "Unauthorized"},
        {403, "Forbidden"},
        {404, "Not Found"},
        {405, "Method Not Allowed"},
        {406, "Not Acceptable"},
        {407, "Proxy Authentication Required"},
        {408, "Request Timeout"},
        {410, "Gone"},
        {429, "Too Many Requests"},
        {451, "Unavailable For Legal Reasons"},
        {500, "Internal Server Error"},
        {501, "Not Implemented"},
        {502, "Bad Gateway"},
        {503, "Service Unavailable"},
        {504, "Gateway Timeout"},
    };
    const auto found = reasons.find(status);
    return found == reasons.end() ? QString() : QString::fromLatin1(found->second);
}

LinkChecker::LinkChecker(LinkCheckOptions options, QObject *parent)
    : QObject(parent), m_options(options)
{
    initLibraryOnce();
    qRegisterMetaType<LinkCheckOutcome>();
    if (m_options.parallel < 1)
        m_options.parallel = 1;
}

LinkChecker::~LinkChecker()
{
    cancel();
    join();
}

void LinkChecker::join()
{
    if (m_thread.joinable())
        m_thread.join();
}

bool LinkChecker::start(const QStringList &urls)
{
    if (m_running)
        return false;
    join();
    m_cancel = false;
    m_running = true;
    m_thread = std::thread([this, urls] { run(urls); });
    return true;
}

void LinkChecker::cancel()
{
    m_cancel = true;
    const std::lock_guard<std::mutex> lock(multiMutex);
    if (void *multi = m_multi.load())
        curl_multi_wakeup(static_cast<CURLM *>(multi));
}

void LinkChecker::run(QStringList urls)
{
    CURLM *multi = curl_multi_init();
    {
        const std::lock_guard<std::mutex> lock(multiMutex);
        m_multi = multi;
    }
    const auto post = [this](auto fn) {
        QMetaObject::invokeMethod(this, fn, Qt::QueuedConnection);
    };
    const auto report = [&](Transfer &t, LinkCheckOutcome outcome) {
        outcome.redirects = t.redirects;
        outcome.usedGet = t.get;
        if (!t.redirects.isEmpty())
            outcome.finalUrl = t.url;
        const int index = t.index;
        post([this, index, outcome] { emit checked(index, outcome); });
    };

    std::deque<int> waiting;
    for (int i = 0; i < urls.size(); ++i)
        waiting.push_back(i);
    std::map<CURL *, std::unique_ptr<Transfer>> active;

    const auto send = [&](Transfer &t) {
        setUp(t, m_options);
        curl_multi_add_handle(multi, t.easy);
    };

    while (!m_cancel && (!waiting.empty() || !active.empty())) {
        while (!waiting.empty() && int(active.size()) < m_options.parallel) {
            auto t = std::make_unique<Transfer>();
            t->index = waiting.front();
            waiting.pop_front();
            t->firstUrl = urls.at(t->index).trimmed();
            t->url = t->firstUrl;
            t->visited.insert(t->url);
            t->deadline = Clock::now() + std::chrono::milliseconds(m_options.timeoutMs);
            t->easy = curl_easy_init();
            Transfer &ref = *t;
            active.emplace(t->easy, std::move(t));
            send(ref);
            const int index = ref.index;
            post([this, index] { emit requestStarted(index); });
        }
        int running = 0;
        curl_multi_perform(multi, &running);
        int left = 0;
        while (CURLMsg *msg = curl_multi_info_read(multi, &left)) {
            if (msg->msg != CURLMSG_DONE)
                continue;
            CURL *easy = msg->easy_handle;
            const CURLcode code = msg->data.result;
            curl_multi_remove_handle(multi, easy);
            Transfer &t = *active.at(easy);
            long status = 0;
            curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
            const char *location = nullptr;
            curl_easy_getinfo(easy, CURLINFO_REDIRECT_URL, &location);
            const bool web = isWebScheme(t.url);
            bool again = false;
            LinkCheckOutcome outcome;
            outcome.status = status;
            const bool answered = code == CURLE_OK || (code == CURLE_WRITE_ERROR && t.bodyStopped);
            if (!answered) {
                outcome.verdict = LinkVerdict::Dead;
                outcome.text = failureText(code, t, m_options);
            } else if (!web) {
                outcome.verdict = LinkVerdict::Ok;
                outcome.text = QStringLiteral("OK");
            } else if (!t.get && (status == 405 || status == 501)) {
                t.get = true; // HEAD refused: the same address with GET
                again = true;
            } else if ((status == 301 || status == 302 || status == 303 || status == 307 ||
                        status == 308) &&
                       location && *location) {
                const QString next = QString::fromUtf8(location);
                t.redirects << QString::number(status) + QLatin1Char(' ') + next;
                t.permanent = t.permanent && (status == 301 || status == 308);
                if (t.visited.contains(next)) {
                    outcome.verdict = LinkVerdict::Dead;
                    outcome.text = QStringLiteral("The redirects go round in a circle");
                } else if (t.redirects.size() > m_options.maxRedirects) {
                    outcome.verdict = LinkVerdict::Dead;
                    outcome.text = QStringLiteral("Too many redirects");
                } else if (Clock::now() >= t.deadline) {
                    outcome.verdict = LinkVerdict::Dead;
                    outcome.text = failureText(CURLE_OPERATION_TIMEDOUT, t, m_options);
                } else {
                    t.visited.insert(next);
                    t.url = next;
                    again = true;
                }
            } else {
                const QString reason = HttpReason(status);
                const QString statusText =
                    QString::number(status) +
                    (reason.isEmpty() ? QString() : QLatin1Char(' ') + reason);
                if (status >= 200 && status < 300) {
                    if (t.redirects.isEmpty()) {
                        outcome.verdict = LinkVerdict::Ok;
                        outcome.text = QStringLiteral("OK");
                    } else if (t.permanent) {
                        outcome.verdict = LinkVerdict::Moved;
                        outcome.text = QStringLiteral("Moved to ") + t.url;
                    } else {
                        outcome.verdict = LinkVerdict::Ok;
                        outcome.text = QStringLiteral("OK, sent on for now to ") + t.url;
                    }
                } else if (status == 401 || status == 403 || status == 407 || status == 429) {
                    outcome.verdict = LinkVerdict::Ok;
                    outcome.text = statusText +
                                   QStringLiteral(": the server is there but turns the check away");
                } else {
                    outcome.verdict = LinkVerdict::Dead;
                    outcome.text = status == 0 ? QStringLiteral("No answer") : statusText;
                }
            }
            if (again) {
                send(t);
                continue;
            }
            report(t, outcome);
            curl_easy_cleanup(easy);
            active.erase(easy);
        }
        if (m_cancel)
            break;
        curl_multi_poll(multi, nullptr, 0, 1000, nullptr);
    }

    const bool cancelled = m_cancel;
    for (auto &[easy, t] : active) {
        curl_multi_remove_handle(multi, easy);
        curl_easy_cleanup(easy);
    }
    active.clear();
    {
        const std::lock_guard<std::mutex> lock(multiMutex);
        m_multi = nullptr;
    }
    curl_multi_cleanup(multi);
    post([this, cancelled] {
        m_running = false;
        join();
        emit finished(cancelled);
    });
}
