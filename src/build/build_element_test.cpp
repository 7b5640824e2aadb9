#include "build/node_build_test_fixture.h"

namespace {

// An executable of two sources, all of it up to date at baseTime.
class BuildElement : public NodeBuildTest {
protected:
    void loadApp(const std::string &projectProperties = "", const std::string &files = "") {
        load(R"x(  <project Name="App">
    <configuration Name="Common" project_type="Executable" build_output_file_name="out/app.elf" linker_map_file="No" )x" +
             projectProperties + R"x( />
    <file file_name="a.c" />
    <folder Name="sub"><file file_name="sub/b.c" /></folder>
)x" + files + "  </project>\n");
        for (const char *name : {"a.c", "sub/b.c", "obj/a.o", "obj/b.o", "out/app.elf"})
            file(name, "x", baseTime);
    }
};

TEST_F(BuildElement, AnUpToDateProjectBuildsNothing) {
    loadApp();
    EXPECT_EQ(build("App", 0), (Lines{"begin Checking 'a.c'", "outcome 'a.c' is up to date", "end",
                                      "begin Checking 'b.c'", "outcome 'b.c' is up to date", "end",
                                      "begin Checking 'App'", "outcome 'App' is up to date", "end"}));
    EXPECT_FALSE(result);
    EXPECT_EQ(idler.steps, 3);
}

TEST_F(BuildElement, ABuiltObjectForcesTheLink) {
    loadApp();
    setTime(directory / "sub/b.c", baseTime + 1);
    EXPECT_EQ(build("App", BuildQuietChecks),
              (Lines{"message step 2 obj/b.o @/obj/b.o <- @/sub/b.c",
                     "message step 7 out/app.elf @/out/app.elf <- @/obj/a.o @/obj/b.o", "accept @/out/app.elf"}));
    EXPECT_TRUE(result);
    // With file jobs the end job sees only the link, which is up to date by
    // the times: the objects haven't been rebuilt here.
    EXPECT_EQ(build("App", BuildQuietChecks | BuildFilesAreJobs), Lines{});
    setTime(directory / "obj/b.o", baseTime + 2);
    EXPECT_EQ(build("App", BuildFilesAreJobs), (Lines{"begin Checking 'App'",
                                      "detail @/obj/b.o (" + timeText(baseTime + 2) + ") is later than @/out/app.elf (" +
                                          timeText(baseTime) + ").",
                                      "end", "message step 7 out/app.elf @/out/app.elf <- @/obj/a.o @/obj/b.o",
                                      "accept @/out/app.elf"}));
}

TEST_F(BuildElement, CleanDeletesEachObjectThenTheTarget) {
    loadApp("delete_intermediate_directory=\"Yes\"");
    const BuildFlags clean = BuildClean | BuildAlways | BuildCheckOnly | BuildQuietChecks;
    EXPECT_EQ(build("App", clean), (Lines{"begin Cleaning 'a.c'", "delete @/obj/a.o", "delete @/obj/a.d", "end",
                                          "begin Cleaning 'b.c'", "delete @/obj/b.o", "delete @/obj/b.d", "end",
                                          "begin Cleaning 'App'", "delete @/out/app.elf", "end"}));
    EXPECT_TRUE(result);
}

TEST_F(BuildElement, AMissingSourceIsAnError) {
    loadApp("", "    <file file_name=\"gone.c\" />\n");
    EXPECT_EQ(build("gone.c", BuildQuietChecks),
              (Lines{"begin Checking Source File Exists", "error @/gone.c does not exist.", "end"}));
    EXPECT_FALSE(result);
    EXPECT_EQ(build("gone.c", BuildQuietChecks | BuildKeepGoing),
              (Lines{"begin Checking Source File Exists", "error @/gone.c does not exist.", "end",
                     "message step 2 obj/gone.o @/obj/gone.o <- @/gone.c"}));
}

TEST_F(BuildElement, ExcludedFilesAreNeitherBuiltNorLinked) {
    loadApp("", "    <file file_name=\"off.c\"><configuration Name=\"Common\" build_exclude_from_build=\"Yes\" /></file>\n");
    setTime(directory / "out/app.elf", baseTime - 1);
    EXPECT_EQ(build("App", BuildQuietChecks),
              (Lines{"message step 7 out/app.elf @/out/app.elf <- @/obj/a.o @/obj/b.o", "accept @/out/app.elf"}));
    EXPECT_EQ(idler.steps, 3);
}

