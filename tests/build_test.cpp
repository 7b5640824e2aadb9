// Builds that need no compiler toolchain: staging and combining projects,
// externally built projects running the machine's gcc and ar, and the
// user's build steps; with the console's wording, the slots, failures and
// interrupts.

#include "harness.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <ctime>
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

// A staging project copying a.txt (and sub/b.txt) into out/, with more
// attributes on its configuration.
std::string staging(const std::string &attributes = "", bool both = true) {
    return "  <project Name=\"Stage\">\n"
           "    <configuration Name=\"Common\" project_type=\"Staging\" build_output_directory=\"out\" " +
           attributes + " />\n    <file file_name=\"a.txt\" />\n" +
           (both ? "    <file file_name=\"sub/b.txt\" />\n" : "") + "  </project>\n";
}

struct BuildRun {
    Sandbox box;
    explicit BuildRun(const std::string &projects) {
        box.write("s.tbp", solution(projects));
        box.write("a.txt", "alpha\n");
        box.write("sub/b.txt", "beta\n");
    }
    e2e::RunResult run(std::vector<std::string> arguments = {}) {
        // One slot unless the arguments choose another count: the last one counts.
        arguments.insert(arguments.begin(), {"-config", "Debug", "-threadnum", "1"});
        arguments.push_back("s.tbp");
        return runQuillmake(box, arguments);
    }
};

// 2026-01-02 03:04:05 UTC.
constexpr std::time_t someTime = 1767323045;

}  // namespace

TEST(Staging, CopiesThenOnlyANewerSourceAndTheVerboseRunSaysWhy) {
    BuildRun b(staging());
    // A huge thread count costs no more than the slots the jobs take.
    expectResult(b.run({"-threadnum", "100000000"}), "", "", 0);
    EXPECT_EQ(b.box.read("out/a.txt"), "alpha\n");
    EXPECT_EQ(b.box.read("out/sub/b.txt"), "beta\n");
    expectResult(b.run({"-time"}), "solution load time 0 seconds\nbuild time 0 seconds\n", "", 0);
    b.box.setTime("out/a.txt", someTime);
    b.box.setTime("a.txt", someTime);
    b.box.setTime("out/sub/b.txt", someTime);
    b.box.setTime("sub/b.txt", someTime + 1);
    expectResult(b.run({"-verbose"}),
                 b.box.expand("Checking 'a.txt'\n'a.txt' is up to date.\n"
                              "Checking 'b.txt'\n"
                              "<box>/sub/b.txt (02.01.2026 03:04:06) is later than <box>/out/sub/b.txt "
                              "(02.01.2026 03:04:05).\n"
                              "Copying 'b.txt'\n"),
                 "", 0);

    // A source written a moment ago is no clock skew, also within the
    // current second, where times compare to the nanosecond: the source is
    // written again until the writing and the check fall into one second.
    const std::time_t hourLater = std::time(nullptr) + 3600;
    b.box.setTime("out/a.txt", hourLater);
    b.box.setTime("out/sub/b.txt", hourLater);
    for (int tries = 0; tries < 20; ++tries) {
        b.box.write("a.txt", "alpha\n");
        struct stat written {};
        ASSERT_EQ(stat(b.box.at("a.txt").c_str(), &written), 0);
        expectResult(b.run({"-verbose"}),
                     "Checking 'a.txt'\n'a.txt' is up to date.\nChecking 'b.txt'\n'b.txt' is up to date.\n", "", 0);
        if (written.st_mtime == std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()))
            break;
    }
}

