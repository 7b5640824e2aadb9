// Firmware in the default (direct) form: quillmake compiles with cc1 and as,
// has ldplan write the linker script from memory segments or a memory map
// and a placement file, links with ld or ld.lld against the installation's
// runtime and prints the memory usage; the images run on emulated boards.

#include "harness.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <sstream>

using e2e::expectResult;
using e2e::runProgram;
using e2e::Sandbox;

namespace {

const std::string mps2 = "FLASH RX 0x00000000 0x00400000;RAM RWX 0x20000000 0x00400000";
const std::string install = std::filesystem::path(e2e::quillmakePath()).parent_path().parent_path().string();

// A project "app" of one source file and the installation's start-up file;
// `settings` go into the solution's "Debug" configuration, where -property
// puts its values too.
struct Firmware {
    Sandbox box;
    Firmware(const std::string &settings, const std::string &source, const std::string &text) {
        box.write("fw.tbp", R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Fw" target="8" version="2">
  <configuration Name="Debug" )" + settings + R"( />
  <project Name="app">
    <configuration Name="Common" project_type="Executable" arm_link_debugio_type="Breakpoint"
      build_intermediate_directory="obj" build_output_directory="out" />
    <file file_name=")" + source + R"(" />
    <file file_name="$(StudioDir)/targets/Cortex_M/startup.c" />
  </project>
</solution>
)");
        box.write(source, text);
    }
    e2e::RunResult build(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"-config", "Debug", "-threadnum", "1"});
        arguments.push_back("fw.tbp");
        return e2e::runQuillmake(box, arguments);
    }
    // The image's semihosting output and exit status; a hung image is killed.
    e2e::RunResult run(const std::string &board) {
        return runProgram({"/usr/bin/timeout", "60", "qemu-system-arm", "-M", board, "-nographic",
                           "-semihosting-config", "enable=on,target=native", "-kernel", "out/app.elf"},
                          box.path(), {});
    }
    std::string inspect(const std::string &tool, const std::string &option) {
        return runProgram({"/usr/bin/arm-none-eabi-" + tool, option, "out/app.elf"}, box.path(), {}).out;
    }
    // The value of a symbol of the image, as nm prints it.
    unsigned long symbol(const std::string &name) {
        std::istringstream in(inspect("nm", "-g"));
        for (std::string value, type, found; in >> value >> type >> found;)
            if (found == name)
                return std::stoul(value, nullptr, 16);
        ADD_FAILURE() << name << " is not in the image";
        return 0;
    }
};

// What a link of the Cortex-M3 project runs: ldplan with `placing`, the
// arguments that tell it the memory, ld with `objects`, and imagedump.
std::string linkCommands(const std::string &placing, const std::string &objects, const std::string &usage) {
    const char *symbols[] = {"__STACKSIZE__=2048", "__STACKSIZE_PROCESS__=0", "__STACKSIZE_IRQ__=0",
                             "__STACKSIZE_FIQ__=0", "__STACKSIZE_SVC__=0", "__STACKSIZE_ABT__=0",
                             "__STACKSIZE_UND__=0", "__HEAPSIZE__=1024",
                             "__do_debug_operation=__do_debug_operation_bkpt",
                             "__vfprintf=__vfprintf_float_long_long", "__vfscanf=__vfscanf_long_long"};
    std::string joined, defsyms;
    for (const char *symbol : symbols) {
        joined += (joined.empty() ? "" : ";") + std::string(symbol);
        defsyms += " --defsym=" + std::string(symbol);
    }
    const std::string lib = " " + install + "/lib/lib";
    return install + "/bin/ldplan " + placing + " -check-segment-overflow -check-section-overflow -symbols " +
           joined + " <box>/obj/app.ld\n" + install + "/gcc/arm-none-eabi/bin/ld -X --omagic -EL --gc-sections " +
           "-T<box>/obj/app.ld -Map <box>/out/app.map" + defsyms + " -o <box>/out/app.elf --start-group " + objects +
           lib + "m_v7m_t_le_eabi.a" + lib + "c_v7m_t_le_eabi.a" + lib + "probeio_v7m_t_le_eabi.a" + lib +
           "cm_v7m_t_le_eabi.a --end-group\n" + install + "/bin/imagedump <box>/out/app.elf -memory-usage " + usage +
           "\n";
}

