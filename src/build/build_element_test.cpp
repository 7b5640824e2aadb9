// What the build of a node records: its checks, its commands and the
// toolchain steps it asks for, per kind of project.

#include "build/node_build_test_fixture.h"

#include <filesystem>

namespace {

// An executable of a.c and sub/b.c, with more project properties and files.
std::string app(const std::string &properties = "", const std::string &files = "") {
    return R"x(<project Name="App">
    <configuration Name="Common" project_type="Executable" build_output_file_name="out/app.elf" linker_map_file="No" )x" +
           properties + " />\n<file file_name=\"a.c\" /><folder Name=\"sub\"><file file_name=\"sub/b.c\" /></folder>\n" +
           files + "</project>\n";
}

// An externally built executable whose sources compile by the project's
// own commands.
const std::string externalApp = R"x(<project Name="Ext">
    <configuration Name="Common" project_type="Externally Built Executable" build_output_file_name="out/ext.elf"
      external_c_compile_command="cc $(Defines) $(Includes) -c $(RelInputPath) -o $(RelTargetPath) -MF $(RelDependencyPath) $(COptions)"
      c_preprocessor_definitions="A;B=1" c_user_include_directories="inc" c_additional_options="-O2;-g"
      external_link_command="ld $(Objects) -o $(RelTargetPath) $(LinkOptions) $(LinkLibraries) @$(RelObjectsFilePath)"
      external_objects_file_name="$(IntDir)/objects.txt" linker_additional_options="-static" />
    <file file_name="a.c" /><file file_name="s.s" />
  </project>
)x";

const std::string externalBuild = R"x(<project Name="Ext">
    <configuration Name="Common" project_type="Externally Built Executable"
      external_build_command="make all" external_clean_command="make clean" external_build_file_name="bin/app" />
  </project>
)x";

// out/lib.a is up to date, out/new.a missing.
std::string archives(const std::string &output) {
    return R"x(<project Name="Lib">
    <configuration Name="Common" project_type="Externally Built Library" build_output_file_name=")x" + output + R"x("
      external_c_compile_command="cc -c $(RelInputPath)"
      external_archive_command="ar rc $(RelTargetPath) $(Objects)&amp;&amp;ranlib $(RelTargetPath)"
      archive_post_build_command="cp $(TargetPath) dist &amp;&amp; echo" archive_post_build_command_wd="dist" />
    <file file_name="a.c" />
  </project>
  <project Name="Empty"><configuration Name="Common" project_type="Library" /></project>
)x";
}

// A staging project of the given files: out/a.txt is up to date, out/b.txt
// missing and out/c.txt older than c.txt.
std::string staging(const std::string &properties, const std::string &files = "a.txt") {
    std::string body = "<project Name=\"Stage\"><configuration Name=\"Common\" project_type=\"Staging\" " + properties + " />";
    for (const char *name : {"a.txt", "b.txt", "c.txt"})
        if (files.find(name) != std::string::npos)
            body += std::string("<file file_name=\"") + name + "\" />";
    return body + "</project>\n";
}

const std::string combining = R"x(<project Name="Doc">
    <configuration Name="Common" project_type="Combining" combine_command_wd="work"
      combine_command="cat $(CombiningRelInputPaths) -o $(CombiningOutputFilePath)" />
    <file file_name="a.txt" /><folder Name="sub"><file file_name="sub/b c.txt" /></folder>
    <file file_name="off.txt"><configuration Name="Common" build_exclude_from_build="Yes" /></file>
  </project>
  <project Name="None">
    <configuration Name="Common" project_type="Combining" combine_command="touch $(CombiningOutputFilePath)" />
  </project>
)x";

class BuildElement : public NodeBuildTest {
protected:
    // Every test's files, up to date at baseTime.
    void SetUp() override {
        for (const char *name : {"a.c", "sub/b.c", "obj/a.o", "obj/b.o", "out/app.elf", "extra.o", "s.s", "a.txt",
                                 "out/a.txt", "b.txt", "sub/b c.txt", "out/lib.a"})
            file(name, "x", baseTime);
        file("inputs.txt", "lib/x.o\r\n\n/abs/y.o\n", baseTime);
        file("out/Doc", "", baseTime);  // empty is fine for a combined file
        file("c.txt", "x", baseTime + 1);
        file("late.o", "x", baseTime + 2);
        file("out/c.txt", "x", baseTime);
    }
};