TEST_F(BuildElement, AnObjectFileGivenTwiceStopsTheLink) {
    load(R"x(  <project Name="App">
    <configuration Name="Common" project_type="Executable" build_output_file_name="out/app.elf" linker_map_file="No" />
    <folder Name="one"><file file_name="one/x.c" /></folder>
    <folder Name="two"><file file_name="two/x.c" /></folder>
  </project>
)x");
    EXPECT_EQ(build("App", BuildQuietChecks | BuildFilesAreJobs),
              (Lines{"begin Checking For Duplicate Object Files",
                     "error The object file @/obj/x.o has been supplied more than once", "end"}));
    EXPECT_FALSE(result);
}

TEST_F(BuildElement, AdditionalLinkerInputsAreCheckedAndAddedOnce) {
    loadApp("linker_additional_files=\"extra.o;obj/a.o;missing.o\"");
    file("extra.o", "x", baseTime);
    EXPECT_EQ(build("App", BuildQuietChecks | BuildFilesAreJobs | BuildAlways),
              (Lines{"begin Checking Additional Linker Inputs 'App'", "warning @/obj/a.o supplied more than once",
                     "error @/missing.o does not exist.", "end",
                     "message step 7 out/app.elf @/out/app.elf <- @/obj/a.o @/obj/b.o @/extra.o @/missing.o",
                     "accept @/out/app.elf"}));
}

TEST_F(BuildElement, InputsOrderAndInputsFileReplaceTheObjects) {
    loadApp("inputs_order=\"b.c;nothere;a.c\"");
    const BuildFlags flags = BuildQuietChecks | BuildFilesAreJobs | BuildAlways;
    EXPECT_EQ(build("App", flags)[0], "message step 7 out/app.elf @/out/app.elf <- @/obj/b.o @/obj/a.o");

    loadApp("inputs_file=\"inputs.txt\"");
    file("inputs.txt", "lib/x.o\r\n\n/abs/y.o\n", baseTime);
    EXPECT_EQ(build("App", flags)[0], "message step 7 out/app.elf @/out/app.elf <- @/lib/x.o /abs/y.o");

    loadApp("inputs_file=\"none.txt\"");
    EXPECT_EQ(build("App", flags),
              (Lines{"begin Opening Input File", "error Failed to open the inputs file @/none.txt", "end"}));
    EXPECT_FALSE(result);
}

TEST_F(BuildElement, LibrariesOfDependentProjectsGoToTheLink) {
    load(R"x(  <project Name="App">
    <configuration Name="Common" project_type="Executable" build_output_file_name="out/app.elf" linker_map_file="No"
      project_dependencies="Lib;Objs;Off" />
    <file file_name="a.c" />
  </project>
  <project Name="Lib">
    <configuration Name="Common" project_type="Library" build_output_file_name="out/lib.a" />
    <file file_name="l.c" />
  </project>
  <project Name="Objs">
    <configuration Name="Common" project_type="Object file" />
    <file file_name="o.c" /><file file_name="o.h" />
  </project>
  <project Name="Off">
    <configuration Name="Common" project_type="Library" build_exclude_from_build="Yes" />
  </project>
)x");
    EXPECT_EQ(build("App", BuildQuietChecks | BuildFilesAreJobs | BuildAlways)[0],
              "message step 7 out/app.elf @/out/app.elf <- @/obj/a.o @/out/lib.a @/obj/o.o");
}

TEST_F(BuildElement, PreAndPostLinkCommandsRunAroundTheLink) {
    loadApp("linker_pre_build_command=\"gen $(PostLinkOutputFilePath)\" "
            "linker_pre_build_command_output_file_name=\"gen.ld\" linker_pre_build_command_wd=\"tools\" "
            "linker_post_build_command=\"objcopy $(RelTargetPath) $(PostLinkOutputFilePath) &amp;&amp; echo &quot;a b&quot;\" "
            "linker_post_build_command_output_file=\"out/app.bin\"");
    EXPECT_EQ(build("App", BuildQuietChecks | BuildFilesAreJobs | BuildAlways),
              (Lines{"begin Pre-link command ", "command @/tools | gen gen.ld | ", "end",
                     "message step 7 out/app.elf @/out/app.elf <- @/obj/a.o @/obj/b.o", "accept @/out/app.elf",
                     "begin Post-link command ", "command @ | objcopy out/app.elf out/app.bin | ",
                     "command @ | echo a b | ", "end"}));
    EXPECT_TRUE(FileInfo(directory / "tools").isDir());

    // A refused output file is removed, and nothing runs after it.
    recorder.accept = false;
    const Lines refused = build("App", BuildQuietChecks | BuildFilesAreJobs | BuildAlways);
    EXPECT_EQ(Lines(refused.begin() + 4, refused.end()),
              (Lines{"accept @/out/app.elf", "begin Cleaning 'App'", "delete @/out/app.elf", "end"}));
}

