#include "environment/install_location.h"

#include "support/file_path.h"

#include <array>
#include <climits>
#include <cstdlib>
#include <unistd.h>

namespace {

// Made once, never freed: the location lives as long as the process.
FilePath &binDir() {
    static FilePath *path = new FilePath;
    return *path;
}

FilePath &installDir() {
    static FilePath *path = new FilePath;
    return *path;
}

// The path with symbolic links and "." and ".." resolved; the path itself
// if it doesn't exist.
std::string canonical(const std::string &path) {
    char resolved[PATH_MAX];
    if (realpath(path.c_str(), resolved))
        return resolved;
    return path;
}

std::string parentOf(const std::string &path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    if (slash == 0)
        return "/";
    return path.substr(0, slash);
}

}  // namespace

std::string executablePath(const char *argv0) {
    char buffer[1024];
    const ssize_t length = readlink("/proc/self/exe", buffer, sizeof buffer);
    if (length >= 1 && length <= 1023)
        return std::string(buffer, static_cast<size_t>(length));
    return argv0 ? argv0 : "";
}

void setInstallDirectories(const std::string &executable, int levelsUp) {
    const std::string bin = canonical(parentOf(executable));
    std::string dir = bin;
    for (int i = 0; i < levelsUp; ++i)
        dir = parentOf(dir);
    binDir().assign(bin);
    installDir().assign(canonical(dir));
}

const std::string &installDirectory() { return installDir().text(); }
const std::string &binDirectory() { return binDir().text(); }

std::string toolPath(const std::string &name) {
    static constexpr std::array<std::string_view, 8> installedTools = {
        "cp", "treedup", "preamblegen", "chmod", "rm", "mv", "mkdir", "echo"};
    for (std::string_view tool : installedTools) {
        if (name == tool)
            return installDirectory() + "/bin/" + name;
    }
    return name;
}
