// Generic option files on -host compiles: the shipped warning options, and a
// project's own file named in build_generic_options_file_name.

#include "harness.h"

#include <gtest/gtest.h>

using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

// A project with a C and a C++ file whose "Common" configuration holds
// `settings`; compiled by the machine's gcc and g++.
struct Project {
    Sandbox box;
    explicit Project(const std::string &settings) {
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
    e2e::RunResult echo() { return runQuillmake(box, {"-host", "-config", "Debug", "-threadnum", "1", "-echo", "g.tbp"}); }
};

}  // namespace

TEST(GenericOptions, TheShippedWarningOptionsGoOnTheCompilesOfTheirLanguage) {
    Project p("gcc_warn_shadow=\"Yes\" gcc_warn_conversion=\"No\" gcc_warn_strict_prototypes=\"Yes\" "
              "gcc_warn_old_style_cast=\"Yes\" gcc_errors_from_warnings=\"return-type;format\"");
    const auto r = p.echo();
    const std::string dir = p.box.path();
    EXPECT_EQ(r.out, "gcc -xc -c -fmessage-length=0 -ffunction-sections -fdata-sections -Wshadow -Wno-conversion "
                     "-Werror=return-type -Werror=format -Wstrict-prototypes -g " + dir + "/one.c -o obj/one.o\n"
                     "g++ -xc++ -c -fmessage-length=0 -ffunction-sections -fdata-sections -Wshadow -Wno-conversion "
                     "-Werror=return-type -Werror=format -Wold-style-cast -g " + dir + "/two.cpp -o obj/two.o\n");
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(p.box.exists("obj/one.o"));
    EXPECT_TRUE(p.box.exists("obj/two.o"));
}

TEST(GenericOptions, AProjectsOwnFileTakesThePlaceOfTheShippedOne) {
    // Relative to the project; the shipped file's properties mean nothing
    // while this one is active.
    Project p("build_generic_options_file_name=\"options/mine.xml\" gcc_warn_shadow=\"Yes\" "
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

TEST(GenericOptions, TheCommandLineSetsAShippedWarningOption) {
    Project p("");
    const auto r = runQuillmake(p.box, {"-host", "-config", "Debug", "-threadnum", "1", "-echo", "-project", "Warned",
                                        "-property", "gcc_warn_shadow=Yes", "g.tbp"});
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.out.find(" -Wshadow "), std::string::npos) << r.out;
}
