#include "support/trace.h"

#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <string>

unsigned traceFlags = 19;

namespace {

std::string destination;
bool hasDestination = false;
FILE *stream = nullptr;
// Milliseconds of the monotonic clock; 0 while a clock isn't started.
long long startStamp = 0;
long long previousStamp = 0;

long long milliseconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<long long>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

void closeStream() {
    if (stream && stream != stdout && stream != stderr)
        fclose(stream);
    stream = nullptr;
}

FILE *openStream() {
    if (!stream && hasDestination) {
        if (destination == "-" || destination == "stdout")
            stream = stdout;
        else if (destination == "stderr")
            stream = stderr;
        else
            stream = fopen(destination.c_str(), "wt");
        if (!stream)
            hasDestination = false;  // don't try again on every call
    }
    return stream;
}

}  // namespace

void setTraceDestination(const char *name) {
    closeStream();
    hasDestination = name != nullptr;
    destination = name ? name : "";
}

void startTraceClocks(bool sinceStart, bool sincePrevious) {
    const long long now = milliseconds();
    startStamp = sinceStart ? now : 0;
    previousStamp = sincePrevious ? now : 0;
}

void trace(const char *category, bool newline, const char *format, ...) {
    static char text[65536];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (length <= 0)
        return;
    FILE *out = openStream();
    if (!out)
        return;
    if (startStamp || previousStamp) {
        const long long now = milliseconds();
        fputc('[', out);
        if (startStamp)
            fprintf(out, "%lld", now - startStamp);
        fputc(' ', out);
        if (previousStamp) {
            fprintf(out, "%lld", now - previousStamp);
            previousStamp = now;
        }
        fputs("] ", out);
    }
    fprintf(out, "%s: %s", category ? category : "", text);
    if (newline)
        fputc('\n', out);
    fflush(out);
}
