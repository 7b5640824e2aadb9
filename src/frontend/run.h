#pragma once

// The whole life of a quillmake process; returns its exit status.
int quillmakeMain(int argc, char **argv);
