#include "core/BuildStamp.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr unsigned int kProtocolVersion = 4;
constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::size_t kMonthLength = 3;
constexpr std::size_t kDayAt = 4;
constexpr std::size_t kDayLength = 2;
constexpr std::size_t kYearAt = 7;
constexpr std::size_t kDateLength = 11;

char datestr[20];

int monthNumber(const char* date) {
    int number = 0;
    for (const char* month : kMonths) {
        ++number;
        if (std::strncmp(date, month, kMonthLength) == 0)
            return number;
    }
    return 0;
}

} // namespace

unsigned int getProductionVersion() {
    return kProtocolVersion;
}

const char* getDateTimeString() {
    if (datestr[0] == '\0')
        formatBuildStamp(__DATE__, __TIME__, datestr, sizeof datestr);
    return datestr;
}

void formatBuildStamp(const char* date, const char* time, char* stamp, std::size_t size) {
    if (std::strlen(date) < kDateLength) {
        stamp[0] = '\0';
        return;
    }
    char day[kDayLength + 1] = {};
    std::memcpy(day, date + kDayAt, kDayLength);
    std::snprintf(stamp, size, "%s/%02i/%s %s", date + kYearAt, monthNumber(date), day, time);
}
