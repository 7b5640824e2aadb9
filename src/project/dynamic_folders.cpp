// Dynamic folders: folders whose files are those that a directory holds
// when the solution loads. What they get is generated and isn't saved.

#include "project/project_load_progress_interface.h"
#include "project/project_system.h"
#include "project/project_system_helpers.h"
#include "support/file_info.h"
#include "support/text_split.h"

#include <algorithm>
#include <dirent.h>
#include <fnmatch.h>
#include <set>
#include <strings.h>
#include <sys/stat.h>
#include <utility>

namespace {

bool matchesAny(const std::vector<std::string> &patterns, const std::string &text) {
    for (const std::string &pattern : patterns) {
        if (fnmatch(pattern.c_str(), text.c_str(), 0) == 0)
            return true;
    }
    return false;
}

struct Entry {
    std::string name;
    bool directory;
};

// The entries of a directory, sorted by name without regard to case (then
// with it), hidden ones left out. Symbolic links count as what they point
// to; a broken link is no entry.
std::vector<Entry> listDirectory(const std::string &directory, bool withDirectories) {
    std::vector<Entry> entries;
    DIR *dir = opendir(directory.c_str());
    if (!dir)
        return entries;
    while (const dirent *item = readdir(dir)) {
        const std::string name = item->d_name;
        if (name.empty() || name[0] == '.')
            continue;
        struct stat status;
        if (stat((directory + "/" + name).c_str(), &status) != 0)
            continue;
        const bool isDirectory = S_ISDIR(status.st_mode);
        if (isDirectory ? withDirectories : S_ISREG(status.st_mode))
            entries.push_back({name, isDirectory});
    }
    closedir(dir);
    std::sort(entries.begin(), entries.end(), [](const Entry &a, const Entry &b) {
        const int folded = strcasecmp(a.name.c_str(), b.name.c_str());
        return folded != 0 ? folded < 0 : a.name < b.name;
    });
    return entries;
}

using DirectoryId = std::pair<dev_t, ino_t>;

bool directoryId(const std::string &path, DirectoryId &id) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        return false;
    id = {status.st_dev, status.st_ino};
    return true;
}

}  // namespace

void ProjectSystem::populateFolder(ProjectElement *folder, const std::string &configuration) {
    if (!folder)
        return;
    ProjectElement *project = projectOf(folder);
    const std::string base = project ? fullProjectDirectory(project) : solutionDirectory();
    for (const std::string &entry : splitAtAny(attribute(folder, "path").value_or(""), ";")) {
        std::string path = expandProjectMacros(folder, entry, configuration);
        if (isRelativePath(path))
            path = base + "/" + path;
        const FileInfo info(path);
        if (!info.isDir()) {
            if (info.exists())
                addFile(folder, path)->canModify = false;
            continue;
        }
        const auto list = [&](const char *name) {
            return splitAtAny(expandProjectMacros(folder, attribute(folder, name).value_or(""), configuration),
                              ";");
        };
        scanDirectory(folder, path, entry, list("filter"), attribute(folder, "recurse") == "Yes",
                      list("exclude"));
    }
}

// Walks the tree with a stack of its own, and passes over a directory that
// is already being scanned further up, as a symbolic link that points to
// its own parent would make it.
void ProjectSystem::scanDirectory(ProjectElement *folder, const std::string &directory,
                                  const std::string &displayPath, const StringList &filter,
                                  bool recurse, const StringList &exclude) {
    struct Pending {
        ProjectElement *folder;
        std::string directory;
        std::string displayPath;
        std::size_t depth;
    };
    std::vector<Pending> pending{{folder, directory, displayPath, 0}};
    // The directories on the way down to the one being scanned.
    std::vector<DirectoryId> path;
    while (!pending.empty()) {
        Pending item = std::move(pending.back());
        pending.pop_back();
        path.resize(item.depth);
        DirectoryId id;
        if (!directoryId(item.directory, id))
            continue;
        if (std::find(path.begin(), path.end(), id) != path.end()) {
            if (helpers)
                helpers->warning(item.folder, "", "Dynamic folder",
                                 {"'" + item.displayPath + "' leads back to a directory above it; not scanned"});
            continue;
        }
        path.push_back(id);

        std::vector<Pending> below;
        for (const Entry &entry : listDirectory(item.directory, recurse)) {
            const std::string display = item.displayPath + "/" + entry.name;
            if (matchesAny(exclude, entry.name) || matchesAny(exclude, display))
                continue;
            if (!entry.directory) {
                if (filter.empty() || matchesAny(filter, entry.name))
                    addFile(item.folder, display)->canModify = false;
                continue;
            }
            ProjectElement *child = addFolder(item.folder, entry.name, "");
            child->canModify = false;
            child->XMLElement::setAttribute("path", display);
            below.push_back({child, item.directory + "/" + entry.name, display, item.depth + 1});
        }
        // Scanned in listing order: the first below is taken first.
        for (auto next = below.rbegin(); next != below.rend(); ++next)
            pending.push_back(std::move(*next));
    }
}
