#pragma once

#include <compare>
#include <cstdint>
#include <ctime>
#include <string>

// A point in time of the file system, with nanosecond precision. A default
// made time is invalid ("not read yet", or the file doesn't exist); invalid
// times order before all valid ones.
//
// Build decisions compare times in whole seconds since the epoch: an input
// and a target written in the same second count as up to date. seconds()
// and laterInSecondsThan() are meant for that.
class FileTime {
public:
    FileTime() = default;
    FileTime(std::int64_t seconds, std::int32_t nanoseconds)
        : valid_(true), seconds_(seconds), nanoseconds_(nanoseconds) {}
    static FileTime fromTimespec(const timespec &time) {
        return FileTime(time.tv_sec, static_cast<std::int32_t>(time.tv_nsec));
    }
    // The current wall-clock time.
    static FileTime now();

    bool isValid() const { return valid_; }
    // Whole seconds since the epoch; 0 for an invalid time.
    std::int64_t seconds() const { return seconds_; }
    std::int32_t nanoseconds() const { return nanoseconds_; }

    // True if this time falls in a later whole second than `other`.
    bool laterInSecondsThan(const FileTime &other) const { return seconds_ > other.seconds_; }

    // Full precision.
    auto operator<=>(const FileTime &) const = default;

    // "dd.MM.yyyy hh:mm:ss" in local time; empty for an invalid time.
    std::string toText() const;

private:
    bool valid_ = false;
    std::int64_t seconds_ = 0;
    std::int32_t nanoseconds_ = 0;
};