// What compiling `source` into obj/<base>.o runs on a Cortex-M3.
std::string compileCommands(const std::string &source, const std::string &base) {
    const std::string tools = install + "/gcc/arm-none-eabi/bin/";
    return tools + "cc1 -fmessage-length=0 -mcpu=cortex-m3 -mlittle-endian -mfloat-abi=soft -mabi=aapcs -mthumb " +
           "-munaligned-access -mtp=soft -mfp16-format=ieee -nostdinc -isystem" + install +
           "/gcc/arm-none-eabi/include -isystem" + install + "/gcc/arm-none-eabi/include-fixed -isystem" + install +
           "/include -D__ARM_ARCH_7M__ -D__VELDANE_ARM -D__HEAP_SIZE__=1024 -D__VELDANE_MAJOR_VERSION=5 "
           "-D__VELDANE_MINOR_VERSION=4 -D__VELDANE_REVISION=1 -MD <box>/obj/" + base + ".d -MQ <box>/obj/" + base +
           ".o -quiet -g2 -gpubnames -ffunction-sections -fdata-sections " + source + " -o <box>/obj/" + base +
           ".asm\n" + tools + "as --traditional-format -march=armv7-m -mlittle-endian -mfloat-abi=soft -mthumb " +
           "<box>/obj/" + base + ".asm -o <box>/obj/" + base + ".o -g\nrm <box>/obj/" + base + ".asm\n";
}

const std::string objects = "<box>/obj/main.o <box>/obj/startup.o";
const std::string fibonacci =
    "#include <stdio.h>\n"
    "static unsigned fibonacci(unsigned n) { return n < 2 ? n : fibonacci(n - 1) + fibonacci(n - 2); }\n"
    "int main(void) {\n    printf(\"fibonacci(%d) = %u\\n\", 20, fibonacci(20));\n    return 3;\n}\n";

TEST(ArmFirmware, ACortexM3ProgramIsPlacedByLdplanLinkedAndRunsOnTheBoard) {
    Firmware fw("arm_core_type=\"Cortex-M3\" arm_linker_stack_size=\"2048\" linker_print_memory_usage=\"Yes\" "
                "linker_section_placements_segments=\"" + mps2 + "\"",
                "main.c", fibonacci);
    expectResult(fw.build({"-show"}),
                 fw.box.expand(compileCommands("<box>/main.c", "main") +
                               compileCommands(install + "/targets/Cortex_M/startup.c", "startup") +
                               linkCommands("-memory-map-segments " + mps2, objects,
                                            "FLASH,0x0,0x400000,RAM,0x20000000,0x400000")),
                 "", 0);
    EXPECT_FALSE(fw.box.exists("obj/app.ld"));
    expectResult(fw.build({}),
                 fw.box.expand("Linking 'app.elf'\nMemory usage of <box>/out/app.elf\n"
                               "  FLASH  0x00000000  40,592 of 4,194,304 bytes  1.0%\n"
                               "  RAM    0x20000000   5,744 of 4,194,304 bytes  0.1%\n"),
                 "", 0);
    // main's status is the image's.
    expectResult(fw.run("mps2-an385"), "fibonacci(20) = 6765\n", "", 3);

    // The image starts at the start-up code, in Thumb state; the stack has
    // the size the project sets; every section that takes memory lies in
    // its segment.
    char entry[64];
    std::snprintf(entry, sizeof entry, "\n  Entry point address:               0x%lx\n",
                  fw.symbol("Reset_Handler") | 1);
    EXPECT_NE(fw.inspect("readelf", "-h").find(entry), std::string::npos) << entry;
    EXPECT_EQ(fw.symbol("__STACKSIZE__"), 2048u);
    EXPECT_EQ(fw.symbol("__stack_end__") - fw.symbol("__stack_start__"), 2048u);
    std::istringstream sections(fw.inspect("readelf", "-SW"));
    std::string placed;
    for (std::string line; std::getline(sections, line);) {
        std::istringstream fields(line.substr(line.find(']') + 1));
        std::string name, type, address, offset, size, entrySize, flags;
        if (line.find("  [") != 0 || !(fields >> name >> type >> address >> offset >> size >> entrySize >> flags) ||
            flags.find('A') == std::string::npos)
            continue;
        const unsigned long from = std::stoul(address, nullptr, 16), to = from + std::stoul(size, nullptr, 16);
        const char *segment = to <= 0x400000 ? "FLASH" : from >= 0x20000000 && to <= 0x20400000 ? "RAM" : "none";
        placed += name + " " + segment + "\n";
    }
    EXPECT_EQ(placed, ".vectors FLASH\n.text FLASH\n.rodata FLASH\n.init_array FLASH\n.data RAM\n.bss RAM\n"
                      ".heap RAM\n.stack RAM\n");

    // Nothing changed: no ldplan, no link, the image stays as it was.
    const auto linked = std::filesystem::last_write_time(fw.box.at("out/app.elf"));
    expectResult(fw.build({}), "", "", 0);
    EXPECT_EQ(std::filesystem::last_write_time(fw.box.at("out/app.elf")), linked);
    // Other segments make a new script and a new link, and nothing else.
    const std::string smaller = "FLASH RX 0x00000000 0x00200000;RAM RWX 0x20000000 0x00100000";
    expectResult(fw.build({"-echo", "-property", "linker_section_placements_segments=" + smaller}),
                 fw.box.expand(linkCommands("-memory-map-segments " + smaller, objects,
                                            "FLASH,0x0,0x200000,RAM,0x20000000,0x100000") +
                               "Linking 'app.elf'\nMemory usage of <box>/out/app.elf\n"
                               "  FLASH  0x00000000  40,592 of 2,097,152 bytes  1.9%\n"
                               "  RAM    0x20000000   5,744 of 1,048,576 bytes  0.5%\n"),
                 "", 0);
}

