// The code model arguments, syntax checks, analysis steps and module maps
// of the driver's and the installation's toolchains.

#include "environment/version.h"
#include "toolchain/arm/arm_project_system.h"
#include "toolchain/gcc_host_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace {

using Host = Toolchain<GCCHostProjectSystem>;
using Arm = Toolchain<ARMProjectSystem>;

template <class System>
std::string codeModel(Toolchain<System> &t, bool header) {
    StringList list;
    ProjectElement *file = header ? t.header : t.source;
    t.system.codeModelArguments(file, "Debug", list);
    // The header reads as a header again afterwards.
    EXPECT_EQ(t.system.fileTypeName(t.header, "Debug"), "Header");
    std::string text;
    for (const std::string &argument : list)
        text += (text.empty() ? "" : " ") + argument;
    return text;
}

TEST(Analysis, CodeModelArguments) {
    const char *const cpp = "is_cpp_project=\"Yes\" cpp_enable_exceptions=\"Yes\" cpp_enable_rtti=\"No\" "
                            "gcc_cplusplus_language_standard=\"c++20\" c_user_include_directories=\"inc\" "
                            "c_preprocessor_definitions=\"A=1\" code_completion_options=\"-Wx;;-Wy\"";
    const std::string version = "-D__VELDANE_MAJOR_VERSION=" + std::to_string(Version::major) +
                                " -D__VELDANE_MINOR_VERSION=" + std::to_string(Version::minor) +
                                " -D__VELDANE_REVISION=" + std::to_string(Version::revision);
    const std::string armTarget = "--target=armv4t-none-eabi -march=armv4t -mlittle-endian -mfloat-abi=soft -mno-unaligned-access";
    const std::tuple<bool, const char *, bool, std::string> cases[] = {
        {false, cpp, false,
         "-x c++ -Iinc -DA=1 -Wx -Wy -U__clang__ -fcxx-exceptions -fexceptions -fno-rtti -std=c++20"},
        // A header's preprocessor options are those of a source file.
        {false, cpp, true, "-xc++-header -Iinc -DA=1 -Wx -Wy -U__clang__"},
        {false, "is_cpp_project=\"No\"", true, "-xc-header -U__clang__"},
        {true, "arm_compiler_variant=\"gcc\" clang_gnu_version=\"12.2.0\"", false,
         "-x c++ -nostdinc -isystem$(StudioCppIncDir) -isystem/studio/include -D__ARM_ARCH_4T__ -D__VELDANE_ARM "
         "-D__HEAP_SIZE__=1024 -isystem$(PackagesDir)/include " + version +
             " -U__clang__ -Xclang -mthread-model -Xclang single -fgnuc-version=12.2.0 " + armTarget},
        {true, "use_external_gcc=\"Yes\" c_user_include_directories=\"inc\"", false,
         "-x c++ -Iinc -U__clang__ -Xclang -mthread-model -Xclang single " + armTarget},
    };
    for (const auto &[arm, configuration, header, expected] : cases) {
        Host host(configuration);
        Arm target(configuration);
        EXPECT_EQ(arm ? codeModel(target, header) : codeModel(host, header), expected) << configuration;
    }
}

template <class System>
Lines analysisSteps(Toolchain<System> &t, ProjectElement *file) {
    t.recorder.lines.clear();
    t.system.analyzeFile(file, "Debug", &t.recorder);
    t.system.checkSyntax(file, "Debug", &t.recorder);
    return t.recorder.lines;
}

