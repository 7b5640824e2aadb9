// Firmware for ARM cores: the bundled Cortex-M3 example built with Debian's
// arm-none-eabi driver (use_external_gcc) and run on an emulated board; a
// library built in the direct form for several cores, with gcc and clang;
// and what the installation can't run yet.

#include "harness.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

using e2e::expectResult;
using e2e::runProgram;
using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

// A clean copy of examples/cortex-m3, without what a user built there.
struct CortexM3Example {
    Sandbox box;
    CortexM3Example() {
        const auto copied = runProgram(
            {"/bin/cp", "-R", std::string(QUILLMAKE_SOURCE_DIR) + "/examples/cortex-m3/.", box.path()}, box.path(), {});
        EXPECT_EQ(copied.status, 0) << copied.err;
        std::filesystem::remove_all(box.at("Output"));
    }
    e2e::RunResult build(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"-config", "Debug", "-threadnum", "1"});
        arguments.push_back("cortex-m3.tbp");
        return runQuillmake(box, arguments);
    }
    // The image on the mps2-an385 board, its semihosting output and exit
    // status; a hung image is killed.
    e2e::RunResult run() {
        return runProgram({"/usr/bin/timeout", "60", "qemu-system-arm", "-M", "mps2-an385", "-nographic",
                           "-semihosting-config", "enable=on,target=native", "-kernel", "Output/Debug/hello.axf"},
                          box.path(), {});
    }
};

std::string compile(const std::string &language, const std::string &project, const std::string &file) {
    const std::string base = file.substr(0, file.find('.'));
    const std::string object = "Output/Debug/Obj/" + project + "/" + base + ".o";
    return "arm-none-eabi-gcc " + language +
           " -c -fmessage-length=0 -march=armv7-m -mlittle-endian -mfloat-abi=soft -mthumb -munaligned-access -MD "
           "-MF <box>/Output/Debug/Obj/" +
           project + "/" + base + ".d -MQ " + object + " -ffunction-sections -fdata-sections -g2 -gpubnames -Og <box>/" +
           file + " -o " + object + "\n";
}

TEST(ArmBuild, AnExternalGccBuildsFirmwareForTheCoreThatRunsOnTheBoard) {
    CortexM3Example example;
    const std::string commands =
        compile("-xc", "scale", "scale.c") +
        "rm <box>/Output/Debug/scale.a\n"
        "arm-none-eabi-ar -rcs Output/Debug/scale.a <box>/Output/Debug/Obj/scale/scale.o\n"
        "arm-none-eabi-ranlib Output/Debug/scale.a\n" +
        compile("-xc", "hello", "main.c") + compile("-xassembler-with-cpp", "hello", "startup.s") +
        "arm-none-eabi-gcc -g -Wl,--gc-sections -Wl,-Map,Output/Debug/hello.map -Wl,--start-group "
        "<box>/Output/Debug/Obj/hello/main.o <box>/Output/Debug/Obj/hello/startup.o <box>/Output/Debug/scale.a "
        "-Wl,--end-group --specs=rdimon.specs -o Output/Debug/hello.axf -march=armv7-m -mlittle-endian "
        "-mfloat-abi=soft -T<box>/board.ld\n";
    expectResult(example.build({"-echo"}), example.box.expand(commands), "", 0);
    expectResult(example.run(), "hello from a Cortex-M3: scale(7) = 42\n", "", 0);
    // The objects are Thumb-2 code for an ARMv7-M core, without floating
    // point registers.
    const auto attributes =
        runProgram({"/usr/bin/arm-none-eabi-readelf", "-A", "Output/Debug/Obj/hello/main.o"}, example.box.path(), {});
    EXPECT_EQ(attributes.out.substr(0, attributes.out.find("  Tag_ABI_PCS_wchar_t")),
              "Attribute Section: aeabi\nFile Attributes\n  Tag_CPU_name: \"7-M\"\n  Tag_CPU_arch: v7\n"
              "  Tag_CPU_arch_profile: Microcontroller\n  Tag_THUMB_ISA_use: Thumb-2\n");
    expectResult(example.build({}), "", "", 0);

    // A core named on the command line fixes the architecture, and its
    // float ABI and FPU reach every compile and the link.
    const auto shown = example.build({"-show", "-rebuild", "-property", "arm_core_type=Cortex-M4", "-property",
                                      "arm_fp_abi=Hard", "-property", "arm_fpu_type=FPv4-SP-D16"});
    EXPECT_EQ(shown.status, 0) << shown.err;
    EXPECT_NE(shown.out.find("-c -fmessage-length=0 -march=armv7e-m -mlittle-endian -mfloat-abi=hard "
                             "-mfpu=fpv4-sp-d16 -mthumb -munaligned-access -MD"),
              std::string::npos)
        << shown.out;
    EXPECT_NE(shown.out.find("-o Output/Debug/hello.axf -march=armv7e-m -mlittle-endian -mfloat-abi=hard "
                             "-mfpu=fpv4-sp-d16 -T"),
              std::string::npos)
        << shown.out;
}

