#include "harness.h"

#include <gtest/gtest.h>

using e2e::quillmakePath;
using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

const std::string banner =
    "Veldane for ARM Quillmake - Release 5.4.1.2026041515.61521\n"
    "Copyright (c) 2026 Ostrand Instruments Limited.\n"
    "This program is provided as is, without warranty of any kind.\n";

// One line of the option help, its left part padded to 32 columns. The right
// part of a stored entry keeps the blank that follows its colon.
std::string entry(const std::string &left, const std::string &right) {
    return "  " + left + std::string(left.size() < 32 ? 32 - left.size() : 0, ' ') + "  " + right + "\n";
}

const std::string usage =
    "\n"
    "Usage: quillmake [option] <project>.tbp\n"
    "Usage: quillmake [option] -template 'name' -project 'name'\n"
    "Usage: quillmake [option] -type 'type' -project 'name'\n"
    "\n" +
    entry("-batch", "batch build") +
    entry("-clean", "remove all output and intermediate files") +
    entry("-config 'name'", "(batch) build in 'name' configuration") +
    entry("-D 'name'='value'", "set global macro $('name') to 'value'") +
    entry("-echo", "show command lines as they are executed") +
    entry("-export-build", "show the command lines and dependencies") +
    entry("-file 'name'", "add file 'name' to template-created project") +
    entry("-help", "show help text") +
    entry("-host", "use hosted gnu tools for the build") +
    entry("-keepgoing", "keep building when errors occur") +
    entry("-nostderr", "redirect output from stderr to stdout") +
    entry("-nounity", "disable unity building") +
    entry("-packagesdir 'name'", "set $(PackagesDir) to 'name'") +
    entry("-project 'name'", "(batch) build 'name' project") +
    entry("-property 'name'='value'", "set project property 'name' to 'value'") +
    entry("-rebuild", "always do the build steps") +
    entry("-sconfig 'name'", "solution properties are set in 'name' configuration") +
    entry("-show", "show the build steps but don't execute them") +
    entry("-solution 'name'", "(batch) build 'name' solution") +
    entry("-sproperty 'name'='value'", "set solution property 'name' to 'value'") +
    entry("-studiodir 'name'", "set $(StudioDir) to 'name'") +
    entry("-template 'name'", "create the project from the template 'name'") +
    entry("-templatesfile 'path'", "get project template files from 'path'") +
    entry("-threadnum 'n'", "use 'n' threads for build") +
    entry("-time", "show time taken") +
    entry("-type 'type'", "create the project from the project 'type'") +
    entry("-verbose", "show build information");

std::string error(const std::string &text) { return quillmakePath() + ": error: " + text + "\n"; }

// A run that gets past the command line and looks for its solution file
// (<box> stands for the sandbox's path).
const std::string notLoading = "load error: <box>/a.tbp  does not exist\n";


// Runs quillmake and checks everything it shows.
void expectRun(const std::vector<std::string> &arguments, const std::string &out,
               const std::string &err, int status) {
    Sandbox box;
    const auto r = runQuillmake(box, arguments);
    EXPECT_EQ(r.out, out);
    EXPECT_EQ(r.err, box.expand(err));
    EXPECT_EQ(r.status, status);
}

}  // namespace

TEST(Help, NoArgumentsPrintsBannerAndUsage) { expectRun({}, usage, banner, 0); }

TEST(Help, HelpWinsOverTheRestOfTheLine) {
    expectRun({"-config", "Debug", "-help", "x.tbp", "-clean", "-solution", "s", "-project", "p"},
              usage, banner, 0);
    expectRun({"-help"}, usage, banner, 0);
}

TEST(Help, ErrorsOfTheFirstPassComeBeforeHelp) {
    expectRun({"-bogus", "-help"}, "", error("unrecognised option -bogus"), 1);
}

