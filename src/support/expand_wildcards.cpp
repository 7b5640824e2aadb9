#include "support/expand_wildcards.h"

#include <dirent.h>
#include <fnmatch.h>
#include <sys/stat.h>

#include "support/normalise_path.h"

namespace {

bool hasWildcard(const std::string &part) { return part.find_first_of("*?") != std::string::npos; }

std::vector<std::string> splitParts(const std::string &pattern) {
    std::vector<std::string> parts;
    size_t start = 0;
    for (;;) {
        const size_t end = pattern.find('/', start);
        if (end == std::string::npos) {
            parts.push_back(pattern.substr(start));
            return parts;
        }
        parts.push_back(pattern.substr(start, end - start));
        start = end + 1;
    }
}

// `directory` followed by `name`; `directory` is empty for the current one.
std::string join(const std::string &directory, const std::string &name) {
    if (directory.empty())
        return name;
    if (directory.back() == '/')
        return directory + name;
    return directory + "/" + name;
}

bool isDirectory(const std::string &directory, const dirent *entry) {
    if (entry->d_type == DT_DIR)
        return true;
    if (entry->d_type != DT_UNKNOWN && entry->d_type != DT_LNK)
        return false;
    struct stat st;
    return stat(join(directory.empty() ? "." : directory, entry->d_name).c_str(), &st) == 0 &&
           S_ISDIR(st.st_mode);
}

// The names in `directory` that match `filter`, in the order of the listing.
std::vector<std::string> listDirectory(const std::string &directory, const std::string &filter,
                                       bool directoriesOnly) {
    std::vector<std::string> names;
    DIR *listing = opendir(directory.empty() ? "." : directory.c_str());
    if (!listing)
        return names;
    while (const dirent *entry = readdir(listing)) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        if (fnmatch(filter.c_str(), entry->d_name, 0) != 0)
            continue;
        if (directoriesOnly && !isDirectory(directory, entry))
            continue;
        names.emplace_back(name);
    }
    closedir(listing);
    return names;
}

// A directory found so far, and the index of the pattern part behind it.
struct Pending {
    std::string directory;
    size_t next;
};

}  // namespace

void expandWildcards(const std::string &pattern, std::vector<FilePath> &results) {
    const std::vector<std::string> parts = splitParts(pattern);
    size_t first = 0;
    while (first < parts.size() && !hasWildcard(parts[first]))
        ++first;
    if (first == parts.size()) {
        struct stat st;
        if (stat(pattern.c_str(), &st) == 0)
            results.emplace_back(pattern);
        return;
    }

    // Depth first, with a stack instead of recursion; children are pushed
    // in reverse so that they come off in the order of the listing.
    std::vector<Pending> stack;
    {
        std::string directory;
        for (size_t i = 0; i < first; ++i)
            directory += parts[i] + "/";
        if (directory.size() > 1)
            directory.pop_back();  // keep "/" for the root
        normalisePath(directory);
        stack.push_back({std::move(directory), first});
    }
    while (!stack.empty()) {
        Pending pending = std::move(stack.back());
        stack.pop_back();

        // Plain parts join the directory until the next wildcard part.
        std::string directory = std::move(pending.directory);
        size_t index = pending.next;
        while (index < parts.size() && !hasWildcard(parts[index])) {
            if (!parts[index].empty())
                directory = join(directory, parts[index]);
            ++index;
        }
        normalisePath(directory);
        if (index == parts.size()) {
            struct stat st;
            if (stat(directory.c_str(), &st) == 0)
                results.push_back(FilePath::normalised(directory));
            continue;
        }

        const bool last = index + 1 == parts.size();
        const std::vector<std::string> names = listDirectory(directory, parts[index], !last);
        if (last) {
            for (const std::string &name : names)
                results.push_back(FilePath::normalised(join(directory, name)));
        } else {
            for (auto name = names.rbegin(); name != names.rend(); ++name)
                stack.push_back({join(directory, *name), index + 1});
        }
    }
}
