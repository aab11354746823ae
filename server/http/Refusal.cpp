#include "Refusal.h"

#include <algorithm>

namespace clockwell::server {

Response toResponse(const Refusal &refusal)
{
    Response response;
    response.status = refusal.status;
    response.body = R"({"statusCode":)" + std::to_string(refusal.status) + R"(,"error":")" + refusal.code +
                    R"(","message":")" + refusal.message + R"("})";
    return response;
}

Response toResponse(const Refusal &refusal, long retryAfterSeconds)
{
    Response response = toResponse(refusal);
    response.headers.emplace_back("Retry-After", std::to_string(std::max(1L, retryAfterSeconds)));
    return response;
}

} // namespace clockwell::server
