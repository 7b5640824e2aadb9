#include "support/process.h"

#include <cerrno>
#include <spawn.h>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Descriptors 0, 1 and 2 are the child's standard streams. A descriptor the
// parent hands to the child must not be one of them (they are free when the
// program runs with a standard stream closed), or putting it in its place
// would overwrite another.
int aboveStandardStreams(int descriptor) {
    if (descriptor < 0 || descriptor > 2)
        return descriptor;
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, 3);
    close(descriptor);
    return moved;
}

// A pipe whose ends are closed on exec, so that no other child inherits them:
// a child holding another's input pipe would keep it from seeing its end.
bool makePipe(int ends[2]) {
    if (pipe2(ends, O_CLOEXEC) != 0)
        return false;
    ends[0] = aboveStandardStreams(ends[0]);
    ends[1] = aboveStandardStreams(ends[1]);
    if (ends[0] >= 0 && ends[1] >= 0)
        return true;
    for (int i = 0; i < 2; ++i) {
        if (ends[i] >= 0)
            close(ends[i]);
    }
    return false;
}

void closeDescriptor(int &descriptor) {
    if (descriptor >= 0)
        close(descriptor);
    descriptor = -1;
}

// Opens a redirection target as fopen would with "wb" or "ab", closed on exec.
FILE *openTarget(const std::string &path, const std::string &workingDirectory, bool append) {
    if (path.empty())
        return nullptr;
    const std::string resolved =
        path[0] == '/' || workingDirectory.empty() ? path : workingDirectory + "/" + path;
    const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | (append ? O_APPEND : O_TRUNC);
    const int descriptor = aboveStandardStreams(open(resolved.c_str(), flags, 0666));
    if (descriptor < 0)
        return nullptr;
    FILE *file = fdopen(descriptor, append ? "ab" : "wb");
    if (!file)
        close(descriptor);
    return file;
}

bool startsWith(const std::string &text, std::string_view prefix) {
    return text.size() > prefix.size() && text.compare(0, prefix.size(), prefix) == 0;
}

// The forms that take their path from the next token.
bool isSeparateRedirection(const std::string &token) {
    return token == ">" || token == "1>" || token == ">>" || token == "1>>" || token == "2>" ||
           token == "2>>" || token == "&>" || token == "&>>";
}

bool isRedirection(const std::string &token) {
    return isSeparateRedirection(token) || startsWith(token, ">") || startsWith(token, "1>") ||
           startsWith(token, "2>") || startsWith(token, "&>");
}


int exitStatusOf(int waitStatus) {
    if (WIFEXITED(waitStatus))
        return WEXITSTATUS(waitStatus);
    if (WIFSIGNALED(waitStatus))
        return WTERMSIG(waitStatus);
    return 1;
}

}  // namespace

Process::~Process() {
    if (pid_ != 0) {
        // Closing our ends first lets a child blocked on a full pipe go on.
        closeDescriptor(output_.descriptor);
        closeDescriptor(error_.descriptor);
        closeInput();
        if (kill(pid_, SIGHUP) == 0) {
            int status;
            while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
            }
        }
    }
    closeStreams();
    closeInput();
}

