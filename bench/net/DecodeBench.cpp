#include "Ratio.h"
#include "net/Decoding.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>

// A history of 10,000 days, decoded by us and by Qt's reader with Qt's dates into the same records.

using namespace clockwell;

namespace {

constexpr int recordCount = 10'000;

QByteArray history()
{
    QByteArray json = "[";
    for (int i = 0; i < recordCount; ++i) {
        const QByteArray minute = QByteArray::number(i % 60).rightJustified(2, '0');
        json +=
            (i ? "," : "") + QByteArray(R"({"id":"4f1b2c3d-0000-4000-8000-)") +
            QByteArray::number(i).rightJustified(12, '0') +
            R"(","workDate":"2024-05-01","status":"PRESENT",)" + R"("checkInAt":"2024-05-01T09:)" + minute +
            R"(:30.123Z","checkOutAt":"2024-05-01T18:)" + minute + R"(:00Z","lateMinutes":)" +
            QByteArray::number(i % 30) +
            R"(,"earlyLeaveMinutes":0,"workingMinutes":485,"checkInDistanceMeters":"35.7","checkOutDistanceMeters":12.25})";
    }
    return json + "]";
}

std::optional<Instant> qtMoment(const QJsonValue &value)
{
    if (value.isUndefined() || value.isNull())
        return std::nullopt;
    QDateTime moment = QDateTime::fromString(value.toString(), Qt::ISODateWithMs);
    if (!moment.isValid())
        moment = QDateTime::fromString(value.toString(), Qt::ISODate);
    return Instant(std::chrono::milliseconds(moment.toMSecsSinceEpoch()));
}

std::optional<qint64> qtInt(const QJsonValue &value)
{
    return value.isDouble() ? std::optional(value.toInteger()) : std::nullopt;
}

std::optional<LenientDouble> qtLenient(const QJsonValue &value)
{
    bool ok = value.isDouble();
    const double number = ok ? value.toDouble() : value.toString().toDouble(&ok);
    return LenientDouble{ok ? std::optional(number) : std::nullopt};
}

QList<AttendanceRecord> decodeWithQt(const QByteArray &json)
{
    const QJsonArray array = QJsonDocument::fromJson(json).array();
    QList<AttendanceRecord> records;
    records.reserve(array.size());
    for (const QJsonValue &value : array) {
        const QJsonObject o = value.toObject();
        records.append(
            {o[QLatin1StringView("id")].toString(), o[QLatin1StringView("workDate")].toString(),
             o[QLatin1StringView("status")].toString(), qtMoment(o[QLatin1StringView("checkInAt")]),
             qtMoment(o[QLatin1StringView("checkOutAt")]), qtInt(o[QLatin1StringView("lateMinutes")]),
             qtInt(o[QLatin1StringView("earlyLeaveMinutes")]), qtInt(o[QLatin1StringView("workingMinutes")]),
             qtLenient(o[QLatin1StringView("checkInDistanceMeters")]),
             qtLenient(o[QLatin1StringView("checkOutDistanceMeters")])});
    }
    return records;
}

bool same(const AttendanceRecord &a, const AttendanceRecord &b)
{
    return a.id == b.id && a.checkInAt == b.checkInAt && a.checkOutAt == b.checkOutAt &&
           a.lateMinutes == b.lateMinutes && a.checkInDistanceMeters->value == b.checkInDistanceMeters->value;
}

} // namespace

int main()
{
    const QByteArray json = history();
    const auto ours = decode<QList<AttendanceRecord>>(json);
    const auto theirs = decodeWithQt(json);
    if (ours.size() != recordCount ||
        !std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end(), same)) {
        std::fprintf(stderr, "the two readers disagree\n");
        return 2;
    }
    const double ratio =
        bench::ratioOf([&] { decodeWithQt(json); }, [&] { decode<QList<AttendanceRecord>>(json); }, 31);
    return bench::report("decode-vs-qt", ratio, true, 8.0);
}