// A library of a C, a C++ and an assembly file in the direct form, where
// quillmake runs the installation's cc1, cc1plus, as and ar itself; the core
// is the solution's, so that -property can change it.
struct DirectLibrary {
    Sandbox box;
    DirectLibrary() {
        box.write("lib.tbp", R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Direct" target="8" version="2">
  <configuration Name="Debug" />
  <configuration Name="Common" arm_core_type="Cortex-M3" />
  <project Name="parts">
    <configuration Name="Common" build_intermediate_directory="obj" build_output_directory="out" project_type="Library" />
    <file file_name="count.c" />
    <file file_name="shape.cpp" />
    <file file_name="fast.s" />
  </project>
</solution>
)");
        box.write("count.c", "#include <stdint.h>\n#include <string.h>\n"
                             "uint32_t count_bytes(const char *text) { return (uint32_t)strlen(text); }\n");
        box.write("shape.cpp", "#include <stddef.h>\nstruct Shape { virtual int sides() const = 0; };\n"
                               "struct Square : Shape { int sides() const override { return 4; } };\n"
                               "extern \"C\" int square_sides() { Square s; const Shape &shape = s; return shape.sides(); }\n");
        box.write("fast.s", "    .syntax unified\n    .thumb\n    .text\n    .global fast_double\n    .thumb_func\n"
                            "fast_double:\n    lsls r0, r0, #1\n    bx lr\n");
    }
    e2e::RunResult build(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"-config", "Debug", "-threadnum", "1"});
        arguments.push_back("lib.tbp");
        return runQuillmake(box, arguments);
    }
    // The attributes of an object that tell its core, Thumb use and float
    // ABI, one line each.
    std::string attributes(const std::string &object) {
        const auto read = runProgram({"/usr/bin/arm-none-eabi-readelf", "-A", "obj/" + object}, box.path(), {});
        std::string lines;
        std::istringstream in(read.out);
        for (std::string line; std::getline(in, line);)
            for (const char *tag : {"Tag_CPU_arch:", "Tag_THUMB_ISA_use:", "Tag_FP_arch:", "Tag_ABI_VFP_args:"})
                if (line.find(tag) != std::string::npos)
                    lines += line.substr(line.find(tag)) + "\n";
        return lines;
    }
};