TEST(Help, DocumentationTable) {
    Sandbox box;
    const auto r = runQuillmake(box, {"-clean", "-helpdg", "options.txt", "a.tbp"});
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(box.read("options.txt"),
              "\\table{1.5in,*}\n"
              "|| Option | Description\n"
              "||\\tt -batch |  batch build \n"
              "||\\tt -clean |  remove all output and intermediate files \n"
              "||\\tt -config 'name' |  (batch) build in 'name' configuration \n"
              "||\\tt -D 'name'='value' |  set global macro $('name') to 'value' \n"
              "||\\tt -echo |  show command lines as they are executed \n"
              "||\\tt -export-build |  show the command lines and dependencies \n"
              "||\\tt -file 'name' |  add file 'name' to template-created project \n"
              "||\\tt -help |  show help text \n"
              "||\\tt -host |  use hosted gnu tools for the build \n"
              "||\\tt -keepgoing |  keep building when errors occur \n"
              "||\\tt -nostderr |  redirect output from stderr to stdout \n"
              "||\\tt -nounity |  disable unity building \n"
              "||\\tt -packagesdir 'name' |  set $(PackagesDir) to 'name' \n"
              "||\\tt -project 'name' |  (batch) build 'name' project \n"
              "||\\tt -property 'name'='value' |  set project property 'name' to 'value' \n"
              "||\\tt -rebuild |  always do the build steps \n"
              "||\\tt -sconfig 'name' |  solution properties are set in 'name' configuration \n"
              "||\\tt -show |  show the build steps but don't execute them \n"
              "||\\tt -solution 'name' |  (batch) build 'name' solution \n"
              "||\\tt -sproperty 'name'='value' |  set solution property 'name' to 'value' \n"
              "||\\tt -studiodir 'name' |  set $(StudioDir) to 'name' \n"
              "||\\tt -template 'name' |  create the project from the template 'name' \n"
              "||\\tt -templatesfile 'path' |  get project template files from 'path' \n"
              "||\\tt -threadnum 'n' |  use 'n' threads for build \n"
              "||\\tt -time |  show time taken \n"
              "||\\tt -type 'type' |  create the project from the project 'type' \n"
              "||\\tt -verbose |  show build information \n");
}

TEST(Help, DocumentationTableThatCantBeWritten) {
    expectRun({"-helpdg", "no/such/dir/options.txt"}, "",
              error("can't write no/such/dir/options.txt: No such file or directory"), 1);
}

TEST(ParseErrors, MissingValue) {
    expectRun({"-config"}, "", error("expected argument for option -config"), 1);
    expectRun({"a.tbp", "-project", "p", "-D"}, "", error("expected argument for option -D"), 1);
}

TEST(ParseErrors, UnrecognisedOptionsAreAllReportedOnce) {
    expectRun({"-config", "Debug", "-Dx=1", "-", "a.tbp", "-CONFIG", "x"}, "",
              error("unrecognised option -Dx=1") + error("unrecognised option -") +
                  error("unrecognised option -CONFIG"),
              1);
}

TEST(ParseErrors, ValuesAreNotOptions) {
    // "-bogus" is the value of -project and "-D" the value of -config.
    expectRun({"-project", "-bogus", "-config", "-D", "a.tbp"}, "", notLoading, 1);
}

TEST(Arguments, EmptyArgumentsAreIgnored) {
    expectRun({"", "-batch", "", "a.tbp", ""}, "", notLoading, 1);
}

TEST(Arguments, EmptyValueCountsAsGiven) {
    expectRun({"-solution", "", "-project", "p", "a.tbp"}, "",
              error("-solution and -project are exclusive."), 1);
}

TEST(Arguments, LastSolutionFileIsLoaded) {
    expectRun({"-config", "Debug", "a.tbp", "b.tbp"}, "", "load error: <box>/b.tbp  does not exist\n", 1);
}

TEST(Rules, EachRuleAndItsOrder) {
    // The first broken rule is the only one reported.
    expectRun({"-solution", "s", "-project", "p"}, "", error("-solution and -project are exclusive."), 1);
    expectRun({"-config", "Debug"}, "", error(".tbp file or -template or -type must be specified."), 1);
    expectRun({"-verbose"}, "", error(".tbp file or -template or -type must be specified."), 1);
    expectRun({"a.tbp"}, "", error("-config must be specified."), 1);
    expectRun({"-config", "", "a.tbp"}, "", error("-config must be specified."), 1);
    expectRun({"-template", "t"}, "", error("-config must be specified."), 1);
    expectRun({"-config", "Debug", "-template", "t"}, "",
              error("-project must be specified with -template."), 1);
    expectRun({"-batch", "-template", "t", "-project", ""}, "",
              error("-project must be specified with -template."), 1);
    expectRun({"-config", "Debug", "-type", "x"}, "", error("-project must be specified with -type."), 1);
    expectRun({"-batch", "-template", "t", "-type", "x"}, "",
              error("-project must be specified with -template."), 1);
}

TEST(Rules, BatchMakesConfigOptional) { expectRun({"-batch", "a.tbp"}, "", notLoading, 1); }

TEST(Rules, TemplateAndTypeRuns) {
    const std::string notCreating = "error: creating projects from a template or type is not available yet\n";
    expectRun({"-config", "Debug", "-template", "t", "-project", "p"}, "", notCreating, 1);
    expectRun({"-batch", "-type", "Executable", "-project", "p", "-file", "main.c"}, "", notCreating, 1);
}