constexpr BuildFlags quiet = BuildQuietChecks;
constexpr BuildFlags jobs = BuildQuietChecks | BuildFilesAreJobs | BuildAlways;
constexpr BuildFlags clean = BuildClean | BuildAlways | BuildCheckOnly | BuildQuietChecks;

TEST_F(BuildElement, WhatABuildOfANodeRecords) {
    const Lines linked = {"message step 7 out/app.elf @/out/app.elf <- @/obj/a.o @/obj/b.o", "accept @/out/app.elf"};
    const struct {
        std::string body;
        const char *node;
        BuildFlags flags;
        Lines lines;
        bool result = true;  // something was built
    } cases[] = {
        {app(), "App", 0,
         {"begin Checking 'a.c'", "outcome 'a.c' is up to date", "end", "begin Checking 'b.c'",
          "outcome 'b.c' is up to date", "end", "begin Checking 'App'", "outcome 'App' is up to date", "end"},
         false},
        {app("delete_intermediate_directory=\"Yes\""), "App", clean,
         {"begin Cleaning 'a.c'", "delete @/obj/a.o", "delete @/obj/a.d", "end", "begin Cleaning 'b.c'",
          "delete @/obj/b.o", "delete @/obj/b.d", "end", "begin Cleaning 'App'", "delete @/out/app.elf", "end"}},
        // A missing source stops its compile, unless the build keeps going.
        {app("", "<file file_name=\"gone.c\" />"), "gone.c", quiet,
         {"begin Checking Source File Exists", "error @/gone.c does not exist.", "end"}, false},
        {app("", "<file file_name=\"gone.c\" />"), "gone.c", quiet | BuildKeepGoing,
         {"begin Checking Source File Exists", "error @/gone.c does not exist.", "end",
          "message step 2 obj/gone.o @/obj/gone.o <- @/gone.c"}},
        {R"x(<project Name="App"><configuration Name="Common" project_type="Executable" />
          <folder Name="one"><file file_name="one/x.c" /></folder><folder Name="two"><file file_name="two/x.c" /></folder>
          </project>)x",
         "App", quiet | BuildFilesAreJobs,
         {"begin Checking For Duplicate Object Files", "error The object file @/obj/x.o has been supplied more than once",
          "end"},
         false},
        // Additional linker inputs are checked, and added once.
        {app("linker_additional_files=\"extra.o;obj/a.o;missing.o\""), "App", jobs,
         {"begin Checking Additional Linker Inputs 'App'", "warning @/obj/a.o supplied more than once",
          "error @/missing.o does not exist.", "end",
          "message step 7 out/app.elf @/out/app.elf <- @/obj/a.o @/obj/b.o @/extra.o @/missing.o", "accept @/out/app.elf"}},
        // An input later than the target forces the link.
        {app("linker_additional_files=\"late.o\""), "App", BuildFilesAreJobs,
         {"begin Checking Additional Linker Inputs 'App'", "end", "begin Checking 'App'",
          "detail @/late.o (" + timeText(baseTime + 2) + ") is later than @/out/app.elf (" + timeText(baseTime) + ").",
          "end", "message step 7 out/app.elf @/out/app.elf <- @/obj/a.o @/obj/b.o @/late.o", "accept @/out/app.elf"}},
        // The inputs order and the inputs file replace the objects.
        {app("inputs_order=\"b.c;nothere;a.c\""), "App", jobs,
         {"message step 7 out/app.elf @/out/app.elf <- @/obj/b.o @/obj/a.o", "accept @/out/app.elf"}},
        {app("inputs_file=\"inputs.txt\""), "App", jobs,
         {"message step 7 out/app.elf @/out/app.elf <- @/lib/x.o /abs/y.o", "accept @/out/app.elf"}},
        {app("inputs_file=\"none.txt\""), "App", jobs,
         {"begin Opening Input File", "error Failed to open the inputs file @/none.txt", "end"}, false},
        // Libraries of dependent projects go to the link.
        {app("project_dependencies=\"Lib;Objs;Off\"") + R"x(
          <project Name="Lib"><configuration Name="Common" project_type="Library" build_output_file_name="out/lib.a" />
          <file file_name="l.c" /></project>
          <project Name="Objs"><configuration Name="Common" project_type="Object file" />
          <file file_name="o.c" /><file file_name="o.h" /></project>
          <project Name="Off"><configuration Name="Common" project_type="Library" build_exclude_from_build="Yes" />
          </project>)x",
         "App", jobs,
         {"message step 7 out/app.elf @/out/app.elf <- @/obj/a.o @/obj/b.o @/out/lib.a @/obj/o.o", "accept @/out/app.elf"}},
        {app("linker_pre_build_command=\"gen $(PostLinkOutputFilePath)\" "
             "linker_pre_build_command_output_file_name=\"gen.ld\" linker_pre_build_command_wd=\"tools\" "
             "linker_post_build_command=\"objcopy $(RelTargetPath) $(PostLinkOutputFilePath) &amp;&amp; echo "
             "&quot;a b&quot;\" linker_post_build_command_output_file=\"out/app.bin\""),
         "App", jobs,
         {"begin Pre-link command ", "command @/tools | gen gen.ld | ", "end", linked[0], linked[1],
          "begin Post-link command ", "command @ | objcopy out/app.elf out/app.bin | ", "command @ | echo a b | ", "end"}},
        // Deleting the intermediate directory ends a link.
        {app("delete_intermediate_directory=\"Yes\""), "App", jobs,
         {linked[0], linked[1], "begin Deleting Intermediate Directory ", "command @ | rm -fr obj | ", "end"}},
        {app("compile_pre_build_command=\"pp $(InputFileName)\" compile_pre_build_command_output_file_name="
             "\"$(InputName).i\" compile_pre_build_command_wd=\"gen\" compile_post_build_command=\"size $(RelTargetPath)\""),
         "a.c", quiet | BuildAlways,
         {"begin Pre-compile command ", "command @/gen | pp a.c | @/gen/a.i", "end",
          "message step 2 obj/a.o @/obj/a.o <- @/gen/a.i", "begin Post-compile command ", "command @ | size obj/a.o | ",
          "end"}},
        // No assemble command: s.s is nothing to the build.
        {externalApp, "Ext", quiet | BuildAlways,
         {"begin Compiling 'a.c'", "command @ | cc -DA -DB=1 -Iinc -c a.c -o obj/a.o -MF obj/a.d -O2 -g | @/obj/a.o",
          "end", "write @/obj/objects.txt | \"@/obj/a.o\"", "begin Linking 'ext.elf'",
          "command @ | ld @/obj/a.o -o out/ext.elf -static @obj/objects.txt | @/out/ext.elf", "end",
          "accept @/out/ext.elf"}},
        {externalBuild, "Ext", quiet, {"begin Running Build command ", "command @ | make all | @/bin/app", "end"}},
        {externalBuild, "Ext", clean, {"begin Running Clean command ", "command @ | make clean | ", "end"}},
        {archives("out/new.a"), "Lib", quiet | BuildFilesAreJobs,
         {"begin Archiving 'new.a'", "command @ | ar rc out/new.a @/obj/a.o | ", "command @ | ranlib out/new.a | @/out/new.a",
          "end", "begin Post-archive command ", "command @/dist | cp @/out/new.a dist | ", "command @/dist | echo | ",
          "end"}},
        {archives("out/lib.a"), "Lib", BuildFilesAreJobs, {"begin Checking 'Lib'", "outcome 'Lib' is up to date", "end"}, false},
        {archives("out/lib.a"), "Empty", 0, {"detail Nothing to archive for 'Empty'"}, false},
        {archives("out/lib.a"), "Empty", quiet, {}, false},
        // Staging copies the file and sets it writable, read-only or
        // neither.
        {staging("", "b.txt"), "b.txt", quiet,
         {"begin Copying 'b.txt'", "command @ | cp b.txt @/out/b.txt | @/out/b.txt", "command @ | chmod +w @/out/b.txt | ",
          "end"}},
        {staging(""), "a.txt", 0, {"begin Checking 'a.txt'", "outcome 'a.txt' is up to date.", "end"}, false},
        {staging("stage_set_readonly=\"Yes\" stage_command_wd=\"w\""), "a.txt", quiet | BuildAlways,
         {"begin Copying 'a.txt'", "command @/w | cp a.txt @/out/a.txt | @/out/a.txt",
          "command @/w | chmod -w @/out/a.txt | ", "end"}},
        {staging("stage_set_readonly=\"Don't\""), "a.txt", quiet | BuildAlways,
         {"begin Copying 'a.txt'", "command @ | cp a.txt @/out/a.txt | @/out/a.txt", "end"}},
        // An empty stage command has nothing to do.
        {staging("stage_command=\"\"", "b.txt"), "b.txt", quiet, {"begin Copying 'b.txt'", "end"}},
        {staging("stage_command=\"\"", "b.txt"), "b.txt", 0,
         {"begin Checking 'b.txt'", "detail @/out/b.txt does not exist.", "end", "begin Copying 'b.txt'",
          "outcome nothing to do", "end"}},
        // The post-stage command runs when a file was staged.
        {staging("stage_post_build_command=\"sync\""), "Stage", quiet, {}, false},
        {staging("stage_post_build_command=\"sync\"", "a.txt c.txt"), "Stage", quiet,
         {"begin Copying 'c.txt'", "command @ | cp c.txt @/out/c.txt | @/out/c.txt", "command @ | chmod +w @/out/c.txt | ",
          "end", "begin Post-stage command", "command @ | sync | ", "end"}},
        // Combining runs over all built files, relative to its directory;
        // without inputs the command still runs.
        {combining, "Doc", quiet | BuildAlways,
         {"begin Combining 'Doc'", "command @/work | cat ../a.txt ../sub/b c.txt -o @/out/Doc | @/out/Doc",
          "command @/work | chmod +w @/out/Doc | ", "end"}},
        {combining, "Doc", 0, {"begin Checking 'Doc'", "outcome 'Doc' is up to date", "end"}, false},
        {combining, "None", quiet,
         {"begin Combining 'None'", "command @ | touch @/out/None | @/out/None", "command @ | chmod +w @/out/None | ",
          "end"}},
    };
    for (const auto &c : cases) {
        load(c.body);
        EXPECT_EQ(build(c.node, c.flags), c.lines) << c.body;
        EXPECT_EQ(result, c.result) << c.body;
    }
    // A changed property that no stage step reads leaves a copy up to date.
    load(staging(""));
    system.setPropertyValue(node("Stage"), system.toolProperties.stagePostBuildCommand, "Common", "sync");
    EXPECT_EQ(build("a.txt", quiet), Lines{});
    // The working directory of the pre-link command has been made.
    EXPECT_TRUE(FileInfo(directory / "tools").isDir());
}

