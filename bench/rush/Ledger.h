#pragma once

#include "Company.h"

#include <cstddef>
#include <map>
#include <ostream>

namespace clockwell::rush {

/// What people were told about their punches, held against the rows of the database.
class Ledger
{
public:
    struct Verdict
    {
        std::size_t acknowledged = 0; ///< people who were told that they are checked in
        std::size_t rows = 0;         ///< punches of all people
        std::size_t lost = 0;         ///< people whose acknowledged check-in is not there, or is another one
        std::size_t doubled =
            0; ///< people with a second punch, of any kind and day, recorded or acknowledged
        std::size_t unacknowledged = 0; ///< people who were checked in and never told so

        bool good() const { return lost == 0 && doubled == 0; }
    };

    /// An answer to a punch: its kind and the check-in's time, as sent.
    void acknowledge(const std::string &personId, const std::string &type, const std::string &checkInAt);

    /// What was acknowledged, a line for each person: id, kind, the check-in's time as sent, and when the
    /// answer came in milliseconds since 1970, with tabs between them.
    void write(std::ostream &stream) const;

    Verdict compare(server::Database &database, const std::vector<Person> &people) const;

private:
    struct Told
    {
        std::string type;
        std::string checkInAt;
        long long at;         // milliseconds since 1970
        bool another = false; ///< later answers told something else
    };

    std::map<std::string, Told> m_told;
};

std::ostream &operator<<(std::ostream &stream, const Ledger::Verdict &verdict);

} // namespace clockwell::rush
