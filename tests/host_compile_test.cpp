// Compiles with the machine's own gcc and g++ (-host): the first build, the
// up-to-date check through the compiler's dependency file, and a rebuild
// after a header changes.

#include "harness.h"

#include <gtest/gtest.h>

#include <ctime>

using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

struct HostRun {
    Sandbox box;
    HostRun() {
        box.write("h.tbp", R"x(<!DOCTYPE Tarnbench_Project_File>
<solution Name="H" version="2">
  <configuration Name="Debug" Platform="LINUX" />
  <project Name="Objects">
    <configuration Name="Common" project_type="Object file" build_intermediate_directory="obj" />
    <file file_name="one.c" />
    <file file_name="two.cpp" />
  </project>
</solution>
)x");
        box.write("one.h", "#define ONE 1\n");
        box.write("one.c", "#include \"one.h\"\nint one(void) { return ONE; }\n");
        box.write("two.cpp", "int two() { return 2; }\n");
    }
    e2e::RunResult run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"-host", "-config", "Debug", "-threadnum", "1"});
        arguments.push_back("h.tbp");
        e2e::RunOptions options;
        options.environment["TZ"] = "UTC";
        return runQuillmake(box, arguments, options);
    }
};

// As a build shows a file's time.
std::string shown(std::time_t seconds) {
    char text[32];
    std::strftime(text, sizeof text, "%d.%m.%Y %H:%M:%S", std::gmtime(&seconds));
    return text;
}

}  // namespace

TEST(HostCompile, CompilesThenFollowsTheDependencyFile) {
    HostRun h;
    const auto first = h.run({"-echo"});
    const std::string dir = h.box.path();
    EXPECT_EQ(first.out, "gcc -xc -c -fmessage-length=0 -MD -MF " + dir + "/obj/one.d -MQ obj/one.o -ffunction-sections "
                         "-fdata-sections -g " + dir + "/one.c -o obj/one.o\n"
                         "g++ -xc++ -c -fmessage-length=0 -MD -MF " + dir + "/obj/two.d -MQ obj/two.o "
                         "-ffunction-sections -fdata-sections -g " + dir + "/two.cpp -o obj/two.o\n");
    EXPECT_EQ(first.err, "");
    EXPECT_EQ(first.status, 0);
    EXPECT_TRUE(h.box.exists("obj/one.o"));
    EXPECT_TRUE(h.box.exists("obj/two.o"));

    // Nothing changed: nothing runs. The files are dated a minute back,
    // after the system headers that the dependency files name too.
    const std::time_t someTime = std::time(nullptr) - 60;
    for (const char *file : {"one.c", "one.h", "two.cpp", "obj/one.o", "obj/two.o"})
        h.box.setTime(file, someTime);
    const auto again = h.run({"-echo"});
    EXPECT_EQ(again.out, "");
    EXPECT_EQ(again.status, 0);

    // A newer header rebuilds the file that includes it, and only that one.
    h.box.setTime("one.h", someTime + 1);
    const auto rebuilt = h.run({"-verbose"});
    EXPECT_EQ(rebuilt.out,
              "Checking 'one.c'\n" + dir + "/one.h (" + shown(someTime + 1) + ") is later than " + dir + "/obj/one.o (" +
                  shown(someTime) + ").\nCompiling 'one.c'\nChecking 'two.cpp'\n'two.cpp' is up to date\n");
    EXPECT_EQ(rebuilt.status, 0);
}

TEST(HostCompile, ACompileErrorShowsTheCompilersWordsAndFails) {
    HostRun h;
    h.box.write("two.cpp", "int two() { return undeclared; }\n");
    const auto r = h.run({});
    // The compiler's own words pass through as they are.
    EXPECT_NE(r.err.find("two.cpp:1:20: error: "), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("undeclared"), std::string::npos) << r.err;
    // The title goes with the first line of the compiler's error output.
    EXPECT_EQ(r.err.substr(0, 20), "Compiling 'two.cpp'\n");
    const std::string dir = h.box.path();
    EXPECT_EQ(r.out, "Error executing g++ -xc++ -c -fmessage-length=0 -MD -MF " + dir + "/obj/two.d -MQ obj/two.o "
                     "-ffunction-sections -fdata-sections -g " + dir + "/two.cpp -o obj/two.o\n");
    EXPECT_NE(r.err.find("Build failed, exit status 0x1\nThere were 1 build errors\n"), std::string::npos) << r.err;
    EXPECT_EQ(r.status, 1);
    EXPECT_FALSE(h.box.exists("obj/two.o"));
}
