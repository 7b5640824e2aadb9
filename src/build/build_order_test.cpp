#include "build/idler.h"
#include "build/project_system_builder.h"
#include "build/standard_project_system.h"
#include "project/project_system_helpers.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

class RecordingHelpers : public ProjectSystemHelpers {
public:
    void warning(ProjectElement *, const std::string &configuration, const std::string &title,
                 const std::vector<std::string> &messages) override {
        std::string line = configuration + ": " + title;
        for (const std::string &message : messages)
            line += " | " + message;
        warnings.push_back(line);
    }
    Strings warnings;
};

class CountingIdler : public Idler {
public:
    void setStepCount(int count) override { steps = count; }
    int steps = -1;
};

// A loaded solution and a driver to make its job list.
class BuildOrder : public ::testing::Test {
protected:
    void load(const std::string &body, bool solutionConfigurations = true) {
        const std::string configurations =
            solutionConfigurations
                ? "  <configuration Name=\"Debug\" />\n  <configuration Name=\"Release\" />\n"
                : "";
        const std::string file = directory.write(
            "s.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\" version=\"2\">\n" +
                         configurations + body + "</solution>\n");
        system.helpers = &helpers;
        system.loadSolution(file);
    }

    // The job list as "number name kind [dependencies]" lines.
    Strings jobs(ProjectElement *element, BuildFlags flags = BuildQuietChecks, bool batch = false,
                 int threads = 2) {
        ProjectJobList list;
        driver = std::make_unique<ProjectSystemBuilder>(&system);
        driver->prepareBuild(element, "Debug", threads, {}, &idler, flags, true, batch, list);
        Strings lines;
        for (const ProjectJob *job : list) {
            std::string line = std::to_string(job->number) + " " + system.elementName(job->element);
            if (job->configuration != "Debug")
                line += "/" + job->configuration;
            if (job->flags & BuildJobBegin)
                line += " begin(" + std::to_string(job->flags >> 16) + ")";
            else if (job->flags & BuildJobEnd)
                line += (job->flags & BuildFilesAreJobs) ? " end+files" : " end";
            std::string dependencies;
            for (const ProjectJob *dependency : job->dependencies) {
                if (!dependencies.empty())
                    dependencies += ',';
                dependencies += std::to_string(dependency->number);
            }
            if (!dependencies.empty())
                line += " [" + dependencies + "]";
            lines.push_back(line);
        }
        return lines;
    }

    ProjectElement *project(const std::string &name) { return system.findProject(system.solution, name); }

    TestDirectory directory;
    SystemMacros macros;
    StandardProjectSystem system{&macros};
    RecordingHelpers helpers;
    CountingIdler idler;
    std::unique_ptr<ProjectSystemBuilder> driver;  // a new one for each job list
};

TEST_F(BuildOrder, DependenciesComeFirstWhateverTheirPlaceInTheFile) {
    load(R"(  <project Name="App">
    <configuration Name="Common" project_dependencies="Lib" />
    <file file_name="main.c" /><file file_name="util.c" /><file file_name="notes.txt" />
  </project>
  <project Name="Lib"><file file_name="lib.c" /></project>
  <project Name="Alone" />
)");
    EXPECT_EQ(jobs(system.solution), (Strings{"1 Lib begin(2)", "2 lib.c [1]", "3 Lib end+files [2,1]",
                                              "4 App begin(3) [3]", "5 main.c [4]", "6 util.c [4]",
                                              "7 App end+files [5,6,4]", "8 Alone begin(1)", "9 Alone end+files [8]"}));
    EXPECT_TRUE(helpers.warnings.empty());
    EXPECT_EQ(idler.steps, 6);
    // Lib is visited twice: as App's dependency and in the solution's list.
    EXPECT_EQ(driver->projectCount, 4);
    EXPECT_EQ(driver->threadCount, 2);
}

