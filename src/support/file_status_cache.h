#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

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
    const FileStatus *find(std::string_view path) const;
    // For a list of paths checked in order: the status of the path at
    // `position`, found by comparing it with the path at the same position
    // of the lists checked before, or else as status() finds it. The
    // dependency lists of neighbouring files mostly name the same headers in
    // the same order, and a comparison costs less than a lookup.
    FileStatus statusInList(std::size_t position, const std::string &path);
    // The same without reading the file system: null if the path was not
    // read before as it stands.
    const FileStatus *knownInList(std::size_t position, const std::string &path);
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

    // A hash of paths that takes eight bytes a step: a check hashes every
    // name of every dependency file. Looks up views as well as strings.
    struct PathHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view path) const;
    };

    bool enabled_ = false;
    // The statuses read, in a table of slots probed in turn from the path's
    // hash, at most half full; the paths lie one after another in `paths_`.
    // A build enters thousands, so an entry costs no allocation of its own.
    struct Entry {
        std::uint64_t hash = 0;
        std::size_t offset = 0;  // of the path in paths_
        std::size_t size = 0;    // of the path; 0 for a free slot
        FileStatus status;
    };
    std::vector<Entry> entries_;
    std::size_t entryCount_ = 0;
    std::string paths_;
    const Entry *findEntry(std::string_view path, std::uint64_t hash) const;
    // The first free slot on the probe sequence of a hash.
    std::size_t freeSlot(std::uint64_t hash) const;
    // The entry of a path that has none yet.
    Entry &addEntry(std::string_view path, std::uint64_t hash);
    // What statusInList last answered at each position.
    std::vector<std::pair<std::string, FileStatus>> listed_;
    void remember(std::size_t position, const std::string &path, const FileStatus &status);
    // Open directories by path; -1 for one that couldn't be opened. Bounded,
    // so that a build over many directories doesn't run out of descriptors.
    std::unordered_map<std::string, int, PathHash, std::equal_to<>> directories_;
};