TEST(ArmBuild, TheDirectFormCompilesAssemblesAndArchivesForEachCore) {
    DirectLibrary library;
    const std::string hard = "Tag_FP_arch: VFPv4-D16\nTag_ABI_VFP_args: VFP registers\n";
    const std::string m4 = "Tag_CPU_arch: v7E-M\nTag_THUMB_ISA_use: Thumb-2\n";
    const struct {
        std::vector<std::string> properties;
        std::string compiled, assembled;
    } rows[] = {
        {{"arm_core_type=Cortex-M0+"}, "Tag_CPU_arch: v6S-M\nTag_THUMB_ISA_use: Thumb-1\n",
         "Tag_CPU_arch: v6-M\nTag_THUMB_ISA_use: Thumb-1\n"},
        {{}, "Tag_CPU_arch: v7\nTag_THUMB_ISA_use: Thumb-2\n", "Tag_CPU_arch: v7\nTag_THUMB_ISA_use: Thumb-2\n"},
        {{"arm_core_type=Cortex-M4", "arm_fp_abi=Hard", "arm_fpu_type=FPv4-SP-D16"}, m4 + hard,
         m4 + "Tag_FP_arch: VFPv4-D16\n"},
        {{"arm_core_type=Cortex-M33"}, "Tag_CPU_arch: v8-M.mainline\nTag_THUMB_ISA_use: Yes\n",
         "Tag_CPU_arch: v8-M.mainline\nTag_THUMB_ISA_use: Yes\n"},
        // clang's back end and assembler for the same target.
        {{"arm_core_type=Cortex-M4", "arm_fp_abi=Hard", "arm_fpu_type=FPv4-SP-D16", "arm_compiler_variant=clang",
          "arm_assembler_variant=clang"},
         m4 + hard, m4 + "Tag_FP_arch: VFPv4-D16\n"},
    };
    for (const auto &row : rows) {
        std::vector<std::string> arguments{"-rebuild"};
        for (const std::string &property : row.properties)
            arguments.insert(arguments.end(), {"-property", property});
        expectResult(library.build(arguments), "", "", 0);
        EXPECT_EQ(library.attributes("count.o"), row.compiled) << row.properties.size();
        EXPECT_EQ(library.attributes("shape.o"), row.compiled) << row.properties.size();
        EXPECT_EQ(library.attributes("fast.o"), row.assembled) << row.properties.size();
        // Neither the assembly nor the preprocessed source stays behind.
        EXPECT_FALSE(library.box.exists("obj/count.asm") || library.box.exists("obj/fast_PP.s"));
        const auto symbols =
            runProgram({"/usr/bin/arm-none-eabi-nm", "-g", "--defined-only", "out/parts.a"}, library.box.path(), {});
        EXPECT_NE(symbols.out.find("\ncount.o:\n00000000 T count_bytes\n"), std::string::npos) << symbols.out;
        EXPECT_NE(symbols.out.find("00000000 T square_sides\n"), std::string::npos) << symbols.out;
        EXPECT_NE(symbols.out.find("\nfast.o:\n00000000 T fast_double\n"), std::string::npos) << symbols.out;
    }
}

TEST(ArmBuild, TheDirectFormShowsItsCommandsAndPassesCompileErrorsOn) {
    DirectLibrary library;
    const std::string install = std::filesystem::path(e2e::quillmakePath()).parent_path().parent_path().string();
    const std::string tools = install + "/gcc/arm-none-eabi/bin/";
    // The C++ library's headers come first in a C++ compile, the variant's
    // configuration among them.
    const std::string cppHeaders = " -isystem" + install + "/gcc/arm-none-eabi/c++ -isystem" + install +
                                   "/gcc/arm-none-eabi/c++-config/_v7m_t_le_eabi -isystem" + install +
                                   "/gcc/arm-none-eabi/c++/backward";
    const std::string headers =
        " -isystem" + install + "/gcc/arm-none-eabi/include -isystem" + install +
        "/gcc/arm-none-eabi/include-fixed -isystem" + install +
        "/include -D__ARM_ARCH_7M__ -D__VELDANE_ARM -D__HEAP_SIZE__=1024 -D__VELDANE_MAJOR_VERSION=5 "
        "-D__VELDANE_MINOR_VERSION=4 -D__VELDANE_REVISION=1 -MD <box>/obj/";
    const std::string preprocessor = " -nostdinc" + headers;
    const std::string target = " -mcpu=cortex-m3 -mlittle-endian -mfloat-abi=soft -mabi=aapcs -mthumb "
                               "-munaligned-access -mtp=soft -mfp16-format=ieee";
    const std::string assembler = tools + "as --traditional-format -march=armv7-m -mlittle-endian -mfloat-abi=soft -mthumb <box>/obj/";
    const std::string commands =
        tools + "cc1 -fmessage-length=0" + target + preprocessor + "count.d -MQ <box>/obj/count.o -quiet -g2 -gpubnames " +
        "-ffunction-sections -fdata-sections <box>/count.c -o <box>/obj/count.asm\n" + assembler +
        "count.asm -o <box>/obj/count.o -g\nrm <box>/obj/count.asm\n" + tools +
        "cc1plus -fmessage-length=0 -fno-exceptions -fno-rtti" + target + " -nostdinc" + cppHeaders + headers +
        "shape.d -MQ <box>/obj/shape.o -quiet -g2 -gpubnames -ffunction-sections -fdata-sections <box>/shape.cpp " +
        "-o <box>/obj/shape.asm\n" + assembler + "shape.asm -o <box>/obj/shape.o -g\nrm <box>/obj/shape.asm\n" +
        tools + "cc1 -fmessage-length=0 -lang-asm -E -march=armv7-m -mlittle-endian -mfloat-abi=soft -mthumb " +
        "-munaligned-access" + preprocessor + "fast.d -MQ <box>/obj/fast.o -quiet <box>/fast.s -o <box>/obj/fast_PP.s\n" +
        assembler + "fast_PP.s -o <box>/obj/fast.o -g\nrm <box>/obj/fast_PP.s\nrm <box>/out/parts.a\n" + tools +
        "ar -rcs out/parts.a <box>/obj/count.o <box>/obj/shape.o <box>/obj/fast.o\n";
    expectResult(library.build({"-show"}), library.box.expand(commands), "", 0);
    EXPECT_FALSE(library.box.exists("obj/count.o"));
    expectResult(library.build({"-echo"}), library.box.expand(commands), "", 0);
    expectResult(library.build({}), "", "", 0);

    library.box.write("count.c", "int broken(void) { return missing; }\n");
    // The compiler's own words reach the user; the command that failed is
    // named.
    const std::string compile = commands.substr(0, commands.find('\n'));
    expectResult(library.build({"-rebuild"}), library.box.expand("Error executing " + compile + "\n"),
                 library.box.expand("Compiling 'count.c'\n<box>/count.c: In function 'broken':\n<box>/count.c:1:27: "
                                    "error: 'missing' undeclared (first use in this function)\n"
                                    "    1 | int broken(void) { return missing; }\n"
                                    "      |                           ^~~~~~~\n"
                                    "<box>/count.c:1:27: note: each undeclared identifier is reported only once for "
                                    "each function it appears in\nBuild failed, exit status 0x1\n"
                                    "There were 1 build errors\n"),
                 1);
}

