#include "support/file_status_cache.h"

#include "support/file_utils.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Beyond this many open directories, paths are looked up whole.
constexpr std::size_t maximumDirectories = 256;

FileStatus statusAt(int directory, const char *name) {
    FileStatus result;
    struct stat status;
    if (fstatat(directory, name, &status, 0) == 0) {
        result.exists = true;
        result.size = status.st_size;
        result.lastModified = FileTime::fromTimespec(status.st_mtim);
    }
    return result;
}

}  // namespace

FileStatus readFileStatus(const std::string &path) { return statusAt(AT_FDCWD, path.c_str()); }

FileStatusCache::~FileStatusCache() { clear(); }

void FileStatusCache::setEnabled(bool enabled) {
    enabled_ = enabled;
    clear();
}

void FileStatusCache::clear() {
    entries_.clear();
    for (const auto &[path, descriptor] : directories_)
        if (descriptor >= 0)
            close(descriptor);
    directories_.clear();
}

FileStatusCache::Location FileStatusCache::locate(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    if (!enabled_ || slash == std::string::npos || slash == 0 || slash + 1 == path.size() ||
        path.front() != '/')
        return {AT_FDCWD, path.c_str()};
    const std::string_view directory(path.data(), slash);
    auto found = directories_.find(directory);
    if (found == directories_.end()) {
        if (directories_.size() >= maximumDirectories)
            return {AT_FDCWD, path.c_str()};
        std::string name(directory);
        const int descriptor = open(name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        found = directories_.emplace(std::move(name), descriptor).first;
    }
    if (found->second < 0)
        return {AT_FDCWD, path.c_str()};
    return {found->second, path.c_str() + slash + 1};
}

FileStatus FileStatusCache::status(const std::string &path) {
    if (!enabled_)
        return readFileStatus(path);
    const auto [entry, added] = entries_.try_emplace(path);
    if (added) {
        const Location at = locate(path);
        entry->second = statusAt(at.directory, at.name);
    }
    return entry->second;
}

bool FileStatusCache::readFile(const std::string &path, std::string &text) {
    const Location at = locate(path);
    return readFileAt(at.directory, at.name, text);
}
