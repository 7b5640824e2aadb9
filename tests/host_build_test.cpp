// Whole programs built with the machine's own gcc, g++ and ar (-host): a copy
// of the bundled example solution (a C library with an assembly file, a C++
// program that links it, and a staging project), property inheritance,
// precompiled headers, compilation databases and generic option files.

#include "harness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <sstream>

using e2e::expectResult;
using e2e::runProgram;
using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

struct HostedExample {
    Sandbox box;
    std::string dir;
    // A clean copy: whatever a user built in the source tree (the example's
    // ignored Output/ folder) stays behind.
    HostedExample() : dir(box.path()) {
        const auto copied =
            runProgram({"/bin/cp", "-R", std::string(QUILLMAKE_SOURCE_DIR) + "/examples/hosted/.", dir}, dir, {});
        EXPECT_EQ(copied.status, 0) << copied.err;
        std::filesystem::remove_all(box.at("Output"));
    }
    e2e::RunResult run(const std::string &configuration, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"-host", "-config", configuration});
        arguments.push_back("hosted.tbp");
        return runQuillmake(box, arguments);
    }
    e2e::RunResult calc(const std::string &configuration, const std::string &argument) {
        return runProgram({box.at("Output/" + configuration + "/calc"), argument}, dir, {});
    }
    // touch's "-d @<seconds>", built by appending: g++ 12 at -O3 mistakes a
    // literal prefixed to a temporary for an overlapping copy.
    static std::string dateArgument(std::time_t seconds) {
        std::string argument = "@";
        argument += std::to_string(seconds);
        return argument;
    }
    // Every file of the sandbox gets the same time, a minute back; the
    // system headers that dependency files name are older still.
    void ageEverything(std::time_t seconds) {
        const auto touched = runProgram(
            {"/usr/bin/find", dir, "-exec", "/usr/bin/touch", "-h", "-d", dateArgument(seconds), "{}", "+"}, dir, {});
        ASSERT_EQ(touched.status, 0) << touched.err;
    }
    void touch(const std::string &relative, std::time_t seconds) {
        const auto touched =
            runProgram({"/usr/bin/touch", "-d", dateArgument(seconds), box.at(relative)}, dir, {});
        ASSERT_EQ(touched.status, 0) << touched.err;
    }
    // The compile commands of a Debug build, one per line, as -echo shows
    // them with one slot.
    std::string compile(const std::string &driver, const std::string &language, const std::string &project,
                        const std::string &file, const std::string &options,
                        const std::string &configuration = "Debug") const {
        const std::string base = file.substr(0, file.find('.'));
        const std::string object = "../Output/" + configuration + "/Obj/" + project + "/" + base + ".o";
        return driver + " " + language + " -c -fmessage-length=0 " + options + "-DBUILD_NAME=\"" + configuration +
               "\" -MD -MF " + dir + "/Output/" + configuration + "/Obj/" + project + "/" + base + ".d -MQ " +
               object + " -Wall -Wextra " + (language == "-xc" ? "-std=c11 " : language == "-xc++" ? "-std=c++17 " : "") +
               "-ffunction-sections -fdata-sections -Werror -g " + dir + "/" + project + "/" + file + " -o " +
               object + "\n";
    }
    std::string mathlibC(const std::string &configuration) const {
        return compile("gcc", "-xc", "mathlib", "mathlib.c", "", configuration);
    }
    std::string scaleS() const { return compile("gcc", "-xassembler-with-cpp", "mathlib", "scale.S", ""); }
    std::string mainCpp() const { return compile("g++", "-xc++", "calc", "main.cpp", "-I../mathlib "); }
    std::string archive() const {
        return "rm " + dir + "/Output/Debug/mathlib.a\nar -rcs ../Output/Debug/mathlib.a " + dir +
               "/Output/Debug/Obj/mathlib/mathlib.o " + dir +
               "/Output/Debug/Obj/mathlib/scale.o\nranlib ../Output/Debug/mathlib.a\n";
    }
    std::string stage() const {
        return "cp calc.txt " + dir + "/Output/Debug/calc.txt\nchmod +w " + dir + "/Output/Debug/calc.txt\n";
    }
    std::string link() const {
        return "g++ -g -Wl,--fatal-warnings -Wl,--start-group " + dir + "/Output/Debug/Obj/calc/main.o " + dir +
               "/Output/Debug/mathlib.a -Wl,--end-group -o ../Output/Debug/calc\n";
    }
};

