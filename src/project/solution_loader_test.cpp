#include "project/load_handlers.h"
#include "project/project_system_process.h"
#include "project/project_test_tree.h"
#include "support/exceptions.h"
#include "support/file_info.h"
#include "support/test_directory.h"
#include "support/text_split.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string solutionText(const std::string &body, const std::string &attributes = "") {
    return "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\" version=\"2\"" + attributes + ">\n" +
           body + "</solution>\n";
}

// What a failed load says, as "file|message".
std::string loadFailure(TestProjectSystem &system, const std::string &file, bool checkTarget = false,
                        TemplateNotFoundErrorHandler *templates = nullptr) {
    try {
        system.loadSolution(file, nullptr, templates, nullptr, checkTarget);
    } catch (const SolutionLoadError &e) {
        return e.detail() + "|" + e.message();
    }
    return "no error";
}

// Names of the nodes below `element`, with their depth, one a line.
std::string outline(TestProjectSystem &system, ProjectElement *element, int depth = 0) {
    std::string text = std::string(std::size_t(2 * depth), ' ') + system.elementName(element) + "\n";
    for (ProjectElement *child = ProjectSystem::firstChild(element); child;
         child = ProjectSystem::nextSibling(child)) {
        if (!ProjectSystem::isConfiguration(child))
            text += outline(system, child, depth + 1);
    }
    return text;
}

TEST(SolutionLoad, ImportsTakeThePlaceOfTheirElement) {
    TestDirectory directory;
    directory.write("lib/lib.tbp", solutionText("<project Name=\"$(Kind)Lib\" />\n"));
    directory.write("app.tbp",
                    solutionText("<project Name=\"App\" />\n"
                                 "<import file_name=\"$(Where)/lib.tbp\" macros=\"Kind=Fast\" />\n"
                                 "<folder Name=\"F\"><import file_name=\"lib/lib.tbp\" "
                                 "can_modify_solution=\"No\" macros=\"Kind=Slow\"/></folder>\n"));
    TestProjectSystem system;
    system.systemMacros.globalMacros()["Where"] = "lib";
    RecordingProgress progress;
    ProjectElement *root = system.loadSolution(directory / "app.tbp", nullptr, nullptr, &progress);
    // One file imported at two places is no cycle: each place gets a copy.
    EXPECT_EQ(outline(system, root), "S\n  App\n  S\n    FastLib\n  F\n    S\n      SlowLib\n");
    EXPECT_FALSE(ProjectSystem::firstChild(system.node("F"))->canModify);
    EXPECT_EQ(system.projectNames, (Strings{"App", "FastLib(S)", "SlowLib(S)"}));
    EXPECT_EQ(progress.events[0], "begin 2 Loading solution app.tbp");
    EXPECT_EQ(progress.open, 0);
    EXPECT_FALSE(ProjectSystem::isModified(root, true));
}

TEST(SolutionLoad, ImportCyclesAndFailuresNameTheFile) {
    TestDirectory directory;
    directory.write("a.tbp", solutionText("<import file_name=\"b.tbp\" />\n"));
    directory.write("b.tbp", solutionText("<project Name=\"P\"><import file_name=\"a.tbp\" /></project>\n"));
    directory.write("self.tbp", solutionText("<import file_name=\"self.tbp\" />\n"));
    directory.write("missing.tbp", solutionText("<import file_name=\"nowhere.tbp\" />\n"));
    directory.write("bad.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution>\n<a></b>\n</solution>\n");
    directory.write("badimport.tbp", solutionText("<import file_name=\"bad.tbp\" />\n"));
    TestProjectSystem system;
    EXPECT_EQ(loadFailure(system, directory / "a.tbp"), directory / "a.tbp| solution already loaded");
    EXPECT_EQ(loadFailure(system, directory / "self.tbp"), directory / "self.tbp| solution already loaded");
    EXPECT_EQ(loadFailure(system, directory / "missing.tbp"), "nowhere.tbp| does not exist");
    try {
        system.loadSolution(directory / "badimport.tbp");
        ADD_FAILURE() << "no error";
    } catch (const SolutionLoadError &e) {
        EXPECT_TRUE(e.isBadXml());
        EXPECT_EQ(e.detail(), "bad.tbp");
        // The line counter at the mismatch: the lines before it.
        EXPECT_EQ(e.line(), 2);
    }
}

