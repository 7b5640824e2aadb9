// Times the XML parser and writer on a generated solution file of 10,000
// files in 20 projects (about 1.5 MB), the size of a large real solution.
// Run by hand: see README.md.
#include "generated_solution.h"
#include "timing.h"

#include "project/xml/xml_document.h"

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace bench;

int main(int argc, char **argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
    const std::string text = generateSolution();

    XMLDocument document;
    const Timing parseTime = best(runs, [] {}, [&] {
        if (!document.parse(text)) {
            std::fprintf(stderr, "parse failed: %s\n", document.errorText.c_str());
            std::exit(1);
        }
    });
    std::string written;
    const Timing writeTime = best(
        runs,
        [&] {
            written.clear();
            written.shrink_to_fit();
        },
        [&] { document.write(written, 2, 75); });
    if (written != text) {
        std::fprintf(stderr, "written text differs from the parsed one\n");
        return 1;
    }
    XMLDocument scratch;
    const Timing deleteTime = best(runs, [&] { scratch.parse(text); },
                                   [&] { delete scratch.takeRoot(); });

    std::printf("document: %zu bytes, %d projects, %d files\n", text.size(), projectCount,
                projectCount * filesPerProject);
    print("parse (keepText false)", parseTime, runs);
    print("write (indent 2, width 75)", writeTime, runs);
    print("delete tree", deleteTime, runs);
    return 0;
}
