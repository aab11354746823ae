#pragma once

#include <array>
#include <cstddef>

namespace clockwell::rush {

/// The requests that are played.
enum class Call { me, refresh, today, distance, punch, login, stranger };

inline constexpr std::size_t callCount = 7;

struct CallFacts
{
    const char *name;
    const char *target;
    bool isPost;
};

/// The position is the office's; the app sends every digit that the position needs.
inline constexpr std::array<CallFacts, callCount> callFacts{{
    {"me", "/api/auth/me", false},
    {"refresh", "/api/auth/refresh", true},
    {"today", "/api/attendance/today", false},
    {"distance", "/api/attendance/distance?lat=54.1234&lng=9.5678", false},
    {"punch", "/api/attendance/punch", true},
    {"login", "/api/auth/login", true},
    {"stranger's login", "/api/auth/login", true},
}};

inline const CallFacts &factsOf(Call call)
{
    return callFacts.at(static_cast<std::size_t>(call));
}

} // namespace clockwell::rush
