#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/file_time.h"

class FileInfo;

// A path value. Copies share one reference-counted body (not thread-safe:
// a path belongs to one thread at a time); a change first detaches a shared
// body. The text is normalised in place on first use, so every copy profits,
// and the file information is made on first need and kept in the body until
// the text changes.
class FilePath {
public:
    FilePath();
    FilePath(const std::string &text);
    FilePath(const char *text);
    FilePath(const FilePath &other) noexcept;
    FilePath &operator=(const FilePath &other) noexcept;
    ~FilePath();

    // A path whose text is known to be normalised already.
    static FilePath normalised(const std::string &text);

    // Replaces the text; the new text isn't normalised yet.
    void assign(const std::string &text);
    // The normalised text.
    const std::string &text() const;
    bool isEmpty() const { return text().empty(); }

    // Compare the normalised texts, case-sensitively.
    bool operator==(const FilePath &other) const;
    bool operator<(const FilePath &other) const;

    // The path's text with `text` behind it (no separator is added).
    FilePath append(const std::string &text) const;
    FilePath &operator+=(const std::string &text);

    // These read the file system anew.
    bool exists() const;
    bool isWritable() const;
    bool isReadable() const;
    FileTime created() const;
    FileTime lastModified() const;
    FileTime lastRead() const;

    // These use the kept file information (read once, until refresh()).
    std::int64_t size() const;
    bool isDir() const;
    const FileInfo &fileInfo() const;
    void refresh() const;

    bool isRelative() const;
    std::string filePath() const { return text(); }
    std::string absoluteFilePath() const;
    std::string fileName() const;
    // Up to the first dot, or with `complete` up to the last dot.
    std::string baseName(bool complete = false) const;
    // Behind the last dot, or with `complete` behind the first dot.
    std::string suffix(bool complete = false) const;
    // The directory part ("." for a bare name), absolute if asked.
    std::string path(bool absolute = false) const;
    FilePath dir(bool absolute = false) const;
    // The path split at "/" with empty parts skipped.
    std::vector<std::string> components(bool absolute = false) const;
    // True if the text ends with the text of `other`.
    bool endsWith(const FilePath &other) const;

private:
    struct Body;
    void detach();
    FileInfo &info() const;

    Body *body_;
};
