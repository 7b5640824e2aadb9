// The installation's imagedump on images that the assembler and linker make
// at test time: 32-bit ARM in both byte orders and the machine's own 64-bit
// format, and files and arguments that it must refuse.

#include "harness.h"

#include <gtest/gtest.h>

#include <filesystem>

using e2e::expectResult;
using e2e::runProgram;
using e2e::Sandbox;

namespace {

const std::string segments = "FLASH,0x08000000,0x10000,RAM,0x20000000,0x5000";

// Beside quillmake, as in an installation.
const std::string imagedump = std::filesystem::path(e2e::quillmakePath()).replace_filename("imagedump");

// 1,000 bytes of code in flash, 300 of initialised data that run in RAM and
// are kept in flash, 2,048 zeroed bytes in RAM.
void makeImage(const Sandbox &box, const std::string &tools, const std::string &endian) {
    box.write("app.s", ".text\n.global _start\n_start:\n.space 1000\n.data\n.space 300\n.bss\n.space 2048\n");
    box.write("app.ld", "MEMORY { FLASH (rx) : ORIGIN = 0x08000000, LENGTH = 64K\n"
                        "         RAM (rw) : ORIGIN = 0x20000000, LENGTH = 20K }\n"
                        "SECTIONS { .text : { *(.text) } > FLASH  .data : { *(.data) } > RAM AT > FLASH\n"
                        "           .bss : { *(.bss) } > RAM }\n");
    std::vector<std::string> as{tools + "as", "app.s", "-o", "app.o"}, ld{tools + "ld", "-T", "app.ld", "app.o",
                                                                           "-o", "app.elf"};
    if (!endian.empty()) {
        as.insert(as.begin() + 1, endian);
        ld.insert(ld.begin() + 1, endian);
    }
    for (const auto &command : {as, ld}) {
        const auto made = runProgram(command, box.path(), {});
        ASSERT_EQ(made.status, 0) << made.err;
    }
}

TEST(Imagedump, CountsDataWhereItRunsAndWhereItIsKept) {
    const std::pair<std::string, std::string> images[] = {
        {"/usr/bin/arm-none-eabi-", ""}, {"/usr/bin/arm-none-eabi-", "-EB"}, {"/usr/bin/", ""}};
    for (const auto &[tools, endian] : images) {
        Sandbox box;
        makeImage(box, tools, endian);
        expectResult(runProgram({imagedump, "app.elf", "-memory-usage", segments + ",EMPTY,0x30000000,0"},
                                box.path(), {}),
                     "Memory usage of app.elf\n"
                     "  FLASH  0x08000000  1,300 of 65,536 bytes   2.0%\n"
                     "  RAM    0x20000000  2,348 of 20,480 bytes  11.5%\n"
                     "  EMPTY  0x30000000      0 of      0 bytes      -\n",
                     "", 0);
    }
}

TEST(Imagedump, RefusesDamagedFilesAndBadArguments) {
    Sandbox box;
    makeImage(box, "/usr/bin/arm-none-eabi-", "");
    box.write("cut.elf", box.read("app.elf").substr(0, 300));
    const std::string usage = "usage: imagedump <image> -memory-usage NAME,START,SIZE[,NAME,START,SIZE...]\n";
    const struct {
        std::vector<std::string> arguments;
        std::string err;
    } rows[] = {
        {{"cut.elf", "-memory-usage", segments},
         "error: 'cut.elf' is truncated or damaged: its section headers lie outside the file\n"},
        {{"app.s", "-memory-usage", segments}, "error: 'app.s' is not an ELF image\n"},
        {{"gone.elf", "-memory-usage", segments}, "error: cannot open 'gone.elf': No such file or directory\n"},
        {{"app.elf", "-memory-usage", "FLASH,0x0"},
         "error: bad memory segment list 'FLASH,0x0': each segment is NAME,START,SIZE\n"},
        {{"app.elf", "-sizes"}, usage + "error: unknown option '-sizes'\n"},
        {{"app.elf"}, "error: nothing to show: give -memory-usage with the memory segments\n"},
        {{"-memory-usage", segments}, usage + "error: no image given\n"},
    };
    for (const auto &row : rows) {
        std::vector<std::string> command{imagedump};
        command.insert(command.end(), row.arguments.begin(), row.arguments.end());
        expectResult(runProgram(command, box.path(), {}), "", row.err, 1);
    }
}

}  // namespace