TEST_F(BuildElement, ARefusedOutputFileIsRemovedAndNothingRunsAfterIt) {
    load(app("linker_post_build_command=\"post\""));
    recorder.accept = false;
    EXPECT_EQ(build("App", jobs), (Lines{"message step 7 out/app.elf @/out/app.elf <- @/obj/a.o @/obj/b.o",
                                         "accept @/out/app.elf", "begin Cleaning 'App'", "delete @/out/app.elf", "end"}));
}

// ---- User steps around a project.

TEST_F(BuildElement, PreBuildRunsOnlyWhenSomethingIsOutOfDateOrAlways) {
    load(app("pre_build_command=\"gen one &amp;&amp; gen two\""));
    EXPECT_FALSE(system.preBuildStep(node("App"), "Debug", &recorder, quiet));
    EXPECT_EQ(recorder.lines, Lines{});
    const Lines run{"begin Pre-Building 'App'", "command @ | gen one | ", "command @ | gen two | ", "end"};
    EXPECT_TRUE(system.preBuildStep(node("App"), "Debug", &recorder, quiet | BuildAlways));
    EXPECT_EQ(recorder.lines, run);
    setTime(directory / "a.c", baseTime + 1);
    recorder.lines.clear();
    EXPECT_TRUE(system.preBuildStep(node("App"), "Debug", &recorder, quiet));
    EXPECT_EQ(recorder.lines, run);

    load(app("pre_build_command=\"gen\" pre_build_command_control=\"Always Run\" pre_build_command_wd=\"g\""));
    setTime(directory / "a.c", baseTime);
    recorder.lines.clear();
    EXPECT_TRUE(system.preBuildStep(node("App"), "Debug", &recorder, quiet));
    EXPECT_EQ(recorder.lines, (Lines{"begin Pre-Building 'App'", "command @/g | gen | ", "end"}));
    EXPECT_TRUE(FileInfo(directory / "g").isDir());
}

