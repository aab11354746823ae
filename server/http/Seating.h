#pragma once

#include <boost/intrusive/list.hpp>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>

namespace clockwell::server {

class Seating;
struct NetworkSeats;

/// One connection's seat, from its accept until it ends or gives way to a newcomer. I/O thread only.
class Seat
{
public:
    enum class Kind {
        Regular,
        Guest ///< beyond the limits: for one request that must not be refused
    };

    /// `seating` must outlive the seat. `giveWay` closes the connection; it is called at most once, and not
    /// after leave().
    Seat(Seating &seating, const std::string &network, Kind kind, std::function<void()> giveWay);
    ~Seat() { leave(); }
    Seat(const Seat &) = delete;
    Seat &operator=(const Seat &) = delete;

    /// The connection waits for its client: it may have to give way, after all that have waited longer.
    void wait();
    /// The server works for the client, which gives way to nobody.
    void hold();
    void leave();

    bool isGuest() const { return m_kind == Kind::Guest; }

private:
    friend class Seating;
    friend struct NetworkSeats;
    using Hook =
        boost::intrusive::list_member_hook<boost::intrusive::link_mode<boost::intrusive::auto_unlink>>;

    Seating &m_seating;
    const std::string m_networkName;
    const Kind m_kind;
    const std::function<void()> m_giveWay;
    NetworkSeats *m_network = nullptr; // null for a guest
    bool m_left = false;
    Hook m_inAll;     // those that wait, of all networks; of guests, those that wait
    Hook m_inNetwork; // those that wait, of one network
};

/// What the connections of one network address hold.
struct NetworkSeats
{
    std::size_t taken = 0;
    boost::intrusive::list<Seat, boost::intrusive::member_hook<Seat, Seat::Hook, &Seat::m_inNetwork>,
                           boost::intrusive::constant_time_size<false>>
        waiting; // the longest one first
};

/// Who may have a connection. When there is no room, the connection that has waited longest for its client
/// gives way to the newcomer; when one network address has its share, the one of its own that has.
class Seating
{
public:
    struct Limits
    {
        std::size_t all = 0;
        std::size_t perNetwork = 0;
        std::size_t guests = 0; ///< beyond `all`
    };

    /// In place of a network: of a proxy's connections, which are many people's. `perNetwork` is not for
    /// them.
    static constexpr const char *nobodysNetwork = "";

    explicit Seating(const Limits &limits) : m_limits(limits) {}

    /// Makes room for a newcomer, who takes it before the next one is admitted; empty when nobody gives way.
    std::optional<Seat::Kind> admit(const std::string &network);

private:
    friend class Seat;

    using Line = boost::intrusive::list<Seat, boost::intrusive::member_hook<Seat, Seat::Hook, &Seat::m_inAll>,
                                        boost::intrusive::constant_time_size<false>>;

    template <class Seats>
    static bool giveWay(Seats &waiting);

    const Limits m_limits;
    std::size_t m_taken = 0;
    std::size_t m_guests = 0;
    std::unordered_map<std::string, NetworkSeats> m_networks; // those with seats
    Line m_waiting;                                           // the longest one first
    Line m_waitingGuests;
};

} // namespace clockwell::server
