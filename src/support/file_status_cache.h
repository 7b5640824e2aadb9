#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include "support/file_time.h"

// What stat() says of one path.
struct FileStatus {
    bool exists = false;
    std::int64_t size = 0;     // 0 when the file doesn't exist
    FileTime lastModified;     // invalid when the file doesn't exist
};

// One stat() of a path, uncached.
FileStatus readFileStatus(const std::string &path);

// The status of files, read once per path while the cache is on. A build
// turns it on for its up-to-date checks, where thousands of dependency files
// name the same headers, and clears it whenever something may have written
// files. Off, every question reads the file system.
class FileStatusCache {
public:
    bool isEnabled() const { return enabled_; }
    // Turning it on or off forgets what was read.
    void setEnabled(bool enabled);
    // Forgets what was read: files may have changed since.
    void clear() { entries_.clear(); }
    // The status of a path as given: callers pass normalised absolute paths,
    // so that a file has one entry.
    FileStatus status(const std::string &path);
    // The status read before for a path as given, or null if there is none
    // (or the cache is off). A path found here is one that a caller passed
    // normalised.
    const FileStatus *find(const std::string &path) const {
        const auto entry = entries_.find(path);
        return entry == entries_.end() ? nullptr : &entry->second;
    }

private:
    bool enabled_ = false;
    std::unordered_map<std::string, FileStatus> entries_;
};