TEST_F(BuildElement, PostBuildRunsWhenBuiltOrAlways) {
    load(app("post_build_command=\"post\""));
    system.postBuildStep(node("App"), "Debug", &recorder, false);
    EXPECT_EQ(recorder.lines, Lines{});
    const Lines run{"begin Post-Building 'App'", "command @ | post | ", "end"};
    system.postBuildStep(node("App"), "Debug", &recorder, true);
    EXPECT_EQ(recorder.lines, run);
    system.setPropertyValue(node("App"), system.toolProperties.postBuildCommandControl, "Common", "Always Run");
    recorder.lines.clear();
    system.postBuildStep(node("App"), "Debug", &recorder, false);
    EXPECT_EQ(recorder.lines, run);
}

TEST_F(BuildElement, DirectoryStepMakesEachDirectoryOnce) {
    load(app());
    system.directoryStep(node("App"), "Debug", &recorder);
    EXPECT_EQ(recorder.lines, (Lines{"begin Creating Build Directories For 'App'", "command @ | mkdir -p obj | ",
                                     "command @ | mkdir -p out | ", "end"}));
    system.setPropertyValue(node("App"), system.nodeProperties.buildOutputDirectory, "Common", "obj");
    recorder.lines.clear();
    system.directoryStep(node("App"), "Debug", &recorder);
    EXPECT_EQ(recorder.lines, (Lines{"begin Creating Build Directories For 'App'", "command @ | mkdir -p obj | ", "end"}));
}