TEST_F(BuildElement, DeletingTheIntermediateDirectoryEndsALink) {
    loadApp("delete_intermediate_directory=\"Yes\"");
    const Lines lines = build("App", BuildQuietChecks | BuildFilesAreJobs | BuildAlways);
    EXPECT_EQ(Lines(lines.end() - 3, lines.end()),
              (Lines{"begin Deleting Intermediate Directory ", "command @ | rm -fr obj | ", "end"}));
}

// An externally built executable whose sources compile by the project's
// own commands.
const char *const externalApp = R"x(  <project Name="Ext">
    <configuration Name="Common" project_type="Externally Built Executable"
      build_output_file_name="out/ext.elf"
      external_c_compile_command="cc $(Defines) $(Includes) -c $(RelInputPath) -o $(RelTargetPath) -MF $(RelDependencyPath) $(COptions)"
      c_preprocessor_definitions="A;B=1" c_user_include_directories="inc" c_additional_options="-O2;-g"
      external_link_command="ld $(Objects) -o $(RelTargetPath) $(LinkOptions) $(LinkLibraries) @$(RelObjectsFilePath)"
      external_objects_file_name="$(IntDir)/objects.txt" linker_additional_options="-static" />
    <file file_name="a.c" />
    <file file_name="s.s" />
  </project>
)x";

TEST_F(BuildElement, ExternalCompileAndLinkCommandsWithTheirMacros) {
    load(externalApp);
    file("a.c", "x", baseTime);
    file("s.s", "x", baseTime);
    EXPECT_EQ(build("Ext", BuildQuietChecks | BuildAlways),
              (Lines{"begin Compiling 'a.c'",
                     "command @ | cc -DA -DB=1 -Iinc -c a.c -o obj/a.o -MF obj/a.d -O2 -g | @/obj/a.o", "end",
                     // No assemble command: the file is nothing to the build.
                     "write @/obj/objects.txt | \"@/obj/a.o\"", "begin Linking 'ext.elf'",
                     "command @ | ld @/obj/a.o -o out/ext.elf -static @obj/objects.txt | @/out/ext.elf", "end",
                     "accept @/out/ext.elf"}));
}

TEST_F(BuildElement, ExternallyBuiltProjectsRunTheirBuildAndCleanCommands) {
    load(R"x(  <project Name="Ext">
    <configuration Name="Common" project_type="Externally Built Executable"
      external_build_command="make all" external_clean_command="make clean"
      external_build_file_name="bin/app" />
  </project>
)x");
    EXPECT_EQ(build("Ext", BuildQuietChecks),
              (Lines{"begin Running Build command ", "command @ | make all | @/bin/app", "end"}));
    EXPECT_TRUE(result);
    EXPECT_EQ(build("Ext", BuildQuietChecks | BuildAlways),
              (Lines{"begin Running Clean command ", "command @ | make clean | ", "end",
                     "begin Running Build command ", "command @ | make all | @/bin/app", "end"}));
    EXPECT_EQ(build("Ext", BuildClean | BuildAlways | BuildCheckOnly | BuildQuietChecks),
              (Lines{"begin Running Clean command ", "command @ | make clean | ", "end"}));
    EXPECT_EQ(idler.steps, 0);
}

