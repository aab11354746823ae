#include "server/http/Router.h"

#include "server/http/ApiError.h"

#include <algorithm>
#include <iterator>

namespace clockwell::server {

void Router::add(std::vector<Route> routes)
{
    m_routes.insert(m_routes.end(), std::make_move_iterator(routes.begin()),
                    std::make_move_iterator(routes.end()));
}

bool Router::knows(std::string_view path) const
{
    return std::ranges::find(m_routes, path, &Route::path) != m_routes.end();
}

Response Router::dispatch(const Request &request) const
{
    std::string allowed;
    for (const Route &route : m_routes) {
        if (route.path != request.path)
            continue;
        if (route.method == request.method)
            return route.handle(request);
        allowed += (allowed.empty() ? "" : ", ") + route.method;
    }
    if (allowed.empty())
        throw ApiError{404, "NOT_FOUND", "There is nothing at this address."};
    throw ApiError{405, "METHOD_NOT_ALLOWED", "This address only answers " + allowed + "."}.with("Allow",
                                                                                                 allowed);
}

Lane Router::laneOf(const Request &request) const
{
    const auto route = std::ranges::find_if(m_routes, [&](const Route &candidate) {
        return candidate.path == request.path && candidate.method == request.method;
    });
    return route == m_routes.end() ? Lane::SignedIn : route->lane;
}

} // namespace clockwell::server
