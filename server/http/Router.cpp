#include "server/http/Router.h"

#include "server/http/ApiError.h"

#include <iterator>

namespace clockwell::server {

void Router::add(std::vector<Route> routes)
{
    m_routes.insert(m_routes.end(), std::make_move_iterator(routes.begin()),
                    std::make_move_iterator(routes.end()));
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

} // namespace clockwell::server
