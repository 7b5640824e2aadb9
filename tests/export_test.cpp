// Exported build scripts: the exact text of a solution's script, and a script
// of the bundled hosted example run with sh against a quillmake build.

#include "harness.h"

#include <gtest/gtest.h>
#include <filesystem>

namespace e2e {

// In a directory with a blank: a library whose two files form a unity file, with quotes in a
// define and a blank in an include directory, a program that links it, and a staging project.
void writeSolution(const Sandbox &box) {
    box.write("ex b/s.tbp", R"xml(<!DOCTYPE Tarnbench_Project_File><solution Name="S" version="2">
  <configuration Name="Common" build_output_directory="$(SolutionDir)/out/$(Configuration)"
    build_intermediate_directory="$(SolutionDir)/out/$(Configuration)/$(ProjectName)" />
  <configuration Name="Debug" c_preprocessor_definitions="NAME=&quot;dbg&quot;;S=&quot;a b&quot;" />
  <configuration Name="Release" batch_build_configurations="Debug;Release" />
  <project Name="lib"><configuration Name="Common" project_type="Library" project_directory="lib"
      c_user_include_directories="../inc dir;../inc" />
    <folder Name="u"><configuration Name="Common" unity_build_file_name="$(IntDir)/unity.c" />
      <file file_name="a.c" /><file file_name="b.c" /></folder></project>
  <project Name="app"><file file_name="main.c" /><configuration Name="Common" project_type="Executable"
      project_directory="app" project_dependencies="lib" /></project>
  <project Name="stage"><file file_name="x.txt" />
    <configuration Name="Common" project_type="Staging" project_directory="stage" /></project>
</solution>)xml");
    for (const char *file : {"ex b/lib/a.c", "ex b/lib/b.c", "ex b/app/main.c", "ex b/stage/x.txt"})
        box.write(file, "");
}

std::string parentOf(const std::string &path) { return std::filesystem::path(path).parent_path().string(); }

// The compile of a library file, as the script writes it.
std::string compileLine(const std::string &configuration, const std::string &base, const std::string &source) {
    const std::string defines = configuration == "Debug" ? R"(-DNAME=\"dbg\" "-DS=\\"a b\\"" )" : "";
    const std::string object = "../out/" + configuration + "/lib/" + base + ".o";
    return R"(gcc -xc -c -fmessage-length=0 "-I\"../inc dir\"" -I"../inc" )" + defines + "-MD -MF \"<box>/ex b/out/" +
           configuration + "/lib/" + base + ".d\" -MQ " + object + " -ffunction-sections -fdata-sections -g \"" +
           source + "\" -o " + object + "\n";
}

TEST(Export, ParallelFormOfASolution) {
    Sandbox box;
    writeSolution(box);
    const std::string out = "<box>/ex b/out/Debug", bin = parentOf(quillmakePath());
    expectResult(runQuillmake(box, {"-host", "-config", "Debug", "-export-par-build", box.at("ex b/s.tbp")}), box.expand(
        "\n# [Debug]\ncd \"<box>/ex b/lib\"\nmkdir -p \"" + out + "/lib\"\nmkdir -p \"" + out + "\"\n" +
        "echo '#include \"<box>/ex b/lib/a.c\"'> \"" + out + "/lib/unity.c\"\n" +
        "echo '#include \"<box>/ex b/lib/b.c\"'>> \"" + out + "/lib/unity.c\"\n" +
        compileLine("Debug", "unity", out + "/lib/unity.c") + "rm -f \"" + out + "/lib.a\"\n" +
        "ar -rcs ../out/Debug/lib.a \"" + out + "/lib/unity.o\"\nranlib ../out/Debug/lib.a\n" +
        "cd \"<box>/ex b/app\"\nmkdir -p \"" + out + "/app\"\nmkdir -p \"" + out + "\"\n" +
        R"(gcc -xc -c -fmessage-length=0 -DNAME=\"dbg\" "-DS=\\"a b\\"" -MD -MF ")" + out +
        "/app/main.d\" -MQ ../out/Debug/app/main.o -ffunction-sections -fdata-sections -g \"<box>/ex b/app/main.c\" "
        "-o ../out/Debug/app/main.o\ngcc -g -Wl,--start-group \"" + out + "/app/main.o\" \"" + out +
        "/lib.a\" -Wl,--end-group -o ../out/Debug/app\ncd \"<box>/ex b/stage\"\n" + bin + "/cp x.txt \"" + out +
        "/x.txt\"\n" + bin + "/chmod +w \"" + out + "/x.txt\"\n"), "", 0);
}

