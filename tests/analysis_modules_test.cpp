// Code analysis with the real clang-tidy, and C++20 modules scanned by
// clang-scan-deps and compiled by the machine's g++ (-host).

#include "harness.h"

#include <gtest/gtest.h>

#include <ctime>

using e2e::expectResult;
using e2e::runProgram;
using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

std::string solution(const std::string &attributes, const std::vector<std::string> &files) {
    std::string text = "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\" version=\"2\">\n"
                       "  <configuration Name=\"Debug\" build_debug_information=\"No\" />\n  <project Name=\"app\">\n"
                       "    <configuration Name=\"Common\" project_type=\"Executable\" build_output_directory=\"out\"\n"
                       "      build_intermediate_directory=\"obj\" " + attributes + " />\n";
    for (const std::string &file : files)
        text += "    <file file_name=\"" + file + "\" />\n";
    return text + "  </project>\n</solution>\n";
}

TEST(Analysis, ClangTidyRunsAfterEachCompileAndAUsersCommandInItsPlace) {
    Sandbox box;
    const std::string common = "analyze_after_compile=\"Yes\" c_preprocessor_definitions=\"LIMIT=4\" "
                               "c_user_include_directories=\"inc\"";
    box.write("s.tbp", solution(common, {"main.c", "calc.cpp"}));
    box.write("inc/z.h", "#define ZERO 0\n");
    box.write("main.c", "#include \"z.h\"\nint calc(int);\nint main(void) { int d = ZERO; return calc(LIMIT) / d; }\n");
    box.write("calc.cpp", "extern \"C\" int calc(int x) { int *p = nullptr; return x > 3 ? *p : x; }\n");
    auto r = runQuillmake(box, {"-host", "-config", "Debug", "-threadnum", "1", "-echo", "s.tbp"});
    EXPECT_EQ(r.status, 0) << r.err;
    // The C file gets the C checks; clang-tidy keeps its own __clang__. The
    // step's title goes with clang-tidy's first line, on either stream.
    const std::string tidy = e2e::quillmakePath().substr(0, e2e::quillmakePath().rfind("/bin/")) +
                             "/llvm/bin/clang-tidy " + box.path();
    for (const std::string &line :
         {tidy + "/main.c -checks=clang-analyzer-*,-clang-analyzer-cplusplus* -quiet -- -x c -Iinc -DLIMIT=4\n",
          box.path() + "/main.c:3:51: warning: Division by zero [clang-analyzer-core.DivideZero]\n",
          tidy + "/calc.cpp -checks=clang-analyzer-* -quiet -- -x c++ -Iinc -DLIMIT=4\n",
          box.path() + "/calc.cpp:1:55: warning: Dereference of null pointer [clang-analyzer-core.NullDereference]\n"})
        EXPECT_NE(r.out.find(line), std::string::npos) << line << "\n" << r.out;
    std::string err = r.err;
    for (const std::string title : {"Analyzing main.c\n", "Analyzing calc.cpp\n"}) {
        EXPECT_NE((r.out + r.err).find(title), std::string::npos) << title;
        if (const std::size_t at = err.find(title); at != std::string::npos)
            err.erase(at, title.size());
    }
    EXPECT_EQ(err, "1 warning generated.\n1 warning generated.\n");

    box.write("s.tbp", solution(common + " analyze_command=\"/bin/echo tool $(DEFINES) : $(INCLUDES)\" "
                                         "analyze_command_c_options=\"--c-only\"",
                                {"main.c", "calc.cpp"}));
    r = runQuillmake(box, {"-host", "-config", "Debug", "-threadnum", "1", "-rebuild", "s.tbp"});
    expectResult(r, "Analyzing main.c\ntool -DLIMIT=4 : -Iinc --c-only\nAnalyzing calc.cpp\ntool -DLIMIT=4 : -Iinc\n", "",
                 0);

    // An ARM source is analysed for its target, with the C library's headers.
    std::string arm = solution(common + " arm_core_type=\"Cortex-M3\"", {"main.c"});
    arm.replace(arm.find(" version="), 0, " target=\"8\"");
    arm.replace(arm.find("Executable"), 10, "Library");
    box.write("arm.tbp", arm);
    box.write("main.c", "#include <string.h>\nint main(void) { int d = (int)strlen(\"\"); return LIMIT / d; }\n");
    r = runQuillmake(box, {"-config", "Debug", "-threadnum", "1", "-echo", "-rebuild", "arm.tbp"});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find(" -DLIMIT=4 --target=thumbv7m-none-eabi -march=armv7-m -mlittle-endian "), std::string::npos) << r.out;
    EXPECT_NE(r.out.find(box.path() + "/main.c:2:56: warning: Division by zero [clang-analyzer-core.DivideZero]\n"),
              std::string::npos)
        << r.out << r.err;
}

