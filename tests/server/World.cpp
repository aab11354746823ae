#include "World.h"

#include <regex>
#include <stdexcept>

namespace clockwell::server::test {

Instant instantOf(std::string_view isoText)
{
    const auto day = parseDay(isoText.substr(0, 10)).value();
    const auto number = [&](std::size_t at, std::size_t count) {
        return std::stoi(std::string{isoText.substr(at, count)});
    };
    const auto time = std::chrono::hours{number(11, 2)} + std::chrono::minutes{number(14, 2)} +
                      std::chrono::seconds{number(17, 2)} +
                      std::chrono::milliseconds{isoText[19] == '.' ? number(20, 3) : 0};
    return Instant{day.time_since_epoch() + time};
}

void addCompany(Database &database)
{
    database.write([](Connection &connection) {
        connection.execute(
            "INSERT INTO companies (id, name, code) VALUES ('company-1', 'Sample Works', 'SW')");
    });
}

void addOffice(Database &database, const OfficeSpec &spec)
{
    database.write([&](Connection &connection) {
        connection.execute("INSERT INTO offices (id, company_id, name, latitude, longitude, radius_meters, "
                           "max_accuracy_meters,"
                           " time_zone, check_in_minute, check_out_minute, grace_minutes, full_day_minutes, "
                           "working_weekdays)"
                           " VALUES (:id, 'company-1', :name, :lat, :lng, :radius, :accuracy, :zone, :in, "
                           ":out, :grace, :full,"
                           " :days)",
                           spec.id, spec.name, spec.latitude, spec.longitude, spec.radius, spec.maxAccuracy,
                           spec.zone, spec.checkInMinute, spec.checkOutMinute, spec.grace, spec.fullDay,
                           spec.weekdays);
    });
}

void addEmployee(Database &database, const EmployeeSpec &spec)
{
    static Passwords passwords{cheapCost};
    const std::string hash = passwords.hash(spec.password);
    database.write([&](Connection &connection) {
        connection.execute("INSERT INTO employees (id, company_id, office_id, full_name, email, email_key, "
                           "phone, password_hash,"
                           " role, status, email_verified, joined_on, created_at) VALUES (:id, "
                           "'company-1', :office, :name,"
                           " :email, :key, :phone, :hash, 'EMPLOYEE', :status, :verified, :joined, 0)",
                           spec.id, spec.officeId, spec.name, spec.email, emailKey(spec.email), spec.phone,
                           hash, spec.status, spec.verified, spec.joinedOn);
    });
}

void addPeople(Database &database, int count)
{
    addOffice(database, {});
    for (int i = 0; i < count; ++i)
        addEmployee(database, {.id = "e" + std::to_string(i), .email = std::to_string(i) + "@example.org"});
}

void addLeave(Database &database, const std::string &employeeId, const std::string &first,
              const std::string &last)
{
    database.write([&](Connection &connection) {
        connection.execute(
            "INSERT INTO leaves (id, employee_id, first_day, last_day) VALUES (:id, :employee, :first,"
            " :last)",
            employeeId + first, employeeId, first, last);
    });
}

void addHoliday(Database &database, const std::string &officeId, const std::string &day,
                const std::string &name)
{
    database.write([&](Connection &connection) {
        connection.execute("INSERT INTO holidays (office_id, day, name) VALUES (:office, :day, :name)",
                           officeId, day, name);
    });
}

Settings World::cheap()
{
    Settings settings;
    settings.passwordCost = cheapCost;
    return settings;
}

World::World(const std::string &now, Settings settings, DatabaseOptions options,
             const std::optional<SendMail> &sendMail)
    : m_now(toMillis(instantOf(now)))
{
    m_database.emplace(databaseFile(), options);
    addCompany(*m_database);
    m_application.emplace(*m_database, clock(), settings, sendMail.value_or([this](Mail mail) {
        const std::lock_guard lock{m_mailsLock};
        m_mails.push_back(std::move(mail));
    }));
    m_http.emplace(
        HttpServer::Options{}, [this](const Request &request) { return m_application->handle(request); },
        m_application->triage());
    m_http->start();
}

std::vector<Mail> World::mails() const
{
    const std::lock_guard lock{m_mailsLock};
    return m_mails;
}

std::string World::code(const std::string &email) const
{
    static const std::regex sixDigits{"(^|[^0-9])([0-9]{6})([^0-9]|$)"};
    std::string code;
    for (const Mail &mail : mails()) {
        std::smatch match;
        if (mail.to == email)
            code = std::regex_search(mail.text, match, sixDigits) ? match[2].str() : std::string{};
    }
    return code;
}

Reply World::get(const std::string &target, const std::string &token) const
{
    return send(port(), "GET", target, token);
}

Reply World::post(const std::string &target, const std::string &body, const std::string &token,
                  const std::string &from) const
{
    return send(port(), "POST", target, token, body, "application/json", from);
}

Reply World::login(const std::string &email, const std::string &password, const std::string &from) const
{
    return post("/api/auth/login",
                nlohmann::json{{"email", email}, {"password", password}, {"deviceId", "dev-1"}}.dump(), {},
                from);
}

std::string World::token(const std::string &email) const
{
    const Reply reply = login(email);
    if (reply.status != 200)
        throw std::runtime_error{"sign-in failed: " + reply.body};
    return reply.json().at("accessToken");
}

std::string punchBody(double lat, double lng, double accuracy, const std::string &device, bool mock)
{
    return nlohmann::json{
        {"lat", lat}, {"lng", lng}, {"accuracy", accuracy}, {"deviceId", device}, {"isMockLocation", mock}}
        .dump();
}

Reply World::punch(const std::string &token, double lat, double lng, const std::string &device,
                   double accuracy) const
{
    return post("/api/attendance/punch", punchBody(lat, lng, accuracy, device), token);
}

} // namespace clockwell::server::test
