// What the build of a node records per kind of project, when a compile is up
// to date, and the rules of a dependency file.

#include "build/dependency_file.h"
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

// An archive of a.c, out/new.a, that is missing, and a library of nothing.
const std::string archives = R"x(<project Name="Lib">
    <configuration Name="Common" project_type="Externally Built Library" build_output_file_name="out/new.a"
      external_c_compile_command="cc -c $(RelInputPath)"
      external_archive_command="ar rc $(RelTargetPath) $(Objects)&amp;&amp;ranlib $(RelTargetPath)"
      archive_post_build_command="cp $(TargetPath) dist &amp;&amp; echo" archive_post_build_command_wd="dist" />
    <file file_name="a.c" /></project>
  <project Name="Empty"><configuration Name="Common" project_type="Library" /></project>
)x";

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
    <file file_name="off.txt"><configuration Name="Common" build_exclude_from_build="Yes" /></file></project>
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
        bool accept = true;  // the builder accepts the output file
    } cases[] = {
        {app(), "App", 0,
         {"begin Checking 'a.c'", "outcome 'a.c' is up to date", "end", "begin Checking 'b.c'",
          "outcome 'b.c' is up to date", "end", "begin Checking 'App'", "outcome 'App' is up to date", "end"}, false},
        // A missing source stops its compile, unless the build keeps going.
        {app("", "<file file_name=\"gone.c\" />"), "gone.c", quiet,
         {"begin Checking Source File Exists", "error @/gone.c does not exist.", "end"}, false},
        {app("", "<file file_name=\"gone.c\" />"), "gone.c", quiet | BuildKeepGoing,
         {"begin Checking Source File Exists", "error @/gone.c does not exist.", "end",
          "message step 2 obj/gone.o @/obj/gone.o <- @/gone.c"}},
        {R"x(<project Name="App"><configuration Name="Common" project_type="Executable" />
          <folder Name="one"><file file_name="one/x.c" /></folder><folder Name="two"><file file_name="two/x.c" /></folder>
          </project>)x", "App", quiet | BuildFilesAreJobs,
         {"begin Checking For Duplicate Object Files", "error The object file @/obj/x.o has been supplied more than once",
          "end"}, false},
        // Additional linker inputs are checked, and added once.
        {app("linker_additional_files=\"extra.o;obj/a.o;missing.o\""), "App", jobs,
         {"begin Checking Additional Linker Inputs 'App'", "warning @/obj/a.o supplied more than once",
          "error @/missing.o does not exist.", "end",
          "message step 7 out/app.elf @/out/app.elf <- @/obj/a.o @/obj/b.o @/extra.o @/missing.o", "accept @/out/app.elf"}},
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
          <file file_name="l.c" /></project><project Name="Objs"><configuration Name="Common" project_type="Object file" />
          <file file_name="o.c" /><file file_name="o.h" /></project><project Name="Off">
          <configuration Name="Common" project_type="Library" build_exclude_from_build="Yes" /></project>)x", "App", jobs,
         {"message step 7 out/app.elf @/out/app.elf <- @/obj/a.o @/obj/b.o @/out/lib.a @/obj/o.o", "accept @/out/app.elf"}},
        {app("linker_pre_build_command=\"gen $(PostLinkOutputFilePath)\" "
             "linker_pre_build_command_output_file_name=\"gen.ld\" linker_pre_build_command_wd=\"tools\" "
             "linker_post_build_command=\"objcopy $(RelTargetPath) $(PostLinkOutputFilePath) &amp;&amp; echo "
             "&quot;a b&quot;\" linker_post_build_command_output_file=\"out/app.bin\""), "App", jobs,
         {"begin Pre-link command ", "command @/tools | gen gen.ld | ", "end", linked[0], linked[1],
          "begin Post-link command ", "command @ | objcopy out/app.elf out/app.bin | ", "command @ | echo a b | ", "end"}},
        // A refused output file is removed, and nothing runs after it.
        {app("linker_post_build_command=\"post\""), "App", jobs,
         {linked[0], linked[1], "begin Cleaning 'App'", "delete @/out/app.elf", "end"}, true, false},
        // Deleting the intermediate directory ends a link.
        {app("delete_intermediate_directory=\"Yes\""), "App", jobs,
         {linked[0], linked[1], "begin Deleting Intermediate Directory ", "command @ | rm -fr obj | ", "end"}},
        {app("compile_pre_build_command=\"pp $(InputFileName)\" compile_pre_build_command_output_file_name="
             "\"$(InputName).i\" compile_pre_build_command_wd=\"gen\" compile_post_build_command=\"size $(RelTargetPath)\""),
         "a.c", quiet | BuildAlways,
         {"begin Pre-compile command ", "command @/gen | pp a.c | @/gen/a.i", "end",
          "message step 2 obj/a.o @/obj/a.o <- @/gen/a.i", "begin Post-compile command ", "command @ | size obj/a.o | ", "end"}},
        // An externally built executable compiles by its own commands; with no
        // assemble command, s.s is nothing to the build.
        {R"x(<project Name="Ext"><configuration Name="Common" project_type="Externally Built Executable"
      build_output_file_name="out/ext.elf" external_objects_file_name="$(IntDir)/objects.txt"
      external_c_compile_command="cc $(Defines) $(Includes) -c $(RelInputPath) -o $(RelTargetPath) -MF $(RelDependencyPath) $(COptions)"
      c_preprocessor_definitions="A;B=1" c_user_include_directories="inc" c_additional_options="-O2;-g"
      external_link_command="ld $(Objects) -o $(RelTargetPath) $(LinkOptions) $(LinkLibraries) @$(RelObjectsFilePath)"
      linker_additional_options="-static" /><file file_name="a.c" /><file file_name="s.s" /></project>)x",
         "Ext", quiet | BuildAlways,
         {"begin Compiling 'a.c'", "command @ | cc -DA -DB=1 -Iinc -c a.c -o obj/a.o -MF obj/a.d -O2 -g | @/obj/a.o", "end",
          "write @/obj/objects.txt | \"@/obj/a.o\"", "begin Linking 'ext.elf'",
          "command @ | ld @/obj/a.o -o out/ext.elf -static @obj/objects.txt | @/out/ext.elf", "end", "accept @/out/ext.elf"}},
        {R"x(<project Name="Ext"><configuration Name="Common" project_type="Externally Built Executable"
          external_build_command="make all" external_clean_command="make clean" /></project>)x",
         "Ext", clean, {"begin Running Clean command ", "command @ | make clean | ", "end"}},
        {archives, "Lib", quiet | BuildFilesAreJobs,
         {"begin Archiving 'new.a'", "command @ | ar rc out/new.a @/obj/a.o | ", "command @ | ranlib out/new.a | @/out/new.a",
          "end", "begin Post-archive command ", "command @/dist | cp @/out/new.a dist | ", "command @/dist | echo | ", "end"}},
        {archives, "Empty", 0, {"detail Nothing to archive for 'Empty'"}, false}, {archives, "Empty", quiet, {}, false},
        // A staged copy may be left neither writable nor read-only.
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
        // Combining runs over all built files, relative to its directory.
        {combining, "Doc", quiet | BuildAlways,
         {"begin Combining 'Doc'", "command @/work | cat ../a.txt ../sub/b c.txt -o @/out/Doc | @/out/Doc",
          "command @/work | chmod +w @/out/Doc | ", "end"}},
        {combining, "Doc", 0, {"begin Checking 'Doc'", "outcome 'Doc' is up to date", "end"}, false},
    };
    for (const auto &c : cases) {
        load(c.body);
        recorder.accept = c.accept;
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

TEST_F(BuildElement, AUnityFolderCompilesOneFileAndTheFilteredOnes) {
    load(R"x(<project Name="App">
      <configuration Name="Common" project_type="Executable" build_output_file_name="out/app.elf" linker_map_file="No" />
      <folder Name="all"><configuration Name="Common" unity_build_file_name="gen/unity.c" unity_build_exclude_filter="skip;;" />
      <file file_name="x.c" /><file file_name="y.c" /><file file_name="skip_me.c" />
      <file file_name="off.c"><configuration Name="Common" build_exclude_from_build="Yes" /></file></folder></project>)x");
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

// The walk keeps its own stack. Property look-ups walk up the tree, so a
// far deeper tree works but gets slow.
TEST_F(BuildElement, DeeplyNestedFoldersDontExhaustTheStack) {
    std::string open, close;
    for (int i = 0; i < 4000; ++i) {
        open += "<folder Name=\"f\">";
        close += "</folder>";
    }
    load("<project Name=\"Deep\"><configuration Name=\"Common\" project_type=\"Library\" />" + open +
         "<file file_name=\"a.c\" />" + close + "</project>\n");
    EXPECT_EQ(build("Deep", quiet | BuildCheckOnly), Lines{});
    EXPECT_TRUE(result);
}

// ---- When the compile of main.c is up to date, and what a check says when
// not.

class UpToDate : public NodeBuildTest {
protected:
    // main.c and its object, both at baseTime.
    void SetUp() override {
        load(R"x(<project Name="App"><configuration Name="Common" project_type="Executable"
          build_output_file_name="out/app.elf" /><file file_name="main.c" /></project>)x");
        file("main.c", "int x;", baseTime);
        file("obj/main.o", "o", baseTime);
    }
    // The check's lines, then the compile's.
    static Lines rebuilt(const Lines &details) {
        Lines lines{"begin Checking 'main.c'"};
        lines.insert(lines.end(), details.begin(), details.end());
        lines.insert(lines.end(), {"end", "message step 2 obj/main.o @/obj/main.o <- @/main.c"});
        return lines;
    }
    static std::string later(const std::string &input, std::int64_t time, std::int64_t objectTime) {
        return "detail " + input + " (" + timeText(time) + ") is later than @/obj/main.o (" + timeText(objectTime) + ").";
    }
    const Lines upToDate{"begin Checking 'main.c'", "outcome 'main.c' is up to date", "end"};
};

// A missing or empty object is built. Times compare by the second: a
// source written later in its object's second is up to date, one a second
// later is not.
TEST_F(UpToDate, WhenTheObjectIsOutOfDate) {
    std::filesystem::remove(directory / "obj/main.o");
    setTime(directory / "main.c", baseTime, 900000000);
    EXPECT_EQ(build("main.c", 0), rebuilt({"detail @/obj/main.o does not exist."}));
    file("obj/main.o", "", baseTime + 5);
    EXPECT_EQ(build("main.c", 0), rebuilt({"detail @/obj/main.o is empty."}));
    file("obj/main.o", "o", baseTime, 100000000);
    EXPECT_EQ(build("main.c", 0), upToDate);
    EXPECT_FALSE(result);
    // Each check counts as a step; quiet checks say nothing at all.
    EXPECT_EQ(idler.steps, 3);
    EXPECT_EQ(build("main.c", BuildQuietChecks), Lines{});
    setTime(directory / "main.c", baseTime + 1);
    EXPECT_EQ(build("main.c", 0), rebuilt({later("@/main.c", baseTime + 1, baseTime)}));
    EXPECT_TRUE(result);
    EXPECT_EQ(build("main.c", BuildQuietChecks), (Lines{"message step 2 obj/main.o @/obj/main.o <- @/main.c"}));
    // A source from the future is named, and rebuilds each time.
    const std::int64_t future = FileTime::now().seconds() + 3600;
    setTime(directory / "main.c", future);
    const Lines expected = rebuilt({"detail clock skew detected on @/main.c.", later("@/main.c", future, baseTime)});
    EXPECT_EQ(build("main.c", 0), expected);
    EXPECT_EQ(build("main.c", 0), expected);
}

TEST_F(UpToDate, DependencyFileListsTheInputs) {
    file("inc/a.h", "", baseTime);
    file("inc/b c.h", "", baseTime);
    // A rule for another target contributes nothing; "other.h" would be newer.
    file("other.h", "", baseTime + 10);
    file("obj/main.d", "obj/main.o: main.c inc/a.h \\\n inc/b\\ c.h\nobj/other.o: other.h\n", baseTime);
    EXPECT_EQ(build("main.c", 0), upToDate);
    setTime(directory / "inc/b c.h", baseTime + 1);
    EXPECT_EQ(build("main.c", 0), rebuilt({later("inc/b c.h", baseTime + 1, baseTime)}));
    // A dependency that has gone is named and rebuilds.
    file("obj/main.d", "obj/main.o: main.c inc/gone.h\n", baseTime);
    EXPECT_EQ(build("main.c", 0), rebuilt({"detail @/inc/gone.h does not exist."}));
}

TEST_F(UpToDate, ForcedIncludesAndOptionFilesCountWithoutADependencyFile) {
    file("force.h", "", baseTime + 2);
    file("opts.txt", "-O2", baseTime + 3);
    system.trackingChanges = false;  // only the files speak here
    system.setPropertyValue(node("main.c"), system.toolProperties.cIncludeFiles, "Debug", "force.h");
    EXPECT_EQ(build("main.c", 0), rebuilt({later("force.h", baseTime + 2, baseTime)}));
    system.clearPropertyValue(node("main.c"), system.toolProperties.cIncludeFiles, "Debug");
    system.setPropertyValue(node("main.c"), system.toolProperties.cOnlyAdditionalOptionsFromFile, "Debug", "opts.txt");
    EXPECT_EQ(build("main.c", 0), rebuilt({later("opts.txt", baseTime + 3, baseTime)}));
}

TEST_F(UpToDate, PropertyChangesOfThisRunThatApplyToTheStepRebuild) {
    system.trackingChanges = true;
    // A link option, a change on another project's node and one of another
    // configuration leave the compile alone.
    system.setPropertyValue(node("App"), system.toolProperties.linkerAdditionalOptions, "Debug", "-x");
    system.setPropertyValue(node("App"), system.toolProperties.cPreprocessorDefinitions, "Release", "R");
    EXPECT_EQ(build("main.c", BuildQuietChecks), Lines{});
    system.setPropertyValue(node("App"), system.toolProperties.cPreprocessorDefinitions, "Common", "A");
    EXPECT_EQ(build("main.c", 0), rebuilt({"message Preprocessor Definitions property has changed."}));
}

// The dependency cache keeps its answers while it is on; a target resolves
// against the project's directory.
TEST_F(UpToDate, DependenciesAndTargetsAreLookedUp) {
    const std::string output = directory / "obj/main.o";
    file("obj/main.d", "main.c a.h\n", baseTime);
    system.setDependencyCacheEnabled(true);
    EXPECT_EQ(system.fileDependencies(node("main.c"), "Debug", output), (StringList{"main.c", "a.h"}));
    file("obj/main.d", "obj/main.o: main.c b.h\nmain.c c.h\n", baseTime);
    EXPECT_EQ(system.fileDependencies(node("main.c"), "Debug", output), (StringList{"main.c", "a.h"}));
    // Off, each question reads the file; a line without a target counts only
    // when nothing came before.
    system.setDependencyCacheEnabled(false);
    EXPECT_EQ(system.fileDependencies(node("main.c"), "Debug", output), (StringList{"main.c", "b.h"}));
    EXPECT_EQ(system.fileDependencies(node("main.c"), "Debug", directory / "obj/none.o"), StringList{});
    file("obj/t.o", "x", baseTime, 5);
    std::string resolved;
    FileTime time;
    EXPECT_TRUE(system.checkTarget(directory.path(), "obj/../obj/t.o", resolved, time, &recorder, false, true));
    EXPECT_EQ(resolved, directory / "obj/t.o");
    EXPECT_EQ(time, FileTime(baseTime, 5));
    EXPECT_FALSE(system.checkTarget(directory.path(), "none", resolved, time, nullptr, false, true));
    EXPECT_EQ(recorder.lines, Lines{});
}

// ---- The rules of a dependency file.

using Names = std::vector<std::string>;
using Rules = std::vector<std::pair<Names, Names>>;  // targets, prerequisites

Rules parse(const std::string &text) {
    Rules rules;
    for (const DependencyRule &rule : parseDependencyRules(text))
        rules.emplace_back(rule.targets, rule.prerequisites);
    return rules;
}

TEST(DependencyFile, RulesOfAText) {
    const struct {
        const char *text;
        Rules rules;
    } cases[] = {
        // Continuation lines join into one rule; a colon that ends a line
        // closes the targets too.
        {"obj/a.o: a.c \\\n  inc/a.h \\\r\n inc/b.h\n\nb.h:\n", {{{"obj/a.o"}, {"a.c", "inc/a.h", "inc/b.h"}}, {{"b.h"}, {}}}},
        // Escaped blanks and "#" stay in the name, "$$" is one "$", other
        // backslashes stay as they are.
        {"my\\ obj.o: my\\ file.c dir\\ x/a\\#b.h cost$$.h c:\\src\\d.h\n",
         {{{"my obj.o"}, {"my file.c", "dir x/a#b.h", "cost$.h", "c:\\src\\d.h"}}}},
        {"t.o: \\ lead.h trail\\ \tx$y.h $$$ a\\b.h", {{{"t.o"}, {" lead.h", "trail ", "x$y.h", "$$", "a\\b.h"}}}},
        // A line without a target is all prerequisites.
        {"a.c\tb.h   c.h", {{{}, {"a.c", "b.h", "c.h"}}}},
        // Only ": " cuts: "C:/x" is a name. A continuation at the end of the
        // text ends the rule.
        {"a.o a.d: C:/x/a.c\nlast.o: \\", {{{"a.o", "a.d"}, {"C:/x/a.c"}}, {{"last.o"}, {}}}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(parse(c.text), c.rules) << c.text;
}

// Names are scanned in runs: an escape or a blank is found wherever it falls
// in a name, and a name may end anywhere.
TEST(DependencyFile, EscapesAndBlanksAtEveryPlaceInALongName) {
    const std::string stem = "/usr/include/x86_64-linux-gnu/bits";
    for (std::size_t at = 0; at <= stem.size(); ++at) {
        const std::string before = stem.substr(0, at), after = stem.substr(at);
        for (const auto &[written, read] :
             {std::pair<std::string, std::string>{"\\ ", " "}, {"$$", "$"}, {"\\#", "#"}, {"\\x", "\\x"}}) {
            // The last name ends with the text, at every length.
            Names expected{before + read + after, "z.h"};
            if (!before.empty())
                expected.push_back(before);
            EXPECT_EQ(parse("t.o: " + before + written + after + "\tz.h " + before), (Rules{{{"t.o"}, expected}}))
                << written << " at " << at;
        }
    }
}

}  // namespace
