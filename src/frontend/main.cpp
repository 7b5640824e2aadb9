#include "frontend/run.h"

int main(int argc, char **argv) { return quillmakeMain(argc, argv); }
