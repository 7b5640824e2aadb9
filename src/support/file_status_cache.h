#pragma once

#include <cstdint>
#include <string>
#include <string_view>
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
//
// While on, it also keeps the directories it has looked in open, and finds
// a file from its directory: the system then walks one name, not the whole
// path, and most of a build's files lie in a few directories.
class FileStatusCache {
public:
    FileStatusCache() = default;
    FileStatusCache(const FileStatusCache &) = delete;
    FileStatusCache &operator=(const FileStatusCache &) = delete;
    ~FileStatusCache();

    bool isEnabled() const { return enabled_; }
    // Turning it on or off forgets what was read.
    void setEnabled(bool enabled);
    // Forgets what was read, and closes the directories: files may have
    // changed since, and a directory may have been made anew.
    void clear();
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
    // Reads a whole file as readFile() does, from its open directory while
    // the cache is on. The text isn't kept.
    bool readFile(const std::string &path, std::string &text);

private:
    // The open directory of an absolute path and the name in it, or
    // AT_FDCWD and the whole path.
    struct Location {
        int directory;
        const char *name;
    };
    Location locate(const std::string &path);

    bool enabled_ = false;
    std::unordered_map<std::string, FileStatus> entries_;
    // Open directories by path; -1 for one that couldn't be opened. Bounded,
    // so that a build over many directories doesn't run out of descriptors.
    // Looked up by a view of the path, without a copy.
    struct PathHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view path) const { return std::hash<std::string_view>()(path); }
    };
    std::unordered_map<std::string, int, PathHash, std::equal_to<>> directories_;
};