// A memory map of the board whose RAM segment has the size `ram`.
void writeMap(const Sandbox &box, const std::string &ram) {
    box.write("map.xml",
              "<Root name=\"mps2\">\n"
              "  <MemorySegment name=\"ROM\" start=\"0x00000000\" size=\"0x00400000\" access=\"ReadOnly\" />\n"
              "  <MemorySegment name=\"SRAM\" start=\"0x20000000\" size=\"" + ram + "\" />\n</Root>\n");
}

TEST(ArmFirmware, AMemoryMapAndAPlacementFileLayOutTheImageAndAnEditedMapRelinks) {
    // The placement puts the stack below .bss.
    const std::string placement = std::string(QUILLMAKE_SOURCE_DIR) + "/tests/fixtures/firmware/placement.xml";
    Firmware fw("arm_core_type=\"Cortex-M3\" arm_linker_stack_size=\"2048\" linker_print_memory_usage=\"Yes\" "
                "linker_memory_map_file=\"map.xml\" linker_section_placement_file=\"" + placement + "\"",
                "main.c", fibonacci);
    writeMap(fw.box, "0x00400000");
    const std::string placing = "-memory-map-file <box>/map.xml -section-placement-file " + placement;
    const std::string usage = "Linking 'app.elf'\nMemory usage of <box>/out/app.elf\n"
                              "  ROM   0x00000000  40,596 of 4,194,304 bytes  1.0%\n";
    expectResult(fw.build({"-echo"}),
                 fw.box.expand(compileCommands("<box>/main.c", "main") +
                               compileCommands(install + "/targets/Cortex_M/startup.c", "startup") +
                               linkCommands(placing, objects, "ROM,0x0,0x400000,SRAM,0x20000000,0x400000") + usage +
                               "  SRAM  0x20000000   5,744 of 4,194,304 bytes  0.1%\n"),
                 "", 0);
    expectResult(fw.run("mps2-an385"), "fibonacci(20) = 6765\n", "", 3);
    EXPECT_EQ(fw.symbol("__stack_end__") - fw.symbol("__stack_start__"), 2048u);
    EXPECT_EQ(fw.symbol("__stack_end__"), fw.symbol("__bss_start__"));

    // A map edited after the link makes a new script and a new link.
    expectResult(fw.build({}), "", "", 0);
    writeMap(fw.box, "0x00100000");
    fw.box.setTime("map.xml", std::time(nullptr) + 2);
    expectResult(fw.build({"-echo"}),
                 fw.box.expand(linkCommands(placing, objects, "ROM,0x0,0x400000,SRAM,0x20000000,0x100000") + usage +
                               "  SRAM  0x20000000   5,744 of 1,048,576 bytes  0.5%\n"),
                 "", 0);
}

