#include "support/paths.h"

#include <vector>

#include "support/file_info.h"
#include "support/file_path.h"

namespace {

std::vector<std::string> absoluteParts(const std::string &path) { return FilePath(path).components(true); }

}  // namespace

bool relativePath(const std::string &base, const std::string &target, std::string &result) {
    result.clear();
    if (target == ".")
        return true;
    const std::vector<std::string> from = absoluteParts(base);
    const std::vector<std::string> to = absoluteParts(target);
    if (from.empty() || to.empty() || from.front() != to.front())
        return false;
    size_t common = 1;
    while (common < from.size() && common < to.size() && from[common] == to[common])
        ++common;
    for (size_t i = common; i < from.size(); ++i)
        result += "../";
    for (size_t i = common; i < to.size(); ++i) {
        result += to[i];
        result += '/';
    }
    if (!result.empty())
        result.pop_back();
    return true;
}

bool relativeFilePath(const std::string &base, const std::string &file, std::string &result) {
    const FileInfo info(absolutePathOf(file));
    std::string directory;
    if (!relativePath(base, info.path(), directory)) {
        result.clear();
        return false;
    }
    result = directory.empty() ? info.fileName() : directory + "/" + info.fileName();
    return true;
}

std::string relativeOrAbsolute(const std::string &base, const std::string &file) {
    std::string result;
    if (relativeFilePath(base, file, result))
        return result;
    return absolutePathOf(file);
}