const std::string calcText = "calc.txt: staged beside the program by the docs project.\n";

// The lines of `text`, sorted. With `slots`, each of them must start with
// the prefix of a slot, which is left out: which of two slots takes which
// job depends on the children's timing.
std::vector<std::string> sortedLines(const std::string &text, bool slots) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        EXPECT_TRUE(!slots || line.starts_with("1>") || line.starts_with("2>")) << line;
        lines.push_back(slots ? line.substr(2) : line);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

// A project with a C and a C++ file whose "Common" configuration holds
// `settings`, compiled with the generic option files.
struct GenericOptions {
    Sandbox box;
    explicit GenericOptions(const std::string &settings) {
        box.write("g.tbp", R"x(<!DOCTYPE Tarnbench_Project_File>
<solution Name="G" version="2">
  <configuration Name="Debug" />
  <project Name="Warned">
    <configuration Name="Common" project_type="Object file" build_intermediate_directory="obj"
                   build_generate_dependency_file="No" )x" +
                            settings + R"x( />
    <file file_name="one.c" />
    <file file_name="two.cpp" />
  </project>
</solution>
)x");
        box.write("one.c", "int one(void) { return 1; }\n");
        box.write("two.cpp", "int two() { return 2; }\n");
    }
    e2e::RunResult echo(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), {"-host", "-config", "Debug", "-threadnum", "1", "-echo"});
        arguments.push_back("g.tbp");
        return runQuillmake(box, arguments);
    }
};

}  // namespace

TEST(HostBuild, ShowPrintsEveryCommandInDependencyOrderAndBuildsNothing) {
    HostedExample x;
    expectResult(x.run("Debug", {"-threadnum", "1", "-show"}),
                 x.mathlibC("Debug") + x.scaleS() + x.archive() + x.stage() + x.mainCpp() + x.link(), "", 0);
    EXPECT_FALSE(x.box.exists("Output/Debug/Obj/mathlib/mathlib.o"));
    EXPECT_FALSE(x.box.exists("Output/Debug/mathlib.a"));
    EXPECT_FALSE(x.box.exists("Output/Debug/calc"));
}

TEST(HostBuild, BuildsQuietlyThenRebuildsOnlyWhatAChangeReaches) {
    HostedExample x;
    expectResult(x.run("Debug", {}), "", "", 0);
    expectResult(x.calc("Debug", "5"), "calc (Debug): sum_to(5) = 15, scale_by_eight(5) = 40\n" + calcText, "", 0);
    // Nothing changed: nothing runs.
    const std::time_t someTime = std::time(nullptr) - 60;
    x.ageEverything(someTime);
    expectResult(x.run("Debug", {"-echo"}), "", "", 0);

    // mathlib.h is included by mathlib.c and main.cpp, not by scale.S.
    x.touch("mathlib/mathlib.h", someTime + 1);
    expectResult(x.run("Debug", {"-threadnum", "1", "-echo"}),
                 x.mathlibC("Debug") + x.archive() + x.mainCpp() + x.link(), "", 0);
    expectResult(x.run("Debug", {"-threadnum", "1", "-echo"}), "", "", 0);

    // A changed library relinks the program that depends on it. With two
    // slots, a job that starts after others have run their commands must
    // see the files those commands wrote, even where an earlier check in the
    // same build read the old ones: the compile job of scale.S reads the old
    // time of scale.o, the archive job must see the new one, and the link
    // the new archive.
    x.ageEverything(someTime);
    x.touch("mathlib/scale.S", someTime + 1);
    const auto r = x.run("Debug", {"-threadnum", "2", "-echo"});
    EXPECT_EQ(sortedLines(r.out, true), sortedLines(x.scaleS() + x.archive() + x.link(), false));
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.status, 0);
    expectResult(x.run("Debug", {"-threadnum", "2", "-echo"}), "", "", 0);
    EXPECT_EQ(x.calc("Debug", "1").status, 0);
}