// main imports a, a imports b: listed the other way round, they compile
// b, a, main.
struct Modules {
    Sandbox box;
    Modules() {
        box.write("s.tbp", solution("gcc_enable_modules=\"Yes\" gcc_cplusplus_language_standard=\"c++20\"",
                                    {"main.cpp", "a.cpp", "b.cpp"}));
        box.write("main.cpp", "#include <cstdio>\nimport a;\nint main() { std::printf(\"%d\\n\", fa()); }\n");
        box.write("a.cpp", "module;\n#include <iostream>\n#include <vector>\n#include <stdarg.h>\nexport module a;\n"
                           "import b;\nexport int fa() { return std::vector<int>{fb(), 1}.size() + 40; }\n");
        box.write("b.cpp", "export module b;\nexport int fb() { return 41; }\n");
    }
    e2e::RunResult build(const std::string &slots, const std::string &option = "-verbose") {
        return runQuillmake(box, {"-host", "-config", "Debug", "-threadnum", slots, option, "s.tbp"});
    }
    // The files compiled, in order.
    static std::string compiled(const std::string &out) {
        std::string names;
        for (std::size_t at = 0; (at = out.find("Compiling '", at)) != std::string::npos; at += 11)
            names += out.substr(at + 11, out.find('\'', at + 11) - at - 11) + " ";
        return names;
    }
};

TEST(Modules, CompileInImportOrderAndAChangedInterfaceRebuildsItsImporters) {
    for (const char *slots : {"1", "2"}) {
        Modules m;
        auto r = m.build(slots);
        ASSERT_EQ(r.status, 0) << r.out << r.err;
        EXPECT_EQ(Modules::compiled(r.out), "b.cpp a.cpp main.cpp ") << r.out;
        EXPECT_EQ(r.out.find("Dependency Detection Error"), std::string::npos) << r.out;
        EXPECT_FALSE(m.box.exists("app.json"));
        EXPECT_EQ(runProgram({m.box.at("out/app")}, m.box.path(), {}).out, "42\n");
        EXPECT_EQ(m.box.read("obj/a.modmap"), m.box.expand("$root .\na <box>/obj/a.gcm\nb <box>/obj/b.gcm\n"));

        const std::time_t now = std::time(nullptr);
        for (const char *file : {"obj/a.o", "obj/a.gcm", "obj/b.o", "obj/b.gcm", "obj/main.o", "out/app"})
            m.box.setTime(file, now - 100);
        m.box.setTime("b.cpp", now - 50);
        r = m.build(slots);
        EXPECT_EQ(Modules::compiled(r.out), "b.cpp a.cpp main.cpp ") << r.out;

        expectResult(m.build(slots, "-clean"), "", "", 0);
        for (const char *file : {"obj/a.gcm", "obj/b.gcm", "obj/a.modmap", "obj/main.modmap", "obj/a.o"})
            EXPECT_FALSE(m.box.exists(file)) << file;
    }
}

TEST(Modules, ACycleIsReportedAndNothingCompiles) {
    Modules m;
    m.box.write("a.cpp", "export module a;\nimport b;\nexport int fa() { return 1; }\n");
    m.box.write("b.cpp", "export module b;\nimport a;\nexport int fb() { return 2; }\n");
    expectResult(m.build("2", "-echo"),
                 "Cyclic Dependency Detected Cycle between 'b' and 'a'\n"
                 "Cyclic Dependency Detected Cycle between 'a' and 'b'\n"
                 "Cyclic Dependency Detected Cycle between 'main.cpp' and 'a'\n",
                 "", 0);
    EXPECT_FALSE(m.box.exists("obj"));
}

}  // namespace
