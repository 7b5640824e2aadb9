#include "support/file_status_cache.h"

#include "support/file_utils.h"

#include <algorithm>
#include <cstring>
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

std::size_t FileStatusCache::PathHash::operator()(std::string_view path) const {
    // Multiply and fold per word, as the mixers of common fast hashes do;
    // the length goes into the start so that a zero-padded tail differs.
    constexpr std::uint64_t multiplier = 0x9e3779b97f4a7c15ull;
    std::uint64_t hash = path.size() * multiplier;
    std::size_t i = 0;
    for (; i + 8 <= path.size(); i += 8) {
        std::uint64_t word;
        std::memcpy(&word, path.data() + i, 8);
        hash = (hash ^ word) * multiplier;
        hash ^= hash >> 29;
    }
    std::uint64_t tail = 0;
    std::memcpy(&tail, path.data() + i, path.size() - i);
    hash = (hash ^ tail) * multiplier;
    return std::size_t(hash ^ (hash >> 32));
}

FileStatus readFileStatus(const std::string &path) { return statusAt(AT_FDCWD, path.c_str()); }

FileStatusCache::~FileStatusCache() { clear(); }

void FileStatusCache::setEnabled(bool enabled) {
    enabled_ = enabled;
    clear();
}

void FileStatusCache::clear() {
    entries_ = {};
    entryCount_ = 0;
    paths_ = {};
    listed_.clear();
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

const FileStatusCache::Entry *FileStatusCache::findEntry(std::string_view path, std::uint64_t hash) const {
    if (entries_.empty() || path.empty())
        return nullptr;
    const std::size_t mask = entries_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const Entry &entry = entries_[i];
        if (entry.size == 0)
            return nullptr;
        if (entry.hash == hash && std::string_view(paths_).substr(entry.offset, entry.size) == path)
            return &entry;
    }
}

std::size_t FileStatusCache::freeSlot(std::uint64_t hash) const {
    const std::size_t mask = entries_.size() - 1;
    std::size_t i = hash & mask;
    while (entries_[i].size != 0)
        i = (i + 1) & mask;
    return i;
}

FileStatusCache::Entry &FileStatusCache::addEntry(std::string_view path, std::uint64_t hash) {
    if (2 * (entryCount_ + 1) > entries_.size()) {
        std::vector<Entry> old(std::max<std::size_t>(1024, 2 * entries_.size()));
        old.swap(entries_);
        for (const Entry &entry : old)
            if (entry.size != 0)
                entries_[freeSlot(entry.hash)] = entry;
    }
    Entry &entry = entries_[freeSlot(hash)];
    entry = {hash, paths_.size(), path.size(), FileStatus()};
    paths_.append(path);
    ++entryCount_;
    return entry;
}

const FileStatus *FileStatusCache::find(std::string_view path) const {
    const Entry *entry = findEntry(path, PathHash()(path));
    return entry ? &entry->status : nullptr;
}

FileStatus FileStatusCache::status(const std::string &path) {
    if (!enabled_)
        return readFileStatus(path);
    const std::uint64_t hash = PathHash()(path);
    if (const Entry *entry = findEntry(path, hash))
        return entry->status;
    const Location at = locate(path);
    const FileStatus found = statusAt(at.directory, at.name);
    if (!path.empty())
        addEntry(path, hash).status = found;
    return found;
}

FileStatus FileStatusCache::statusInList(std::size_t position, const std::string &path) {
    if (!enabled_)
        return readFileStatus(path);
    if (const FileStatus *known = knownInList(position, path))
        return *known;
    const FileStatus found = status(path);
    remember(position, path, found);
    return found;
}

const FileStatus *FileStatusCache::knownInList(std::size_t position, const std::string &path) {
    if (position < listed_.size() && listed_[position].first == path)
        return &listed_[position].second;
    const FileStatus *found = find(path);
    if (found)
        remember(position, path, *found);
    return found;
}

void FileStatusCache::remember(std::size_t position, const std::string &path, const FileStatus &status) {
    if (position < listed_.size()) {
        listed_[position].first.assign(path);  // the string's room is used again
        listed_[position].second = status;
    } else if (position == listed_.size()) {
        listed_.emplace_back(path, status);
    }
}

bool FileStatusCache::readFile(const std::string &path, std::string &text) {
    const Location at = locate(path);
    return readFileAt(at.directory, at.name, text);
}
