#pragma once

#include <string>

// The solution file that the benchmarks work on: 10,000 files in 20
// projects (about 1.5 MB), the size of a large real solution. Values are
// stored at every level: solution, project, folder and file.
namespace bench {

const int projectCount = 20;
const int filesPerProject = 500;
const int filesPerFolder = 50;

std::string generateSolution();

}  // namespace bench