TEST_F(BuildElement, ArchivesWithAnExternalCommandAndAPostCommand) {
    load(R"x(  <project Name="Lib">
    <configuration Name="Common" project_type="Externally Built Library" build_output_file_name="out/lib.a"
      external_c_compile_command="cc -c $(RelInputPath)"
      external_archive_command="ar rc $(RelTargetPath) $(Objects)&amp;&amp;ranlib $(RelTargetPath)"
      archive_post_build_command="cp $(TargetPath) dist &amp;&amp; echo" archive_post_build_command_wd="dist" />
    <file file_name="a.c" />
  </project>
  <project Name="Empty"><configuration Name="Common" project_type="Library" /></project>
)x");
    file("a.c", "x", baseTime);
    file("obj/a.o", "x", baseTime);
    EXPECT_EQ(build("Lib", BuildQuietChecks | BuildFilesAreJobs),
              (Lines{"begin Archiving 'lib.a'", "command @ | ar rc out/lib.a @/obj/a.o | ",
                     "command @ | ranlib out/lib.a | @/out/lib.a", "end", "begin Post-archive command ",
                     "command @/dist | cp @/out/lib.a dist | ", "command @/dist | echo | ", "end"}));
    file("out/lib.a", "x", baseTime);
    EXPECT_EQ(build("Lib", BuildFilesAreJobs),
              (Lines{"begin Checking 'Lib'", "outcome 'Lib' is up to date", "end"}));
    EXPECT_EQ(build("Empty", 0), (Lines{"detail Nothing to archive for 'Empty'"}));
    EXPECT_EQ(build("Empty", BuildQuietChecks), Lines{});
    EXPECT_FALSE(result);
}

const char *const staging = R"x(  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" />
    <file file_name="a.txt" />
  </project>
)x";

TEST_F(BuildElement, StagingCopiesAndSetsTheFileWritable) {
    load(staging);
    file("a.txt", "x", baseTime);
    EXPECT_EQ(build("a.txt", BuildQuietChecks),
              (Lines{"begin Copying 'a.txt'", "command @ | cp a.txt @/out/a.txt | @/out/a.txt",
                     "command @ | chmod +w @/out/a.txt | ", "end"}));
    file("out/a.txt", "x", baseTime);
    EXPECT_EQ(build("a.txt", 0), (Lines{"begin Checking 'a.txt'", "outcome 'a.txt' is up to date.", "end"}));

    system.setPropertyValue(node("Stage"), system.toolProperties.stageSetReadonly, "Common", "Yes");
    system.setPropertyValue(node("Stage"), system.toolProperties.stageCommandWd, "Common", "w");
    EXPECT_EQ(build("a.txt", BuildQuietChecks | BuildAlways),
              (Lines{"begin Copying 'a.txt'", "command @/w | cp a.txt @/out/a.txt | @/out/a.txt",
                     "command @/w | chmod -w @/out/a.txt | ", "end"}));
    system.setPropertyValue(node("Stage"), system.toolProperties.stageSetReadonly, "Common", "Don't");
    EXPECT_EQ(build("a.txt", BuildQuietChecks | BuildAlways),
              (Lines{"begin Copying 'a.txt'", "command @/w | cp a.txt @/out/a.txt | @/out/a.txt", "end"}));
}

TEST_F(BuildElement, AnEmptyStageCommandHasNothingToDo) {
    load(staging);
    file("a.txt", "x", baseTime);
    system.setPropertyValue(node("Stage"), system.toolProperties.stageCommand, "Common", "");
    EXPECT_EQ(build("a.txt", BuildQuietChecks), (Lines{"begin Copying 'a.txt'", "end"}));
    EXPECT_EQ(build("a.txt", 0), (Lines{"begin Checking 'a.txt'", "detail @/out/a.txt does not exist.", "end",
                                        "begin Copying 'a.txt'", "outcome nothing to do", "end"}));
}

TEST_F(BuildElement, ThePostStageCommandRunsWhenAFileWasStaged) {
    load(staging);
    file("a.txt", "x", baseTime);
    file("out/a.txt", "x", baseTime);
    system.setPropertyValue(node("Stage"), system.toolProperties.stagePostBuildCommand, "Common", "sync");
    EXPECT_EQ(build("Stage", BuildQuietChecks), Lines{});
    EXPECT_FALSE(result);
    setTime(directory / "a.txt", baseTime + 1);
    EXPECT_EQ(build("Stage", BuildQuietChecks),
              (Lines{"begin Copying 'a.txt'", "command @ | cp a.txt @/out/a.txt | @/out/a.txt",
                     "command @ | chmod +w @/out/a.txt | ", "end", "begin Post-stage command",
                     "command @ | sync | ", "end"}));
    EXPECT_TRUE(result);
}

