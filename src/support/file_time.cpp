#include "support/file_time.h"

FileTime FileTime::now() {
    timespec time;
    clock_gettime(CLOCK_REALTIME, &time);
    return fromTimespec(time);
}

std::string FileTime::toText() const {
    if (!valid_)
        return {};
    const time_t seconds = static_cast<time_t>(seconds_);
    tm local;
    localtime_r(&seconds, &local);
    char text[64];
    const size_t length = strftime(text, sizeof text, "%d.%m.%Y %H:%M:%S", &local);
    return std::string(text, length);
}
