#include "BenchCompany.h"

#include "server/auth/Accounts.h"
#include "server/auth/Sessions.h"
#include "server/demo/DemoData.h"

namespace clockwell::server::bench {

std::vector<std::string> signIn(Database &database, int count)
{
    Passwords passwords;
    fillWithDemoData(database, passwords, systemClock(), *TimeZone::named("Etc/UTC"), "Bench-2026");
    database.write([&](Connection &connection) {
        for (int index = 0; index < count; ++index) {
            const std::string id = "bench-" + std::to_string(index);
            connection.execute(
                "INSERT INTO employees (id, company_id, office_id, full_name, email, email_key,"
                " password_hash, role, status, email_verified, joined_on, created_at)"
                " SELECT :id, company_id, office_id, :name, :email, :key, password_hash, role, status,"
                " 1, joined_on, created_at FROM employees WHERE email_key = :demo",
                id, id, id, id, std::string{demoEmail});
        }
    });
    Sessions sessions(database, systemClock());
    std::vector<std::string> tokens;
    tokens.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
        const auto employee = database.read([&](Connection &connection) {
            return findEmployeeById(connection, "bench-" + std::to_string(index)).value();
        });
        tokens.push_back(sessions.start(employee, "device").value().accessToken);
    }
    return tokens;
}

} // namespace clockwell::server::bench