TEST_F(BuildElement, CombiningRunsOverAllBuiltFilesRelativeToItsDirectory) {
    load(R"x(  <project Name="Doc">
    <configuration Name="Common" project_type="Combining" combine_command_wd="work"
      combine_command="cat $(CombiningRelInputPaths) -o $(CombiningOutputFilePath)" />
    <file file_name="a.txt" />
    <folder Name="sub"><file file_name="sub/b c.txt" /></folder>
    <file file_name="off.txt"><configuration Name="Common" build_exclude_from_build="Yes" /></file>
  </project>
  <project Name="None">
    <configuration Name="Common" project_type="Combining" combine_command="touch $(CombiningOutputFilePath)" />
  </project>
)x");
    file("a.txt", "x", baseTime);
    file("sub/b c.txt", "x", baseTime);
    EXPECT_EQ(build("Doc", BuildQuietChecks),
              (Lines{"begin Combining 'Doc'", "command @/work | cat ../a.txt ../sub/b c.txt -o @/out/Doc | @/out/Doc",
                     "command @/work | chmod +w @/out/Doc | ", "end"}));
    file("out/Doc", "", baseTime);  // empty is fine for a combined file
    EXPECT_EQ(build("Doc", 0), (Lines{"begin Checking 'Doc'", "outcome 'Doc' is up to date", "end"}));

    // Without inputs the command still runs when its file is missing.
    EXPECT_EQ(build("None", BuildQuietChecks),
              (Lines{"begin Combining 'None'", "command @ | touch @/out/None | @/out/None",
                     "command @ | chmod +w @/out/None | ", "end"}));
}

TEST_F(BuildElement, CompileStepsOfTheUserRunAroundTheCompile) {
    loadApp("compile_pre_build_command=\"pp $(InputFileName)\" compile_pre_build_command_output_file_name=\"$(InputName).i\" "
            "compile_pre_build_command_wd=\"gen\" compile_post_build_command=\"size $(RelTargetPath)\"");
    EXPECT_EQ(build("a.c", BuildQuietChecks | BuildAlways),
              (Lines{"begin Pre-compile command ", "command @/gen | pp a.c | @/gen/a.i", "end",
                     "message step 2 obj/a.o @/obj/a.o <- @/gen/a.i", "begin Post-compile command ",
                     "command @ | size obj/a.o | ", "end"}));
}

// ---- User steps around a project.

TEST_F(BuildElement, PreBuildRunsOnlyWhenSomethingIsOutOfDate) {
    loadApp("pre_build_command=\"gen one &amp;&amp; gen two\"");
    recorder.lines.clear();
    EXPECT_FALSE(system.preBuildStep(node("App"), "Debug", &recorder, BuildQuietChecks));
    EXPECT_EQ(recorder.lines, Lines{});
    const Lines run{"begin Pre-Building 'App'", "command @ | gen one | ", "command @ | gen two | ", "end"};
    EXPECT_TRUE(system.preBuildStep(node("App"), "Debug", &recorder, BuildQuietChecks | BuildAlways));
    EXPECT_EQ(recorder.lines, run);

    setTime(directory / "a.c", baseTime + 1);
    recorder.lines.clear();
    EXPECT_TRUE(system.preBuildStep(node("App"), "Debug", &recorder, BuildQuietChecks));
    EXPECT_EQ(recorder.lines, run);
}

TEST_F(BuildElement, PreBuildAlwaysRunIgnoresTheCheck) {
    loadApp("pre_build_command=\"gen\" pre_build_command_control=\"Always Run\" pre_build_command_wd=\"g\"");
    EXPECT_TRUE(system.preBuildStep(node("App"), "Debug", &recorder, BuildQuietChecks));
    EXPECT_EQ(recorder.lines, (Lines{"begin Pre-Building 'App'", "command @/g | gen | ", "end"}));
    EXPECT_TRUE(FileInfo(directory / "g").isDir());
}

TEST_F(BuildElement, PostBuildRunsWhenBuiltOrAlways) {
    loadApp("post_build_command=\"post\"");
    system.postBuildStep(node("App"), "Debug", &recorder, false);
    EXPECT_EQ(recorder.lines, Lines{});
    system.postBuildStep(node("App"), "Debug", &recorder, true);
    EXPECT_EQ(recorder.lines, (Lines{"begin Post-Building 'App'", "command @ | post | ", "end"}));
    system.setPropertyValue(node("App"), system.toolProperties.postBuildCommandControl, "Common", "Always Run");
    recorder.lines.clear();
    system.postBuildStep(node("App"), "Debug", &recorder, false);
    EXPECT_EQ(recorder.lines.size(), 3u);
}