TEST(HostBuild, ReleaseTakesItsOwnDefinesOptimizationAndStrip) {
    HostedExample x;
    const auto built = x.run("Release", {"-threadnum", "1", "-echo"});
    const std::string r = x.dir + "/Output/Release";
    EXPECT_EQ(built.out,
              "gcc -xc -c -fmessage-length=0 -DNDEBUG -DBUILD_NAME=\"Release\" -MD -MF " + r +
                  "/Obj/mathlib/mathlib.d -MQ ../Output/Release/Obj/mathlib/mathlib.o -Wall -Wextra -std=c11 "
                  "-ffunction-sections -fdata-sections -Werror -O2 " + x.dir +
                  "/mathlib/mathlib.c -o ../Output/Release/Obj/mathlib/mathlib.o\n"
                  "gcc -xassembler-with-cpp -c -fmessage-length=0 -DNDEBUG -DBUILD_NAME=\"Release\" -MD -MF " + r +
                  "/Obj/mathlib/scale.d -MQ ../Output/Release/Obj/mathlib/scale.o -Wall -Wextra "
                  "-ffunction-sections -fdata-sections -Werror -O2 " + x.dir +
                  "/mathlib/scale.S -o ../Output/Release/Obj/mathlib/scale.o\n"
                  "rm " + r + "/mathlib.a\nar -rcs ../Output/Release/mathlib.a " + r + "/Obj/mathlib/mathlib.o " + r +
                  "/Obj/mathlib/scale.o\nranlib ../Output/Release/mathlib.a\n"
                  "cp calc.txt " + r + "/calc.txt\nchmod +w " + r + "/calc.txt\n"
                  "g++ -xc++ -c -fmessage-length=0 -I../mathlib -DNDEBUG -DBUILD_NAME=\"Release\" -MD -MF " + r +
                  "/Obj/calc/main.d -MQ ../Output/Release/Obj/calc/main.o -Wall -Wextra -std=c++17 "
                  "-ffunction-sections -fdata-sections -Werror -O2 " + x.dir +
                  "/calc/main.cpp -o ../Output/Release/Obj/calc/main.o\n"
                  "g++ -Wl,--fatal-warnings -Wl,--start-group " + r + "/Obj/calc/main.o " + r +
                  "/mathlib.a -Wl,--end-group -o ../Output/Release/calc\n"
                  "strip ../Output/Release/calc\n");
    EXPECT_EQ(built.status, 0);
    EXPECT_EQ(x.calc("Release", "100").out, "calc (Release): sum_to(100) = 5050, scale_by_eight(100) = 800\n" + calcText);
    // Stripped: no symbol table is left.
    const auto symbols = runProgram({"/usr/bin/nm", x.box.at("Output/Release/calc")}, x.dir, {});
    EXPECT_NE(symbols.err.find("no symbols"), std::string::npos) << symbols.err;
}

TEST(HostBuild, CleanRemovesWhatTheBuildMadeAndRebuildMakesItAgain) {
    HostedExample x;
    ASSERT_EQ(x.run("Debug", {}).status, 0);
    const std::string o = x.dir + "/Output/Debug";
    const auto cleaned = x.run("Debug", {"-threadnum", "1", "-clean", "-echo"});
    EXPECT_EQ(cleaned.out, "rm " + o + "/Obj/mathlib/mathlib.o\nrm " + o + "/Obj/mathlib/mathlib.d\nrm " + o +
                               "/Obj/mathlib/scale.o\nrm " + o + "/Obj/mathlib/scale.d\nrm " + o +
                               "/mathlib.a\nrm " + o + "/calc.txt\nrm " + o + "/Obj/calc/main.o\nrm " + o +
                               "/Obj/calc/main.d\nrm " + o + "/calc\n");
    EXPECT_EQ(cleaned.status, 0);
    for (const char *file : {"Obj/mathlib/mathlib.o", "Obj/mathlib/scale.d", "mathlib.a", "calc.txt", "calc"})
        EXPECT_FALSE(x.box.exists(std::string("Output/Debug/") + file)) << file;

    ASSERT_EQ(x.run("Debug", {}).status, 0);
    const auto rebuilt = x.run("Debug", {"-threadnum", "1", "-rebuild", "-verbose"});
    EXPECT_EQ(rebuilt.out,
              "Compiling 'mathlib.c' from project 'mathlib' in configuration 'Debug'\n"
              "Compiling 'scale.S' from project 'mathlib' in configuration 'Debug'\n"
              "Archiving 'mathlib.a' from project 'mathlib' in configuration 'Debug'\n"
              "Copying 'calc.txt' from project 'docs' in configuration 'Debug'\n"
              "Compiling 'main.cpp' from project 'calc' in configuration 'Debug'\n"
              "Linking 'calc' from project 'calc' in configuration 'Debug'\n");
    EXPECT_EQ(rebuilt.status, 0);
    EXPECT_EQ(x.calc("Debug", "3").status, 0);
}

