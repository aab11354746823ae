#pragma once

#include "World.h"

#include <gtest/gtest.h>

#include <string>

namespace clockwell::server::test {

/// An employee who is signed in, ten minutes before the office opens.
class PunchFixture : public testing::Test
{
protected:
    PunchFixture()
    {
        addOffice(world.database(), {});
        addEmployee(world.database(), {});
        token = world.token();
    }

    /// Sets the time and signs in again, for tokens are short-lived.
    void at(const std::string &isoText)
    {
        world.setNow(isoText);
        token = world.token();
    }
    nlohmann::json today() const { return world.get("/api/attendance/today", token).json(); }
    long long rows(const std::string &table)
    {
        return world.database().read([&](Connection &connection) {
            return connection.value<long long>("SELECT COUNT(*) FROM " + table);
        });
    }

    World world{"2026-06-10T09:20:00Z"};
    std::string token;
};

} // namespace clockwell::server::test
