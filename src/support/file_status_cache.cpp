#include "support/file_status_cache.h"

#include <sys/stat.h>

FileStatus readFileStatus(const std::string &path) {
    FileStatus result;
    struct stat status;
    if (stat(path.c_str(), &status) == 0) {
        result.exists = true;
        result.size = status.st_size;
        result.lastModified = FileTime::fromTimespec(status.st_mtim);
    }
    return result;
}

void FileStatusCache::setEnabled(bool enabled) {
    enabled_ = enabled;
    entries_.clear();
}

FileStatus FileStatusCache::status(const std::string &path) {
    if (!enabled_)
        return readFileStatus(path);
    const auto [entry, added] = entries_.try_emplace(path);
    if (added)
        entry->second = readFileStatus(path);
    return entry->second;
}
