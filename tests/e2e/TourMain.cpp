#include "ClockwellApp.h"
#include "ServerProcess.h"
#include "Tour.h"
#include "WalkAccountJourney.h"
#include "attendance/DateFormats.h"
#include "attendance/LocationSource.h"
#include "net/SecretServiceTokenStore.h"

#include <QCalendar>
#include <QDateTime>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QTextStream>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

using clockwell::ClockwellApp;
using clockwell::test::ScreenDriver;
using clockwell::test::ServerProcess;
using clockwell::test::Tour;
using clockwell::test::walkAccountJourney;

bool nothingToDo(ScreenDriver &)
{
    return true;
}

void start(Tour &tour)
{
    tour.step(u"The app starts without a session"_s, nothingToDo, u"Sign in to mark attendance"_s);
}

void walkDay(Tour &tour, const ServerProcess::Demo &demo)
{
    tour.step(
        u"A wrong password is refused"_s,
        [&](ScreenDriver &screen) {
            return screen.type(u"Email"_s, demo.email) && screen.type(u"Password"_s, u"not the password"_s) &&
                   screen.click(u"Sign in"_s);
        },
        u"The e-mail address or the password is wrong."_s);
    tour.step(
        u"The demo employee signs in"_s,
        [&](ScreenDriver &screen) {
            return screen.retype(u"Password"_s, demo.password) && screen.click(u"Sign in"_s);
        },
        u"Hours "_s);
    tour.step(u"The office and the geofence are known"_s, nothingToDo, u"Inside geofence"_s);
    tour.step(
        u"Check in"_s, [](ScreenDriver &screen) { return screen.click(u"Check In"_s); }, u"Checked in at "_s);
    tour.step(u"The day shows the check-in"_s, nothingToDo, u"Check Out"_s);
    const std::pair<QString, QString> tabs[] = {{u"History"_s, u"History"_s},
                                                {u"Summary"_s, u"Present, "_s},
                                                {u"Profile"_s, u"Account status, Approved"_s},
                                                {u"Attendance"_s, u"Check Out"_s}};
    for (const auto &[tab, expected] : tabs) {
        const QString name = tab;
        tour.step(
            u"The %1 tab"_s.arg(name),
            [&](ScreenDriver &screen) { return screen.click(name, QAccessible::PageTab); }, expected);
    }
}

/// How many days of the calendar's present month the employee was present on, by the server's own table.
QString presentDays(const ServerProcess &server, const QString &email, const QCalendar &calendar)
{
    const QDate today = QDate::currentDate();
    const QCalendar::YearMonthDay parts = calendar.partsFromDate(today);
    const QDate first = calendar.dateFromParts(parts.year, parts.month, 1);
    const auto rows = server.rows(
        u"SELECT count(*) FROM attendance a JOIN employees e ON e.id = a.employee_id WHERE e.email = '%1'"
        " AND a.work_date BETWEEN '%2' AND '%3'"_s.arg(email, first.toString(Qt::ISODate),
                                                       today.toString(Qt::ISODate)));
    return rows.value(0).value(0);
}

/// The summary as a phone with the usual calendar of a locale asks for it and shows it.
void readSummaryIn(Tour &tour, const ServerProcess &server, const QString &email, const QByteArray &locale,
                   const QCalendar &calendar)
{
    const clockwell::DateFormats formats(locale, {});
    const QString title = formats.month(formats.monthKey(clockwell::DateFormats::systemNow()));
    const QByteArray before = qgetenv("LC_ALL");
    tour.step(
        u"The month in the locale %1"_s.arg(QString::fromLatin1(locale)),
        [&](ScreenDriver &screen) {
            qputenv("LC_ALL", locale + ".UTF-8");
            const bool shown = screen.click(u"Summary"_s, QAccessible::PageTab) && screen.waitUntilStill();
            screen.key(Qt::Key_F5);
            return shown && screen.waitFor(title);
        },
        u"Present, "_s + presentDays(server, email, calendar));
    before.isNull() ? qunsetenv("LC_ALL") : qputenv("LC_ALL", before);
}

bool printRow(const ServerProcess &server, const QString &email)
{
    const auto rows = server.rows(
        u"SELECT e.email, a.work_date, p.type, p.at, p.latitude, p.longitude, p.accuracy, p.distance"
        " FROM punches p JOIN attendance a ON a.id = p.attendance_id"
        " JOIN employees e ON e.id = a.employee_id WHERE e.email = '%1' ORDER BY p.at DESC LIMIT 1"_s.arg(
            email));
    QTextStream out(stdout);
    if (rows.size() != 1 || rows.first().value(2) != u"IN"_s) {
        out << "FAILED: the server recorded no check-in" << Qt::endl;
        return false;
    }
    QStringList row = rows.first();
    row[3] = QDateTime::fromMSecsSinceEpoch(row[3].toLongLong(), Qt::UTC).toString(Qt::ISODate);
    row.last() = QString::number(row.last().toDouble(), 'f', 1);
    out << "The server recorded (employee, day, type, time, latitude, longitude, accuracy, distance):\n   "
        << row.join(u" | "_s) << Qt::endl;
    return true;
}

} // namespace

// clockwell_tour SERVER DIRECTORY [URL DATABASE OUTBOX]: operates the real app with the real server through
// real input events; with the one that runs at the URL, if one is given.
int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    const auto arguments = QGuiApplication::arguments();
    if (arguments.size() != 3 && arguments.size() != 6) {
        QTextStream(stderr) << "usage: clockwell_tour SERVER-BINARY OUTPUT-DIRECTORY [URL DATABASE OUTBOX]"
                            << Qt::endl;
        return 2;
    }
    auto server = arguments.size() == 3
                      ? ServerProcess(arguments[1], arguments[2])
                      : ServerProcess(arguments[1],
                                      ServerProcess::Running{QUrl(arguments[3]), arguments[4], arguments[5]});
    QString error;
    if (!server.start(&error)) {
        QTextStream(stderr) << error << Qt::endl;
        return 1;
    }
    QTextStream(stdout) << "E-mail, with the codes for sign-up and password reset: " << server.outbox()
                        << Qt::endl;
    const auto &demo = server.demo();
    qputenv("CLOCKWELL_SIMULATED_LOCATION", (demo.coordinates + u",8"_s).toUtf8());
    ClockwellApp::Dependencies dependencies = ClockwellApp::platformDependencies();
    dependencies.client.baseURL = server.baseUrl();
    ClockwellApp app(std::move(dependencies));
    if (!app.show())
        return 1;
    Tour tour(app.window(), arguments[2]);
    start(tour);
    walkAccountJourney(tour, server);
    walkDay(tour, demo);
    readSummaryIn(tour, server, demo.email, "th_TH", QCalendar(QCalendar::System::Gregorian));
    readSummaryIn(tour, server, demo.email, "fa_IR", QCalendar(QCalendar::System::Jalali));
    return !tour.failed() && printRow(server, demo.email) ? 0 : 1;
}
