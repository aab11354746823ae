#include "net/Decoding.h"
#include "net/Errors.h"

#include <QList>

#include <cstdint>

using namespace clockwell;

namespace {

template <class T>
void attempt(std::string_view json)
{
    try {
        decode<T>(json);
    } catch (const DecodingError &) {
    }
}

} // namespace

// Whatever the bytes, decoding either gives a record or throws a DecodingError.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view json(reinterpret_cast<const char *>(data), size);
    attempt<LoginResponse>(json);
    attempt<std::optional<TodayResponse>>(json);
    attempt<QList<AttendanceRecord>>(json);
    attempt<PunchResponse>(json);
    attempt<MonthlySummary>(json);
    attempt<APIErrorBody>(json);
    return 0;
}
