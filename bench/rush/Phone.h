#pragma once

#include "Client.h"
#include "Company.h"
#include "Ledger.h"

#include <random>
#include <string>

namespace clockwell::rush {

/// What all people of one morning share. On one thread.
struct Morning
{
    Figures &figures;
    Ledger &ledger;
    std::mt19937 &random;
    std::chrono::seconds patience; ///< after it a person gives up
};

/// A person and their phone, from the start of the app until the check-in is shown. The app's part is what
/// Clockwell/ does: the same requests in the same order, and the same reasons to sign somebody out. The
/// person's part is to tap again a few seconds after an error, and to type the password when signed out.
class Phone
{
public:
    Phone(boost::asio::any_io_executor executor, Person person, Network network, Morning &morning)
        : m_executor(executor),
          m_person(std::move(person)),
          m_client(executor, network, morning.figures),
          m_morning(morning)
    {}

    boost::asio::awaitable<void> arrive(std::chrono::milliseconds after);

private:
    using Seconds = std::chrono::duration<double>;

    boost::asio::awaitable<void> start();
    boost::asio::awaitable<void> signIn();
    boost::asio::awaitable<void> loadHome();
    boost::asio::awaitable<void> tapPunch();
    boost::asio::awaitable<Answer> authorized(Call call, std::string body = {});
    boost::asio::awaitable<bool> renew();
    boost::asio::awaitable<void> pause(Seconds least, Seconds most);
    bool acceptTokens(const std::string &body);
    bool acceptPunch(const std::string &body);

    boost::asio::any_io_executor m_executor;
    Person m_person;
    Client m_client;
    Morning &m_morning;
    Clock::time_point m_firstTap{};
    std::size_t m_taps = 0; // on the button
    bool m_checkedIn = false;
};

} // namespace clockwell::rush
