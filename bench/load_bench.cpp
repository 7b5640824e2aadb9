// Times the whole load of a solution, pre-processing included: the
// generated 10,000-file solution, and a solution that imports 100 solution
// files of 100 files each. Run by hand: see README.md.
#include "generated_solution.h"
#include "timing.h"

#include "environment/system_macros.h"
#include "build/standard_project_system.h"
#include "support/file_utils.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

using namespace bench;

namespace {

// 100 files of 100 files each and the solution that imports them.
std::string writeImports(const std::string &directory) {
    std::string top = "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"Top\" version=\"2\">\n"
                      "  <configuration Name=\"Debug\" />\n";
    for (int part = 0; part < 100; ++part) {
        const std::string name = "part" + std::to_string(part);
        std::string text = "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"" + name +
                           "\" version=\"2\">\n  <project Name=\"" + name + "\">\n"
                           "    <configuration Name=\"Common\" build_intermediate_directory=\"obj/" +
                           name + "\" />\n    <folder Name=\"Source Files\" filter=\"c\">\n";
        for (int file = 0; file < 100; ++file)
            text += "      <file file_name=\"src/unit_" + std::to_string(file) + ".c\" />\n";
        text += "    </folder>\n  </project>\n</solution>\n";
        std::ofstream(directory + "/" + name + ".tbp") << text;
        top += "  <import file_name=\"" + name + ".tbp\" />\n";
    }
    top += "</solution>\n";
    const std::string file = directory + "/top.tbp";
    std::ofstream(file) << top;
    return file;
}

Timing timeLoads(const std::string &file, int runs) {
    SystemMacros macros;
    StandardProjectSystem system(&macros);
    return best(runs, [] {}, [&] { system.loadSolution(file); });
}

}  // namespace

int main(int argc, char **argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
    const std::string directory = temporaryDirectory() + "/quillmake-load-bench-" + std::to_string(getpid());
    makeDirectories(directory);
    const std::string large = directory + "/large.tbp";
    std::ofstream(large) << generateSolution();
    const std::string imports = writeImports(directory);

    print("10,000-file solution", timeLoads(large, runs), runs);
    print("100 imports of 100 files", timeLoads(imports, runs), runs);
    std::system(("rm -rf '" + directory + "'").c_str());
    return 0;
}
