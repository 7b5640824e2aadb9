// Times macro expansion on generated values: lists of references from 1 MB
// to 10 MB (the time should grow in step with the size), plain text, the
// worst nesting of defaults, a cycle that doubles, and many short values.
// Run by hand: see README.md.
#include "environment/system_macros.h"
#include "support/macro_expansion.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <time.h>

namespace {

double threadMilliseconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

// The fastest of `runs` runs of `work`, in milliseconds of wall-clock and of
// processor time.
template <typename Work> void time(const char *what, int runs, Work work) {
    double wall = 1e300, processor = 1e300;
    size_t size = 0;
    for (int run = 0; run < runs; ++run) {
        const auto start = std::chrono::steady_clock::now();
        const double processorStart = threadMilliseconds();
        size = work();
        processor = std::min(processor, threadMilliseconds() - processorStart);
        const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
        wall = std::min(wall, elapsed.count());
    }
    std::printf("%-40s %9.2f ms wall %9.2f ms cpu  %10zu bytes out  (best of %d)\n", what, wall, processor,
                size, runs);
}

// A file list as a property value holds it, `bytes` long.
std::string referenceList(size_t bytes) {
    std::string text;
    for (int i = 0; text.size() < bytes; ++i)
        text += "$(ProjectDir)/src/$(Configuration)/unit_" + std::to_string(i) + ".c;$(IntDir:obj)/x.o;";
    return text;
}

std::string repeat(const std::string &text, size_t count) {
    std::string result;
    for (size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

} // namespace

int main(int argc, char **argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    SystemMacros macros;
    addStudioMacros(macros, "/opt/studio", {});
    MacroMap local{{"ProjectDir", "$(SolutionDir)/app"},
                   {"SolutionDir", "/home/user/solution"},
                   {"Configuration", "Debug"},
                   {"Loop1", "$(Loop2)$(Loop2)"},
                   {"Loop2", "$(Loop1)$(Loop1)"}};
    for (int i = 1; i <= 40; ++i)
        local["Empty" + std::to_string(i)] =
            "$(Empty" + std::to_string(i - 1) + ")$(Empty" + std::to_string(i - 1) + ")";
    local["Empty0"] = "";

    const auto expand = [&](const std::string &text) {
        return [&macros, &local, text] { return expandMacrosWith(macros, local, text, true, true).size(); };
    };
    for (size_t megabytes : {1, 5, 10}) {
        const std::string label = "reference list, " + std::to_string(megabytes) + " MB";
        time(label.c_str(), runs, expand(referenceList(megabytes << 20)));
    }
    time("plain text, 10 MB", runs, expand(std::string(10 << 20, 'x')));
    const size_t depth = (10 << 20) / 5;
    time("defaults nested 2M deep, 10 MB", runs, expand(repeat("$(A:", depth) + "x" + repeat(")", depth)));
    time("doubling cycle", runs, expand("$(Loop1)"));
    time("doubling without output (all references)", runs, expand("$(Empty40)"));
    time("100,000 short values", runs, [&] {
        size_t size = 0;
        for (int i = 0; i < 100000; ++i)
            size += expandMacrosWith(macros, local, "$(StudioDir)/bin/cc1$(HostEXE)", true, true).size();
        return size;
    });
    return 0;
}