// A file that imports the next one twice would make 2^n copies: the load
// stops when it has read too many files. A long chain loads all the same.
TEST(SolutionLoad, ImportsAreBounded) {
    TestDirectory directory;
    for (int i = 0; i < 20; ++i) {
        const std::string next = "<import file_name=\"s" + std::to_string(i + 1) + ".tbp\" />";
        directory.write(concat("s", std::to_string(i)) + ".tbp", solutionText(next + next + "\n"));
    }
    directory.write("s20.tbp", solutionText(""));
    TestProjectSystem system;
    const std::string failure = loadFailure(system, directory / "s0.tbp");
    EXPECT_NE(failure.find("| imports more than 10000 solution files"), std::string::npos) << failure;

    for (int i = 0; i < 1000; ++i)
        directory.write(concat("c", std::to_string(i)) + ".tbp",
                        solutionText(concat("<import file_name=\"c", std::to_string(i + 1)) + ".tbp\" />\n"));
    directory.write("c1000.tbp", solutionText("<project Name=\"Deep\" />\n"));
    system.loadSolution(directory / "c0.tbp");
    EXPECT_EQ(system.allSolutions.size(), 1001u);
    // The root knows the project by its name and the chain of solutions
    // above it.
    std::string key = "Deep(S";
    for (int i = 1; i < 1000; ++i)
        key += ",S";
    EXPECT_EQ(system.projectNames, Strings{key + ")"});
}

TEST(SolutionLoad, TargetsAndTemplatedProjectsThatCantBeLoaded) {
    struct Chooser : TemplateNotFoundErrorHandler {
        bool chooseTemplate(ProjectTemplates *, const std::string &, std::string &name) override {
            name = "Chosen";
            return true;
        }
    } chooser;
    TestDirectory directory;
    TestProjectSystem system;
    const auto target = [&](const char *code, bool check) {
        return loadFailure(system, directory.write("t.tbp", solutionText("", std::string(" target=\"") + code + "\"")),
                           check);
    };
    EXPECT_EQ(target("15", true), directory / "t.tbp|invalid solution target (Linux)");
    EXPECT_EQ(target("42", true), directory / "t.tbp|invalid solution target (42)");
    EXPECT_EQ(target("8x", true), "no error");
    EXPECT_EQ(target("15", false), "no error");

    directory.write("named.tbp", solutionText("<project Name=\"P\" template_name=\"Board\" />\n"));
    directory.write("unnamed.tbp", solutionText("<project Name=\"Q\" template_name=\"\" />\n"));
    EXPECT_EQ(loadFailure(system, directory / "named.tbp"), "Board|project template not found");
    EXPECT_EQ(system.solution, nullptr);
    EXPECT_EQ(loadFailure(system, directory / "unnamed.tbp"), "no template for project |Q");
    EXPECT_EQ(loadFailure(system, directory / "unnamed.tbp", false, &chooser), "Chosen|project template not found");
}

// The load commands run in the solution's directory; the solution's
// environment variables stay for the process.
TEST(SolutionLoad, LoadCommandsAndEnvironmentVariables) {
    TestDirectory directory;
    directory.write("ok.tbp",
                    solutionText("<configuration Name=\"Common\" "
                                 "environment_variables=\"QM_TEST_A=1;QM_TEST_B=2=3;QM_TEST_C\" />\n",
                                 " load_command=\"sh -c &quot;echo $QM_STAGE &gt; first.txt&quot; &amp;&amp; "
                                 "sh -c &quot;cat first.txt &gt; second.txt&quot;\" "
                                 "load_command_environment=\"QM_STAGE=$(Stage)\""));
    directory.write("fail.tbp", solutionText("", " load_command=\"sh -c &quot;exit 3&quot; &amp;&amp; "
                                                 "touch never.txt\""));
    directory.write("none.tbp", solutionText("", " load_command=\"quillmake-no-such-program --x\""));
    TestProjectSystem system;
    system.systemMacros.globalMacros()["Stage"] = "staged";
    system.loadSolution(directory / "ok.tbp");
    EXPECT_EQ(TestDirectory::read(directory / "second.txt"), "staged\n");
    EXPECT_STREQ(std::getenv("QM_TEST_A"), "1");
    EXPECT_STREQ(std::getenv("QM_TEST_B"), "2=3");
    EXPECT_STREQ(std::getenv("QM_TEST_C"), "");
    EXPECT_EQ(loadFailure(system, directory / "fail.tbp"), directory / "fail.tbp|solution load command failed (3) ");
    EXPECT_FALSE(FileInfo(directory / "never.txt").exists());
    EXPECT_EQ(loadFailure(system, directory / "none.tbp"),
              directory / "none.tbp|solution load command \"quillmake-no-such-program\" not found");
}

