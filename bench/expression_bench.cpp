// Times the expression parser as the XML pre-processor uses it: one
// SimpleExpressionParser per element, evaluating a short attribute value.
// Run by hand: see README.md.
#include "support/simple_expression_parser.h"
#include "timing.h"

#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char **argv) {
    const int runs = argc > 1 ? std::atoi(argv[1]) : 20;
    constexpr int elements = 10000;
    const std::string condition = "\"Debug\" == \"Debug\" && (0x20000000 + 4*1024) > 0";
    std::uint64_t sink = 0;

    const bench::Timing construct = bench::best(runs, [] {}, [&] {
        for (int i = 0; i < elements; ++i) {
            SimpleExpressionParser parser;
            sink += parser.addressSize();
        }
    });
    bench::print("construct x10000", construct, runs);

    const bench::Timing perElement = bench::best(runs, [] {}, [&] {
        for (int i = 0; i < elements; ++i) {
            SimpleExpressionParser parser;
            bool ok = false;
            sink += parser.evaluateBoolean(condition, ok) && ok;
        }
    });
    bench::print("construct+evaluate x10000", perElement, runs);

    SimpleExpressionParser shared;
    const bench::Timing reused = bench::best(runs, [] {}, [&] {
        for (int i = 0; i < elements; ++i) {
            bool ok = false;
            sink += shared.evaluateUnsigned("0x08000000 + 512*1024 - 0x100", ok);
        }
    });
    bench::print("evaluate (one parser) x10000", reused, runs);

    return sink == 0 ? 1 : 0;
}
