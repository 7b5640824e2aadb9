#pragma once

#include <algorithm>
#include <vector>

#include "support/file_path.h"

// Paths kept sorted by FilePath::operator<, each at most once, so that
// insertion and look-up are binary searches.
class FilePathSet {
public:
    // Returns false if the path was there already.
    bool insert(const FilePath &path) {
        const auto place = std::lower_bound(paths_.begin(), paths_.end(), path);
        if (place != paths_.end() && *place == path)
            return false;
        paths_.insert(place, path);
        return true;
    }

    bool contains(const FilePath &path) const {
        return std::binary_search(paths_.begin(), paths_.end(), path);
    }

    bool empty() const { return paths_.empty(); }
    size_t size() const { return paths_.size(); }
    void clear() { paths_.clear(); }
    const std::vector<FilePath> &paths() const { return paths_; }
    std::vector<FilePath>::const_iterator begin() const { return paths_.begin(); }
    std::vector<FilePath>::const_iterator end() const { return paths_.end(); }

private:
    std::vector<FilePath> paths_;
};
