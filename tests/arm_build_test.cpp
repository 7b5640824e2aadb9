// Firmware for ARM cores: the bundled Cortex-M3 example built with Debian's
// arm-none-eabi driver (use_external_gcc) and run on an emulated board, and
// the installation's own tools, which say that they can't run yet.

#include "harness.h"

#include <gtest/gtest.h>

#include <filesystem>

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

TEST(ArmBuild, TheInstallationsOwnToolsSayTheyCannotRunYet) {
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
    expectResult(runQuillmake(box, {"-config", "Debug", "-threadnum", "1", "d.tbp"}), "Compiling 'main.c'\n",
                 "error: compiling, assembling, linking and archiving with the installation's ARM tools are not "
                 "available yet; set use_external_gcc to \"Yes\" to build with an external GNU toolchain\n" +
                     failed,
                 1);
    expectResult(runQuillmake(box, {"-config", "Debug", "-threadnum", "1", "-property", "use_compiler_driver=Yes",
                                    "d.tbp"}),
                 "Compiling 'main.c'\n",
                 "error: building with the installation's compiler driver (use_compiler_driver) is not available "
                 "yet; set use_external_gcc to \"Yes\" to build with an external GNU toolchain\n" +
                     failed,
                 1);
    EXPECT_FALSE(box.exists("obj/main.o"));
}

}  // namespace