// ---- Unity folders.

const char *const unityApp = R"x(<project Name="App">
    <configuration Name="Common" project_type="Executable" build_output_file_name="out/app.elf" linker_map_file="No" />
    <folder Name="all">
      <configuration Name="Common" unity_build_file_name="gen/unity.c" unity_build_exclude_filter="skip;;" />
      <file file_name="x.c" /><file file_name="y.c" /><file file_name="skip_me.c" />
      <file file_name="off.c"><configuration Name="Common" build_exclude_from_build="Yes" /></file>
    </folder>
  </project>
)x";

TEST_F(BuildElement, AUnityFolderCompilesOneFileAndTheFilteredOnes) {
    load(unityApp);
    for (const char *name : {"x.c", "y.c", "skip_me.c", "off.c"})
        file(name, "x", baseTime);
    // No objects yet: their directory is missing too.
    std::filesystem::remove_all(directory / "obj");
    EXPECT_EQ(build("App", quiet | BuildNoUnity),
              (Lines{"message step 2 obj/x.o @/obj/x.o <- @/x.c", "message step 2 obj/y.o @/obj/y.o <- @/y.c",
                     "message step 2 obj/skip_me.o @/obj/skip_me.o <- @/skip_me.c",
                     "message step 7 out/app.elf @/out/app.elf <- @/obj/x.o @/obj/y.o @/obj/skip_me.o",
                     "accept @/out/app.elf"}));
    EXPECT_FALSE(FileInfo(directory / "gen/unity.c").exists());
    // Asked before the build points it at its unity file, the folder is
    // nothing of its own.
    idler.steps = 0;
    system.setDependencyCacheEnabled(true);
    system.fileStatusCache().setEnabled(true);
    EXPECT_EQ(system.buildKind(node("all"), "Debug", 0), StandardProjectSystem::KindNone);
    EXPECT_EQ(system.stepCount(node("App"), "Debug", 0), 3);
    EXPECT_EQ(build("App", quiet), (Lines{"message step 2 obj/skip_me.o @/obj/skip_me.o <- @/skip_me.c",
                                          "message step 2 obj/unity.o @/obj/unity.o <- @/gen/unity.c",
                                          "message step 7 out/app.elf @/out/app.elf <- @/obj/unity.o @/obj/skip_me.o",
                                          "accept @/out/app.elf"}));
    system.setDependencyCacheEnabled(false);
    system.fileStatusCache().setEnabled(false);
    EXPECT_EQ(idler.steps, 3);
    EXPECT_EQ(TestDirectory::read(directory / "gen/unity.c"),
              "#include \"" + (directory / "x.c") + "\"\n#include \"" + (directory / "y.c") + "\"\n");
    EXPECT_FALSE(ProjectSystem::isModified(system.solution, true));

    // Newer than the solution, it isn't written again.
    file("gen/unity.c", "kept", FileTime::now().seconds() + 100);
    build("App", quiet);
    EXPECT_EQ(TestDirectory::read(directory / "gen/unity.c"), "kept");

    // Cleaning the folder removes the unity file and its object.
    EXPECT_EQ(build("all", clean), (Lines{"begin Cleaning 'all'", "delete @/gen/unity.c", "delete @/obj/unity.o", "end"}));
    EXPECT_TRUE(result);
}

