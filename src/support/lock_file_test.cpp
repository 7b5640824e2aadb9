#include "support/lock_file.h"

#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/test_directory.h"

namespace {

bool exists(const std::string &path) { return access(path.c_str(), F_OK) == 0; }

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
int finish(pid_t pid, int in) {
    close(in);
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(LockFile, SecondProcessWaitsInVainWhileTheFirstHoldsIt) {
    TestDirectory scratch;
    const std::string name = scratch / "build.lock";
    QTx::LockFile first(name);
    ASSERT_TRUE(first.lock(0));
    int in;
    const pid_t second = inOtherProcess(in, [&](int) {
        QTx::LockFile lock(name);
        if (lock.tryLock() || lock.lock(1000))
            return 1;
        lock.release();
        return exists(name) ? 0 : 2;
    });
    EXPECT_EQ(finish(second, in), 0);
    EXPECT_TRUE(first.tryLock());  // still held: true at once
    first.release();
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
    char heard[2] = {};
    EXPECT_EQ(read(in, heard, 1), 1);
    usleep(50000);  // let it wait a little
    first.release();
    EXPECT_EQ(read(in, heard + 1, 1), 1);
    EXPECT_EQ(std::string(heard, 2), "nl");
    EXPECT_FALSE(first.tryLock());  // the other process holds it now
    kill(second, SIGKILL);
    EXPECT_EQ(finish(second, in), -1);
    EXPECT_TRUE(exists(name));  // the file stays, the lock doesn't
    EXPECT_TRUE(first.lock(1000));
}

TEST(LockFile, OnlyAHolderRemovesTheFile) {
    TestDirectory scratch;
    const std::string name = scratch / "build.lock";
    {
        QTx::LockFile lock(name);
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
    lock.release();  // a second release does nothing
    EXPECT_FALSE(lock.isLocked());

    // No lock where the file can't be made.
    QTx::LockFile unwritable(scratch / "missing/dir/build.lock");
    EXPECT_FALSE(unwritable.lock(20));
}

}  // namespace
