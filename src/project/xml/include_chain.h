#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>

// The files being included around a node, innermost first: each include adds
// a link to the chain of the file that holds it. Links are shared by all the
// nodes of a file.
struct IncludeChain {
    // The file's name as the pre-processor opens it, and its absolute,
    // normalised form by which files are told apart.
    std::string file;
    std::string absoluteFile;
    std::size_t hash = 0;
    std::shared_ptr<const IncludeChain> outer;
    // 0 for the document's own file.
    int depth = 0;

    static std::shared_ptr<const IncludeChain> start(const std::string &file);
    static std::shared_ptr<const IncludeChain> enter(const std::shared_ptr<const IncludeChain> &outer,
                                                     const std::string &file, const std::string &absoluteFile);

    // True if `absolute` is this file or one that includes it.
    bool includes(const std::string &absolute) const;
};

// The file an include names: `name` as it is if it is absolute, else joined
// with "/" to the directory of `currentFile` (to nothing if that is empty).
std::string includeFilePath(const std::string &currentFile, const std::string &name);

// The bytes of the files that a document includes, each read once however
// often it is included.
class IncludeFiles {
public:
    // The bytes of the file at the absolute path, null if it can't be read
    // or isn't a regular file.
    const std::string *read(const std::string &absoluteFile);
    void clear() { files_.clear(); }

private:
    std::map<std::string, std::optional<std::string>> files_;
};