TEST_F(BuildOrder, JobListsAndDependencyErrors) {
    const struct {
        const char *body;
        const char *root;  // a project, a file "P/f" or, empty, the solution
        Strings jobs;
        Strings warnings = {};
        BuildFlags flags = BuildQuietChecks;
        bool batch = false;
        int threads = 2;
        bool solutionConfigurations = true;
        int slots = 2;  // the slots the driver uses
    } cases[] = {
        // A shared dependency is built once.
        {R"(<project Name="A"><configuration Name="Common" project_dependencies="C" /></project>
            <project Name="B"><configuration Name="Common" project_dependencies="C" /></project>
            <project Name="C" />)",
         "",
         {"1 C begin(1)", "2 C end+files [1]", "3 A begin(1) [2]", "4 A end+files [3]", "5 B begin(1) [2]",
          "6 B end+files [5]"}},
        // Excluded projects get no jobs and nothing waits on them.
        {R"(<project Name="App"><configuration Name="Common" project_dependencies="Off" /></project>
            <project Name="Off"><configuration Name="Debug" build_exclude_from_build="Yes" />
            <file file_name="x.c" /></project>)",
         "",
         {"1 App begin(1)", "2 App end+files [1]"}},
        // Dependency errors are words, and the build goes on.
        {R"(<project Name="App"><configuration Name="Debug" />
            <configuration Name="Common" project_dependencies="Missing;Special;Loop" /></project>
            <project Name="Special"><configuration Name="Other" /></project>
            <project Name="Loop"><configuration Name="Debug" />
            <configuration Name="Common" project_dependencies="App" /></project>)",
         "",
         {"1 App begin(1)", "2 App end+files [1]", "3 Loop begin(1)", "4 Loop end+files [3]", "5 Special begin(1)",
          "6 Special end+files [5]"},
         {"Debug: Dependency error detected in 'App' | Can't find project 'Missing' | "
          "Configuration 'Debug' doesn't apply to dependent project 'Special' | "
          "Project 'App' has cyclic dependency on project 'Loop'",
          "Debug: Dependency error detected in 'Loop' | Project 'Loop' has cyclic dependency on project 'App'"},
         BuildQuietChecks, false, 2, false},
        // The dependencies of a staging project are chained unless they may
        // run in parallel.
        {R"(<project Name="Stage"><configuration Name="Common" project_type="Staging" project_dependencies="P1;P2;P3" />
            </project><project Name="P1" /><project Name="P2" /><project Name="P3" />)",
         "Stage",
         {"1 P1 begin(1)", "2 P1 end+files [1]", "3 P2 begin(1) [2]", "4 P2 end+files [3]", "5 P3 begin(1) [4]",
          "6 P3 end+files [5]", "7 Stage begin(1) [2,4,6]", "8 Stage end+files [7]"}},
        {R"(<project Name="Parallel"><configuration Name="Common" project_type="Staging"
            project_can_build_in_parallel="Yes" project_dependencies="P1;P2" /></project>
            <project Name="P1" /><project Name="P2" />)",
         "Parallel",
         {"1 P1 begin(1)", "2 P1 end+files [1]", "3 P2 begin(1)", "4 P2 end+files [3]", "5 Parallel begin(1) [2,4]",
          "6 Parallel end+files [5]"}},
        // A batch builds every chosen configuration, without file jobs.
        {R"(<configuration Name="Debug_Ext" />
            <project Name="App"><configuration Name="Common" batch_build_configurations="D*;Release" />
            <file file_name="main.c" /></project>
            <project Name="None"><file file_name="other.c" /></project>)",
         "",
         {"1 App begin(2)", "2 App end [1]", "3 App/Debug_Ext begin(2)", "4 App/Debug_Ext end [3]",
          "5 App/Release begin(2)", "6 App/Release end [5]"},
         {},
         BuildQuietChecks | BuildBatch,
         true},
        // One file runs on one slot.
        {R"(<project Name="App"><file file_name="main.c" /></project>)", "App/main.c",
         {"1 main.c begin(1)", "2 main.c end"}, {}, BuildQuietChecks, false, 8, true, 1},
    };
    for (const auto &c : cases) {
        helpers.warnings.clear();
        load(std::string(c.body) + "\n", c.solutionConfigurations);
        const std::string root = c.root;
        ProjectElement *element = root.empty() ? system.solution : project(root.substr(0, root.find('/')));
        if (root.find('/') != std::string::npos)
            element = system.findFileByPath(element, root.substr(root.find('/') + 1));
        EXPECT_EQ(jobs(element, c.flags, c.batch, c.threads), c.jobs) << c.body;
        EXPECT_EQ(helpers.warnings, c.warnings) << c.body;
        EXPECT_EQ(driver->threadCount, c.slots) << c.body;
    }
}

