#pragma once

#include "HttpClient.h"
#include "TempFolder.h"
#include "TestDatabase.h"
#include "server/Application.h"
#include "server/attendance/CalendarDay.h"
#include "server/http/HttpServer.h"

#include <atomic>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace clockwell::server::test {

/// "2026-05-01T09:15:30Z", with or without milliseconds, as an instant.
Instant instantOf(std::string_view isoText);

/// Argon2id at its cheapest, for tests that are not about its cost.
inline constexpr PasswordCost cheapCost{1, 8192};

struct OfficeSpec
{
    std::string id = "office-1";
    std::string name = "Head Office";
    double latitude = 48.0;
    double longitude = 11.0;
    long long radius = 150;
    long long maxAccuracy = 100;
    std::string zone = "UTC";
    long long checkInMinute = 9 * 60 + 30;
    long long checkOutMinute = 18 * 60;
    long long grace = 10;
    long long fullDay = 300;
    long long weekdays = 127;
};

struct EmployeeSpec
{
    std::string id = "employee-1";
    std::optional<std::string> officeId = "office-1";
    std::string name = "Kim Sample";
    std::string email = "kim@example.org";
    std::optional<std::string> phone = std::nullopt;
    std::string password = "Correct-Horse-7";
    std::string status = "APPROVED";
    bool verified = true;
    std::string joinedOn = "2020-01-01";
};

/// The company "Sample Works" with the code SW, to which offices and employees belong here.
void addCompany(Database &database);
void addOffice(Database &database, const OfficeSpec &spec);
void addEmployee(Database &database, const EmployeeSpec &spec);
/// An office and employees "e0", "e1" and so on, with addresses like 0@example.org.
void addPeople(Database &database, int count);
void addLeave(Database &database, const std::string &employeeId, const std::string &first,
              const std::string &last);
void addHoliday(Database &database, const std::string &officeId, const std::string &day,
                const std::string &name);

/// The whole server over a real database file and real HTTP, with a clock that the test sets.
class World
{
public:
    /// `sendMail` takes the e-mails in place of mails().
    explicit World(const std::string &now = "2026-06-10T09:00:00Z", Settings settings = cheap(),
                   DatabaseOptions options = {}, const std::optional<SendMail> &sendMail = {});
    static Settings cheap();

    void setNow(const std::string &isoText) { m_now = toMillis(instantOf(isoText)); }
    void advance(std::chrono::milliseconds time) { m_now += time.count(); }
    Clock clock()
    {
        return [this] { return fromMillis(m_now); };
    }

    Database &database() { return *m_database; }
    std::string databaseFile() const { return databaseIn(m_folder); }
    std::uint16_t port() const { return m_http->port(); }

    Reply get(const std::string &target, const std::string &token = {}) const;
    /// `from`: the client's own address, any in 127.0.0.0/8; each is a network of its own for the server.
    Reply post(const std::string &target, const std::string &body, const std::string &token = {},
               const std::string &from = "127.0.0.1") const;
    Reply login(const std::string &email = "kim@example.org", const std::string &password = "Correct-Horse-7",
                const std::string &from = "127.0.0.1") const;
    /// The access token of a sign-in that must succeed.
    std::string token(const std::string &email = "kim@example.org") const;
    /// A punch from within the office of OfficeSpec, unless told otherwise.
    Reply punch(const std::string &token, double lat = 48.0005, double lng = 11.0,
                const std::string &device = "dev-1", double accuracy = 10) const;

    /// The e-mails that were sent so far, the oldest first.
    std::vector<Mail> mails() const;
    /// The code in the newest e-mail to an address; empty when there is none.
    std::string code(const std::string &email = "kim@example.org") const;

private:
    mutable std::mutex m_mailsLock;
    std::vector<Mail> m_mails;
    TempFolder m_folder;
    std::atomic<long long> m_now;
    std::optional<Database> m_database;
    std::optional<Application> m_application;
    std::optional<HttpServer> m_http;
};

std::string punchBody(double lat, double lng, double accuracy, const std::string &device, bool mock = false);

} // namespace clockwell::server::test