// A build keeps the kinds and object files it has given until it ends.
TEST_F(BuildElement, ABuildKeepsTheAnswersItHasGivenUntilItEnds) {
    load(app());
    system.setDependencyCacheEnabled(true);
    system.fileStatusCache().setEnabled(true);
    ProjectElement *source = node("a.c");
    EXPECT_EQ(system.buildKind(source, "Debug", 0), StandardProjectSystem::KindC);
    EXPECT_EQ(system.compiledFilePath(StandardProjectSystem::KindC, source, "Debug"), directory / "obj/a.o");
    // A header is compiled in an analysis, and kept apart.
    EXPECT_EQ(system.buildKind(source, "Debug", BuildAnalyse), StandardProjectSystem::KindC);

    // Nothing changes properties during a build; if something did, the
    // answers of this build would stand.
    system.setPropertyValue(source, system.nodeProperties.buildExcludeFromBuild, "Common", "Yes");
    system.setPropertyValue(source, system.nodeProperties.buildObjectFileName, "Common", "other.o");
    EXPECT_EQ(system.buildKind(source, "Debug", 0), StandardProjectSystem::KindC);
    EXPECT_EQ(system.compiledFilePath(StandardProjectSystem::KindC, source, "Debug"), directory / "obj/a.o");
    // Each configuration has answers of its own.
    EXPECT_EQ(system.buildKind(source, "Release", 0), StandardProjectSystem::KindExcluded);

    // The next build asks again.
    system.setDependencyCacheEnabled(false);
    system.fileStatusCache().setEnabled(false);
    EXPECT_EQ(system.buildKind(source, "Debug", 0), StandardProjectSystem::KindExcluded);
    EXPECT_EQ(system.compiledFilePath(StandardProjectSystem::KindC, source, "Debug"), directory / "other.o");
}

TEST_F(BuildElement, DeeplyNestedFoldersDontExhaustTheStack) {
    // The walk keeps its own stack. Property look-ups walk up the tree, so a
    // far deeper tree works but gets slow.
    const int depth = 4000;
    std::string body = "<project Name=\"Deep\"><configuration Name=\"Common\" project_type=\"Library\" />\n";
    for (int i = 0; i < depth; ++i)
        body += "<folder Name=\"f\">";
    body += "<file file_name=\"deep.c\" />";
    for (int i = 0; i < depth; ++i)
        body += "</folder>";
    load(body + "\n</project>\n");
    file("deep.c", "x", baseTime);
    EXPECT_EQ(build("Deep", quiet | BuildCheckOnly), Lines{});
    EXPECT_TRUE(result);
}

}  // namespace
