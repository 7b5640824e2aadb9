// Builds that need no compiler toolchain: staging and combining projects,
// externally built projects running the machine's gcc and ar, and the
// user's build steps; with the console's wording, the slots, failures and
// interrupts.

#include "harness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <ctime>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using e2e::expectResult;
using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

std::string solution(const std::string &projects) {
    return "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\" version=\"2\">\n"
           "  <configuration Name=\"Debug\" />\n" +
           projects + "</solution>\n";
}

// A staging project copying a.txt and sub/b.txt into out/.
const std::string stagingProject = R"x(  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" build_output_directory="out" />
    <file file_name="a.txt" />
    <file file_name="sub/b.txt" />
  </project>
)x";

struct BuildRun {
    Sandbox box;
    explicit BuildRun(const std::string &projects) {
        box.write("s.tbp", solution(projects));
        box.write("a.txt", "alpha\n");
        box.write("sub/b.txt", "beta\n");
    }
    e2e::RunResult run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"-config", "Debug"});
        arguments.push_back("s.tbp");
        e2e::RunOptions options;
        options.environment["TZ"] = "UTC";
        return runQuillmake(box, arguments, options);
    }
};

std::vector<std::string> sortedLines(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return lines;
}

// 2026-01-02 03:04:05 UTC.
constexpr std::time_t someTime = 1767323045;

}  // namespace

TEST(Staging, CopiesQuietlyThenFindsEverythingUpToDate) {
    BuildRun b(stagingProject);
    expectResult(b.run({"-threadnum", "1"}), "", "", 0);
    EXPECT_EQ(b.box.read("out/a.txt"), "alpha\n");
    EXPECT_EQ(b.box.read("out/sub/b.txt"), "beta\n");
    expectResult(b.run({"-threadnum", "1", "-verbose"}),
              "Checking 'a.txt'\n'a.txt' is up to date.\nChecking 'b.txt'\n'b.txt' is up to date.\n", "", 0);
}

TEST(Staging, ANewerSourceIsCopiedAgainAndTheVerboseRunSaysWhy) {
    BuildRun b(stagingProject);
    expectResult(b.run({"-threadnum", "1"}), "", "", 0);
    b.box.setTime("out/a.txt", someTime);
    b.box.setTime("a.txt", someTime);
    b.box.setTime("out/sub/b.txt", someTime);
    b.box.setTime("sub/b.txt", someTime + 1);
    expectResult(b.run({"-threadnum", "1", "-verbose"}),
              b.box.expand("Checking 'a.txt'\n'a.txt' is up to date.\n"
                      "Checking 'b.txt'\n"
                      "<box>/sub/b.txt (02.01.2026 03:04:06) is later than <box>/out/sub/b.txt "
                      "(02.01.2026 03:04:05).\n"
                      "Copying 'b.txt'\n"),
              "", 0);
}

TEST(Staging, EchoShowsEachCommandAndShowRunsNothing) {
    BuildRun b(stagingProject);
    const std::string commands = b.box.expand(
        "cp a.txt <box>/out/a.txt\nchmod +w <box>/out/a.txt\n"
        "cp sub/b.txt <box>/out/sub/b.txt\nchmod +w <box>/out/sub/b.txt\n");
    expectResult(b.run({"-threadnum", "1", "-show"}), commands, "", 0);
    EXPECT_FALSE(b.box.exists("out/a.txt"));
    expectResult(b.run({"-threadnum", "1", "-echo"}), commands, "", 0);
    EXPECT_TRUE(b.box.exists("out/a.txt"));
    // Nothing is out of date now, so -show decides as the build does.
    expectResult(b.run({"-threadnum", "1", "-show"}), "", "", 0);
    expectResult(b.run({"-threadnum", "1", "-show", "-rebuild"}), commands, "", 0);
}

TEST(Staging, TwoSlotsPrefixEveryLineWithTheSlot) {
    BuildRun b(stagingProject);
    const auto r = b.run({"-threadnum", "2", "-echo"});
    EXPECT_EQ(sortedLines(r.out), sortedLines(b.box.expand("2>cp a.txt <box>/out/a.txt\n"
                                                      "2>chmod +w <box>/out/a.txt\n"
                                                      "1>cp sub/b.txt <box>/out/sub/b.txt\n"
                                                      "1>chmod +w <box>/out/sub/b.txt\n")));
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.status, 0);
}

