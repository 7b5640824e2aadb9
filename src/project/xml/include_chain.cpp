#include "project/xml/include_chain.h"

#include "support/file_info.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>

namespace {

// The bytes of a regular file. A device or a pipe may never end, so it
// isn't read; opening without blocking keeps a pipe from stopping the open.
std::optional<std::string> readRegularFile(const std::string &path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return std::nullopt;
    std::optional<std::string> bytes;
    struct stat status;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        bytes.emplace();
        bytes->reserve(size_t(status.st_size));
        char chunk[65536];
        for (;;) {
            const ssize_t count = read(descriptor, chunk, sizeof chunk);
            if (count == 0)
                break;
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0) {
                bytes.reset();
                break;
            }
            bytes->append(chunk, size_t(count));
        }
    }
    close(descriptor);
    return bytes;
}

} // namespace

std::shared_ptr<const IncludeChain> IncludeChain::start(const std::string &file) {
    auto link = std::make_shared<IncludeChain>();
    link->file = file;
    link->absoluteFile = file.empty() ? file : absolutePathOf(file);
    link->hash = std::hash<std::string>()(link->absoluteFile);
    return link;
}

std::shared_ptr<const IncludeChain> IncludeChain::enter(const std::shared_ptr<const IncludeChain> &outer,
                                                        const std::string &file, const std::string &absoluteFile) {
    auto link = std::make_shared<IncludeChain>();
    link->file = file;
    link->absoluteFile = absoluteFile;
    link->hash = std::hash<std::string>()(absoluteFile);
    link->outer = outer;
    link->depth = outer ? outer->depth + 1 : 0;
    return link;
}

bool IncludeChain::includes(const std::string &absolute) const {
    const std::size_t wanted = std::hash<std::string>()(absolute);
    for (const IncludeChain *link = this; link; link = link->outer.get()) {
        if (link->hash == wanted && link->absoluteFile == absolute)
            return true;
    }
    return false;
}

std::string includeFilePath(const std::string &currentFile, const std::string &name) {
    if (name.starts_with('/') || currentFile.empty())
        return name;
    const size_t slash = currentFile.rfind('/');
    if (slash == std::string::npos)
        return name;
    return currentFile.substr(0, slash + 1) + name;
}

const std::string *IncludeFiles::read(const std::string &absoluteFile) {
    auto [found, added] = files_.try_emplace(absoluteFile);
    if (added)
        found->second = readRegularFile(absoluteFile);
    return found->second ? &*found->second : nullptr;
}