TEST_F(BuildElement, DirectoryStepMakesEachDirectoryOnce) {
    loadApp();
    system.directoryStep(node("App"), "Debug", &recorder);
    EXPECT_EQ(recorder.lines, (Lines{"begin Creating Build Directories For 'App'", "command @ | mkdir -p obj | ",
                                     "command @ | mkdir -p out | ", "end"}));
    system.setPropertyValue(node("App"), system.nodeProperties.buildOutputDirectory, "Common", "obj");
    recorder.lines.clear();
    system.directoryStep(node("App"), "Debug", &recorder);
    EXPECT_EQ(recorder.lines, (Lines{"begin Creating Build Directories For 'App'", "command @ | mkdir -p obj | ", "end"}));
}

// ---- Unity folders.

const char *const unityApp = R"x(  <project Name="App">
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
    EXPECT_EQ(system.stepCount(node("App"), "Debug", 0), 3);
    EXPECT_EQ(build("App", BuildQuietChecks),
              (Lines{"message step 2 obj/skip_me.o @/obj/skip_me.o <- @/skip_me.c",
                     "message step 2 obj/unity.o @/obj/unity.o <- @/gen/unity.c",
                     "message step 7 out/app.elf @/out/app.elf <- @/obj/unity.o @/obj/skip_me.o",
                     "accept @/out/app.elf"}));
    EXPECT_EQ(idler.steps, 3);
    EXPECT_EQ(TestDirectory::read(directory / "gen/unity.c"),
              "#include \"" + (directory / "x.c") + "\"\n#include \"" + (directory / "y.c") + "\"\n");
    EXPECT_FALSE(ProjectSystem::isModified(system.solution, true));

    // Newer than the solution, it isn't written again.
    file("gen/unity.c", "kept", FileTime::now().seconds() + 100);
    build("App", BuildQuietChecks);
    EXPECT_EQ(TestDirectory::read(directory / "gen/unity.c"), "kept");
}

TEST_F(BuildElement, NoUnityBuildsEachFile) {
    load(unityApp);
    for (const char *name : {"x.c", "y.c", "skip_me.c", "off.c"})
        file(name, "x", baseTime);
    EXPECT_EQ(build("App", BuildQuietChecks | BuildNoUnity),
              (Lines{"message step 2 obj/x.o @/obj/x.o <- @/x.c", "message step 2 obj/y.o @/obj/y.o <- @/y.c",
                     "message step 2 obj/skip_me.o @/obj/skip_me.o <- @/skip_me.c",
                     "message step 7 out/app.elf @/out/app.elf <- @/obj/x.o @/obj/y.o @/obj/skip_me.o",
                     "accept @/out/app.elf"}));
    EXPECT_FALSE(FileInfo(directory / "gen/unity.c").exists());
}

TEST_F(BuildElement, CleaningAUnityFolderRemovesTheUnityFileAndItsObject) {
    load(unityApp);
    EXPECT_EQ(build("all", BuildClean | BuildAlways | BuildCheckOnly | BuildQuietChecks),
              (Lines{"begin Cleaning 'all'", "delete @/gen/unity.c", "delete @/obj/unity.o", "end"}));
    EXPECT_TRUE(result);
}

TEST_F(BuildElement, DeeplyNestedFoldersDontExhaustTheStack) {
    std::string body = "  <project Name=\"Deep\"><configuration Name=\"Common\" project_type=\"Library\" />\n";
    // The walk keeps its own stack. Property look-ups walk up the tree, so a
    // far deeper tree works but gets slow.
    const int depth = 4000;
    for (int i = 0; i < depth; ++i)
        body += "<folder Name=\"f\">";
    body += "<file file_name=\"deep.c\" />";
    for (int i = 0; i < depth; ++i)
        body += "</folder>";
    load(body + "\n  </project>\n");
    file("deep.c", "x", baseTime);
    EXPECT_EQ(build("Deep", BuildQuietChecks | BuildCheckOnly), Lines{});
    EXPECT_TRUE(result);
}

}  // namespace
