#include "WorkerPool.h"

#include "AccessLog.h"
#include "Refusal.h"

#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <exception>

namespace clockwell::server {

namespace asio = boost::asio;

WorkerPool::WorkerPool(unsigned threads, std::size_t queueLimit, Handler handler, const AccessLog &log)
    : m_handler(std::move(handler)),
      m_log(log),
      m_capacity(std::max(1U, threads) + queueLimit),
      m_pool(std::max(1U, threads))
{}

asio::awaitable<std::optional<Response>> WorkerPool::run(Request request)
{
    if (m_taken.fetch_add(1) >= m_capacity) {
        m_taken.fetch_sub(1);
        co_return std::nullopt;
    }
    co_return co_await enqueue(std::move(request));
}

asio::awaitable<Response> WorkerPool::enqueue(Request request)
{
    return asio::async_initiate<const asio::use_awaitable_t<>, void(Response)>(
        [this](auto handler, Request work) {
            asio::post(
                m_pool,
                [this, resume = std::move(handler), work = std::move(work)]() mutable {
                    Response response = answer(work);
                    m_taken.fetch_sub(1);
                    const auto executor = asio::get_associated_executor(resume);
                    asio::post(
                        executor,
                        [resume = std::move(resume), response = std::move(response)]() mutable {
                            resume(std::move(response));
                        });
                });
        },
        asio::use_awaitable, std::move(request));
}

Response WorkerPool::answer(const Request &request) const
{
    if (m_abandoned)
        return toResponse(refusals::busy, 1);
    try {
        return m_handler(request);
    } catch (const std::exception &error) {
        m_log.handlerFailed(request.requestId, error.what());
    } catch (...) {
        m_log.handlerFailed(request.requestId, "unknown exception");
    }
    return toResponse(refusals::internal);
}

} // namespace clockwell::server
