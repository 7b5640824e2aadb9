#include "harness.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utime.h>

#include <gtest/gtest.h>

extern char **environ;

namespace e2e {

namespace {

void makeParents(const std::string &file) {
    for (size_t slash = file.find('/', 1); slash != std::string::npos;
         slash = file.find('/', slash + 1))
        mkdir(file.substr(0, slash).c_str(), 0777);
}

void removeTree(const std::string &path) {
    const std::string command = "rm -rf '" + path + "'";
    if (std::system(command.c_str()) != 0)
        std::fprintf(stderr, "could not remove %s\n", path.c_str());
}

}  // namespace

Sandbox::Sandbox() {
    const char *tmp = std::getenv("TMPDIR");
    // A dot before the random part could make ".o" appear in every path of the
    // sandbox, and module map files replace each ".o" of an object path.
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/quillmake-e2e-XXXXXX";
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
}

Sandbox::~Sandbox() { removeTree(path_); }

void Sandbox::write(const std::string &relative, const std::string &content) const {
    const std::string file = at(relative);
    makeParents(file);
    std::ofstream out(file, std::ios::binary);
    out << content;
}

std::string Sandbox::read(const std::string &relative) const {
    std::ifstream in(at(relative), std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

bool Sandbox::exists(const std::string &relative) const {
    return access(at(relative).c_str(), F_OK) == 0;
}

void Sandbox::setTime(const std::string &relative, std::time_t seconds) const {
    const utimbuf times{seconds, seconds};
    ASSERT_EQ(utime(at(relative).c_str(), &times), 0) << relative;
}

std::string Sandbox::expand(std::string text) const {
    for (std::size_t at = 0; (at = text.find("<box>", at)) != std::string::npos; at += path_.size())
        text.replace(at, 5, path_);
    return text;
}

void expectResult(const RunResult &r, const std::string &out, const std::string &err, int status) {
    EXPECT_EQ(r.out, out);
    EXPECT_EQ(r.err, err);
    EXPECT_EQ(r.status, status);
}

const std::string &quillmakePath() {
    static const std::string path = QUILLMAKE_BINARY;
    return path;
}

RunResult runProgram(const std::vector<std::string> &arguments, const std::string &workingDirectory,
                     const std::map<std::string, std::optional<std::string>> &environment) {
    int outPipe[2], errPipe[2];
    if (pipe(outPipe) != 0 || pipe(errPipe) != 0)
        throw std::runtime_error("pipe failed");
    const pid_t pid = fork();
    if (pid < 0)
        throw std::runtime_error("fork failed");
    if (pid == 0) {
        const int nothing = open("/dev/null", O_RDONLY);
        dup2(nothing, 0);
        dup2(outPipe[1], 1);
        dup2(errPipe[1], 2);
        for (int fd : {outPipe[0], outPipe[1], errPipe[0], errPipe[1], nothing})
            close(fd);
        if (!workingDirectory.empty() && chdir(workingDirectory.c_str()) != 0)
            _exit(126);
        for (const auto &[name, value] : environment) {
            if (value)
                setenv(name.c_str(), value->c_str(), 1);
            else
                unsetenv(name.c_str());
        }
        std::vector<char *> argv;
        for (const auto &a : arguments)
            argv.push_back(const_cast<char *>(a.c_str()));
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        _exit(127);
    }
    close(outPipe[1]);
    close(errPipe[1]);

    RunResult result;
    pollfd fds[2] = {{outPipe[0], POLLIN, 0}, {errPipe[0], POLLIN, 0}};
    std::string *sinks[2] = {&result.out, &result.err};
    int open = 2;
    while (open > 0) {
        if (poll(fds, 2, -1) < 0) {
            if (errno == EINTR)
                continue;
            break;
        }
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP | POLLERR)))
                continue;
            char buffer[65536];
            const ssize_t n = ::read(fds[i].fd, buffer, sizeof buffer);
            if (n > 0) {
                sinks[i]->append(buffer, static_cast<size_t>(n));
            } else {
                close(fds[i].fd);
                fds[i].fd = -1;
                --open;
            }
        }
    }
    int status = 0;
    waitpid(pid, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

RunResult runQuillmake(const Sandbox &sandbox, const std::vector<std::string> &arguments,
                       const RunOptions &options) {
    std::vector<std::string> argv{options.program.empty() ? quillmakePath() : options.program};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    // Times that a build shows are in UTC.
    std::map<std::string, std::optional<std::string>> environment{
        {"HOME", sandbox.path()},
        {"TZ", "UTC"},
        {"QUILLMAKE_THREADNUM", std::nullopt},
        {"VELDANE_ROOT_USER_DIR", std::nullopt},
    };
    for (const auto &[name, value] : options.environment)
        environment[name] = value;
    const std::string &cwd =
        options.workingDirectory.empty() ? sandbox.path() : options.workingDirectory;
    return runProgram(argv, cwd, environment);
}

}  // namespace e2e
