#include "support/lock_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

namespace QTx {

LockFile::LockFile(std::string name) : name_(std::move(name)) {}

LockFile::~LockFile() { release(); }

bool LockFile::tryLock() {
    if (fd_ >= 0)
        return true;
    // Close-on-exec: a child process must never carry the lock on.
    const int fd = open(name_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0)
        return false;
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    whole.l_start = 0;
    whole.l_len = 0;
    if (fcntl(fd, F_SETLK, &whole) != 0) {
        close(fd);
        return false;
    }
    // The holder removes the file when it lets go. If that happened between
    // our open() and the lock, we hold a file that no longer has the name;
    // give it up, the next try opens the new one.
    struct stat opened;
    struct stat named;
    if (fstat(fd, &opened) != 0 || stat(name_.c_str(), &named) != 0 ||
        opened.st_dev != named.st_dev || opened.st_ino != named.st_ino) {
        close(fd);
        return false;
    }
    fd_ = fd;
    return true;
}

bool LockFile::lock(int milliseconds) {
    const int tries = milliseconds > 0 ? milliseconds / 10 + 1 : 1;
    for (int i = 0; i < tries; ++i) {
        if (tryLock())
            return true;
        if (i + 1 < tries) {
            const timespec pause{0, 10 * 1000 * 1000};
            nanosleep(&pause, nullptr);
        }
    }
    return false;
}

void LockFile::release() {
    if (fd_ < 0)
        return;
    // Remove the name while the lock is still held, then let go.
    unlink(name_.c_str());
    close(fd_);
    fd_ = -1;
}

}  // namespace QTx