TEST(SolutionLoad, DynamicFoldersListTheirDirectories) {
    TestDirectory directory;
    for (const char *file : {"b.c", "A.c", "notes.txt", ".hidden.c", "sub/deep.c", "sub/skip.c", "gen/x.c"})
        directory.write(std::string("app/src/") + file);
    mkdir((directory / "app/src/empty").c_str(), 0755);
    directory.write("app/one.txt");
    directory.write("app.tbp",
                    solutionText("<project Name=\"P\"><configuration Name=\"Common\" project_directory=\"app\"/>\n"
                                 "<folder Name=\"Src\" path=\"src\" filter=\"*.c\" recurse=\"Yes\" "
                                 "exclude=\"skip.c;src/gen\" />\n"
                                 "<folder Name=\"One\" path=\"one.txt;missing;nodir\" filter=\"*.c\" />\n"
                                 "</project>\n"));
    TestProjectSystem system;
    ProjectElement *root = system.loadSolution(directory / "app.tbp");
    EXPECT_EQ(outline(system, root), "S\n  P\n    Src\n      A.c\n      b.c\n      empty\n      sub\n        deep.c\n"
                                     "    One\n      one.txt\n");
    ProjectElement *deep = ProjectSystem::findFileByPath(root, "src/sub/deep.c");
    ASSERT_NE(deep, nullptr);
    EXPECT_FALSE(deep->canModify);
    EXPECT_EQ(system.absoluteFilePath(deep, "Debug"), directory / "app/src/sub/deep.c");
    // What a dynamic folder holds isn't saved.
    EXPECT_EQ(system.solutionText(root, false).find("deep.c"), std::string::npos);
}

TEST(SolutionLoad, DynamicFolderOverASymbolicLinkLoop) {
    TestDirectory directory;
    directory.write("src/a.c");
    ASSERT_EQ(symlink("..", (directory / "src/up").c_str()), 0);
    directory.write("loop.tbp", solutionText("<folder Name=\"Src\" path=\"src\" recurse=\"Yes\" />\n"));
    TestProjectSystem system;
    ProjectElement *root = system.loadSolution(directory / "loop.tbp");
    // "up" leads to the solution's directory, whose "src" leads back to the
    // directory being scanned: that one isn't scanned again.
    EXPECT_EQ(outline(system, root), "S\n  Src\n    a.c\n    up\n      loop.tbp\n      src\n");
}

TEST(ProjectSystemProcess, RunsTheCommandWithItsOutputAsMessages) {
    TestDirectory dir;
    RecordingProgress progress;
    ProjectSystemProcess process(&progress, {"/bin/sh", "-c", "printf 'o\\n'; pwd -P >&2; exit 3"}, dir.path(), {});
    char resolved[PATH_MAX];
    ASSERT_TRUE(realpath(dir.path().c_str(), resolved));
    EXPECT_EQ(process.exitStatus(), 3);
    EXPECT_EQ(progress.events, (Strings{"begin 1 /bin/sh -c printf 'o\\n'; pwd -P >&2; exit 3", "message o",
                                        std::string("message ") + resolved, "end"}));
    // Output may be redirected to a file.
    EXPECT_EQ(ProjectSystemProcess(nullptr, {"printf", "a\\nb", ">", "out.txt"}, dir.path(), {}).exitStatus(), 0);
    EXPECT_EQ(TestDirectory::read(dir / "out.txt"), "a\nb");
}

// A program that can't be started is -1, unlike one that exits with 255
// itself. The environment given holds for the child and later ones.
TEST(ProjectSystemProcess, AProgramThatCantBeStartedIsMinusOneAndTheEnvironmentStays) {
    RecordingProgress progress;
    EXPECT_EQ(ProjectSystemProcess(&progress, {"quillmake-no-such-program", "a"}, "", {}).exitStatus(), -1);
    EXPECT_EQ(ProjectSystemProcess(nullptr, {}, "", {}).exitStatus(), -1);
    EXPECT_EQ(ProjectSystemProcess(nullptr, {"/bin/sh", "-c", "exit 255"}, "", {}).exitStatus(), 255);
    const std::string script = "printf '%s|%s|%s\\n' \"$QM_PSP_A\" \"$QM_PSP_B\" \"${QM_PSP_C-unset}\"";
    const Strings environment = {"QM_PSP_A=x=y", "QM_PSP_B", "QM_PSP_C="};
    EXPECT_EQ(ProjectSystemProcess(&progress, {"/bin/sh", "-c", script}, "", environment).exitStatus(), 0);
    EXPECT_EQ(progress.events, (Strings{"begin 1 quillmake-no-such-program a", "end", "begin 1 /bin/sh -c " + script,
                                        "message x=y||", "end"}));
    EXPECT_STREQ(getenv("QM_PSP_A"), "x=y");
    for (const char *name : {"QM_PSP_A", "QM_PSP_B", "QM_PSP_C"})
        unsetenv(name);
}

}  // namespace
