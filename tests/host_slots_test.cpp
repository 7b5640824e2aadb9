// Builds with two slots, where each file is a job of its own, with the
// machine's own gcc and ar (-host): a job that starts after others have run
// their commands must see the files those commands wrote, even where an
// earlier check in the same build read the old ones.

#include "harness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <sstream>

using e2e::runProgram;
using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

struct TwoSlots {
    Sandbox box;
    std::string dir;
    TwoSlots() : dir(box.path()) {
        box.write("s.tbp", R"x(<!DOCTYPE Tarnbench_Project_File>
<solution Name="S" version="2">
  <configuration Name="Debug" />
  <configuration Name="Common" build_output_directory="out" build_intermediate_directory="obj/$(ProjectName)" />
  <project Name="lib">
    <configuration Name="Common" project_type="Library" />
    <file file_name="a.c" />
    <file file_name="b.c" />
  </project>
  <project Name="app">
    <configuration Name="Common" project_type="Executable" project_dependencies="lib" />
    <file file_name="main.c" />
  </project>
</solution>
)x");
        box.write("a.h", "#define A 1\n");
        box.write("a.c", "#include \"a.h\"\nint a(void) { return A; }\n");
        box.write("b.c", "int b(void) { return 2; }\n");
        box.write("main.c", "int a(void);\nint b(void);\nint main(void) { return a() + b() - 3; }\n");
    }
    // The commands that a build with two slots ran, without the slot
    // prefixes, sorted: which slot runs what, and when, depends on the
    // children's timing.
    std::vector<std::string> build() {
        const auto r = runQuillmake(box, {"-host", "-config", "Debug", "-threadnum", "2", "-echo", "s.tbp"});
        EXPECT_EQ(r.err, "");
        EXPECT_EQ(r.status, 0);
        std::vector<std::string> lines;
        std::istringstream in(r.out);
        for (std::string line; std::getline(in, line);)
            lines.push_back(line.substr(line.find('>') + 1));
        std::sort(lines.begin(), lines.end());
        return lines;
    }
    void touch(const std::vector<std::string> &paths, std::time_t seconds) {
        std::vector<std::string> arguments{"/usr/bin/touch", "-d", std::string(1, '@') += std::to_string(seconds)};
        arguments.insert(arguments.end(), paths.begin(), paths.end());
        const auto touched = runProgram(arguments, dir, {});
        ASSERT_EQ(touched.status, 0) << touched.err;
    }
    std::string compile(const std::string &project, const std::string &name) const {
        const std::string object = "obj/" + project + "/" + name + ".o";
        return "gcc -xc -c -fmessage-length=0 -MD -MF " + dir + "/obj/" + project + "/" + name + ".d -MQ " + object +
               " -ffunction-sections -fdata-sections -g " + dir + "/" + name + ".c -o " + object;
    }
};

TEST(HostSlots, ARebuiltObjectIsSeenByTheArchiveJobAndTheArchiveByTheLink) {
    TwoSlots s;
    const std::string dir = s.dir;
    const std::vector<std::string> archive{"ar -rcs out/lib.a " + dir + "/obj/lib/a.o " + dir + "/obj/lib/b.o",
                                           "ranlib out/lib.a", "rm " + dir + "/out/lib.a"};
    const std::string link = "gcc -g -Wl,--start-group " + dir + "/obj/app/main.o " + dir +
                             "/out/lib.a -Wl,--end-group -o out/app";
    std::vector<std::string> everything{s.compile("lib", "a"), s.compile("lib", "b"), s.compile("app", "main"),
                                        link};
    everything.insert(everything.end(), archive.begin(), archive.end());
    std::sort(everything.begin(), everything.end());
    EXPECT_EQ(s.build(), everything);
    EXPECT_EQ(runProgram({s.dir + "/out/app"}, dir, {}).status, 0);

    // All made a minute back, after the system headers; then the header
    // a.c includes is a second newer. The compile job of a.c reads the old
    // time of a.o for its check; the archive job, which starts after it,
    // must see the new one, and the link the new archive.
    const std::time_t someTime = std::time(nullptr) - 60;
    s.touch({"s.tbp", "a.h", "a.c", "b.c", "main.c", "obj/lib/a.o", "obj/lib/b.o", "obj/lib/a.d", "obj/lib/b.d",
             "obj/app/main.o", "obj/app/main.d", "out/lib.a", "out/app"},
            someTime);
    s.touch({"a.h"}, someTime + 1);
    std::vector<std::string> rebuilt{s.compile("lib", "a"), link};
    rebuilt.insert(rebuilt.end(), archive.begin(), archive.end());
    std::sort(rebuilt.begin(), rebuilt.end());
    EXPECT_EQ(s.build(), rebuilt);

    EXPECT_EQ(s.build(), std::vector<std::string>{});
}

}  // namespace
