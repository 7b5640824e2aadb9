#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <sys/stat.h>

#include "support/file_time.h"

// What the file system says about one path, read with a single stat() on
// the first question and kept until refresh(). Readability and writability
// come from access() and are kept the same way. The name operations work on
// the text alone.
class FileInfo {
public:
    FileInfo() = default;
    explicit FileInfo(std::string path) : path_(std::move(path)) {}

    // The path as given.
    const std::string &filePath() const { return path_; }

    bool exists() const;
    bool isDir() const;
    bool isFile() const;
    // Size in bytes; 0 if the file doesn't exist.
    std::int64_t size() const;
    bool isReadable() const;
    bool isWritable() const;
    // The status change time: the file system keeps no creation time.
    FileTime created() const;
    FileTime lastModified() const;
    FileTime lastRead() const;

    // Forgets what was read; the next question reads again.
    void refresh();

    bool isRelative() const { return path_.empty() || path_[0] != '/'; }
    // The path made absolute against the current directory and normalised.
    std::string absoluteFilePath() const;
    // The part behind the last "/".
    std::string fileName() const;
    // The file name up to its first dot.
    std::string baseName() const;
    // The file name up to its last dot.
    std::string completeBaseName() const;
    // The file name behind its last dot; empty without a dot.
    std::string suffix() const;
    // The file name behind its first dot; empty without a dot.
    std::string completeSuffix() const;
    // The directory part: "." for a bare name, "/" for a name in the root.
    std::string path() const;
    // The directory part of absoluteFilePath().
    std::string absolutePath() const;

private:
    const struct stat *status() const;  // null if the path doesn't exist
    bool checkAccess(int mode, signed char &cache) const;

    std::string path_;
    mutable bool read_ = false;
    mutable bool exists_ = false;
    mutable struct stat status_ {};
    mutable signed char readable_ = -1;  // -1: not asked yet
    mutable signed char writable_ = -1;
};

// The directory part of a "/" path, with the conventions of FileInfo::path().
std::string directoryOf(const std::string &path);

// The parts of a path's file name, as FileInfo gives them: of the text
// alone, so that asking needs no FileInfo.
std::string_view fileNameOf(std::string_view path);
std::string_view baseNameOf(std::string_view path, bool complete);
std::string_view suffixOf(std::string_view path, bool complete);

// True for a path that doesn't begin at the root.
inline bool isRelativePath(std::string_view path) { return path.empty() || path[0] != '/'; }
// `path` made absolute against the current directory, and normalised.
std::string absolutePathOf(const std::string &path);
// `path` made absolute against `directory` (itself absolute), and
// normalised; an empty path stays empty.
std::string absolutePathFrom(const std::string &directory, const std::string &path);