void Process::openRedirections(std::vector<std::string> &arguments, const std::string &workingDirectory) {
    size_t first = 0;
    while (first < arguments.size() && !isRedirection(arguments[first]))
        ++first;
    // Tokens go in pairs: a redirection and its path, also when the path is
    // joined to the redirection, so ">a 2>b" redirects standard output only.
    for (size_t i = first; i < arguments.size() && !(output_.file && error_.file); i += 2) {
        const std::string &token = arguments[i];
        const std::string *path = i + 1 < arguments.size() ? &arguments[i + 1] : nullptr;
        const bool outputFree = !output_.file;
        const bool errorFree = !error_.file;
        if (isSeparateRedirection(token)) {
            if (!path)
                continue;
            if ((token == ">" || token == "1>") && outputFree)
                output_.file = openTarget(*path, workingDirectory, false);
            else if ((token == ">>" || token == "1>>") && outputFree)
                output_.file = openTarget(*path, workingDirectory, true);
            else if (token == "2>" && errorFree)
                error_.file = openTarget(*path, workingDirectory, false);
            else if (token == "2>>" && errorFree)
                error_.file = openTarget(*path, workingDirectory, true);
            else if ((token == "&>" || token == "&>>") && outputFree && errorFree)
                output_.file = error_.file = openTarget(*path, workingDirectory, token == "&>>");
        } else if (startsWith(token, ">>") && outputFree) {
            output_.file = openTarget(token.substr(2), workingDirectory, true);
        } else if (startsWith(token, ">") && outputFree) {
            output_.file = openTarget(token.substr(1), workingDirectory, false);
        } else if (startsWith(token, "1>>") && outputFree) {
            output_.file = openTarget(token.substr(3), workingDirectory, true);
        } else if (startsWith(token, "1>") && outputFree) {
            output_.file = openTarget(token.substr(2), workingDirectory, false);
        } else if (startsWith(token, "2>>") && errorFree) {
            error_.file = openTarget(token.substr(3), workingDirectory, true);
        } else if (startsWith(token, "2>") && errorFree) {
            error_.file = openTarget(token.substr(2), workingDirectory, false);
        } else if (startsWith(token, "&>>") && outputFree && errorFree) {
            output_.file = error_.file = openTarget(token.substr(3), workingDirectory, true);
        } else if (startsWith(token, "&>") && outputFree && errorFree) {
            output_.file = error_.file = openTarget(token.substr(2), workingDirectory, false);
        }
    }
    arguments.resize(first);
}

