#include "server/admin/OfficeChanges.h"

#include "server/admin/AdminError.h"
#include "server/admin/CompanyLookup.h"
#include "server/admin/FieldTexts.h"
#include "server/admin/OfficeLookup.h"
#include "server/auth/Accounts.h"
#include "server/auth/Tokens.h"

#include <tuple>

namespace clockwell::server {

namespace {

Office newOffice()
{
    Office office;
    office.id = newId();
    office.radiusMeters = 150;
    office.maxAccuracyMeters = 100;
    office.hours.graceMinutes = 10;
    office.hours.fullDayMinutes = 5 * 60;
    office.hours.workingWeekdays = 0b0011111; // Monday to Friday
    return office;
}

template <class Value>
void take(Value &value, const std::optional<Value> &wish)
{
    value = wish.value_or(value);
}

void takeAll(Office &office, const OfficeWishes &wishes)
{
    take(office.name, wishes.name);
    take(office.latitude, wishes.latitude);
    take(office.longitude, wishes.longitude);
    take(office.radiusMeters, wishes.radiusMeters);
    take(office.maxAccuracyMeters, wishes.maxAccuracyMeters);
    take(office.timeZoneName, wishes.timeZoneName);
    take(office.hours.checkInMinute, wishes.checkInMinute);
    take(office.hours.checkOutMinute, wishes.checkOutMinute);
    take(office.hours.graceMinutes, wishes.graceMinutes);
    take(office.hours.fullDayMinutes, wishes.fullDayMinutes);
    take(office.hours.workingWeekdays, wishes.workingWeekdays);
}

void requireSensible(Connection &connection, const Office &office, const std::string &companyId)
{
    const OfficeHours &hours = office.hours;
    if (hours.checkOutMinute <= hours.checkInMinute)
        throw AdminError{AdminError::Kind::Refused,
                         "Check-out at " + timeOfDayText(hours.checkOutMinute) +
                             " is not after check-in at " + timeOfDayText(hours.checkInMinute) +
                             ". Office hours lie within one day and never run over midnight."};
    for (const OfficeEntry &other : listOffices(connection)) {
        if (other.id != office.id && other.instituteId == companyId &&
            lowerAscii(other.name) == lowerAscii(office.name))
            throw AdminError{AdminError::Kind::Refused, "The company " + printable(other.companyName) +
                                                            " has an office " + printable(other.name) +
                                                            " already."};
    }
}

std::string differences(const OfficeRecord &before, const OfficeRecord &after)
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

bool OfficeWishes::empty() const
{
    return !name && !latitude && !longitude && !radiusMeters && !maxAccuracyMeters && !timeZoneName &&
           !checkInMinute && !checkOutMinute && !graceMinutes && !fullDayMinutes && !workingWeekdays;
}

OfficeChange addOffice(Connection &connection, const std::optional<std::string> &companyCode,
                       const OfficeWishes &wishes)
{
    const Company company = requireCompany(connection, companyCode);
    OfficeRecord record{newOffice(), company.name};
    Office &office = record.office;
    takeAll(office, wishes);
    requireSensible(connection, office, company.id);
    connection.execute(
        "INSERT INTO offices (id, institute_id, name, latitude, longitude, radius_meters,"
        " max_accuracy_meters, time_zone, check_in_minute, check_out_minute, grace_minutes,"
        " full_day_minutes, working_weekdays) VALUES (:id, :institute, :name, :lat, :lng, :radius,"
        " :accuracy, :zone, :in, :out, :grace, :full, :days)",
        office.id, company.id, office.name, office.latitude, office.longitude, office.radiusMeters,
        office.maxAccuracyMeters, office.timeZoneName, office.hours.checkInMinute,
        office.hours.checkOutMinute, office.hours.graceMinutes, office.hours.fullDayMinutes,
        office.hours.workingWeekdays);
    return {{true, "Added the office " + office.name + " of " + printable(company.name) + "."},
            std::nullopt,
            record};
}

OfficeChange editOffice(Connection &connection, const std::string &name, const OfficeWishes &wishes)
{
    const std::string companyId = requireOfficeNamed(connection, name).instituteId;
    const OfficeRecord before = requireOfficeRecord(connection, name);
    OfficeRecord record = before;
    Office &office = record.office;
    takeAll(office, wishes);
    const std::string what = differences(before, record);
    const std::string who = printable(before.office.name);
    if (what.empty())
        return {{false, "The office " + who + " is like that already; nothing was changed."}, before, record};
    requireSensible(connection, office, companyId);
    connection.execute(
        "UPDATE offices SET name = :name, latitude = :lat, longitude = :lng, radius_meters = :radius,"
        " max_accuracy_meters = :accuracy, time_zone = :zone, check_in_minute = :in, check_out_minute = :out,"
        " grace_minutes = :grace, full_day_minutes = :full, working_weekdays = :days WHERE id = :id",
        office.name, office.latitude, office.longitude, office.radiusMeters, office.maxAccuracyMeters,
        office.timeZoneName, office.hours.checkInMinute, office.hours.checkOutMinute,
        office.hours.graceMinutes, office.hours.fullDayMinutes, office.hours.workingWeekdays, office.id);
    return {{true, "Changed the office " + who + ": " + what + "."}, before, record};
}

} // namespace clockwell::server