TEST(ArmFirmware, HardFloatCppAndTheLlvmLinkerBuildImagesThatRun) {
    const std::string segments = " linker_section_placements_segments=\"" + mps2 + "\"";
    const struct {
        std::string settings, source, text, shows, board, out;
        int status;
    } rows[] = {
        // Float printf with the full C library needs more than the default heap.
        {"arm_core_type=\"Cortex-M4\" arm_fp_abi=\"Hard\" arm_fpu_type=\"FPv4-SP-D16\" arm_linker_heap_size=\"4096\"",
         "main.c",
         "#include <stdio.h>\nint main(void) {\n    volatile float x = 1.5f;\n    const float y = x * x + 0.25f;\n"
         "    printf(\"%d %.3f\\n\", (int)(y * 100), y);\n    return 0;\n}\n",
         "/lib/libc_v7em_fpv4_sp_d16_hard_t_le_eabi.a ", "mps2-an386", "250 2.500\n", 0},
        // Static constructors run before main; the C++ library's headers
        // and the library itself are the variant's.
        {"arm_core_type=\"Cortex-M3\"", "main.cpp",
         "#include <cstdio>\n#include <vector>\nstruct Greeter {\n    int sides;\n"
         "    Greeter() : sides(4) { std::printf(\"constructed\\n\"); }\n};\nstatic Greeter greeter;\n"
         "int main() {\n    std::vector<int> v(greeter.sides, 1);\n"
         "    std::printf(\"main sees %d\\n\", static_cast<int>(v.size()));\n    return v.back() + 3;\n}\n",
         "/gcc/arm-none-eabi/bin/cc1plus ", "mps2-an385", "constructed\nmain sees 4\n", 4},
        {"arm_core_type=\"Cortex-M3\" arm_linker_variant=\"LLVM\"", "main.c", fibonacci,
         "/llvm/bin/ld.lld -EL --gc-sections -T", "mps2-an385", "fibonacci(20) = 6765\n", 3},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.settings);
        Firmware fw(row.settings + segments, row.source, row.text);
        // The command that tells this row from the others.
        const auto shown = fw.build({"-show"});
        EXPECT_NE(shown.out.find(install + row.shows), std::string::npos) << shown.out;
        expectResult(fw.build({}), "", "", 0);
        expectResult(fw.run(row.board), row.out, "", row.status);
    }
}

TEST(ArmFirmware, AProgramTooLargeForItsSegmentOrAMapThatIsNotXmlFailsTheLink) {
    Firmware fw("arm_core_type=\"Cortex-M3\" arm_linker_stack_size=\"2048\" "
                "linker_section_placements_segments=\"FLASH RX 0x00000000 0x00004000;"
                "RAM RWX 0x20000000 0x00400000\"",
                "main.c",
                "const unsigned char table[65536] = {1, 2, 3};\n"
                "int main(void) {\n    volatile unsigned index = 2;\n    return table[index];\n}\n");
    // ldplan's command, then ld's, which is the same for segments and a map.
    const std::string commands = fw.box.expand(linkCommands("-memory-map-file <box>/map.xml", objects, ""));
    const std::size_t ld = commands.find('\n') + 1;
    const auto tooLarge = fw.build({});
    EXPECT_EQ(tooLarge.out, "Error executing " + commands.substr(ld, commands.find('\n', ld) + 1 - ld));
    EXPECT_NE(tooLarge.err.find("\n" + install + "/gcc/arm-none-eabi/bin/ld: section .rodata does not fit in "
                                                 "segment FLASH\n"),
              std::string::npos)
        << tooLarge.err;
    EXPECT_EQ(tooLarge.status, 1);
    EXPECT_FALSE(fw.box.exists("out/app.elf"));

    fw.box.write("map.xml", "FLASH 0x0 0x4000\n");
    expectResult(fw.build({"-property", "linker_memory_map_file=map.xml"}), "Error executing " + commands.substr(0, ld),
                 fw.box.expand("Generating linker script 'app.ld'\nldplan: error: memory map file '<box>/map.xml' is "
                               "not an XML document\nBuild failed, exit status 0x1\nThere were 1 build errors\n"),
                 1);
}

}  // namespace