int Process::startChild(std::vector<std::string> arguments, const std::string &workingDirectory, bool capture,
                        bool inputPipe) {
    closeStreams();
    closeInput();
    startError_ = 0;
    exitStatus_ = -1;
    openRedirections(arguments, workingDirectory);
    if (arguments.empty()) {
        closeStreams();
        return -1;
    }
    std::vector<char *> argv;
    argv.reserve(arguments.size() + 1);
    for (std::string &argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    int outputPipe[2] = {-1, -1};
    int errorPipe[2] = {-1, -1};
    int inputEnds[2] = {-1, -1};
    auto closeAll = [&] {
        for (int *ends : {outputPipe, errorPipe, inputEnds}) {
            closeDescriptor(ends[0]);
            closeDescriptor(ends[1]);
        }
    };
    const bool piped =
        !capture || (makePipe(outputPipe) && makePipe(errorPipe) && (!inputPipe || makePipe(inputEnds)));
    if (!piped) {
        startError_ = errno;
        closeAll();
        closeStreams();
        return -1;
    }

    // posix_spawn rather than fork: the child shares our memory until it
    // execs instead of copying our page tables, which a build of thousands
    // of short commands would pay for each time. It reports a program that
    // can't be started (or a working directory that can't be entered) as
    // its result, with the child already gone. Everything else of ours is
    // closed on exec; a tool expects the default action for a broken pipe,
    // whatever this program set.
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (!workingDirectory.empty())
        posix_spawn_file_actions_addchdir_np(&actions, workingDirectory.c_str());
    if (capture) {
        posix_spawn_file_actions_adddup2(&actions, outputPipe[1], 1);
        posix_spawn_file_actions_adddup2(&actions, errorPipe[1], 2);
        if (inputPipe)
            posix_spawn_file_actions_adddup2(&actions, inputEnds[0], 0);
    } else {
        if (output_.file)
            posix_spawn_file_actions_adddup2(&actions, fileno(output_.file), 1);
        if (error_.file)
            posix_spawn_file_actions_adddup2(&actions, fileno(error_.file), 2);
    }
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    pid_t pid = 0;
    const int spawnError = posix_spawnp(&pid, argv[0], &actions, &attributes, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);

    if (spawnError != 0) {
        // No child: the status is what a child that couldn't exec gives.
        startError_ = spawnError;
        closeAll();
        closeStreams();
        exitStatus_ = 255;
        return capture ? 0 : exitStatus_;
    }
    pid_ = pid;

    if (capture) {
        output_.descriptor = outputPipe[0];
        error_.descriptor = errorPipe[0];
        inputDescriptor_ = inputEnds[1];
        closeDescriptor(outputPipe[1]);
        closeDescriptor(errorPipe[1]);
        closeDescriptor(inputEnds[0]);
        return 0;
    }

    // The child has its own copies of the redirection files.
    closeStreams();
    int waitStatus = 0;
    for (int i = 0; i < 10; ++i) {
        if (waitpid(pid_, &waitStatus, WNOHANG) == pid_) {
            finish(waitStatus);
            return exitStatus_;
        }
    }
    return 0;
}

int Process::pollChild(int &exitStatus) {
    if (pid_ == 0) {
        exitStatus = exitStatus_;
        return 0;
    }
    pollfd descriptors[2];
    Stream *streams[2];
    nfds_t count = 0;
    for (Stream *stream : {&output_, &error_}) {
        if (stream->descriptor >= 0) {
            descriptors[count] = {stream->descriptor, POLLIN, 0};
            streams[count++] = stream;
        }
    }
    // With no pipe left open this still waits the millisecond, so that a
    // caller polling in a loop doesn't spin while the child runs on.
    if (poll(descriptors, count, pollTimeout_) > 0) {
        for (nfds_t i = 0; i < count; ++i) {
            if (descriptors[i].revents != 0)
                readAvailable(*streams[i], streams[i] == &output_);
        }
    }

    int waitStatus = 0;
    const pid_t ended = waitpid(pid_, &waitStatus, WNOHANG);
    if (ended == 0)
        return 1;
    if (ended < 0) {
        perror("wait failed");
        // A child that can't be waited for any more (reaped elsewhere)
        // would otherwise be polled for ever.
        if (errno != ECHILD)
            return 1;
        waitStatus = 1 << 8;
    }

    // Whatever is left in the pipes is read once: a grandchild that holds
    // them open mustn't keep the step from ending.
    for (Stream *stream : {&output_, &error_}) {
        if (stream->descriptor >= 0)
            readAvailable(*stream, stream == &output_);
        closeDescriptor(stream->descriptor);
    }
    deliverRest(output_, true);
    deliverRest(error_, false);
    closeStreams();
    closeInput();
    finish(waitStatus);
    exitStatus = exitStatus_;
    return 0;
}

bool Process::appendWaitDescriptors(std::vector<int> &descriptors) const {
    if (pid_ == 0)
        return true;
    bool any = false;
    for (const Stream *stream : {&output_, &error_}) {
        if (stream->descriptor >= 0) {
            descriptors.push_back(stream->descriptor);
            any = true;
        }
    }
    return any;
}

void Process::terminateChild(int signal, int graceMilliseconds) {
    if (pid_ == 0)
        return;
    // With our ends closed, a child blocked on a full pipe can't stay stuck.
    closeStreams();
    closeInput();
    int waitStatus = 0;
    pid_t ended = 0;
    if (kill(pid_, signal) == 0) {
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(graceMilliseconds);
        while ((ended = waitpid(pid_, &waitStatus, WNOHANG)) == 0 && std::chrono::steady_clock::now() < deadline)
            poll(nullptr, 0, 5);
        if (ended == 0 && kill(pid_, SIGKILL) == 0) {
            while ((ended = waitpid(pid_, &waitStatus, 0)) < 0 && errno == EINTR) {
            }
        }
    }
    if (ended <= 0) {
        // A child that can't be signalled or waited for is let go; all that
        // is known is what it was asked to do.
        exitStatus_ = signal;
        pid_ = 0;
        return;
    }
    finish(waitStatus);
}

void Process::finish(int waitStatus) {
    exitStatus_ = exitStatusOf(waitStatus);
    pid_ = 0;
}

// Reads exactly what is waiting, so the read never blocks. A readable pipe
// with nothing in it is at its end: it is closed and not polled again.
void Process::readAvailable(Stream &stream, bool fromStandardOutput) {
    int available = 0;
    if (ioctl(stream.descriptor, FIONREAD, &available) != 0 || available <= 0) {
        closeDescriptor(stream.descriptor);
        return;
    }
    std::string &buffer = stream.buffer;
    const size_t held = buffer.size();
    buffer.resize(held + static_cast<size_t>(available));
    const ssize_t got = read(stream.descriptor, buffer.data() + held, static_cast<size_t>(available));
    if (got <= 0) {
        buffer.resize(held);
        if (got == 0 || errno != EINTR)
            closeDescriptor(stream.descriptor);
        return;
    }
    buffer.resize(held + static_cast<size_t>(got));
    if (stream.file) {
        fwrite(buffer.data(), 1, buffer.size(), stream.file);
        buffer.clear();
        return;
    }
    feed(stream, fromStandardOutput);
}

// Delivers the complete lines in the buffer. A line ends at LF, or at CR, in
// which case the byte after the CR is dropped unseen as the LF of a CR LF
// pair, also when it only comes with the next read.
void Process::feed(Stream &stream, bool fromStandardOutput) {
    std::string &buffer = stream.buffer;
    size_t start = 0;
    if (stream.dropNext && !buffer.empty()) {
        stream.dropNext = false;
        start = 1;
    }
    size_t end = buffer.find_first_of("\n\r", std::max(start, stream.scanned));
    for (;;) {
        // A line longer than the maximum goes out in pieces, finished or not.
        const size_t lineEnd = end == std::string::npos ? buffer.size() : end;
        if (lineEnd - start > maximumLineLength) {
            outputLine(fromStandardOutput, std::string_view(buffer.data() + start, maximumLineLength));
            start += maximumLineLength;
            continue;
        }
        if (end == std::string::npos)
            break;
        outputLine(fromStandardOutput, std::string_view(buffer.data() + start, end - start));
        if (buffer[end] == '\r') {
            if (end + 1 < buffer.size())
                ++end;
            else
                stream.dropNext = true;
        }
        start = end + 1;
        end = buffer.find_first_of("\n\r", start);
    }
    buffer.erase(0, start);
    stream.scanned = buffer.size();
}

void Process::deliverRest(Stream &stream, bool fromStandardOutput) {
    if (!stream.buffer.empty())
        outputLine(fromStandardOutput, stream.buffer);
    stream.buffer.clear();
    stream.scanned = 0;
    stream.dropNext = false;
}

void Process::closeStreams() {
    if (output_.file)
        fclose(output_.file);
    if (error_.file && error_.file != output_.file)
        fclose(error_.file);
    output_.file = nullptr;
    error_.file = nullptr;
    for (Stream *stream : {&output_, &error_}) {
        closeDescriptor(stream->descriptor);
        stream->buffer.clear();
        stream->scanned = 0;
        stream->dropNext = false;
    }
}

void Process::closeInput() { closeDescriptor(inputDescriptor_); }

ssize_t Process::writeToChild(const void *bytes, size_t count) {
    if (inputDescriptor_ < 0) {
        errno = EBADF;
        return -1;
    }
    // SIGPIPE is held back during the write and a signal it raised is taken
    // away again, so a child that has closed its input only makes the write
    // fail with EPIPE.
    sigset_t brokenPipe, previous;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    sigprocmask(SIG_BLOCK, &brokenPipe, &previous);
    const ssize_t written = write(inputDescriptor_, bytes, count);
    const int error = errno;
    if (written < 0 && error == EPIPE && !sigismember(&previous, SIGPIPE)) {
        const timespec noWait{};
        sigtimedwait(&brokenPipe, nullptr, &noWait);
    }
    sigprocmask(SIG_SETMASK, &previous, nullptr);
    errno = error;
    return written;
}

ssize_t Process::readFromChild(void *bytes, size_t count) {
    if (output_.descriptor < 0) {
        errno = EBADF;
        return -1;
    }
    return read(output_.descriptor, bytes, count);
}