// A link with nothing to place the program by, and the installation's
// driver, which isn't there: each says so and runs nothing.
TEST(ArmBuild, ALinkWithoutScriptMapOrSegmentsAndTheInstallationsDriverSayWhy) {
    Sandbox box;
    box.write("d.tbp", R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="D" target="8" version="2">
  <configuration Name="Debug" />
  <project Name="app">
    <configuration Name="Common" project_type="Executable" arm_core_type="Cortex-M4" build_intermediate_directory="obj" />
    <file file_name="main.c" />
  </project>
</solution>
)");
    box.write("main.c", "int main(void) { return 0; }\n");
    const std::string failed = "Build failed, exit status 0x1\nThere were 2 build errors\n";
    expectResult(runQuillmake(box, {"-config", "Debug", "-threadnum", "1", "d.tbp"}),
                 "Checking Linker Control Files\n",
                 "no linker script, memory map file or memory segments specified\n" + failed, 1);
    EXPECT_TRUE(box.exists("obj/main.o"));
    // Files that are named and missing.
    const std::tuple<std::vector<std::string>, const char *, const char *> missing[] = {
        {{"linker_memory_map_file=missing.xml"}, "Locating Memory Map File\n",
         "Memory map file 'missing.xml' does not exist.\n"},
        {{"linker_section_placements_segments=FLASH RX 0x0 0x1000", "linker_section_placement_file=nope.xml"},
         "Locating Section Placement File\n", "Section placement file 'nope.xml' does not exist.\n"},
        {{"link_use_linker_script_file=Yes", "link_linker_script_file=nope.ld"}, "Locating Linker Script File\n",
         "Linker script file 'nope.ld' does not exist.\n"},
    };
    for (const auto &[properties, out, err] : missing) {
        std::vector<std::string> arguments{"-config", "Debug", "-threadnum", "1"};
        for (const std::string &property : properties)
            arguments.insert(arguments.end(), {"-property", property});
        arguments.push_back("d.tbp");
        expectResult(runQuillmake(box, arguments), out, err + failed, 1);
    }
    expectResult(runQuillmake(box, {"-config", "Debug", "-threadnum", "1", "-rebuild", "-property",
                                    "use_compiler_driver=Yes", "d.tbp"}),
                 "Compiling 'main.c'\n",
                 "error: building with the installation's compiler driver (use_compiler_driver) is not available "
                 "yet; set use_external_gcc to \"Yes\" to build with an external GNU toolchain\n" +
                     failed,
                 1);
}

}  // namespace