TEST(Analysis, AnalysisAndSyntaxCheckSteps) {
    const char *const defines = "c_preprocessor_definitions=\"A=1;B=x y\" c_system_include_directories=\"/sys\" "
                                "c_user_include_directories=\"inc\" analyze_command_cpp_options=\"-p;q\" ";
    Host host(std::string(defines) + "analyze_command=\"tool &quot;$(DEFINES)&quot; $(INCLUDES)\"");
    EXPECT_EQ(analysisSteps(host, host.source),
              (Lines{"begin Analyzing m.cpp", "command @ | tool -DA=1 \"-DB=x y\" -I/sys -Iinc -p q | ", "end",
                     "begin Checking Syntax m.cpp",
                     "command @ | g++ -c -isystem /sys -Iinc -DA=1 -DB=x y -fsyntax-only m.cpp | ", "end"}));
    Host tidy(defines);
    EXPECT_EQ(analysisSteps(tidy, tidy.source),
              (Lines{"begin Analyzing m.cpp",
                     "command @ | /studio/llvm/bin/clang-tidy @/m.cpp -checks=clang-analyzer-* -quiet -p q -- -x c++ "
                     "-isystem /sys -Iinc -DA=1 -DB=x y | ",
                     "end", "begin Checking Syntax m.cpp",
                     "command @ | g++ -c -isystem /sys -Iinc -DA=1 -DB=x y -fsyntax-only m.cpp | ", "end"}));
    Host headers("analyze_headers=\"No\"");
    EXPECT_EQ(analysisSteps(headers, headers.header), Lines{});
    EXPECT_EQ(std::make_tuple(headers.system.canAnalyze(headers.header, "Debug"),
                              headers.system.canAnalyze(headers.source, "Debug"),
                              tidy.system.canAnalyze(tidy.header, "Debug")),
              std::make_tuple(false, true, true));
    // The direct form checks with the compiler proper and the target.
    const std::pair<const char *, const char *> direct[] = {
        {"gcc", "/studio/gcc/arm-none-eabi/bin/cc1plus -march=armv4t -mlittle-endian -mfloat-abi=soft -mabi=aapcs "
                "-mno-unaligned-access -mtp=soft -mfp16-format=ieee -fmessage-length=0 -fno-exceptions -fno-rtti "
                "-fsyntax-only -quiet m.cpp"},
        {"clang", "/studio/llvm/bin/clang -cc1 -triple armv4t-none-eabi -target-cpu generic -target-feature "
                  "+strict-align -target-feature +soft-float -target-feature +soft-float-abi -msoft-float -target-abi "
                  "aapcs -mfloat-abi soft -fno-signed-char -fnative-half-type -fnative-half-arguments-and-returns "
                  "-mllvm -arm-global-merge=false -disable-free -disable-llvm-verifier -mrelocation-model static "
                  "-mconstructor-aliases -x c++ -funwind-tables=1 -fno-rtti -fmessage-length=0 -fsyntax-only m.cpp"},
    };
    for (const auto &[variant, command] : direct) {
        Arm arm(std::string("arm_compiler_variant=\"") + variant + "\"");
        arm.recorder.lines.clear();
        arm.system.checkSyntax(arm.source, "Debug", &arm.recorder);
        EXPECT_EQ(arm.recorder.lines,
                  (Lines{"begin Checking Syntax m.cpp", std::string("command @ | ") + command + " | ", "end"}));
    }
}

TEST(Analysis, ModuleMapNamesEveryModuleWithItsInterface) {
    Host host("gcc_enable_modules=\"Yes\" gcc_additional_modules=\"a=/x/a.gcm;b;c=lib.o/c.o\"");
    const Lines step = host.step(host.source, 3, "obj/m.o", {host.directory / "m.cpp"});
    ASSERT_EQ(step.size(), 3u);
    EXPECT_NE(step[1].find(" -Mno-modules -fmodule-mapper=obj/m.modmap "), std::string::npos) << step[1];
    std::ifstream in(host.directory / "obj/m.modmap");
    std::stringstream map;
    map << in.rdbuf();
    EXPECT_EQ(map.str(), "$root .\na /x/a.gcm\nb b\nc lib.gcm/c.gcm\n");
    // A code model sees the interfaces that clang has compiled.
    host.directory.write("lib.pcm/c.pcm", "");
    EXPECT_EQ(codeModel(host, false), "-x c++ -U__clang__ -fmodule-file=c=" + host.directory / "lib.pcm/c.pcm");
}

}  // namespace