TEST(HostBuild, ACompileErrorStopsTheBuildOrWithKeepGoingTheRestRuns) {
    HostedExample x;
    x.box.write("mathlib/mathlib.c", "long sum_to(long n) { return n + ; }\n");
    // Between quillmake's own lines, the tools' words pass through as they are.
    auto own = [](const std::string &err) {
        std::string lines;
        std::istringstream in(err);
        for (std::string line; std::getline(in, line);)
            for (const char *start : {"Compiling '", "Archiving '", "Linking '", "Build failed", "There were"})
                if (line.starts_with(start))
                    lines += line + "\n";
        return lines;
    };
    auto r = x.run("Debug", {"-threadnum", "1"});
    EXPECT_EQ(r.out, "Error executing " + x.mathlibC("Debug"));
    // The title goes with the first line of the compiler's error output.
    EXPECT_TRUE(r.err.starts_with("Compiling 'mathlib.c'\n")) << r.err;
    EXPECT_NE(r.err.find("mathlib.c:1:34: error: expected expression"), std::string::npos) << r.err;
    EXPECT_EQ(own(r.err), "Compiling 'mathlib.c'\nBuild failed, exit status 0x1\nThere were 1 build errors\n");
    EXPECT_EQ(r.status, 1);
    EXPECT_FALSE(x.box.exists("Output/Debug/Obj/mathlib/scale.o"));

    // The failing compile, then the archive and the link that lack its
    // object; each is reported on its own account.
    r = x.run("Debug", {"-threadnum", "1", "-keepgoing"});
    const std::string o = x.dir + "/Output/Debug";
    EXPECT_EQ(r.out, "Error executing " + x.mathlibC("Debug") + "Error executing ar -rcs ../Output/Debug/mathlib.a " +
                         o + "/Obj/mathlib/mathlib.o " + o + "/Obj/mathlib/scale.o\nError executing " + x.link());
    const std::string keptGoing = "' in configuration 'Debug' continuing because 'keep going on error' has been enabled\n";
    EXPECT_EQ(own(r.err), "Compiling 'mathlib.c'\nBuild failed, exit status 0x1 'mathlib.c" + keptGoing +
                              "Archiving 'mathlib.a'\nBuild failed, exit status 0x1 'mathlib" + keptGoing +
                              "Linking 'calc'\nBuild failed, exit status 0x1 'calc" + keptGoing +
                              "There were 3 build errors\n");
    EXPECT_EQ(r.status, 1);
    // The files that could be built were.
    EXPECT_TRUE(x.box.exists("Output/Debug/Obj/mathlib/scale.o"));
    EXPECT_TRUE(x.box.exists("Output/Debug/Obj/calc/main.o"));
    EXPECT_TRUE(x.box.exists("Output/Debug/calc.txt"));
    EXPECT_FALSE(x.box.exists("Output/Debug/Obj/mathlib/mathlib.o"));
    EXPECT_FALSE(x.box.exists("Output/Debug/calc"));
}

