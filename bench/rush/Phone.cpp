#include "Phone.h"

#include "Awaiting.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace clockwell::rush {

namespace asio = boost::asio;
using asio::awaitable;
using nlohmann::json;
using namespace std::chrono_literals;

namespace {

/// The text under a key of a JSON object; nothing when there is none.
std::optional<std::string> textOf(const json &object, const char *key)
{
    const auto found = object.is_object() ? object.find(key) : object.end();
    if (found == object.end() || !found->is_string())
        return std::nullopt;
    return found->get<std::string>();
}

json parsed(const std::string &body)
{
    return json::parse(body, nullptr, false);
}

} // namespace

awaitable<void> Phone::arrive(std::chrono::milliseconds after)
{
    co_await pause(after, after);
    ++m_morning.figures.arrived;
    const Clock::time_point end = Clock::now() + m_morning.patience;
    if (m_person.tokens)
        co_await start();
    while (!m_checkedIn && Clock::now() < end)
        if (m_person.tokens)
            co_await tapPunch();
        else
            co_await signIn();
    if (m_checkedIn)
        co_await loadHome();
}

/// The app keeps its session when "me" can be loaded, and only then.
awaitable<void> Phone::start()
{
    const Answer me = co_await authorized(Call::me);
    if (me.ok()) {
        co_await loadHome();
        co_return;
    }
    if (me.status == 0)
        ++m_morning.figures.signedOutUnanswered;
    else if (m_person.tokens) // else the refusal of the refresh has been counted
        ++m_morning.figures.signedOutBy["me " + std::to_string(me.status)];
    m_person.tokens.reset();
    co_await pause(3s, 8s); // types the password
}

awaitable<void> Phone::signIn()
{
    std::string body =
        json{{"email", m_person.email}, {"password", rushPassword}, {"deviceId", m_person.device}}.dump();
    const Answer answer = co_await m_client.send(Call::login, {}, std::move(body));
    const bool signedIn = answer.ok() && acceptTokens(answer.body);
    if (signedIn) {
        co_await loadHome();
        co_return;
    }
    ++m_morning.figures.failedTaps;
    co_await pause(3s, 8s);
}

/// What the screen loads when it appears, and after a punch.
awaitable<void> Phone::loadHome()
{
    co_await authorized(Call::today);
    co_await pause(200ms, 1500ms); // the position
    if (m_person.tokens)
        co_await authorized(Call::distance);
}

awaitable<void> Phone::tapPunch()
{
    co_await pause(1s, 4s); // reads the screen or the error
    if (m_firstTap == Clock::time_point{})
        m_firstTap = Clock::now();
    m_morning.figures.mostTaps = std::max(m_morning.figures.mostTaps, ++m_taps);
    co_await pause(200ms, 1500ms); // the position
    std::string body = R"({"lat":54.1234,"lng":9.5678,"accuracy":8.0,"deviceId":")" + m_person.device +
                       R"(","isMockLocation":false})";
    const Answer answer = co_await authorized(Call::punch, std::move(body));
    if (answer.ok() && acceptPunch(answer.body))
        co_return;
    ++m_morning.figures.failedTaps;
    co_await pause(2s, 4s);
}

/// Sends a request of the session; after a 401 it renews the tokens once and sends it once more.
awaitable<Answer> Phone::authorized(Call call, std::string body)
{
    const std::string token = m_person.tokens ? m_person.tokens->accessToken : std::string{};
    Answer answer = co_await m_client.send(call, token, body);
    if (answer.status != 401 || !m_person.tokens)
        co_return answer;
    const bool renewed = co_await renew();
    if (!renewed)
        co_return Answer{.status = m_person.tokens ? 0 : 401};
    co_return co_await m_client.send(call, m_person.tokens->accessToken, body);
}

/// Any answer but 2xx ends the session; no answer leaves it as it is.
awaitable<bool> Phone::renew()
{
    std::string body = json{{"refreshToken", m_person.tokens->refreshToken}}.dump();
    const Answer answer = co_await m_client.send(Call::refresh, {}, std::move(body));
    if (answer.ok())
        co_return acceptTokens(answer.body);
    if (answer.status != 0) {
        ++m_morning.figures.signedOutBy["refresh " + std::to_string(answer.status)];
        m_person.tokens.reset();
    }
    co_return false;
}

awaitable<void> Phone::pause(Seconds least, Seconds most)
{
    std::uniform_real_distribution<double> seconds(least.count(), most.count());
    const auto time = std::chrono::duration_cast<Duration>(Seconds{seconds(m_morning.random)});
    co_await sleepFor(m_executor, time);
}

bool Phone::acceptTokens(const std::string &body)
{
    const json answer = parsed(body);
    const auto access = textOf(answer, "accessToken");
    const auto refresh = textOf(answer, "refreshToken");
    if (!access || !refresh)
        return false;
    m_person.tokens = server::TokenPair{*access, *refresh};
    return true;
}

bool Phone::acceptPunch(const std::string &body)
{
    const json answer = parsed(body);
    const auto type = textOf(answer, "type");
    if (!type)
        return false;
    m_morning.ledger.acknowledge(m_person.id, *type, textOf(answer, "checkInAt").value_or(""));
    m_morning.figures.untilAcknowledged.add(Clock::now() - m_firstTap);
    ++m_morning.figures.checkedIn;
    m_checkedIn = true;
    return true;
}

} // namespace clockwell::rush
