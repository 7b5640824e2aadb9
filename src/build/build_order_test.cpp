#include "build/idler.h"
#include "build/project_system_builder.h"
#include "build/standard_project_system.h"
#include "project/project_system_helpers.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

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
        driver.prepareBuild(element, "Debug", threads, {}, &idler, flags, true, batch, list);
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
            for (const ProjectJob *dependency : job->dependencies)
                dependencies += (dependencies.empty() ? "" : ",") + std::to_string(dependency->number);
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
    ProjectSystemBuilder driver{&system};
};

TEST_F(BuildOrder, DependenciesComeFirstWhateverTheirPlaceInTheFile) {
    load(R"(  <project Name="App">
    <configuration Name="Common" project_dependencies="Lib" />
    <file file_name="main.c" /><file file_name="util.c" /><file file_name="notes.txt" />
  </project>
  <project Name="Lib"><file file_name="lib.c" /></project>
  <project Name="Alone" />
)");
    EXPECT_EQ(jobs(system.solution), (Strings{
                                         "1 Lib begin(2)",
                                         "2 lib.c [1]",
                                         "3 Lib end+files [2,1]",
                                         "4 App begin(3) [3]",
                                         "5 main.c [4]",
                                         "6 util.c [4]",
                                         "7 App end+files [5,6,4]",
                                         "8 Alone begin(1)",
                                         "9 Alone end+files [8]",
                                     }));
    EXPECT_TRUE(helpers.warnings.empty());
    EXPECT_EQ(idler.steps, 6);
    // Lib is visited twice: as App's dependency and in the solution's list.
    EXPECT_EQ(driver.projectCount, 4);
    EXPECT_EQ(driver.threadCount, 2);
}

TEST_F(BuildOrder, ASharedDependencyIsBuiltOnce) {
    load(R"(  <project Name="A"><configuration Name="Common" project_dependencies="C" /></project>
  <project Name="B"><configuration Name="Common" project_dependencies="C" /></project>
  <project Name="C" />
)");
    EXPECT_EQ(jobs(system.solution), (Strings{
                                         "1 C begin(1)",
                                         "2 C end+files [1]",
                                         "3 A begin(1) [2]",
                                         "4 A end+files [3]",
                                         "5 B begin(1) [2]",
                                         "6 B end+files [5]",
                                     }));
}

TEST_F(BuildOrder, ExcludedProjectsGetNoJobsAndNothingWaitsOnThem) {
    load(R"(  <project Name="App"><configuration Name="Common" project_dependencies="Off" /></project>
  <project Name="Off"><configuration Name="Debug" build_exclude_from_build="Yes" /><file file_name="x.c" /></project>
)");
    EXPECT_EQ(jobs(system.solution), (Strings{"1 App begin(1)", "2 App end+files [1]"}));
}

TEST_F(BuildOrder, DependencyErrorsAreWordsAndTheBuildGoesOn) {
    load(R"(  <project Name="App">
    <configuration Name="Debug" />
    <configuration Name="Common" project_dependencies="Missing;Special;Loop" />
  </project>
  <project Name="Special"><configuration Name="Other" /></project>
  <project Name="Loop">
    <configuration Name="Debug" />
    <configuration Name="Common" project_dependencies="App" />
  </project>
)",
         false);
    EXPECT_EQ(jobs(system.solution), (Strings{
                                         "1 App begin(1)",
                                         "2 App end+files [1]",
                                         "3 Loop begin(1)",
                                         "4 Loop end+files [3]",
                                         "5 Special begin(1)",
                                         "6 Special end+files [5]",
                                     }));
    EXPECT_EQ(helpers.warnings,
              (Strings{"Debug: Dependency error detected in 'App' | Can't find project 'Missing' | "
                       "Configuration 'Debug' doesn't apply to dependent project 'Special' | "
                       "Project 'App' has cyclic dependency on project 'Loop'",
                       "Debug: Dependency error detected in 'Loop' | "
                       "Project 'Loop' has cyclic dependency on project 'App'"}));
}

TEST_F(BuildOrder, StagingDependenciesAreChainedUnlessTheyMayRunInParallel) {
    load(R"(  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" project_dependencies="P1;P2;P3" />
  </project>
  <project Name="Parallel">
    <configuration Name="Common" project_type="Staging" project_can_build_in_parallel="Yes"
                   project_dependencies="P1;P2" />
  </project>
  <project Name="P1" /><project Name="P2" /><project Name="P3" />
)");
    EXPECT_EQ(jobs(project("Stage")), (Strings{
                                          "1 P1 begin(1)",
                                          "2 P1 end+files [1]",
                                          "3 P2 begin(1) [2]",
                                          "4 P2 end+files [3]",
                                          "5 P3 begin(1) [4]",
                                          "6 P3 end+files [5]",
                                          "7 Stage begin(1) [2,4,6]",
                                          "8 Stage end+files [7]",
                                      }));
    EXPECT_EQ(jobs(project("Parallel")), (Strings{
                                             "1 P1 begin(1)",
                                             "2 P1 end+files [1]",
                                             "3 P2 begin(1)",
                                             "4 P2 end+files [3]",
                                             "5 Parallel begin(1) [2,4]",
                                             "6 Parallel end+files [5]",
                                         }));
}

