#include "support/file_info.h"

#include <cstdlib>
#include <unistd.h>

#include "support/normalise_path.h"

const struct stat *FileInfo::status() const {
    if (!read_) {
        exists_ = stat(path_.c_str(), &status_) == 0;
        read_ = true;
    }
    return exists_ ? &status_ : nullptr;
}

bool FileInfo::checkAccess(int mode, signed char &cache) const {
    if (cache < 0)
        cache = status() && access(path_.c_str(), mode) == 0;
    return cache;
}

bool FileInfo::exists() const { return status() != nullptr; }

bool FileInfo::isDir() const {
    const struct stat *st = status();
    return st && S_ISDIR(st->st_mode);
}

bool FileInfo::isFile() const {
    const struct stat *st = status();
    return st && S_ISREG(st->st_mode);
}

std::int64_t FileInfo::size() const {
    const struct stat *st = status();
    return st ? st->st_size : 0;
}

bool FileInfo::isReadable() const { return checkAccess(R_OK, readable_); }

bool FileInfo::isWritable() const { return checkAccess(W_OK, writable_); }

FileTime FileInfo::created() const {
    const struct stat *st = status();
    return st ? FileTime::fromTimespec(st->st_ctim) : FileTime();
}

FileTime FileInfo::lastModified() const {
    const struct stat *st = status();
    return st ? FileTime::fromTimespec(st->st_mtim) : FileTime();
}

FileTime FileInfo::lastRead() const {
    const struct stat *st = status();
    return st ? FileTime::fromTimespec(st->st_atim) : FileTime();
}

void FileInfo::refresh() {
    read_ = false;
    readable_ = -1;
    writable_ = -1;
}

std::string FileInfo::absoluteFilePath() const { return absolutePathOf(path_); }

std::string_view fileNameOf(std::string_view path) {
    const size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string_view baseNameOf(std::string_view path, bool complete) {
    const std::string_view name = fileNameOf(path);
    return name.substr(0, complete ? name.rfind('.') : name.find('.'));
}

std::string_view suffixOf(std::string_view path, bool complete) {
    const std::string_view name = fileNameOf(path);
    const size_t dot = complete ? name.find('.') : name.rfind('.');
    return dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
}

std::string FileInfo::fileName() const { return std::string(fileNameOf(path_)); }

std::string FileInfo::baseName() const { return std::string(baseNameOf(path_, false)); }

std::string FileInfo::completeBaseName() const { return std::string(baseNameOf(path_, true)); }

std::string FileInfo::suffix() const { return std::string(suffixOf(path_, false)); }

std::string FileInfo::completeSuffix() const { return std::string(suffixOf(path_, true)); }

std::string FileInfo::path() const { return directoryOf(path_); }

std::string FileInfo::absolutePath() const { return directoryOf(absoluteFilePath()); }

std::string directoryOf(const std::string &path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    if (slash == 0)
        return "/";
    return path.substr(0, slash);
}

std::string absolutePathOf(const std::string &path) {
    std::string result;
    if (path.empty() || path[0] != '/') {
        if (char *current = getcwd(nullptr, 0)) {
            result = current;
            free(current);
        }
        if (!path.empty()) {
            if (result.empty() || result.back() != '/')
                result += '/';
            result += path;
        }
    } else {
        result = path;
    }
    normalisePath(result);
    return result;
}

std::string absolutePathFrom(const std::string &directory, const std::string &path) {
    if (path.empty())
        return {};
    std::string result;
    if (isRelativePath(path)) {
        // One allocation: asked for several paths of every file of a build.
        result.reserve(directory.size() + 1 + path.size());
        result = directory;
        if (result.empty() || result.back() != '/')
            result += '/';
        result += path;
    } else {
        result = path;
    }
    normalisePath(result);
    return result;
}
