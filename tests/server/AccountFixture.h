#pragma once

#include "World.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

namespace clockwell::server::test {

using Body = nlohmann::ordered_json;

/// A server with an office, and the requests of the account flows.
class AccountFixture : public testing::Test
{
protected:
    explicit AccountFixture(Settings settings = roomy()) : world("2026-06-10T09:00:00Z", settings)
    {
        addOffice(world.database(), {});
    }

    /// Limits by network address that tests from one address do not meet by accident.
    static Settings roomy()
    {
        Settings settings = World::cheap();
        settings.codeRequests.perNetwork.size = 100'000;
        return settings;
    }

    Reply call(const std::string &operation, const Body &body, const std::string &token = {}) const
    {
        return world.post("/api/auth/" + operation, body.dump(), token, network);
    }
    static Body application(const std::string &email = "kim@example.org",
                            const std::string &password = "Correct-Horse-7")
    {
        return {{"fullName", "Kim Sample"}, {"email", email},           {"password", password},
                {"deviceId", "dev-1"},      {"deviceModel", "Phone 3"}, {"osVersion", "iOS 17"}};
    }
    Reply signup(const std::string &email = "kim@example.org",
                 const std::string &password = "Correct-Horse-7") const
    {
        return call("signup", application(email, password));
    }
    Reply verify(const std::string &code, const std::string &email = "kim@example.org") const
    {
        return call("verify-otp", {{"email", email}, {"code", code}});
    }
    Reply resend(const std::string &email = "kim@example.org") const
    {
        return call("resend-otp", {{"email", email}});
    }
    Reply forgot(const std::string &email = "kim@example.org") const
    {
        return call("forgot-password", {{"email", email}});
    }
    Reply reset(const std::string &code, const std::string &password = "New-Horse-8",
                const std::string &email = "kim@example.org") const
    {
        return call("reset-password", {{"email", email}, {"code", code}, {"newPassword", password}});
    }
    /// Six digits that are not the code.
    static std::string other(const std::string &code) { return code == "123456" ? "654321" : "123456"; }

    Employee employee(const std::string &email = "kim@example.org")
    {
        return world.database().read(
            [&](Connection &connection) { return findEmployeeByEmail(connection, email).value(); });
    }
    void approve()
    {
        world.database().write([](Connection &connection) {
            connection.execute("UPDATE employees SET status = 'APPROVED', office_id = 'office-1'");
        });
    }

    /// The numbers of six digits in the newest e-mail to an address that has any, in their order.
    std::vector<std::string> codesFor(const std::string &email = "kim@example.org") const
    {
        static const std::regex sixDigits{"\\b[0-9]{6}\\b"};
        std::vector<std::string> codes;
        for (const Mail &mail : world.mails()) {
            const std::sregex_iterator end;
            std::vector<std::string> found;
            for (std::sregex_iterator code{mail.text.begin(), mail.text.end(), sixDigits}; code != end;
                 ++code)
                found.push_back(code->str());
            if (mail.to == email && !found.empty())
                codes = found;
        }
        return codes;
    }

    World world;
    std::string network = "127.0.0.1"; ///< from where the requests come: any address in 127.0.0.0/8
};

} // namespace clockwell::server::test
