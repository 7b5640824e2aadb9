#include "support/file_utils.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "support/file_info.h"

bool makeDirectories(const std::string &directory) {
    // Each level is a prefix of the absolute path; a level is looked at by
    // ending the text at its length for a moment, so that a deep path costs
    // no copies.
    std::string path = absolutePathOf(directory);
    const auto atLevel = [&path](size_t length, auto call) {
        path[length] = '\0';
        const bool result = call(path.c_str());
        path[length] = length < path.size() ? '/' : '\0';
        return result;
    };
    const auto isDirectory = [](const char *level) {
        struct stat st;
        return stat(level, &st) == 0 && S_ISDIR(st.st_mode);
    };
    const auto makeDirectory = [&isDirectory](const char *level) {
        // Another process may make the same directory at the same time.
        return mkdir(level, 0777) == 0 || (errno == EEXIST && isDirectory(level));
    };

    // Walk up to the first directory that exists, then make the missing
    // ones on the way back down.
    std::vector<size_t> missing;
    size_t length = path.size();
    while (length > 1 && !atLevel(length, isDirectory)) {
        missing.push_back(length);
        length = path.rfind('/', length - 1);
        if (length == std::string::npos)
            break;
    }
    for (auto level = missing.rbegin(); level != missing.rend(); ++level) {
        if (!atLevel(*level, makeDirectory))
            return false;
    }
    return true;
}

bool readFile(const std::string &path, std::string &text) {
    return readFileAt(AT_FDCWD, path.c_str(), text);
}

bool readFileAt(int directory, const char *name, std::string &text) {
    text.clear();
    const int descriptor = openat(directory, name, O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    struct stat status;
    bool ok = fstat(descriptor, &status) == 0 && !S_ISDIR(status.st_mode);
    // A regular file is read up to the size that fstat gave; a file that the
    // system sizes as 0 (as in /proc) to its end.
    const bool sized = ok && S_ISREG(status.st_mode) && status.st_size > 0;
    const std::size_t expected = sized ? std::size_t(status.st_size) : 0;
    std::size_t length = 0;
    text.resize(sized ? expected : 4096);
    while (ok && !(sized && length == expected)) {
        const ssize_t count = read(descriptor, text.data() + length, text.size() - length);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            ok = count == 0;
            break;
        }
        length += std::size_t(count);
        if (!sized && length == text.size())
            text.resize(text.size() * 2);
    }
    close(descriptor);
    text.resize(ok ? length : 0);
    return ok;
}

bool removeFile(const std::string &path) { return unlink(path.c_str()) == 0; }

std::string temporaryDirectory() {
    for (const char *name : {"TMP", "TEMP", "TMPDIR"}) {
        const char *value = getenv(name);
        if (value && *value)
            return value;
    }
    return "/tmp";
}

void setEnvironment(const std::string &name, const std::string &value) {
    setenv(name.c_str(), value.c_str(), 1);
}
