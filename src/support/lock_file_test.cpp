#include "support/lock_file.h"

#include <csignal>
#include <ctime>
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

void pause(int milliseconds) {
    const timespec time{milliseconds / 1000, (milliseconds % 1000) * 1000000L};
    nanosleep(&time, nullptr);
}

// A second process that runs `body` and ends with its result as exit
// status. A pipe each way carries single-character signals.
class OtherProcess {
public:
    explicit OtherProcess(const std::function<int(OtherProcess &)> &body) {
        int toChild[2], toParent[2];
        if (pipe(toChild) != 0 || pipe(toParent) != 0)
            throw std::runtime_error("pipe");
        fflush(nullptr);
        pid_ = fork();
        if (pid_ < 0)
            throw std::runtime_error("fork");
        if (pid_ == 0) {
            close(toChild[1]);
            close(toParent[0]);
            in_ = toChild[0];
            out_ = toParent[1];
            _exit(body(*this));
        }
        close(toChild[0]);
        close(toParent[1]);
        in_ = toParent[0];
        out_ = toChild[1];
    }
    ~OtherProcess() {
        if (pid_ > 0 && !waited_) {
            kill(pid_, SIGKILL);
            finish();
        }
        close(in_);
        close(out_);
    }

    void tell(char signal) { (void)!write(out_, &signal, 1); }
    // The next signal, or 0 when the other side has gone.
    char hear() {
        char signal = 0;
        return read(in_, &signal, 1) == 1 ? signal : 0;
    }
    // Waits for the end; the exit status, or -1 for a killed process.
    int finish() {
        int status = 0;
        waitpid(pid_, &status, 0);
        waited_ = true;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    void killNow() { kill(pid_, SIGKILL); }

private:
    pid_t pid_ = -1;
    int in_ = -1;
    int out_ = -1;
    bool waited_ = false;
};

TEST(LockFile, SecondProcessWaitsInVainWhileTheFirstHoldsIt) {
    TestDirectory scratch;
    const std::string name = scratch / "build.lock";
    QTx::LockFile first(name);
    ASSERT_TRUE(first.lock(0));
    EXPECT_TRUE(first.isLocked());
    EXPECT_TRUE(exists(name));

    OtherProcess second([&](OtherProcess &) {
        QTx::LockFile lock(name);
        if (lock.tryLock())
            return 1;
        if (lock.lock(1000))
            return 2;
        lock.release();
        return exists(name) ? 0 : 3;
    });
    EXPECT_EQ(second.finish(), 0);
    EXPECT_TRUE(exists(name));
    EXPECT_TRUE(first.tryLock());  // still held: true at once

    first.release();
    EXPECT_FALSE(first.isLocked());
    EXPECT_FALSE(exists(name));

    OtherProcess third([&](OtherProcess &) {
        QTx::LockFile lock(name);
        if (!lock.lock(1000))
            return 1;
        return exists(name) ? 0 : 2;  // its end removes the file
    });
    EXPECT_EQ(third.finish(), 0);
    EXPECT_FALSE(exists(name));
}

TEST(LockFile, WaitingProcessGetsTheLockWhenTheHolderLetsGo) {
    TestDirectory scratch;
    const std::string name = scratch / "build.lock";
    QTx::LockFile first(name);
    ASSERT_TRUE(first.tryLock());

    OtherProcess second([&](OtherProcess &self) {
        QTx::LockFile lock(name);
        self.tell(lock.tryLock() ? 'y' : 'n');
        if (!lock.lock(5000))
            return 1;
        self.tell('l');
        return self.hear() == 'q' ? 0 : 2;
    });
    ASSERT_EQ(second.hear(), 'n');
    pause(50);  // let it wait a little
    first.release();
    EXPECT_EQ(second.hear(), 'l');
    EXPECT_TRUE(exists(name));
    EXPECT_FALSE(first.tryLock());  // the other process holds it now
    EXPECT_TRUE(exists(name));      // a failed try leaves the file alone
    second.tell('q');
    EXPECT_EQ(second.finish(), 0);
    EXPECT_FALSE(exists(name));
}

TEST(LockFile, DeathOfTheHolderFreesTheLock) {
    TestDirectory scratch;
    const std::string name = scratch / "build.lock";
    OtherProcess holder([&](OtherProcess &self) {
        QTx::LockFile lock(name);
        self.tell(lock.tryLock() ? 'l' : 'n');
        self.hear();  // until killed
        return 0;
    });
    ASSERT_EQ(holder.hear(), 'l');
    QTx::LockFile second(name);
    EXPECT_FALSE(second.tryLock());
    holder.killNow();
    EXPECT_EQ(holder.finish(), -1);
    EXPECT_TRUE(exists(name));  // the file stays, the lock doesn't
    EXPECT_TRUE(second.lock(1000));
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
    {
        QTx::LockFile idle(name);
        idle.release();
    }
    EXPECT_EQ(TestDirectory::read(name), "kept");
    {
        QTx::LockFile lock(name);
        ASSERT_TRUE(lock.tryLock());
        lock.release();
        EXPECT_FALSE(exists(name));
        lock.release();  // a second release does nothing
        EXPECT_FALSE(lock.isLocked());
    }
}

TEST(LockFile, UnwritablePlaceGivesNoLock) {
    TestDirectory scratch;
    QTx::LockFile lock(scratch / "missing/dir/build.lock");
    EXPECT_FALSE(lock.tryLock());
    EXPECT_FALSE(lock.lock(20));
    EXPECT_FALSE(lock.isLocked());
}

}  // namespace
