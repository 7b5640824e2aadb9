#include "build/interrupt.h"

namespace {

volatile sig_atomic_t noted = 0;

extern "C" void noteInterrupt(int signal) { noted = signal; }

void install(int signal, struct sigaction &previous) {
    struct sigaction action {};
    action.sa_handler = noteInterrupt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0;
    sigaction(signal, &action, &previous);
}

}  // namespace

InterruptGuard::InterruptGuard() {
    noted = 0;
    install(SIGINT, previousInterrupt_);
    install(SIGTERM, previousTerminate_);
}

InterruptGuard::~InterruptGuard() {
    sigaction(SIGINT, &previousInterrupt_, nullptr);
    sigaction(SIGTERM, &previousTerminate_, nullptr);
}

bool interruptRequested() { return noted != 0; }

int interruptSignal() { return noted; }
