#include "support/lock_file.h"

#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/test_directory.h"

namespace {

bool exists(const std::string &path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0;
}

// Runs `body` in a second process, which ends with its result as exit status
// and at the latest after ten seconds. The body may write characters to the
// descriptor it is given; `in` is the end to read them from.
pid_t inOtherProcess(int &in, const std::function<int(int out)> &body) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    fflush(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        alarm(10);
        _exit(body(ends[1]));
    }
    close(ends[1]);
    in = ends[0];
    return pid;
}

// The exit status of the process, or -1 for one that was killed.
int finish(pid_t pid) {
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

char hear(int in) {
    char signal = 0;
    return read(in, &signal, 1) == 1 ? signal : 0;
}

TEST(LockFile, SecondProcessWaitsInVainWhileTheFirstHoldsIt) {
    TestDirectory scratch;
    const std::string name = scratch / "build.lock";
    QTx::LockFile first(name);
    ASSERT_TRUE(first.lock(0));
    EXPECT_TRUE(first.isLocked());
    EXPECT_TRUE(exists(name));
    int in;
    const pid_t second = inOtherProcess(in, [&](int) {
        QTx::LockFile lock(name);
        if (lock.tryLock() || lock.lock(1000))
            return 1;
        lock.release();
        return exists(name) ? 0 : 2;
    });
    EXPECT_EQ(finish(second), 0);
    close(in);
    EXPECT_TRUE(first.tryLock());  // still held: true at once
    first.release();
    EXPECT_FALSE(first.isLocked());
    EXPECT_FALSE(exists(name));

    // The holder removes the file when it lets go, also by ending.
    const pid_t third = inOtherProcess(in, [&](int) { return QTx::LockFile(name).lock(1000) && exists(name) ? 0 : 1; });
    EXPECT_EQ(finish(third), 0);
    close(in);
    EXPECT_FALSE(exists(name));
}

TEST(LockFile, AWaitingProcessGetsTheLockAndLosesItByDying) {
    TestDirectory scratch;
    const std::string name = scratch / "build.lock";
    QTx::LockFile first(name);
    ASSERT_TRUE(first.tryLock());
    int in;
    const pid_t second = inOtherProcess(in, [&](int out) -> int {
        QTx::LockFile lock(name);
        (void)!write(out, lock.tryLock() ? "y" : "n", 1);
        (void)!write(out, lock.lock(5000) ? "l" : "f", 1);
        for (;;)
            pause();  // until killed
    });
    EXPECT_EQ(hear(in), 'n');
    usleep(50000);  // let it wait a little
    first.release();
    EXPECT_EQ(hear(in), 'l');
    EXPECT_FALSE(first.tryLock());  // the other process holds it now
    EXPECT_TRUE(exists(name));      // a failed try leaves the file alone
    kill(second, SIGKILL);
    EXPECT_EQ(finish(second), -1);
    close(in);
    EXPECT_TRUE(exists(name));  // the file stays, the lock doesn't
    EXPECT_TRUE(first.lock(1000));
}

TEST(LockFile, OnlyAHolderRemovesTheFile) {
    TestDirectory scratch;
    const std::string name = scratch / "build.lock";
    {
        QTx::LockFile lock(name);
        EXPECT_FALSE(exists(name));  // made by the constructor alone: untouched
        ASSERT_TRUE(lock.tryLock());
        EXPECT_TRUE(exists(name));
    }
    EXPECT_FALSE(exists(name));
    scratch.write("build.lock", "kept");
    QTx::LockFile(name).release();
    EXPECT_EQ(TestDirectory::read(name), "kept");
    QTx::LockFile lock(name);
    ASSERT_TRUE(lock.tryLock());
    lock.release();
    EXPECT_FALSE(exists(name));
    lock.release();  // a second release does nothing
    EXPECT_FALSE(lock.isLocked());

    // No lock where the file can't be made.
    QTx::LockFile unwritable(scratch / "missing/dir/build.lock");
    EXPECT_FALSE(unwritable.tryLock());
    EXPECT_FALSE(unwritable.lock(20));
    EXPECT_FALSE(unwritable.isLocked());
}

}  // namespace
