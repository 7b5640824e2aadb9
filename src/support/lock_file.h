#pragma once

#include <string>

namespace QTx {

// A lock between processes: an exclusive fcntl record lock over a named file.
// The record lock belongs to the process and vanishes with it, even when the
// file stays behind.
class LockFile {
public:
    // Doesn't touch the file.
    explicit LockFile(std::string name);
    LockFile(const LockFile &) = delete;
    LockFile &operator=(const LockFile &) = delete;
    // Releases the lock if it is held.
    virtual ~LockFile();

    // Takes the lock without waiting; true if it is held afterwards.
    bool tryLock();
    // Tries milliseconds / 10 + 1 times, 10 ms apart.
    bool lock(int milliseconds);
    // If held: removes the file and lets go. A lock that isn't held does
    // nothing, so a failed locker never removes the file.
    void release();

    bool isLocked() const { return fd_ >= 0; }
    const std::string &name() const { return name_; }

private:
    std::string name_;
    int fd_ = -1;
};

}  // namespace QTx
