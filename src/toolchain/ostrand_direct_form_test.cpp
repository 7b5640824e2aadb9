// The ARM toolchain's own commands: the compiler proper, the assembler,
// objcopy and ar as the build runs them for a Cortex-M3, and the steps
// whose tools the installation doesn't have yet.

#include "environment/version.h"
#include "toolchain/arm/arm_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include <gtest/gtest.h>

namespace {

using Arm = Toolchain<ARMProjectSystem>;

const std::string bin = "command @ | /studio/gcc/arm-none-eabi/bin/", clang = "command @ | /studio/llvm/bin/clang";
const std::string gccM3 = "-mcpu=cortex-m3 -mlittle-endian -mfloat-abi=soft -mabi=aapcs -mthumb -munaligned-access "
                          "-mtp=soft -mfp16-format=ieee -nostdinc";
const std::string gasM3 = "-march=armv7-m -mlittle-endian -mfloat-abi=soft -mthumb";
const std::string clangM3 = "-triple thumbv7m-none-eabi -target-cpu cortex-m3 -target-feature -strict-align";
const std::string clangFloat = " -target-feature +soft-float -target-feature +soft-float-abi -msoft-float "
                               "-target-abi aapcs -mfloat-abi soft";
const std::string clangCompile = clangM3 + clangFloat +
                                 " -fno-signed-char -fnative-half-type -fnative-half-arguments-and-returns -mllvm "
                                 "-arm-global-merge=false -nostdsysteminc -nobuiltininc";
const std::string cc1 = "-cc1 -disable-free -disable-llvm-verifier -mrelocation-model static -mconstructor-aliases -x ";
const std::string defines = "-D__ARM_ARCH_7M__ -D__VELDANE_ARM -D__HEAP_SIZE__=1024 -D__VELDANE_MAJOR_VERSION=" +
                            std::to_string(Version::major) + " -D__VELDANE_MINOR_VERSION=" +
                            std::to_string(Version::minor) + " -D__VELDANE_REVISION=" +
                            std::to_string(Version::revision);

struct Row {
    std::string name, attributes;
    int step;
    std::string input, output;
    Lines expected;
};

TEST(OstrandDirectForm, CompileAndAssemblyCommands) {
    const std::string compiling = "begin Compiling 'm.cpp'";
    const Row rows[] = {
        {"gcc C, relative paths, preprocessed text kept, listing",
         "arm_supply_absolute_file_path=\"No\" c_user_include_directories=\"inc\" c_preprocessor_definitions=\"X=1\" "
         "build_quietly=\"No\" gcc_c_language_standard=\"gnu17\" arm_unwind_tables=\"Yes\" asm_generate_listing_file="
         "\"Yes\" arm_keep_preprocessor_output=\"Yes\" c_additional_options=\"-Wshadow\" c_asm_additional_options="
         "\"--fatal-warnings\"",
         2, "m.c", "obj/m.o",
         {"begin Preprocessing m.cpp",
          bin + "cc1 -fmessage-length=0 -funwind-tables -std=gnu17 " + gccM3 + " -isystem/studio/include -Iinc " +
              defines + " -DX=1 -MD obj/m.d -MQ obj/m.o -v -Wshadow -g2 -gpubnames -ffunction-sections "
                        "-fdata-sections m.c -E -o obj/m_PP.c | @/obj/m_PP.c",
          "end", compiling,
          bin + "cc1 -fmessage-length=0 -funwind-tables -std=gnu17 " + gccM3 +
              " -v -Wshadow -g2 -gpubnames -ffunction-sections -fdata-sections -fpreprocessed obj/m_PP.c -o obj/m.asm"
              " | @/obj/m.asm",
          bin + "as --traditional-format -Iinc " + gasM3 + " obj/m.asm -o obj/m.o --fatal-warnings -g | @/obj/m.o",
          "delete @/obj/m.asm", bin + "objdump obj/m.o -d -S > @/obj/m.lst | ", "end"}},
        {"gcc C++, assembly kept, precompiled header",
         "cpp_enable_exceptions=\"Yes\" gcc_enable_coroutines=\"Yes\" arm_keep_assembly=\"Yes\" "
         "gcc_cplusplus_language_standard=\"c++1z\" build_generate_dependency_file=\"User Header Files Only\" "
         "file_codec=\"UTF-8\" gcc_enable_all_warnings=\"Yes\" gcc_optimization_level=\"Optimize For More Size\" "
         "gcc_has_Oz_optimization_level=\"No\" c_ignore_includes=\"Yes\" gcc_enable_precompiled_header=\"Yes\" "
         "gcc_precompiled_header=\"Yes\"",
         3, "m.cpp", "obj/m.o",
         {compiling,
          bin + "cc1plus -fmessage-length=0 -std=c++17 -fno-rtti " + gccM3 + " " + defines +
              " -MMD @/obj/m.d -MQ @/obj/m.o -Wall -Wextra -quiet -finput-charset=UTF-8 -fcoroutines -g2 -gpubnames "
              "-Os -ffunction-sections -fdata-sections @/m.cpp -o @/obj/m.asm -include @/h.h -Winvalid-pch | "
              "@/obj/m.asm",
          bin + "as --traditional-format " + gasM3 + " @/obj/m.asm -o @/obj/m.o -g | @/obj/m.o", "end"}},
        {"gcc precompiled header", "gcc_enable_precompiled_header=\"Yes\" gcc_precompiled_header=\"Yes\" "
         "c_ignore_includes=\"Yes\" build_debug_information=\"No\"", 3, "h.h", "h.h.gch",
         {"begin Compiling 'h.h'",
          bin + "cc1plus -fmessage-length=0 -fno-exceptions -fno-rtti " + gccM3 + " " + defines +
              " -MD @/obj/h.h.d -MQ @/h.h.gch -quiet -ffunction-sections -fdata-sections @/h.h -o @/obj/h.asm "
              "--output-pch=@/h.h.gch | @/obj/h.asm",
          "delete @/obj/h.asm", "end"}},
        {"clang C to bitcode, blank in the output",
         "arm_compiler_variant=\"clang\" generate_stack_sizes=\"Yes\" gcc_strict_aliasing=\"No\" "
         "gcc_omit_frame_pointer=\"No\" clang_machine_outliner=\"Yes\" gcc_wchar_size=\"16-Bit\" gcc_dwarf_version="
         "\"dwarf-4\" gcc_debugging_level=\"Level 3\" link_time_optimization=\"Yes\" arm_math_errno=\"No\" "
         "c_system_include_directories=\"\"",
         2, "m.c", "obj/m x.bc",
         {compiling,
          clang + " " + cc1 + "c -fmessage-length=0 " + clangCompile + " -D__SHORT_WCHAR -D__SIZEOF_WCHAR_T=2 " +
              defines + " -dependency-file @/obj/m x.d -sys-header-deps -MT @/obj/m\\ x.bc -fstack-size-section "
                        "-dwarf-version=4 -debug-info-kind=standalone -debug-info-macro -debugger-tuning=gdb -mllvm "
                        "-generate-arange-section -gpubnames -fno-dwarf-directory-asm -mframe-pointer=all "
                        "-ffunction-sections -fdata-sections -relaxed-aliasing -mllvm -enable-machine-outliner "
                        "-fwchar-type=short -main-file-name m.c @/m.c -emit-llvm-bc -o @/obj/m x.bc | @/obj/m x.bc",
          "end"}},
        {"clang C++ from kept preprocessed text, precompiled header",
         "arm_compiler_variant=\"clang\" cpp_enable_exceptions=\"Yes\" clang_thread_model=\"single\" "
         "arm_keep_preprocessor_output=\"Yes\" build_debug_information=\"No\" c_ignore_includes=\"Yes\" "
         "gcc_enable_precompiled_header=\"Yes\" gcc_precompiled_header=\"Yes\"",
         3, "m.cpp", "obj/m.o",
         {"begin Preprocessing m.cpp",
          clang + " " + cc1 + "c++ -funwind-tables=1 -fcxx-exceptions -fexceptions -fno-rtti -fmessage-length=0 " +
              clangCompile + " " + defines + " -dependency-file @/obj/m.d -sys-header-deps -MT @/obj/m.o "
              "-mthread-model single -ffunction-sections -fdata-sections -main-file-name m.cpp @/m.cpp -E -o "
              "@/obj/m_PP.cpp | @/obj/m_PP.cpp",
          "end", compiling,
          clang + " " + cc1 + "c++ -funwind-tables=1 -fcxx-exceptions -fexceptions -fno-rtti -fmessage-length=0 " +
              clangCompile + " -mthread-model single -ffunction-sections -fdata-sections -main-file-name m.cpp -x "
              "c++-cpp-output @/obj/m_PP.cpp -emit-obj -o @/obj/m.o -include-pch @/h.h.pch | @/obj/m.o",
          "end"}},
        {"a file of type Preprocess", "file_type=\"Preprocess\" c_ignore_includes=\"Yes\"", 2, "m.c", "m.i",
         {"begin Preprocessing m.cpp",
          bin + "cc1 -fmessage-length=0 " + gccM3 + " " + defines + " -MD @/obj/m.d -MQ @/m.i -quiet -g2 -gpubnames "
              "-ffunction-sections -fdata-sections @/m.c -E -o @/m.i | @/m.i",
          "end"}},
        {"gas after the preprocessor", "build_debug_information=\"No\" c_ignore_includes=\"Yes\"", 4, "s.s", "obj/s.o",
         {"begin Preprocessing 'm.cpp'",
          bin + "cc1 -fmessage-length=0 -lang-asm -E -P " + gasM3 + " -munaligned-access -nostdinc " + defines +
              " -MD @/obj/s.d -MQ @/obj/s.o -quiet @/s.s -o @/obj/s_PP.s | @/obj/s_PP.s",
          bin + "as --traditional-format " + gasM3 + " @/obj/s_PP.s -o @/obj/s.o | @/obj/s.o", "delete @/obj/s_PP.s",
          "end"}},
        {"gas alone, a section renamed",
         "arm_preprocess_assembly_code=\"No\" default_data_section=\".mydata\" asm_generate_listing_file=\"Yes\" "
         "gcc_dwarf_version=\"dwarf-3\" c_user_include_directories=\"inc\"",
         4, "s.s", "obj/s.o",
         {"begin Assembling 'm.cpp'",
          bin + "as --traditional-format -Iinc " + gasM3 + " @/s.s --MD @/obj/s.d -o @/obj/s_prerename.o "
              "-adhlns=@/obj/s.lst -g -gdwarf-3 | @/obj/s_prerename.o",
          bin + "objcopy @/obj/s_prerename.o @/obj/s.o --rename-section .data=.mydata | @/obj/s.o",
          "delete @/obj/s_prerename.o", "end"}},
        {"clang's assembler, preprocessed text kept, a section renamed, listing",
         "arm_assembler_variant=\"clang\" asm_generate_listing_file=\"Yes\" arm_keep_preprocessor_output=\"Yes\" "
         "default_code_section=\".code\" c_ignore_includes=\"Yes\"",
         4, "s.s", "obj/s.o",
         {"begin Preprocessing 'm.cpp'",
          clang + " " + cc1 + "assembler-with-cpp -fmessage-length=0 -E " + clangM3 + clangFloat +
              " -nostdsysteminc -nobuiltininc " + defines +
              " -dependency-file @/obj/s.d -sys-header-deps -MT @/obj/s.o @/s.s -o @/obj/s_PP.s | @/obj/s_PP.s",
          clang + " -cc1as -filetype obj -mrelocation-model static " + clangM3 +
              " -mllvm -arm-add-build-attributes @/obj/s_PP.s -o @/obj/s_prerename.o -debug-info-kind=standalone "
              "-debugger-tuning=gdb | @/obj/s_prerename.o",
          bin + "objcopy @/obj/s_prerename.o @/obj/s.o --rename-section .text=.code | @/obj/s.o",
          "delete @/obj/s_prerename.o", bin + "objdump @/obj/s.o -d -S > @/obj/s.lst | ", "end"}},
    };
    for (const Row &row : rows) {
        Arm arm("arm_core_type=\"Cortex-M3\" " + row.attributes);
        ProjectElement *element = row.input == "h.h" ? arm.header : arm.source;
        EXPECT_EQ(arm.step(element, row.step, row.output, {arm.directory / row.input}), row.expected) << row.name;
    }
}

TEST(OstrandDirectForm, OutputsOfPrecompiledHeadersAndBitcode) {
    const std::string pch = "gcc_enable_precompiled_header=\"Yes\" gcc_precompiled_header=\"Yes\" ";
    Arm gcc(pch), llvm(pch + "arm_compiler_variant=\"clang\" link_time_optimization=\"Yes\"");
    EXPECT_EQ(gcc.system.outputFilePath(3, gcc.header, "Debug"), gcc.directory / "h.h.gch");
    EXPECT_EQ(llvm.system.outputFilePath(3, llvm.header, "Debug"), llvm.directory / "h.h.pch");
    EXPECT_EQ(llvm.system.outputFilePath(3, llvm.source, "Debug"), llvm.directory / "obj/m.bc");
    EXPECT_EQ(gcc.system.outputFilePath(3, gcc.source, "Debug"), gcc.directory / "obj/m.o");
}

TEST(OstrandDirectForm, PreprocessingOnRequestWritesThePPFile) {
    Arm arm("arm_core_type=\"Cortex-M3\" c_ignore_includes=\"Yes\"");
    std::string result;
    arm.system.preprocessFile(arm.source, "Debug", &arm.recorder, true, {}, &result);
    EXPECT_EQ(result, arm.directory / "obj/m_PP.cpp");
    EXPECT_EQ(arm.recorder.lines, (Lines{"begin Preprocessing m.cpp",
                                         bin + "cc1plus -fmessage-length=0 -fno-exceptions -fno-rtti -dM -E -quiet " +
                                             gccM3 + " " + defines + " @/m.cpp -o @/obj/m_PP.cpp | @/obj/m_PP.cpp",
                                         "end"}));
}

TEST(OstrandDirectForm, AnArchiveTakesUpTo99InputsAsArguments) {
    for (const std::size_t count : {99u, 100u}) {
        Arm arm("linker_use_indirect_files=\"Auto\" linker_keep_indirect_files=\"No\"");
        StringList inputs;
        std::string arguments;
        for (std::size_t i = 0; i < count; ++i) {
            inputs.push_back("o" + std::to_string(i) + ".o");
            arguments += " \"" + inputs.back() + "\"";
        }
        const std::string ar = bin + "ar -rcs out/P.a ";
        const Lines expected = count == 99 ? Lines{"begin Archiving 'P.a'", "delete @/out/P.a",
                                                   ar + RecordingBuilder::joined(inputs).substr(1) + " | @/out/P.a",
                                                   "end"}
                                           : Lines{"begin Archiving 'P.a'", "delete @/out/P.a",
                                                   "write @/obj/P.ind |" + arguments,
                                                   ar + "@obj/P.ind | @/out/P.a", "delete @/obj/P.ind", "end"};
        EXPECT_EQ(arm.step(arm.project, 8, "out/P.a", inputs), expected) << count;
    }
}

TEST(OstrandDirectForm, StepsThatNeedToolsTheInstallationLacksSaySo) {
    const std::tuple<const char *, int, const char *> rows[] = {
        {"generate_stack_sizes=\"Yes\"", 2, "error: the stack tally of a gcc compile (generate_stack_sizes) is not "
                                            "available yet"},
        {"link_time_optimization=\"Yes\"", 3, "error: debug information with link-time optimization of a gcc "
                                              "compile (link_time_optimization) is not available yet"},
        {"arm_compiler_variant=\"Brenlow\"", 2, "error: the Brenlow compiler (arm_compiler_variant) is not "
                                                "available yet"},
        {"arm_assembler_variant=\"Brenlow\"", 4, "error: the Brenlow assembler (arm_assembler_variant) is not "
                                                 "available yet"},
        {"gcc_enable_modules=\"Yes\" arm_compiler_variant=\"clang\"", 3,
         "error: C++ modules (gcc_enable_modules) with the installation's tools are not available yet; set "
         "use_external_gcc to \"Yes\" to build them with an external GNU toolchain"},
        {"use_compiler_driver=\"Yes\"", 2, "error: building with the installation's compiler driver "
                                           "(use_compiler_driver) is not available yet; set use_external_gcc to "
                                           "\"Yes\" to build with an external GNU toolchain"},
    };
    for (const auto &[attributes, step, error] : rows) {
        Arm arm(attributes);
        const Lines lines = arm.step(arm.source, step, "obj/m.o", {arm.directory / "m.c"});
        EXPECT_EQ(lines, (Lines{step == 4 ? "begin Assembling 'm.cpp'" : "begin Compiling 'm.cpp'",
                                std::string("error ") + error, "end"}))
            << attributes;
    }
}

}  // namespace
