#pragma once

#include "server/http/Message.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace clockwell::server {

struct Route
{
    std::string method;
    std::string path;
    Lane lane;
    std::function<Response(const Request &)> handle;
};

/// Finds the handler for a request in a table. Paths are compared exactly.
class Router
{
public:
    void add(std::vector<Route> routes);

    /// Whether the path is in the table, with whatever method.
    bool knows(std::string_view path) const;

    /// Throws ApiError 404 for a path that is not in the table and 405, with Allow, for one that is but not
    /// with this method.
    Response dispatch(const Request &request) const;

    /// The lane of the route; SignedIn for what is not in the table, for saying so is quick.
    Lane laneOf(const Request &request) const;

private:
    std::vector<Route> m_routes;
};

} // namespace clockwell::server
