#pragma once

// The diagnostic trace: rare notices for whoever sets a destination. Nothing
// in the product sets one, so the trace is silent there. Not locked: the
// program has one thread.

// Category bits of traceFlags. Code that reports through the trace tests its
// bit first.
enum : unsigned {
    TraceErrors = 1u << 0,
    TraceWarnings = 1u << 1,
    TraceNotices = 1u << 2,
};

// The process-wide category switches; 19 at start.
extern unsigned traceFlags;

// Where trace output goes from now on: "-" or "stdout" for standard output,
// "stderr" for standard error, any other name for a file that is opened
// (and emptied) on the first output. Null drops all output. A stream opened
// for an earlier destination is closed.
void setTraceDestination(const char *name);

// Starts the clocks of the time stamp: milliseconds since this call, and
// milliseconds since the previous trace output.
void startTraceClocks(bool sinceStart, bool sincePrevious);

// printf-style output of at most 65,535 bytes: an optional time stamp
// "[<since start> <since previous>] ", the category, ": ", the text and, if
// asked, a newline. An empty text writes nothing.
void trace(const char *category, bool newline, const char *format, ...)
    __attribute__((format(printf, 3, 4)));