TEST(HostBuild, PropertiesComeDownFromTheSolutionToTheFile) {
    Sandbox box;
    box.write("p.tbp", R"x(<!DOCTYPE Tarnbench_Project_File>
<solution Name="P" version="2">
  <configuration Name="Common" c_preprocessor_definitions="FROM_SOLUTION" build_debug_information="No" />
  <configuration Name="Debug" gcc_optimization_level="Level 1" />
  <project Name="app">
    <configuration Name="Common" project_type="Executable" is_cpp_project="No" build_output_directory="out"
      build_intermediate_directory="obj" c_preprocessor_definitions="FROM_PROJECT" />
    <folder Name="fast">
      <configuration Name="Debug" gcc_optimization_level="Level 3" />
      <file file_name="fast.c">
        <configuration Name="Common" c_preprocessor_definitions="FROM_FILE" />
      </file>
    </folder>
    <file file_name="main.c" />
  </project>
</solution>
)x");
    box.write("main.c", "#include <stdio.h>\nconst char *fast(void);\n"
                        "#ifdef FROM_PROJECT\n#define WHERE \"project\"\n#else\n#define WHERE \"solution\"\n#endif\n"
                        "int main(void) { printf(\"main: %s, fast: %s\\n\", WHERE, fast()); return 0; }\n");
    box.write("fast.c", "#ifdef FROM_FILE\nconst char *fast(void) { return \"file\"; }\n#endif\n");
    const auto r = runQuillmake(box, {"-host", "-config", "Debug", "-threadnum", "1", "-echo", "p.tbp"});
    const std::string dir = box.path();
    // A list gathers its entries from the solution down to the file; a
    // single value set lower down replaces the one above it.
    EXPECT_EQ(r.out.substr(0, r.out.find('\n') + 1),
              "gcc -xc -c -fmessage-length=0 -DFROM_SOLUTION -DFROM_PROJECT -DFROM_FILE -MD -MF " + dir + "/obj/fast.d -MQ obj/fast.o "
              "-ffunction-sections -fdata-sections -O3 " + dir + "/fast.c -o obj/fast.o\n");
    EXPECT_NE(r.out.find("gcc -xc -c -fmessage-length=0 -DFROM_SOLUTION -DFROM_PROJECT -MD -MF " + dir + "/obj/main.d -MQ obj/main.o "
                         "-ffunction-sections -fdata-sections -O1 " + dir + "/main.c -o obj/main.o\n"),
              std::string::npos)
        << r.out;
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(runProgram({box.at("out/app")}, dir, {}).out, "main: project, fast: file\n");
    // fast.c includes nothing: its dependency file is a single line.
    expectResult(runQuillmake(box, {"-host", "-config", "Debug", "-echo", "p.tbp"}), "", "", 0);
}

TEST(HostBuild, APrecompiledHeaderIsCompiledFirstAndUsedByTheOtherFiles) {
    Sandbox box;
    box.write("p.tbp", R"x(<!DOCTYPE Tarnbench_Project_File>
<solution Name="P" version="2">
  <configuration Name="Debug" build_debug_information="No" />
  <project Name="app">
    <configuration Name="Common" project_type="Executable" is_cpp_project="Yes" build_output_directory="out"
      build_intermediate_directory="obj" gcc_enable_precompiled_header="Yes" />
    <file file_name="a.cpp" />
    <file file_name="b.cpp" />
    <file file_name="common.h">
      <configuration Name="Common" gcc_precompiled_header="Yes" />
    </file>
  </project>
</solution>
)x");
    box.write("common.h", "#include <string>\ninline std::string greeting() { return \"hello\"; }\n");
    box.write("a.cpp", "#include <cstdio>\nint b();\nint main() { std::printf(\"%s %d\\n\", greeting().c_str(), b()); }\n");
    box.write("b.cpp", "int b() { return int(greeting().size()); }\n");
    const auto r = runQuillmake(box, {"-host", "-config", "Debug", "-threadnum", "2", "-verbose", "p.tbp"});
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.status, 0);
    // The header's compile comes before the other compiles, whichever slot
    // takes it.
    const auto header = r.out.find("Compiling 'common.h'\n");
    ASSERT_NE(header, std::string::npos) << r.out;
    EXPECT_EQ(r.out.find("Compiling '"), header) << r.out;
    EXPECT_TRUE(box.exists("common.h.gch"));
    EXPECT_EQ(runProgram({box.at("out/app")}, box.path(), {}).out, "hello 5\n");
    // The files never include the header themselves: the build does.
    const auto echoed = runQuillmake(box, {"-host", "-config", "Debug", "-threadnum", "1", "-rebuild", "-echo", "p.tbp"});
    EXPECT_NE(echoed.out.find("-include " + box.path() + "/common.h -Winvalid-pch " + box.path() + "/b.cpp -o obj/b.o\n"),
              std::string::npos)
        << echoed.out;
    EXPECT_EQ(echoed.status, 0);
}

