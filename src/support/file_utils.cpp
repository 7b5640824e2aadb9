#include "support/file_utils.h"

#include <sys/stat.h>

namespace {

bool isDirectory(const std::string &path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

}  // namespace

bool makeDirectories(const std::string &directory) {
    if (directory.empty() || directory == "/" || isDirectory(directory))
        return true;
    const auto slash = directory.rfind('/');
    if (slash != std::string::npos && slash > 0) {
        const std::string parent = directory.substr(0, slash);
        if (parent != directory && !isDirectory(parent))
            makeDirectories(parent);
    }
    return mkdir(directory.c_str(), 0777) == 0;
}
