#pragma once

// Scratch directories for tests.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <ftw.h>
#include <stdexcept>
#include <string>
#include <unistd.h>

#include "support/file_utils.h"
#include "support/normalise_path.h"

// A scratch directory, removed with all its contents at the end.
class TestDirectory {
public:
    TestDirectory() {
        std::string pattern = temporaryDirectory() + "/quillmake-test-XXXXXX";
        normalisePath(pattern);
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("cannot make a scratch directory");
        path_ = pattern;
    }
    ~TestDirectory() {
        nftw(path_.c_str(), [](const char *file, const struct stat *, int, FTW *) { return ::remove(file); },
             16, FTW_DEPTH | FTW_PHYS);
    }
    TestDirectory(const TestDirectory &) = delete;
    TestDirectory &operator=(const TestDirectory &) = delete;

    const std::string &path() const { return path_; }
    std::string operator/(const std::string &relative) const { return path_ + "/" + relative; }

    // Writes a file below the directory, making its directories.
    std::string write(const std::string &relative, const std::string &content = {}) const {
        const std::string file = *this / relative;
        const size_t slash = file.rfind('/');
        makeDirectories(file.substr(0, slash));
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }

    // Reads a file whole.
    static std::string read(const std::string &file) {
        std::ifstream in(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

private:
    std::string path_;
};

inline std::string currentDirectory() {
    char *current = getcwd(nullptr, 0);
    std::string result = current ? current : "";
    free(current);
    return result;
}

// Works in another directory for the life of the object.
class ChangeDirectory {
public:
    explicit ChangeDirectory(const std::string &directory) : previous_(currentDirectory()) {
        if (chdir(directory.c_str()) != 0)
            throw std::runtime_error("cannot change to " + directory);
    }
    ~ChangeDirectory() {
        if (chdir(previous_.c_str()) != 0)
            std::abort();
    }
    ChangeDirectory(const ChangeDirectory &) = delete;
    ChangeDirectory &operator=(const ChangeDirectory &) = delete;

private:
    std::string previous_;
};
