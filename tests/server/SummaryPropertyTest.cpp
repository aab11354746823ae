#include "World.h"
#include "server/attendance/Punches.h"
#include "server/http/ApiError.h"

#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <random>
#include <set>

namespace clockwell::server::test {

struct Case
{
    const char *zone;
    unsigned seed;

    friend void PrintTo(const Case &value, std::ostream *out) { *out << value.zone << ' ' << value.seed; }
};

/// A year and more of random work, leave and holidays in an office somewhere: what the history says, added up
/// by hand, has to be what the summary says. The zones have clock changes of an hour (either hemisphere), of
/// half an hour, and none at all with an offset that is no whole hour.
class SummaryPropertyTest : public testing::TestWithParam<Case>
{
protected:
    bool chance(int percent) { return std::uniform_int_distribution{1, 100}(m_random) <= percent; }
    int number(int least, int most) { return std::uniform_int_distribution{least, most}(m_random); }
    Day someDay() { return first + std::chrono::days{number(0, static_cast<int>((today - first).count()))}; }

    void setUpOffice()
    {
        addOffice(world.database(), {.zone = GetParam().zone,
                                     .checkInMinute = number(0, 12 * 60),
                                     .checkOutMinute = number(13 * 60, 24 * 60),
                                     .grace = number(0, 30),
                                     .fullDay = number(0, 8 * 60),
                                     .weekdays = number(1, 127)});
        addEmployee(world.database(), {.joinedOn = toText(first + std::chrono::days{number(0, 40)})});
        for (int i = number(0, 6); i > 0; --i) {
            const Day start = someDay();
            addLeave(world.database(), "employee-1", toText(start),
                     toText(start + std::chrono::days{number(0, 20)}));
        }
        for (int i = 0; i < 10; ++i)
            m_holidays.insert(someDay());
        for (const Day holiday : m_holidays)
            addHoliday(world.database(), "office-1", toText(holiday), "Holiday");
    }

    struct Work
    {
        int days = 0;
        long long minutes = 0;
    };

    /// Punches at random instants, in order; those that the policy refuses are refused. Returns what came of
    /// the others.
    Work punchThroughTheYear()
    {
        Punches punches{world.database(), world.clock(), std::chrono::seconds{0}};
        Work work;
        world.database().write([&](Connection &connection) {
            const Employee employee = findEmployeeById(connection, "employee-1").value();
            Instant at{first.time_since_epoch()};
            const Instant end{today.time_since_epoch()};
            while (at < end) {
                at += std::chrono::minutes{chance(50) ? number(1, 12 * 60) : number(12 * 60, 40 * 60)};
                try {
                    const auto day =
                        punches.punchAt(connection, employee, {48.0, 11.0, 5, "dev-1", false}, at).row;
                    if (day.checkOutAt)
                        work.minutes += (*day.checkOutAt - day.checkInAt) / 60'000;
                    else
                        ++work.days;
                } catch (const ApiError &) {
                    continue; // closed, or complete
                }
            }
        });
        return work;
    }

    static std::map<std::string, nlohmann::json> addedUp(const nlohmann::json &records)
    {
        std::map<std::string, nlohmann::json> months;
        for (const auto &record : records) {
            const std::string name = record.at("workDate").get<std::string>().substr(0, 7);
            auto &month = months.try_emplace(name, nlohmann::json{{"month", name}}).first->second;
            const auto add = [&month](const char *key, long long amount) {
                month[key] = month.value(key, 0LL) + amount;
            };
            const std::string status = record.at("status");
            add("presentDays", record.contains("checkInAt") ? 1 : 0);
            add("absentDays", status == "ABSENT" ? 1 : 0);
            add("leaveDays", status == "ON_LEAVE" ? 1 : 0);
            add("halfDays", status == "HALF_DAY" ? 1 : 0);
            add("lateDays", record.value("lateMinutes", 0) > 0 ? 1 : 0);
            add("totalLateMinutes", record.value("lateMinutes", 0));
            add("totalWorkingMinutes", record.value("workingMinutes", 0));
        }
        return months;
    }

    const Day first = parseDay("2026-02-01").value();
    const Day today = parseDay("2027-01-20").value();
    World world{"2027-01-20T23:30:00Z"};

private:
    std::mt19937 m_random{GetParam().seed};
    std::set<Day> m_holidays;
};

TEST_P(SummaryPropertyTest, SummaryOfAnyMonthIsWhatItsRecordsAddUpTo)
{
    setUpOffice();
    const Work work = punchThroughTheYear();
    ASSERT_GT(work.days, 20);
    const std::string token = world.token();
    const auto months = addedUp(world.get("/api/attendance/me", token).json());
    ASSERT_GE(months.size(), 10U);
    Work summarised;
    for (const auto &[month, totals] : months) {
        const auto summary = world.get("/api/attendance/me/summary?month=" + month, token).json();
        EXPECT_EQ(summary, totals);
        summarised.days += summary.at("presentDays").get<int>();
        summarised.minutes += summary.at("totalWorkingMinutes").get<long long>();
    }
    EXPECT_EQ(summarised.days, work.days);
    EXPECT_EQ(summarised.minutes, work.minutes);
}

std::vector<Case> cases()
{
    std::vector<Case> all;
    for (const char *zone : {"UTC", "Europe/Berlin", "America/St_Johns", "Australia/Lord_Howe",
                             "America/Santiago", "Asia/Kathmandu", "Pacific/Apia"})
        for (unsigned seed = 1; seed <= 5; ++seed)
            all.push_back({zone, seed});
    return all;
}

INSTANTIATE_TEST_SUITE_P(Years, SummaryPropertyTest, testing::ValuesIn(cases()));

} // namespace clockwell::server::test