TEST_F(BuildOrder, WildcardDependenciesFollowTheNameOrder) {
    load(R"(  <project Name="App"><configuration Name="Common" project_dependencies="lib*;&#10;;Tool" /></project>
  <project Name="libz" /><project Name="liba" /><project Name="Lib" /><project Name="Tool" />
)");
    EXPECT_EQ(system.projectDependencyNames(project("App"), "Debug"), (Strings{"liba", "libz", "Tool"}));
    EXPECT_EQ(system.allDependencies(project("App"), "Debug").size(), 3u);
}

TEST_F(BuildOrder, AProjectThatDependsOnItselfIsReportedAndBuiltOnce) {
    load(R"(  <project Name="Self"><configuration Name="Common" project_dependencies="Self" /></project>
)");
    EXPECT_EQ(jobs(system.solution), (Strings{"1 Self begin(1)", "2 Self end+files [1]"}));
    EXPECT_EQ(helpers.warnings, (Strings{"Debug: Dependency error detected in 'Self' | "
                                         "Project 'Self' has cyclic dependency on project 'Self'"}));
}

TEST_F(BuildOrder, BatchBuildsEveryChosenConfigurationWithoutFileJobs) {
    load(R"(  <configuration Name="Debug_Ext" />
  <project Name="App">
    <configuration Name="Common" batch_build_configurations="D*;Release" />
    <file file_name="main.c" />
  </project>
  <project Name="None"><file file_name="other.c" /></project>
)");
    EXPECT_EQ(jobs(system.solution, BuildQuietChecks | BuildBatch, true), (Strings{
                                                                              "1 App begin(2)",
                                                                              "2 App end [1]",
                                                                              "3 App/Debug_Ext begin(2)",
                                                                              "4 App/Debug_Ext end [3]",
                                                                              "5 App/Release begin(2)",
                                                                              "6 App/Release end [5]",
                                                                          }));
}

TEST_F(BuildOrder, AOneFileSelectionRunsOnOneSlot) {
    load(R"(  <project Name="App"><file file_name="main.c" /></project>
)");
    EXPECT_EQ(jobs(system.findFileByPath(project("App"), "main.c"), BuildQuietChecks, false, 8),
              (Strings{"1 main.c begin(1)", "2 main.c end"}));
    EXPECT_EQ(driver.threadCount, 1);
}

TEST_F(BuildOrder, ProjectsWithAStagePostBuildCommandHaveNoFileJobs) {
    load(R"(  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" stage_post_build_command="echo done" />
    <file file_name="a.txt" /><file file_name="b.txt" />
  </project>
)");
    EXPECT_EQ(jobs(project("Stage")), (Strings{"1 Stage begin(3)", "2 Stage end [1]"}));
    EXPECT_EQ(jobs(system.solution), (Strings{
                                         "1 Stage begin(3)",
                                         "2 a.txt [1]",
                                         "3 b.txt [1]",
                                         "4 Stage end+files [2,3,1]",
                                     }));
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

TEST_F(BuildOrder, FoldersAndNestedSolutionsComeFirstAtAnyDepth) {
    std::string body = "  <project Name=\"Top\" />\n";
    const int depth = 10000;
    for (int i = 0; i < depth; ++i)
        body += "<folder Name=\"F" + std::to_string(i) + "\">";
    body += "<project Name=\"Deep\" />";
    for (int i = 0; i < depth; ++i)
        body += "</folder>";
    body += "\n  <solution Name=\"Inner\"><project Name=\"Nested\" /></solution>\n";
    load(body);
    EXPECT_EQ(jobs(system.solution), (Strings{
                                         "1 Deep begin(1)",
                                         "2 Deep end+files [1]",
                                         "3 Nested begin(1)",
                                         "4 Nested end+files [3]",
                                         "5 Top begin(1)",
                                         "6 Top end+files [5]",
                                     }));
}

TEST_F(BuildOrder, ALongDependencyChainIsOrdered) {
    std::string body;
    const int length = 10000;
    for (int i = 0; i < length; ++i)
        body += "  <project Name=\"P" + std::to_string(i) + "\"><configuration Name=\"Common\" " +
                (i + 1 < length ? "project_dependencies=\"P" + std::to_string(i + 1) + "\"" : "") +
                " /></project>\n";
    load(body);
    const Strings list = jobs(system.solution);
    ASSERT_EQ(list.size(), std::size_t(2 * length));
    EXPECT_EQ(list.front(), "1 P9999 begin(1)");
    EXPECT_EQ(list.back(), "20000 P0 end+files [19999]");
}

}  // namespace
