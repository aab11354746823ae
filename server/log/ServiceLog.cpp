#include "server/log/ServiceLog.h"

#include "server/http/AccessLog.h"
#include "server/log/JsonLine.h"
#include "server/log/LogWriter.h"
#include "server/log/RepeatedLines.h"

#include <spdlog/async.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/spdlog.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <csignal>
#include <functional>
#include <mutex>
#include <stop_token>

namespace clockwell::server {

namespace {

// Some seconds of a busy server, in 4 MB.
constexpr std::size_t linesThatMayWait = 8192;
constexpr std::chrono::seconds limitAtTheEnd{2};
constexpr std::chrono::seconds tick{5};
constexpr const char *loggerName = "clockwell-server";

std::string asJson(const spdlog::details::log_msg &message)
{
    const auto level = spdlog::level::to_string_view(message.level);
    return jsonLine(std::chrono::floor<std::chrono::milliseconds>(message.time), {level.data(), level.size()},
                    {message.payload.data(), message.payload.size()});
}

} // namespace

/// The last step of a line, on the log's own thread.
class ServiceLog::Sink : public spdlog::sinks::base_sink<std::mutex>
{
public:
    /// `overruns`: how many lines were pushed out of the queue so far.
    Sink(LogFormat format, std::function<std::size_t()> overruns)
        : m_format(format), m_writer(STDERR_FILENO), m_overruns(std::move(overruns))
    {}

    void waitUntil(LogWriter::Time end) { m_writer.waitUntil(end); } ///< from any thread
    void loseLine() { ++m_lost; }                                    ///< from any thread
    /// Tells what is still to tell; no further line comes.
    void finish()
    {
        const std::lock_guard lock{mutex_};
        writeSummaries(std::chrono::steady_clock::now() + RepeatedLines::interval);
        sayWhatWasLost();
    }

protected:
    void sink_it_(const spdlog::details::log_msg &message) override
    {
        m_overrunsSeen = m_overruns(); // a line that pushes another out gets here, or what pushes it out does
        const auto now = std::chrono::steady_clock::now();
        writeSummaries(now);
        const std::string_view line{message.payload.data(), message.payload.size()};
        if (m_repeated.admits(line, message.level >= spdlog::level::warn, now))
            put(message);
    }
    void flush_() override { writeSummaries(std::chrono::steady_clock::now()); }

private:
    void writeSummaries(RepeatedLines::Time now)
    {
        for (const std::string &line : m_repeated.summaries(now))
            put({loggerName, spdlog::level::warn, line});
    }
    void put(const spdlog::details::log_msg &message)
    {
        if (!sayWhatWasLost() || !write(message))
            ++m_lost;
    }
    /// False when nothing can be written.
    bool sayWhatWasLost()
    {
        const std::size_t lost = m_lost;
        const std::size_t sum = lost + m_overrunsSeen - m_overrunsSaid;
        if (sum == 0)
            return true;
        const std::string line = "event=linesLost count=" + std::to_string(sum);
        if (!write({loggerName, spdlog::level::warn, line}))
            return false;
        m_lost -= lost;
        m_overrunsSaid = m_overrunsSeen;
        return true;
    }
    bool write(const spdlog::details::log_msg &message)
    {
        if (m_format == LogFormat::JsonLines)
            return m_writer.write(asJson(message) + '\n');
        spdlog::memory_buf_t text;
        formatter_->format(message, text);
        return m_writer.write(printableAscii({text.data(), text.size() - 1}) + '\n');
    }

    const LogFormat m_format;
    LogWriter m_writer;
    RepeatedLines m_repeated;
    std::function<std::size_t()> m_overruns;
    std::size_t m_overrunsSeen = 0;
    std::size_t m_overrunsSaid = 0;
    std::atomic<std::size_t> m_lost{0};
};

ServiceLog::ServiceLog(LogFormat format) : m_previous(spdlog::default_logger())
{
    std::signal(SIGPIPE, SIG_IGN);
    spdlog::init_thread_pool(linesThatMayWait, 1);
    const auto pool = spdlog::thread_pool();
    // A plain pointer: the pool outlives its thread, and a thread that owned it would join itself.
    m_sink = std::make_shared<Sink>(format, [queue = pool.get()] { return queue->overrun_counter(); });
    const auto logger = std::make_shared<spdlog::async_logger>(loggerName, m_sink, pool,
                                                               spdlog::async_overflow_policy::overrun_oldest);
    logger->set_error_handler([sink = m_sink.get()](const std::string &) { sink->loseLine(); });
    spdlog::set_default_logger(logger);
    m_ticker = std::jthread{[sink = m_sink](const std::stop_token &stop) {
        std::mutex mutex;
        std::unique_lock lock{mutex};
        std::condition_variable_any never;
        while (!never.wait_for(lock, stop, tick, [&] { return stop.stop_requested(); }))
            sink->flush();
    }};
}

ServiceLog::~ServiceLog()
{
    m_sink->waitUntil(std::chrono::steady_clock::now() + limitAtTheEnd);
    m_ticker.request_stop();
    m_ticker.join();
    spdlog::shutdown(); // ends the thread after the last line
    m_sink->finish();
    spdlog::set_default_logger(m_previous);
}

} // namespace clockwell::server
