#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

// Runs one child process at a time, with fork and execvp, never through a
// shell. Output on the child's standard output and standard error is read
// through pipes and handed to outputLine one line at a time, unless a
// redirection at the end of the argument list sends a stream to a file.
//
// The object is driven by its owner: startChild, then pollChild until it
// answers 0. Everything happens on the calling thread; several objects give
// several children running at once.
class Process {
public:
    // A line longer than this is delivered in pieces of this size (the last
    // piece with the rest of the line), so that a child writing without
    // newlines can't make the program's memory grow without bound: a stream
    // holds at most this much plus one read.
    static constexpr size_t maximumLineLength = 1 << 20;

    Process() = default;
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;
    // A child still running is sent SIGHUP and waited for.
    virtual ~Process();

    // Called for each line of output, without its terminator; the text may
    // hold any byte, NUL included. fromStandardOutput is false for standard
    // error.
    virtual void outputLine(bool fromStandardOutput, std::string_view text) = 0;

    // Starts arguments[0] with the other arguments. The first redirection
    // token (">", "2>", "&>>", ">file" and the like) ends the arguments; it
    // and the tokens after it, in pairs, name the files that standard output
    // and standard error go to, relative to the working directory. An empty
    // working directory leaves the child in the current one.
    //
    // With capture, the child's standard output and standard error are
    // piped to this object, and with inputPipe its standard input comes from
    // writeToChild; the result is 0, or -1 if no program is left to run or no
    // child could be made. Without capture the child shares the program's
    // descriptors (apart from redirected streams); if it ends at once, the
    // result is its exit status, else 0.
    int startChild(std::vector<std::string> arguments, const std::string &workingDirectory, bool capture,
                   bool inputPipe);

    // Reads what the child has written, waiting at most 1 millisecond for it,
    // and delivers complete lines. Returns 1 while the child runs; once it
    // has ended, delivers the rest of its output, stores its exit status in
    // exitStatus and returns 0, as it does when there is no child at all.
    int pollChild(int &exitStatus);

    // How long pollChild waits for output: 1 millisecond unless the owner
    // waits for all its children at once (appendWaitDescriptors) and sets 0.
    void setPollTimeout(int milliseconds) { pollTimeout_ = milliseconds; }
    // Adds the pipes that the running child still holds open, whose output
    // or end pollChild would take; false if a child runs with none left, so
    // that only time tells when it ends.
    bool appendWaitDescriptors(std::vector<int> &descriptors) const;

    // Plain write to the child's standard input and read from its standard
    // output. A write to a child that has closed its input fails with EPIPE
    // instead of killing the program.
    ssize_t writeToChild(const void *bytes, size_t count);
    ssize_t readFromChild(void *bytes, size_t count);
    // Closes the child's standard input, which it sees as end of file.
    void closeInput();

    // The exit status of the last child: its exit code, the number of the
    // signal that killed it, or 1; -1 before a child has ended. A program
    // that couldn't be started shows 255.
    int exitStatus() const { return exitStatus_; }
    // True when the last startChild made a child that couldn't become the
    // program: execvp failed (no such program, no permission, ...) or the
    // working directory couldn't be entered. startError() is the errno.
    bool startFailed() const { return startError_ != 0; }
    int startError() const { return startError_; }
    bool running() const { return pid_ != 0; }

protected:
    // Forgets the running child without stopping it, so that it outlives
    // this object.
    void detachChild() { pid_ = 0; }
    // Stops the running child: its pipes are closed first, dropping output
    // not yet delivered, then it is sent `signal`; if it hasn't ended within
    // the grace period it is killed. Either way it is waited for, and its
    // status becomes the exit status. Nothing happens without a child.
    void terminateChild(int signal, int graceMilliseconds = 2000);
    void setExitStatus(int status) { exitStatus_ = status; }

private:
    // One of the child's output streams.
    struct Stream {
        int descriptor = -1;       // read end of the pipe, -1 when closed
        FILE *file = nullptr;      // redirection target
        std::string buffer;        // bytes not yet delivered
        size_t scanned = 0;        // bytes below this hold no line end
        bool dropNext = false;     // a line ended at CR: skip the next byte
    };

    void openRedirections(std::vector<std::string> &arguments, const std::string &workingDirectory);
    void readAvailable(Stream &stream, bool fromStandardOutput);
    void feed(Stream &stream, bool fromStandardOutput);
    void deliverRest(Stream &stream, bool fromStandardOutput);
    void closeStreams();
    void finish(int waitStatus);

    Stream output_;
    Stream error_;
    pid_t pid_ = 0;
    int inputDescriptor_ = -1;  // write end of the child's standard input
    int exitStatus_ = -1;
    int startError_ = 0;
    int pollTimeout_ = 1;
};