TEST_F(BuildOrder, WildcardDependenciesFollowTheNameOrder) {
    load(R"(  <project Name="App"><configuration Name="Common" project_dependencies="lib*;&#10;;Tool" /></project>
  <project Name="libz" /><project Name="liba" /><project Name="Lib" /><project Name="Tool" />
)");
    EXPECT_EQ(system.projectDependencyNames(project("App"), "Debug"), (Strings{"liba", "libz", "Tool"}));
    EXPECT_EQ(system.allDependencies(project("App"), "Debug").size(), 3u);
}

TEST_F(BuildOrder, TitlesNameTheVerbTheNodeAndTheConfiguration) {
    load(R"(  <project Name="App"><folder Name="Src"><file file_name="main.c" /></folder></project>
)");
    ProjectElement *file = system.findFileByPath(project("App"), "main.c");
    EXPECT_EQ(system.stepTitle(project("App"), "Debug", BuildQuietChecks),
              "Building 'App' from solution 'S' in configuration 'Debug'");
    EXPECT_EQ(system.stepTitle(file, "Debug", BuildCheckOnly | BuildQuietChecks),
              "Checking 'main.c' from project 'App' from solution 'S' in configuration 'Debug'");
    EXPECT_EQ(system.stepTitle(file, "Debug", 0xF).substr(0, 9), "Cleaning ");
    EXPECT_EQ(system.stepTitle(file, "Debug", BuildAlways | BuildQuietChecks).substr(0, 11), "Rebuilding ");
    EXPECT_EQ(system.stepTitle(file, "Debug", BuildAnalyse).substr(0, 10), "Analyzing ");
    EXPECT_EQ(system.stepTitle(file, "Debug", BuildNoTitle), "");
}

// The walks keep their own stacks: deep folders and long dependency chains
// don't exhaust the program's. Folders and nested solutions come first.
TEST_F(BuildOrder, DeepTreesAndLongChainsAreOrdered) {
    const int depth = 10000;
    std::string body;
    for (int i = 0; i < depth; ++i)
        body += "<project Name=\"P" + std::to_string(i) + "\"><configuration Name=\"Common\" " +
                (i + 1 < depth ? "project_dependencies=\"P" + std::to_string(i + 1) + "\"" : "") + " /></project>\n";
    for (int i = 0; i < depth; ++i)
        body += "<folder Name=\"F" + std::to_string(i) + "\">";
    body += "<project Name=\"Deep\" />";
    for (int i = 0; i < depth; ++i)
        body += "</folder>";
    load(body + "\n<solution Name=\"Inner\"><project Name=\"Nested\" /></solution>\n");
    const Strings list = jobs(system.solution);
    ASSERT_EQ(list.size(), std::size_t(2 * depth + 4));
    EXPECT_EQ(Strings(list.begin(), list.begin() + 5), (Strings{"1 Deep begin(1)", "2 Deep end+files [1]",
                                                               "3 Nested begin(1)", "4 Nested end+files [3]",
                                                               "5 P9999 begin(1)"}));
    EXPECT_EQ(list.back(), "20004 P0 end+files [20003]");
}

}  // namespace
