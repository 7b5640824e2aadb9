#pragma once

#include <csignal>

// Notes SIGINT and SIGTERM instead of dying of them, so that a build can stop
// its children and remove their half-written output files before it ends.
//
// While a guard lives, either signal only sets a flag; the build loop reads
// it between polls. The handlers are installed without SA_RESTART, so a
// blocking call returns early with EINTR and the loop gets to see the flag.
// The destructor puts back the handlers that were there before. Guards don't
// nest: one lives around a build.
class InterruptGuard {
public:
    // Installs the handlers and clears any interrupt noted before.
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard &) = delete;
    InterruptGuard &operator=(const InterruptGuard &) = delete;

private:
    struct sigaction previousInterrupt_ {};
    struct sigaction previousTerminate_ {};
};

// True once SIGINT or SIGTERM has arrived under a guard. The note outlives
// the guard, so that the program can still end the way the signal asked.
bool interruptRequested();
// The number of the last signal noted, 0 if none.
int interruptSignal();