TEST(Staging, AHugeThreadCountCostsNoMoreThanItsSlots) {
    BuildRun b(stagingProject);
    expectResult(b.run({"-threadnum", "100000000"}), "", "", 0);
    EXPECT_EQ(b.box.read("out/sub/b.txt"), "beta\n");
}

TEST(Staging, ReadOnlyCopiesAndCleaning) {
    BuildRun b(R"x(  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" build_output_directory="out"
                   stage_set_readonly="Yes" />
    <file file_name="a.txt" />
  </project>
)x");
    expectResult(b.run({"-threadnum", "1", "-echo"}), b.box.expand("cp a.txt <box>/out/a.txt\nchmod -w <box>/out/a.txt\n"), "", 0);
    struct stat status {};
    ASSERT_EQ(stat(b.box.at("out/a.txt").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0222, 0u);
    expectResult(b.run({"-threadnum", "1", "-clean", "-echo"}), b.box.expand("rm <box>/out/a.txt\n"), "", 0);
    EXPECT_FALSE(b.box.exists("out/a.txt"));
}

TEST(Staging, OrderChecksWithoutCopying) {
    BuildRun b(stagingProject);
    expectResult(b.run({"-threadnum", "1", "-order"}), "", "", 0);
    EXPECT_FALSE(b.box.exists("out/a.txt"));
    expectResult(b.run({"-threadnum", "1", "-order", "-verbose"}),
              b.box.expand("Checking 'a.txt'\n<box>/out/a.txt does not exist.\n"
                      "Checking 'b.txt'\n<box>/out/sub/b.txt does not exist.\n"),
              "", 0);
    EXPECT_FALSE(b.box.exists("out/a.txt"));
}

TEST(Staging, TimeReportsTheLoadAndTheBuild) {
    BuildRun b(stagingProject);
    expectResult(b.run({"-threadnum", "1", "-time"}), "solution load time 0 seconds\nbuild time 0 seconds\n", "",
              0);
}

TEST(Staging, ABatchBuildsEachChosenConfiguration) {
    BuildRun b(R"x(  <configuration Name="Release" />
  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" build_output_directory="out/$(Configuration)"
                   batch_build_configurations="Debug;Release" />
    <file file_name="a.txt" />
  </project>
)x");
    expectResult(b.run({"-threadnum", "1", "-batch", "-echo"}),
              b.box.expand("cp a.txt <box>/out/Debug/a.txt\nchmod +w <box>/out/Debug/a.txt\n"
                      "cp a.txt <box>/out/Release/a.txt\nchmod +w <box>/out/Release/a.txt\n"),
              "", 0);
    EXPECT_EQ(b.box.read("out/Release/a.txt"), "alpha\n");
}

TEST(Failures, AFailedCommandIsNamedAndTheBuildStops) {
    BuildRun b(R"x(  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" build_output_directory="out"
                   stage_command="false" />
    <file file_name="a.txt" />
    <file file_name="sub/b.txt" />
  </project>
)x");
    // A failing step shows its title, then the command.
    expectResult(b.run({"-threadnum", "1"}), "Copying 'a.txt'\nError executing false\n",
              "Build failed, exit status 0x1\nThere were 1 build errors\n", 1);
    expectResult(b.run({"-threadnum", "1", "-keepgoing"}),
              "Copying 'a.txt'\nError executing false\nCopying 'b.txt'\nError executing false\n",
              "Build failed, exit status 0x1 'a.txt' in configuration 'Debug' continuing because "
              "'keep going on error' has been enabled\n"
              "Build failed, exit status 0x1 'b.txt' in configuration 'Debug' continuing because "
              "'keep going on error' has been enabled\n"
              "There were 2 build errors\n",
              1);
}

TEST(Failures, AChildKilledByASignalReportsItsNumber) {
    BuildRun b(R"x(  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" build_output_directory="out"
                   stage_command="sh -c &quot;kill -SEGV $$$$&quot;" />
    <file file_name="a.txt" />
  </project>
)x");
    expectResult(b.run({"-threadnum", "1"}), "Copying 'a.txt'\nError executing sh -c kill -SEGV $$\n",
              "Build failed, exit status 0xb\nThere were 1 build errors\n", 1);
}

TEST(Failures, AProgramThatCantBeStartedFailsItsStep) {
    BuildRun b(R"x(  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" build_output_directory="out"
                   stage_command="no-such-program-anywhere $(StageOutputFilePath)" />
    <file file_name="a.txt" />
  </project>
)x");
    expectResult(b.run({"-threadnum", "1"}),
              b.box.expand("Copying 'a.txt'\nError executing no-such-program-anywhere <box>/out/a.txt\n"),
              "Build failed, exit status 0xff\nThere were 1 build errors\n", 1);
}

TEST(UserSteps, PreAndPostBuildRunOnlyWhenSomethingIsBuilt) {
    BuildRun b(R"x(  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" build_output_directory="out"
                   pre_build_command="echo before" post_build_command="echo after" />
    <file file_name="a.txt" />
  </project>
)x");
    // The files are jobs of their own, so the project's end job can't see
    // that they were copied: only a rebuild counts as built there.
    expectResult(b.run({"-threadnum", "1"}), "Pre-Building 'Stage'\nbefore\n", "", 0);
    expectResult(b.run({"-threadnum", "1"}), "", "", 0);
    expectResult(b.run({"-threadnum", "1", "-rebuild"}),
              "Pre-Building 'Stage'\nbefore\nPost-Building 'Stage'\nafter\n", "", 0);
}

TEST(UserSteps, AlwaysRunMeansEveryBuild) {
    BuildRun b(R"x(  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" build_output_directory="out"
                   pre_build_command="echo before" pre_build_command_control="Always Run"
                   post_build_command="echo after" post_build_command_control="Always Run" />
    <file file_name="a.txt" />
  </project>
)x");
    expectResult(b.run({"-threadnum", "1"}), "Pre-Building 'Stage'\nbefore\nPost-Building 'Stage'\nafter\n", "",
              0);
    expectResult(b.run({"-threadnum", "1"}), "Pre-Building 'Stage'\nbefore\nPost-Building 'Stage'\nafter\n", "",
              0);
}

TEST(Combining, JoinsItsInputsIntoOneFile) {
    BuildRun b(R"x(  <project Name="All">
    <configuration Name="Common" project_type="Combining" combine_output_filepath="out/all.txt"
                   combine_command="cat $(CombiningRelInputPaths) &gt; $(CombiningOutputFilePath)" />
    <file file_name="a.txt" />
    <file file_name="sub/b.txt" />
  </project>
)x");
    expectResult(b.run({"-threadnum", "1", "-echo"}),
              b.box.expand("cat a.txt sub/b.txt > <box>/out/all.txt\nchmod +w <box>/out/all.txt\n"), "", 0);
    EXPECT_EQ(b.box.read("out/all.txt"), "alpha\nbeta\n");
    expectResult(b.run({"-threadnum", "1", "-echo"}), "", "", 0);
}

TEST(ExternallyBuilt, CompilesArchivesAndLinksWithTheMachinesTools) {
    BuildRun b(R"x(  <project Name="App">
    <configuration Name="Common" project_type="Externally Built Executable" project_dependencies="Lib"
                   build_output_directory="out" build_intermediate_directory="obj"
                   build_output_file_name="out/app"
                   external_c_compile_command="gcc -c $(InputPath) -o $(TargetPath)"
                   external_link_command="gcc $(Objects) out/libtwice.a -o $(TargetPath) -Wl,-Map,$(RelMapPath)" />
    <file file_name="main.c" />
  </project>
  <project Name="Lib">
    <configuration Name="Common" project_type="Externally Built Library"
                   build_output_directory="out" build_intermediate_directory="obj/lib"
                   build_output_file_name="out/libtwice.a"
                   external_c_compile_command="gcc -c $(InputPath) -o $(TargetPath)"
                   external_archive_command="ar rcs $(TargetPath) $(Objects)" />
    <file file_name="twice.c" />
  </project>
)x");
    b.box.write("main.c", "#include <stdio.h>\nint twice(int);\nint main(void) { printf(\"%d\\n\", twice(21)); return 0; }\n");
    b.box.write("twice.c", "int twice(int x) { return 2 * x; }\n");
    expectResult(b.run({"-threadnum", "1"}), "", "", 0);
    const auto program = e2e::runProgram({b.box.at("out/app")}, b.box.path(), {});
    EXPECT_EQ(program.out, "42\n");
    // With two projects, a verbose title names the project and configuration.
    expectResult(b.run({"-threadnum", "1", "-verbose"}),
              "Checking 'twice.c' from project 'Lib' in configuration 'Debug'\n'twice.c' is up to date\n"
              "Checking 'Lib' from project 'Lib' in configuration 'Debug'\n'Lib' is up to date\n"
              "Checking 'main.c' from project 'App' in configuration 'Debug'\n'main.c' is up to date\n"
              "Checking 'App' from project 'App' in configuration 'Debug'\n'App' is up to date\n",
              "", 0);
    // Times are compared in whole seconds: move the first build into the past.
    for (const char *file : {"twice.c", "obj/lib/twice.o", "out/libtwice.a", "main.c", "obj/main.o", "out/app"})
        b.box.setTime(file, someTime);
    b.box.setTime("twice.c", someTime + 1);
    const auto rebuilt = b.run({"-threadnum", "1", "-echo"});
    EXPECT_EQ(rebuilt.out, b.box.expand("gcc -c <box>/twice.c -o <box>/obj/lib/twice.o\n"
                                   "ar rcs <box>/out/libtwice.a <box>/obj/lib/twice.o\n"
                                   "gcc <box>/obj/main.o out/libtwice.a -o <box>/out/app -Wl,-Map,out/app.map\n"));
    EXPECT_EQ(rebuilt.status, 0);
}

TEST(ExternallyBuilt, TheBuildCommandRunsInTheProjectDirectory) {
    BuildRun b(R"x(  <project Name="Made">
    <configuration Name="Common" project_type="Externally Built Executable"
                   external_build_file_name="made.bin"
                   external_build_command="sh -c &quot;pwd &gt; made.bin&quot;" />
  </project>
)x");
    expectResult(b.run({"-threadnum", "1"}), "", "", 0);
    EXPECT_EQ(b.box.read("made.bin"), b.box.path() + "\n");
}

// Runs quillmake in the background, sends it a signal once `ready` exists,
// and returns its exit status and the time it took to end after the signal.
struct Interrupted {
    int status = -1;
    std::chrono::milliseconds afterSignal{0};
};

Interrupted interruptBuild(const Sandbox &box, int signal, const std::string &ready) {
    Interrupted result;
    const pid_t pid = fork();
    if (pid == 0) {
        if (chdir(box.path().c_str()) != 0)
            _exit(127);
        freopen("/dev/null", "w", stdout);
        freopen((box.path() + "/stderr.txt").c_str(), "w", stderr);
        execl(e2e::quillmakePath().c_str(), "quillmake", "-config", "Debug", "-threadnum", "2", "s.tbp",
              static_cast<char *>(nullptr));
        _exit(127);
    }
    for (int i = 0; i < 1000 && !box.exists(ready); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    const auto start = std::chrono::steady_clock::now();
    kill(pid, signal);
    int status = 0;
    waitpid(pid, &status, 0);
    result.afterSignal = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

TEST(Interrupts, TerminatingABuildStopsItsCommandsAndRemovesTheirOutputs) {
    for (int signal : {SIGTERM, SIGINT}) {
        BuildRun b(R"x(  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" build_output_directory="out"
                   stage_command="sh -c &quot;echo partial &gt; $(StageOutputFilePath); exec sleep 30&quot;" />
    <file file_name="a.txt" />
    <file file_name="sub/b.txt" />
  </project>
)x");
        const Interrupted r = interruptBuild(b.box, signal, "out/sub/b.txt");
        EXPECT_EQ(r.status, 1) << signal;
        EXPECT_LT(r.afterSignal, std::chrono::seconds(10)) << signal;
        EXPECT_EQ(b.box.read("stderr.txt"), "error: build interrupted\n") << signal;
        EXPECT_FALSE(b.box.exists("out/a.txt")) << signal;
        EXPECT_FALSE(b.box.exists("out/sub/b.txt")) << signal;
    }
}
