#include "server/admin/Offices.h"

#include "server/admin/AdminError.h"
#include "server/admin/AdminJson.h"
#include "server/admin/FieldTexts.h"
#include "server/admin/Printable.h"
#include "server/auth/Accounts.h"
#include "server/auth/Tokens.h"
#include "server/storage/RowType.h"

namespace clockwell::server {

namespace {

Office newOffice(const Company &company)
{
    Office office;
    office.id = newId();
    office.companyId = company.id;
    office.radiusMeters = 150;
    office.maxAccuracyMeters = 100;
    office.hours.graceMinutes = 10;
    office.hours.fullDayMinutes = 5 * 60;
    office.hours.workingWeekdays = 0b0011111; // Monday to Friday
    return office;
}

template <class Value>
void setIfGiven(Value &value, const std::optional<Value> &given)
{
    value = given.value_or(value);
}

void changeAll(Office &office, const OfficeChanges &changes)
{
    setIfGiven(office.name, changes.name);
    setIfGiven(office.latitude, changes.latitude);
    setIfGiven(office.longitude, changes.longitude);
    setIfGiven(office.radiusMeters, changes.radiusMeters);
    setIfGiven(office.maxAccuracyMeters, changes.maxAccuracyMeters);
    setIfGiven(office.timeZoneName, changes.timeZoneName);
    setIfGiven(office.hours.checkInMinute, changes.checkInMinute);
    setIfGiven(office.hours.checkOutMinute, changes.checkOutMinute);
    setIfGiven(office.hours.graceMinutes, changes.graceMinutes);
    setIfGiven(office.hours.fullDayMinutes, changes.fullDayMinutes);
    setIfGiven(office.hours.workingWeekdays, changes.workingWeekdays);
}

void requireSensible(Connection &connection, const Office &office)
{
    const OfficeHours &hours = office.hours;
    if (hours.checkOutMinute <= hours.checkInMinute)
        throw refused("Check-out at " + timeOfDayText(hours.checkOutMinute) + " is not after check-in at " +
                      timeOfDayText(hours.checkInMinute) +
                      ". Office hours lie within one day and never run over midnight.");
    for (const auto &[other, company] : listOffices(connection))
        if (other.id != office.id && other.companyId == office.companyId &&
            lowerAscii(other.name) == lowerAscii(office.name))
            throw refused("The company " + printable(company.name) + " has an office " +
                          printable(other.name) + " already.");
}

std::string differences(const CompanyOffice &before, const CompanyOffice &after)
{
    const auto old = officeFacts(before);
    const auto now = officeFacts(after);
    std::string text;
    for (std::size_t i = 0; i < now.size(); ++i) {
        if (old[i].second != now[i].second)
            text += (text.empty() ? "" : ", ") + lowerAscii(now[i].first) + " " + printable(old[i].second) +
                    " -> " + printable(now[i].second);
    }
    return text;
}

} // namespace

std::vector<CompanyOffice> listOffices(Connection &connection)
{
    static const std::string sql = "SELECT " + columnsOf<Office>("o") + ", " + columnsOf<Company>("c") +
                                   " FROM offices o JOIN companies c ON c.id = o.company_id"
                                   " ORDER BY o.name, c.name, o.id";
    return connection.all<CompanyOffice>(sql);
}

CompanyOffice requireOfficeNamed(Connection &connection, const std::string &name)
{
    const auto all = listOffices(connection);
    auto found = all;
    std::erase_if(found, [&](const CompanyOffice &one) {
        return one.office.id != name && lowerAscii(one.office.name) != lowerAscii(name);
    });
    if (found.empty())
        throw notFound("There is no office \"" + printable(name) + "\". Offices: " + officeNames(all) + ".");
    if (found.size() == 1)
        return std::move(found.front());
    std::string choices;
    for (const auto &[office, company] : found)
        choices += "\n  " + office.id + "  " + printable(company.name);
    throw refused("Several offices are called \"" + printable(name) +
                  "\". Pass the identifier of one:" + choices);
}

std::string officeNames(const std::vector<CompanyOffice> &offices)
{
    std::string names;
    for (const auto &[office, company] : offices)
        names += (names.empty() ? "" : ", ") + printable(office.name);
    return names.empty() ? "none yet" : names;
}

std::vector<std::pair<std::string, std::string>> officeFacts(const CompanyOffice &of)
{
    const auto &[office, company] = of;
    const OfficeHours &hours = office.hours;
    return {{"Name", office.name},
            {"Company", company.name},
            {"Latitude", Json(office.latitude).dump()},
            {"Longitude", Json(office.longitude).dump()},
            {"Radius", std::to_string(office.radiusMeters) + " m"},
            {"Accuracy needed", std::to_string(office.maxAccuracyMeters) + " m"},
            {"Time zone", office.timeZoneName},
            {"Check-in", timeOfDayText(hours.checkInMinute)},
            {"Check-out", timeOfDayText(hours.checkOutMinute)},
            {"Grace", std::to_string(hours.graceMinutes) + " min"},
            {"Full day", std::to_string(hours.fullDayMinutes) + " min"},
            {"Working days", weekdaysText(hours.workingWeekdays)}};
}

bool OfficeChanges::empty() const
{
    return !name && !latitude && !longitude && !radiusMeters && !maxAccuracyMeters && !timeZoneName &&
           !checkInMinute && !checkOutMinute && !graceMinutes && !fullDayMinutes && !workingWeekdays;
}

ChangedOffice addOffice(Connection &connection, const std::optional<std::string> &companyCode,
                        const OfficeChanges &values)
{
    const Company company = requireCompany(connection, companyCode);
    Office office = newOffice(company);
    changeAll(office, values);
    requireSensible(connection, office);
    connection.execute(
        "INSERT INTO offices (id, company_id, name, latitude, longitude, radius_meters,"
        " max_accuracy_meters, time_zone, check_in_minute, check_out_minute, grace_minutes,"
        " full_day_minutes, working_weekdays) VALUES (:id, :company, :name, :lat, :lng, :radius,"
        " :accuracy, :zone, :in, :out, :grace, :full, :days)",
        office.id, office.companyId, office.name, office.latitude, office.longitude, office.radiusMeters,
        office.maxAccuracyMeters, office.timeZoneName, office.hours.checkInMinute,
        office.hours.checkOutMinute, office.hours.graceMinutes, office.hours.fullDayMinutes,
        office.hours.workingWeekdays);
    return {{true, "Added the office " + office.name + " of " + printable(company.name) + "."},
            std::nullopt,
            {office, company}};
}

ChangedOffice editOffice(Connection &connection, const std::string &name, const OfficeChanges &changes)
{
    const CompanyOffice before = requireOfficeNamed(connection, name);
    CompanyOffice after = before;
    Office &office = after.office;
    changeAll(office, changes);
    const std::string what = differences(before, after);
    const std::string who = printable(before.office.name);
    if (what.empty())
        return {{false, "The office " + who + " is like that already; nothing was changed."}, before, after};
    requireSensible(connection, office);
    connection.execute(
        "UPDATE offices SET name = :name, latitude = :lat, longitude = :lng, radius_meters = :radius,"
        " max_accuracy_meters = :accuracy, time_zone = :zone, check_in_minute = :in, check_out_minute = :out,"
        " grace_minutes = :grace, full_day_minutes = :full, working_weekdays = :days WHERE id = :id",
        office.name, office.latitude, office.longitude, office.radiusMeters, office.maxAccuracyMeters,
        office.timeZoneName, office.hours.checkInMinute, office.hours.checkOutMinute,
        office.hours.graceMinutes, office.hours.fullDayMinutes, office.hours.workingWeekdays, office.id);
    return {{true, "Changed the office " + who + ": " + what + "."}, before, after};
}

} // namespace clockwell::server
