#include "frontend/run.h"

#include <cstdio>

int quillmakeMain(int, char **argv) {
    std::fprintf(stderr, "%s: error: nothing is available yet\n", argv[0]);
    return 1;
}