TEST(HostBuild, WritesTheCompilationDatabaseWithTheCommandsTheBuildRuns) {
    HostedExample x;
    std::string solution = x.box.read("hosted.tbp");
    const std::string library = "project_type=\"Library\" project_directory=\"mathlib\"";
    solution.replace(solution.find(library), library.size(),
                     library + " generate_compilation_database_file=\"Yes\"");
    x.box.write("hosted.tbp", solution);
    const auto built = x.run("Debug", {"-threadnum", "1", "-echo"});
    ASSERT_EQ(built.status, 0) << built.err;
    // The same arguments as the commands that ran, each a JSON string.
    auto json = [](std::string command) {
        command.pop_back();
        std::string text = "[\"";
        for (const char c : command) {
            if (c == ' ')
                text += "\",\"";
            else if (c == '"')
                text += "\\\"";
            else
                text += c;
        }
        return text + "\"]";
    };
    const std::string o = x.dir + "/Output/Debug/Obj/mathlib/";
    EXPECT_EQ(x.box.read("Output/Debug/mathlib.json"),
              "[{\"file\":\"" + x.dir + "/mathlib/mathlib.c\",\"directory\":\"" + x.dir +
                  "/mathlib\",\"arguments\":" + json(x.mathlibC("Debug")) + ",\"output\":\"" + o +
                  "mathlib.o\"},{\"file\":\"" + x.dir + "/mathlib/scale.S\",\"directory\":\"" + x.dir +
                  "/mathlib\",\"arguments\":" + json(x.scaleS()) + ",\"output\":\"" + o + "scale.o\"}]");
    EXPECT_EQ(built.out.find(x.mathlibC("Debug")), 0u);
    // Only the project that asks for one gets a database.
    EXPECT_FALSE(x.box.exists("Output/Debug/calc.json"));
}

TEST(GenericOptions, TheShippedWarningOptionsGoOnTheCompilesOfTheirLanguage) {
    // One of them is set on the command line.
    GenericOptions p("gcc_warn_conversion=\"No\" gcc_warn_strict_prototypes=\"Yes\" "
                     "gcc_warn_old_style_cast=\"Yes\" gcc_errors_from_warnings=\"return-type;format\"");
    const std::string dir = p.box.path();
    expectResult(p.echo({"-project", "Warned", "-property", "gcc_warn_shadow=Yes"}),
                 "gcc -xc -c -fmessage-length=0 -ffunction-sections -fdata-sections -Wshadow -Wno-conversion "
                 "-Werror=return-type -Werror=format -Wstrict-prototypes -g " + dir + "/one.c -o obj/one.o\n"
                 "g++ -xc++ -c -fmessage-length=0 -ffunction-sections -fdata-sections -Wshadow -Wno-conversion "
                 "-Werror=return-type -Werror=format -Wold-style-cast -g " + dir + "/two.cpp -o obj/two.o\n",
                 "", 0);
    EXPECT_TRUE(p.box.exists("obj/one.o"));
    EXPECT_TRUE(p.box.exists("obj/two.o"));
}

TEST(GenericOptions, AProjectsOwnFileTakesThePlaceOfTheShippedOne) {
    // Relative to the project; the shipped file's properties mean nothing
    // while this one is active.
    GenericOptions p("build_generic_options_file_name=\"options/mine.xml\" gcc_warn_shadow=\"Yes\" "
                     "my_prefix_map=\"Yes\" my_checks=\"Strict\" my_defines=\"BUILT_FOR=$(Configuration);ONE\"");
    p.box.write("options/mine.xml", R"x(<options>
  <property tool="compiler" name="my_prefix_map" type="Enumeration" append="$(ProjectDir)=.">
    <option value="Yes" option="-fdebug-prefix-map="/>
    <option value="No" option=""/>
  </property>
  <property tool="c_compiler" name="my_checks" type="Enumeration">
    <option value="Strict" option="-Wmissing-prototypes;-Wmissing-declarations"/>
  </property>
  <property tool="cpp_compiler" name="my_defines" type="StringList" option="D"/>
  <property tool="linker" name="my_link" type="String" option="Wl," default="--no-such-option"/>
</options>
)x");
    const auto r = p.echo();
    const std::string dir = p.box.path();
    EXPECT_EQ(r.out, "gcc -xc -c -fmessage-length=0 -ffunction-sections -fdata-sections -fdebug-prefix-map=" + dir +
                         "=. -Wmissing-prototypes -Wmissing-declarations -g " + dir + "/one.c -o obj/one.o\n"
                         "g++ -xc++ -c -fmessage-length=0 -ffunction-sections -fdata-sections -fdebug-prefix-map=" +
                         dir + "=. -DBUILT_FOR=Debug -DONE -g " + dir + "/two.cpp -o obj/two.o\n");
    // The compiler took the file's warning: one() has no prototype.
    EXPECT_EQ(r.err.substr(0, 18), "Compiling 'one.c'\n");
    EXPECT_NE(r.err.find("one.c:1:5: warning: no previous prototype for"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("[-Wmissing-prototypes]"), std::string::npos) << r.err;
    EXPECT_EQ(r.status, 0);
}
