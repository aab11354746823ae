#include "Ledger.h"

#include "server/storage/Instant.h"

namespace clockwell::rush {

using namespace server;

namespace {

struct PunchRow
{
    std::string personId;
    std::string type;
    long long at = 0;

    auto columns() { return std::tie(personId, type, at); }
};

/// All punches in the database, by person.
std::multimap<std::string, PunchRow> punchesOf(Database &database)
{
    const auto rows = database.read([](server::Connection &connection) {
        return connection.all<PunchRow>("SELECT a.employee_id, p.type, p.at FROM punches p"
                                        " JOIN attendance a ON a.id = p.attendance_id");
    });
    std::multimap<std::string, PunchRow> byPerson;
    for (const PunchRow &row : rows)
        byPerson.emplace(row.personId, row);
    return byPerson;
}

} // namespace

void Ledger::acknowledge(const std::string &personId, const std::string &type, const std::string &checkInAt)
{
    const auto [told, isFirst] = m_told.try_emplace(
        personId, Told{.type = type, .checkInAt = checkInAt, .at = toMillis(systemClock()())});
    if (type != "IN" || told->second.checkInAt != checkInAt)
        told->second.another = true;
}

void Ledger::write(std::ostream &stream) const
{
    for (const auto &[personId, told] : m_told)
        stream << personId << '\t' << told.type << '\t' << told.checkInAt << '\t' << told.at << '\n';
}

Ledger::Verdict Ledger::compare(Database &database, const std::vector<Person> &people) const
{
    const auto punches = punchesOf(database);
    Verdict verdict;
    for (const Person &person : people) {
        const auto [first, last] = punches.equal_range(person.id);
        const auto count = static_cast<std::size_t>(std::distance(first, last));
        const auto told = m_told.find(person.id);
        const bool wasTold = told != m_told.end();
        verdict.rows += count;
        verdict.acknowledged += wasTold ? 1 : 0;
        verdict.unacknowledged += !wasTold && count > 0 ? 1 : 0;
        if (count > 1 || (wasTold && told->second.another))
            ++verdict.doubled;
        const bool isThere = std::any_of(first, last, [&](const auto &entry) {
            return entry.second.type == "IN" &&
                   toIsoText(fromMillis(entry.second.at)) == told->second.checkInAt;
        });
        if (wasTold && !isThere)
            ++verdict.lost;
    }
    return verdict;
}

std::ostream &operator<<(std::ostream &stream, const Ledger::Verdict &verdict)
{
    return stream << verdict.rows << " for " << verdict.acknowledged
                  << " acknowledged check-ins: " << verdict.lost << " lost, " << verdict.doubled
                  << " doubled; " << verdict.unacknowledged << " recorded for people who were never told";
}

} // namespace clockwell::rush