TEST(Staging, OrderAndShowDecideWithoutCopyingAndEchoShowsEachCommand) {
    BuildRun b(staging());
    expectResult(b.run({"-order"}), "", "", 0);
    expectResult(b.run({"-order", "-verbose"}),
                 b.box.expand("Checking 'a.txt'\n<box>/out/a.txt does not exist.\n"
                              "Checking 'b.txt'\n<box>/out/sub/b.txt does not exist.\n"),
                 "", 0);
    const std::string commands = b.box.expand(
        "cp a.txt <box>/out/a.txt\nchmod +w <box>/out/a.txt\n"
        "cp sub/b.txt <box>/out/sub/b.txt\nchmod +w <box>/out/sub/b.txt\n");
    expectResult(b.run({"-show"}), commands, "", 0);
    EXPECT_FALSE(b.box.exists("out/a.txt"));
    expectResult(b.run({"-echo"}), commands, "", 0);
    EXPECT_TRUE(b.box.exists("out/a.txt"));
    // Nothing is out of date now, so -show decides as the build does.
    expectResult(b.run({"-show"}), "", "", 0);
    expectResult(b.run({"-show", "-rebuild"}), commands, "", 0);
}

TEST(Staging, ReadOnlyCopiesAndCleaning) {
    BuildRun b(staging("stage_set_readonly=\"Yes\"", false));
    expectResult(b.run({"-echo"}),
                 b.box.expand("cp a.txt <box>/out/a.txt\nchmod -w <box>/out/a.txt\n"), "", 0);
    struct stat status {};
    ASSERT_EQ(stat(b.box.at("out/a.txt").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0222, 0u);
    expectResult(b.run({"-clean", "-echo"}), b.box.expand("rm <box>/out/a.txt\n"), "", 0);
    EXPECT_FALSE(b.box.exists("out/a.txt"));
}

TEST(Staging, ABatchBuildsEachChosenConfiguration) {
    BuildRun b(R"x(  <configuration Name="Release" />
  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" build_output_directory="out/$(Configuration)"
                   batch_build_configurations="Debug;Release" />
    <file file_name="a.txt" />
  </project>
)x");
    expectResult(b.run({"-batch", "-echo"}),
                 b.box.expand("cp a.txt <box>/out/Debug/a.txt\nchmod +w <box>/out/Debug/a.txt\n"
                              "cp a.txt <box>/out/Release/a.txt\nchmod +w <box>/out/Release/a.txt\n"),
                 "", 0);
    EXPECT_EQ(b.box.read("out/Release/a.txt"), "alpha\n");
}

TEST(Failures, AFailedCommandIsNamedAndTheBuildStopsUnlessItShouldKeepGoing) {
    const std::string oneError = "There were 1 build errors\n";
    const std::string keptGoing = "' in configuration 'Debug' continuing because 'keep going on error' has been enabled\n";
    struct Case {
        std::string command, option, out, err;  // option: a further option
    };
    const std::vector<Case> cases{
        // A failing step shows its title, then the command.
        {"false", "", "Copying 'a.txt'\nError executing false\n",
         "Build failed, exit status 0x1\n" + oneError},
        {"false", "-keepgoing", "Copying 'a.txt'\nError executing false\nCopying 'b.txt'\nError executing false\n",
         "Build failed, exit status 0x1 'a.txt" + keptGoing + "Build failed, exit status 0x1 'b.txt" + keptGoing +
             "There were 2 build errors\n"},
        // A child killed by a signal reports the signal's number.
        {"sh -c &quot;kill -SEGV $$$$&quot;", "", "Copying 'a.txt'\nError executing sh -c kill -SEGV $$\n",
         "Build failed, exit status 0xb\n" + oneError},
        {"no-such-program-anywhere $(StageOutputFilePath)", "",
         "Copying 'a.txt'\nError executing no-such-program-anywhere <box>/out/a.txt\n",
         "Build failed, exit status 0xff\n" + oneError},
    };
    for (const Case &c : cases) {
        BuildRun b(staging("stage_command=\"" + c.command + "\""));
        expectResult(b.run({c.option}), b.box.expand(c.out), c.err, 1);
    }
}

TEST(UserSteps, PreAndPostBuildRunWhenSomethingIsBuiltOrAlways) {
    const std::string steps = "pre_build_command=\"echo before\" post_build_command=\"echo after\"";
    const std::string both = "Pre-Building 'Stage'\nbefore\nPost-Building 'Stage'\nafter\n";
    BuildRun b(staging(steps, false));
    // The files are jobs of their own, so the project's end job can't see
    // that they were copied: only a rebuild counts as built there.
    expectResult(b.run(), "Pre-Building 'Stage'\nbefore\n", "", 0);
    expectResult(b.run(), "", "", 0);
    expectResult(b.run({"-rebuild"}), both, "", 0);

    BuildRun always(staging(steps + " pre_build_command_control=\"Always Run\" "
                                    "post_build_command_control=\"Always Run\"",
                            false));
    expectResult(always.run(), both, "", 0);
    expectResult(always.run(), both, "", 0);
}

TEST(Combining, JoinsItsInputsIntoOneFile) {
    BuildRun b(R"x(  <project Name="All">
    <configuration Name="Common" project_type="Combining" combine_output_filepath="out/all.txt"
                   combine_command="cat $(CombiningRelInputPaths) &gt; $(CombiningOutputFilePath)" />
    <file file_name="a.txt" />
    <file file_name="sub/b.txt" />
  </project>
)x");
    expectResult(b.run({"-echo"}),
                 b.box.expand("cat a.txt sub/b.txt > <box>/out/all.txt\nchmod +w <box>/out/all.txt\n"), "", 0);
    EXPECT_EQ(b.box.read("out/all.txt"), "alpha\nbeta\n");
    expectResult(b.run({"-echo"}), "", "", 0);
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
    expectResult(b.run(), "", "", 0);
    const auto program = e2e::runProgram({b.box.at("out/app")}, b.box.path(), {});
    EXPECT_EQ(program.out, "42\n");
    // With two projects, a verbose title names the project and configuration.
    expectResult(b.run({"-verbose"}),
                 "Checking 'twice.c' from project 'Lib' in configuration 'Debug'\n'twice.c' is up to date\n"
                 "Checking 'Lib' from project 'Lib' in configuration 'Debug'\n'Lib' is up to date\n"
                 "Checking 'main.c' from project 'App' in configuration 'Debug'\n'main.c' is up to date\n"
                 "Checking 'App' from project 'App' in configuration 'Debug'\n'App' is up to date\n",
                 "", 0);
    // Times are compared in whole seconds: move the first build into the past.
    for (const char *file : {"twice.c", "obj/lib/twice.o", "out/libtwice.a", "main.c", "obj/main.o", "out/app"})
        b.box.setTime(file, someTime);
    b.box.setTime("twice.c", someTime + 1);
    expectResult(b.run({"-echo"}),
                 b.box.expand("gcc -c <box>/twice.c -o <box>/obj/lib/twice.o\n"
                              "ar rcs <box>/out/libtwice.a <box>/obj/lib/twice.o\n"
                              "gcc <box>/obj/main.o out/libtwice.a -o <box>/out/app -Wl,-Map,out/app.map\n"),
                 "", 0);
}

TEST(ExternallyBuilt, TheBuildCommandRunsInTheProjectDirectory) {
    BuildRun b(R"x(  <project Name="Made">
    <configuration Name="Common" project_type="Externally Built Executable"
                   external_build_file_name="made.bin"
                   external_build_command="sh -c &quot;pwd &gt; made.bin&quot;" />
  </project>
)x");
    expectResult(b.run(), "", "", 0);
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
        if (chdir(box.path().c_str()) != 0 || setenv("HOME", box.path().c_str(), 1) != 0)
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
        BuildRun b(staging(
            "stage_command=\"sh -c &quot;echo partial &gt; $(StageOutputFilePath); exec sleep 30&quot;\""));
        const Interrupted r = interruptBuild(b.box, signal, "out/sub/b.txt");
        EXPECT_EQ(r.status, 1) << signal;
        EXPECT_LT(r.afterSignal, std::chrono::seconds(10)) << signal;
        EXPECT_EQ(b.box.read("stderr.txt"), "error: build interrupted\n") << signal;
        EXPECT_FALSE(b.box.exists("out/a.txt")) << signal;
        EXPECT_FALSE(b.box.exists("out/sub/b.txt")) << signal;
    }
}
