// Interrupts under a guard are noted, not fatal, and cut blocking calls short.

#include "build/interrupt.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/wait.h>
#include <unistd.h>

namespace {

volatile sig_atomic_t previousHandlerCalls = 0;
extern "C" void countCall(int) { previousHandlerCalls = previousHandlerCalls + 1; }

TEST(InterruptGuard, NotesTheSignalInsteadOfDying) {
    {
        InterruptGuard guard;
        EXPECT_FALSE(interruptRequested());
        EXPECT_EQ(interruptSignal(), 0);
        ASSERT_EQ(raise(SIGTERM), 0);
        EXPECT_TRUE(interruptRequested());
        EXPECT_EQ(interruptSignal(), SIGTERM);
        ASSERT_EQ(raise(SIGINT), 0);
        EXPECT_EQ(interruptSignal(), SIGINT);
    }
    // The note outlives the guard; a new guard starts afresh.
    EXPECT_TRUE(interruptRequested());
    EXPECT_EQ(interruptSignal(), SIGINT);
    InterruptGuard guard;
    EXPECT_FALSE(interruptRequested());
    EXPECT_EQ(interruptSignal(), 0);
}

TEST(InterruptGuard, PutsThePreviousHandlersBack) {
    struct sigaction counting {}, savedInterrupt {}, savedTerminate {};
    counting.sa_handler = countCall;
    sigemptyset(&counting.sa_mask);
    ASSERT_EQ(sigaction(SIGINT, &counting, &savedInterrupt), 0);
    ASSERT_EQ(sigaction(SIGTERM, &counting, &savedTerminate), 0);
    previousHandlerCalls = 0;
    {
        InterruptGuard guard;
        raise(SIGTERM);
        EXPECT_EQ(previousHandlerCalls, 0);
    }
    raise(SIGINT);
    raise(SIGTERM);
    const int calls = previousHandlerCalls;
    sigaction(SIGINT, &savedInterrupt, nullptr);
    sigaction(SIGTERM, &savedTerminate, nullptr);
    EXPECT_EQ(calls, 2);
}

TEST(InterruptGuard, ABlockingReadReturnsEarly) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    InterruptGuard guard;
    const pid_t parent = getpid();
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // Interrupts the parent's read, again and again in case the read
        // hadn't begun; if the read went on regardless, the byte written
        // later ends it with the wrong answer.
        for (int i = 0; i < 30; ++i) {
            usleep(100 * 1000);
            kill(parent, SIGTERM);
        }
        [[maybe_unused]] const ssize_t written = write(ends[1], "x", 1);
        _exit(0);
    }
    char byte;
    const ssize_t got = read(ends[0], &byte, 1);
    const int error = errno;
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    EXPECT_EQ(got, -1);
    EXPECT_EQ(error, EINTR);
    EXPECT_EQ(interruptSignal(), SIGTERM);
}

}  // namespace
