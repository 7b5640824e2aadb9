#include "mathlib.h"

#include <fstream>
#include <iostream>
#include <string>

int main(int argc, char **argv) {
    const long n = argc > 1 ? std::stol(argv[1]) : 10;
    std::cout << "calc (" << BUILD_NAME << "): sum_to(" << n << ") = " << sum_to(n)
              << ", scale_by_eight(" << n << ") = " << scale_by_eight(n) << "\n";
    // The staging project puts calc.txt beside the program.
    const std::string program = argv[0];
    std::ifstream notes(program.substr(0, program.rfind('/') + 1) + "calc.txt");
    std::string line;
    if (std::getline(notes, line))
        std::cout << line << "\n";
    return 0;
}
