#pragma once

// The allocated sections of an ELF image, read from its section and program
// headers: 32 or 64 bits, either byte order.

#include <cstdint>
#include <string>
#include <vector>

namespace imagedump {

// A section that takes room in the target's memory.
struct AllocatedSection {
    std::uint64_t runAddress = 0;   // where the program uses it (sh_addr)
    std::uint64_t loadAddress = 0;  // where the image holds it, by its load segment
    std::uint64_t size = 0;
    bool loaded = false;            // it has contents in the image (not .bss)
};

// Reads the sections of the image at path; false with error set to a
// sentence when the file can't be read or isn't a sound ELF image.
bool readAllocatedSections(const std::string &path, std::vector<AllocatedSection> &sections, std::string &error);

}  // namespace imagedump
