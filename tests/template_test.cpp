// Projects made in memory from a project type or an installed template, and
// solutions whose projects name templates.

#include "harness.h"

#include <gtest/gtest.h>

#include <filesystem>

using e2e::expectResult;
using e2e::runProgram;
using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

const std::string hello = "#include <stdio.h>\nint main(void) { printf(\"hi\\n\"); return 4; }\n";

TEST(Templates, LookUpFailuresListTheValidNames) {
    const std::string types = "Executable\nLibrary\nObject file\nStaging\nCombining\nExternally Built Executable\n"
                              "Externally Built Library\nExternally Built Object file\n";
    const struct {
        std::vector<std::string> arguments;
        std::string out;
    } cases[] = {
        {{"-host", "-type", "executable"}, "can't find project type 'executable' project types:\n" + types},
        {{"-host", "-template", "C"}, "can't find template 'C' installed templates:\nCOMBINING\nC_EXECUTABLE\n"
                                      "C_LIBRARY\nSTAGING\n"},
        {{"-template", "C"}, "can't find template 'C' installed templates:\nCOMBINING\nCORTEX_M_EXECUTABLE\n"
                             "CORTEX_M_LIBRARY\nSTAGING\n"},
        {{"-templatesfile", "junk.xml", "-template", "C_EXECUTABLE"},
         "can't find template 'C_EXECUTABLE' installed templates:\nCOMBINING\nSTAGING\n"},
    };
    for (const auto &c : cases) {
        Sandbox box;
        box.write("junk.xml", "<projects><project template_name=\"C_EXECUTABLE\">");
        std::vector<std::string> arguments = {"-project", "p", "-config", "Common"};
        arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
        expectResult(runQuillmake(box, arguments), c.out, "", 1);
        // Nothing is written but the user's settings: the sandbox is HOME.
        for (const auto &entry : std::filesystem::directory_iterator(box.path()))
            EXPECT_TRUE(entry.path().filename() == "junk.xml" || entry.path().filename().string()[0] == '.');
    }
}

TEST(Templates, HostedProjectsOfATypeOrATemplateBuildAndRun) {
    Sandbox box;
    box.write("hello.c", hello);
    expectResult(runQuillmake(box, {"-host", "-type", "Executable", "-project", "hi", "-file", "hello.c", "-config",
                                    "Common", "-threadnum", "1"}),
                 "", "", 0);
    expectResult(runProgram({box.at("hi Common/hi")}, box.path(), {}), "hi\n", "", 4);
    expectResult(runQuillmake(box, {"-host", "-template", "C_EXECUTABLE", "-project", "hello", "-file", "hello.c",
                                    "-config", "Release"}),
                 "", "", 0);
    expectResult(runProgram({box.at("Output/Release/hello")}, box.path(), {}), "hi\n", "", 4);
    // A project that names the template in a solution builds as the same
    // project written out.
    const std::string head = "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"s\" version=\"2\">\n";
    box.write("templated.tbp", head + "<project Name=\"hello\" template_name=\"C_EXECUTABLE\" "
                                      "template_configurations=\"Debug;Release\"><file file_name=\"hello.c\" />"
                                      "</project></solution>\n");
    box.write("written.tbp", head + R"T(<configuration Name="Debug" gcc_optimization_level="None"
  c_preprocessor_definitions="DEBUG" /><configuration Name="Release" gcc_optimization_level="Level 2"
  c_preprocessor_definitions="NDEBUG" build_debug_information="No" /><project Name="hello">
  <configuration Name="Common" project_type="Executable" gcc_c_language_standard="c11" gcc_enable_all_warnings="Yes"
  build_intermediate_directory="Output/$(Configuration)/Obj/$(ProjectName)"
  build_output_directory="Output/$(Configuration)" /><file file_name="hello.c" /></project></solution>)T");
    for (const char *configuration : {"Debug", "Release"}) {
        const auto written = runQuillmake(box, {"-host", "-config", configuration, "-rebuild", "-show", "written.tbp"});
        expectResult(runQuillmake(box, {"-host", "-config", configuration, "-rebuild", "-show", "templated.tbp"}),
                     written.out, "", 0);
        EXPECT_EQ(written.status, 0);
        EXPECT_NE(written.out.find("gcc -xc -c"), std::string::npos) << written.out;
    }
}

TEST(Templates, ACortexMTemplateBuildsFirmwareThatRunsOnTheBoard) {
    Sandbox box;
    box.write("main.c", hello);
    expectResult(runQuillmake(box, {"-template", "CORTEX_M_EXECUTABLE", "-project", "blink", "-file", "main.c",
                                    "-config", "Debug"}),
                 "", "", 0);
    expectResult(runProgram({"/usr/bin/timeout", "60", "qemu-system-arm", "-M", "mps2-an385", "-nographic",
                             "-semihosting-config", "enable=on,target=native", "-kernel", "Output/Debug/blink.elf"},
                            box.path(), {}),
                 "hi\n", "", 4);
}

TEST(Templates, UnknownPropertiesWarnAndImportsOfTheSolutionFail) {
    Sandbox box;
    box.write("hello.c", hello);
    box.write("t.xml", R"(<projects><project template_name="ODD" type="Executable">
  <property name="bogus" value="1" /><file name="hello.c" /></project>
  <project template_name="SELF"><import name="s.tbp" /></project></projects>)");
    expectResult(runQuillmake(box, {"-host", "-templatesfile", "t.xml", "-template", "ODD", "-project", "p",
                                    "-config", "Common", "-show", "-threadnum", "1"}),
                 box.expand("Can't find property for attribute 'bogus' in Project 'p' Configuration 'Common'\n"
                            "gcc -xc -c -fmessage-length=0 -MD -MF <box>/p Common/hello.d -MQ p Common/hello.o "
                            "-ffunction-sections -fdata-sections -g <box>/hello.c -o p Common/hello.o\n"
                            "gcc -g -Wl,--start-group <box>/p Common/hello.o -Wl,--end-group -o p Common/p\n"),
                 "", 0);
    box.write("s.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"s\" templates_file=\"t.xml\">"
                       "<project Name=\"p\" template_name=\"SELF\" /></solution>\n");
    expectResult(runQuillmake(box, {"-host", "-config", "Common", "s.tbp"}), "",
                 box.expand("load error: <box>/s.tbp  solution already loaded\n"), 1);
}

}  // namespace