TEST(Export, PlainFormOfTwoConfigurations) {
    Sandbox box;
    writeSolution(box);
    const auto r = runQuillmake(box, {"-host", "-config", "Release", "-batch", "-nounity", "-export-build",
                                      "-export-build-include-project-name", "-project", "lib", box.at("ex b/s.tbp")});
    std::string script, bin = parentOf(quillmakePath());
    for (const std::string configuration : {"Debug", "Release"}) {
        const std::string out = "<box>/ex b/out/" + configuration;
        script += "cd \"<box>/ex b/lib\"\n" + bin + "/mkdir -p \"" + out + "/lib\"\n" + bin + "/mkdir -p \"" + out +
                  "\"\n" + compileLine(configuration, "a", "<box>/ex b/lib/a.c") +
                  compileLine(configuration, "b", "<box>/ex b/lib/b.c") + bin + "/rm -f \"" + out + "/lib.a\"\n" +
                  "ar -rcs ../out/" + configuration + "/lib.a \"" + out + "/lib/a.o\" \"" + out + "/lib/b.o\"\n" +
                  "ranlib ../out/" + configuration + "/lib.a\n";
    }
    expectResult(r, box.expand(script), "", 0);
}

TEST(Export, MissingSourceEndsTheScriptWithAnError) {
    Sandbox box;
    writeSolution(box);
    std::filesystem::remove(box.at("ex b/lib/a.c"));
    expectResult(runQuillmake(box, {"-host", "-config", "Debug", "-export-par-build", "-nounity", box.at("ex b/s.tbp")}),
                 box.expand("\n# [Debug]\ncd \"<box>/ex b/lib\"\nmkdir -p \"<box>/ex b/out/Debug/lib\"\n"
                            "mkdir -p \"<box>/ex b/out/Debug\"\n"),
                 box.expand("error: <box>/ex b/lib/a.c does not exist.\n"), 1);
}

// The script of the bundled example, run with sh in a clean copy, makes the
// objects and the program that a quillmake build makes in another.
TEST(Export, HostedExampleScriptBuildsWhatABuildDoes) {
    Sandbox scripted, built;
    for (const Sandbox *box : {&scripted, &built})
        runProgram({"/bin/sh", "-c", "cp -R \"$0\"/. . && rm -rf Output", QUILLMAKE_SOURCE_DIR "/examples/hosted"},
                   box->path(), {});
    const auto exported = runQuillmake(scripted, {"-host", "-config", "Release", "-export-build", "hosted.tbp"});
    ASSERT_EQ(exported.status, 0) << exported.err;
    EXPECT_EQ(runQuillmake(scripted, {"-host", "-config", "Release", "-export-build", "hosted.tbp"}).out, exported.out);
    scripted.write("build.sh", exported.out);
    expectResult(runProgram({"/bin/sh", "-e", "build.sh"}, scripted.path(), {}), "", "", 0);
    ASSERT_EQ(runQuillmake(built, {"-host", "-config", "Release", "hosted.tbp"}).status, 0);
    auto nm = [](const Sandbox &box, const char *file) { return runProgram({"/usr/bin/nm", file}, box.path(), {}).out; };
    for (const char *file : {"Output/Release/mathlib.a", "Output/Release/Obj/calc/main.o"})
        EXPECT_EQ(nm(scripted, file), nm(built, file)) << file;
    auto calc = [](const Sandbox &box) { return runProgram({box.at("Output/Release/calc"), "9"}, box.path(), {}); };
    expectResult(calc(scripted), calc(built).out, "", 0);
}

}  // namespace e2e
