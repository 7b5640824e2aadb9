// The command line: help, parse errors, the rules between options, and
// "@file" arguments (files of further arguments, read line by line).

#include "harness.h"

#include <gtest/gtest.h>

#include <utility>

using e2e::quillmakePath;
using e2e::runQuillmake;
using e2e::Sandbox;

namespace {

const std::string banner =
    "Veldane for ARM Quillmake - Release 5.4.1.2026041515.61521\n"
    "Copyright (c) 2026 Ostrand Instruments Limited.\n"
    "This program is provided as is, without warranty of any kind.\n";

// The options that -help and -helpdg show, in their order.
const std::vector<std::pair<std::string, std::string>> options{
    {"-batch", "batch build"},
    {"-clean", "remove all output and intermediate files"},
    {"-config 'name'", "(batch) build in 'name' configuration"},
    {"-D 'name'='value'", "set global macro $('name') to 'value'"},
    {"-echo", "show command lines as they are executed"},
    {"-export-build", "show the command lines and dependencies"},
    {"-file 'name'", "add file 'name' to template-created project"},
    {"-help", "show help text"},
    {"-host", "use hosted gnu tools for the build"},
    {"-keepgoing", "keep building when errors occur"},
    {"-nostderr", "redirect output from stderr to stdout"},
    {"-nounity", "disable unity building"},
    {"-packagesdir 'name'", "set $(PackagesDir) to 'name'"},
    {"-project 'name'", "(batch) build 'name' project"},
    {"-property 'name'='value'", "set project property 'name' to 'value'"},
    {"-rebuild", "always do the build steps"},
    {"-sconfig 'name'", "solution properties are set in 'name' configuration"},
    {"-show", "show the build steps but don't execute them"},
    {"-solution 'name'", "(batch) build 'name' solution"},
    {"-sproperty 'name'='value'", "set solution property 'name' to 'value'"},
    {"-studiodir 'name'", "set $(StudioDir) to 'name'"},
    {"-template 'name'", "create the project from the template 'name'"},
    {"-templatesfile 'path'", "get project template files from 'path'"},
    {"-threadnum 'n'", "use 'n' threads for build"},
    {"-time", "show time taken"},
    {"-type 'type'", "create the project from the project 'type'"},
    {"-verbose", "show build information"},
};

// The usage text: each option's left part padded to 32 columns.
std::string usage() {
    std::string text = "\n"
                       "Usage: quillmake [option] <project>.tbp\n"
                       "Usage: quillmake [option] -template 'name' -project 'name'\n"
                       "Usage: quillmake [option] -type 'type' -project 'name'\n"
                       "\n";
    for (const auto &[left, right] : options)
        text += "  " + left + std::string(left.size() < 32 ? 32 - left.size() : 0, ' ') + "  " + right + "\n";
    return text;
}

// The documentation table of -helpdg. The right part of a stored entry
// keeps the blank that follows its colon.
std::string documentationTable() {
    std::string text = "\\table{1.5in,*}\n|| Option | Description\n";
    for (const auto &[left, right] : options)
        text += "||\\tt " + left + " |  " + right + " \n";
    return text;
}

std::string error(const std::string &text) { return quillmakePath() + ": error: " + text + "\n"; }

// A run that gets past the command line and looks for its solution file
// (<box> stands for the sandbox's path).
const std::string notLoading = "load error: <box>/a.tbp  does not exist\n";
const std::string noFile = ".tbp file or -template or -type must be specified.";

// level1 .. level<count> (with the given prefix), each including the next;
// the last one holds `last`.
void writeChain(const Sandbox &box, const std::string &prefix, int count, const std::string &last) {
    for (int level = 1; level < count; ++level)
        box.write(prefix + std::to_string(level), "@" + prefix + std::to_string(level + 1) + "\n");
    box.write(prefix + std::to_string(count), last);
}

struct Case {
    std::vector<std::string> arguments;
    std::string out, err;
    int status;
};

}  // namespace

TEST(CommandLine, EachLineShowsExactlyThis) {
    Sandbox box;
    box.write("args", "# build settings\n-config Debug\n\n-batch   a.tbp\n");
    writeChain(box, "level", 100, "-config Debug a.tbp\n");
    writeChain(box, "deep", 101, "-never\n");
    box.write("deep100", "@deep101\n-after\n");
    box.write("self", "@self\n");
    box.write("twice", "@twice @twice\n@twice\n");
    box.write("quoted", "-config \"Debug Version\" -batch\n");
    box.write("quotedhelp", "-helpdg \"my options.txt\"\n");
    box.write("split", "-config\nDebug a.tbp\n");
    box.write("comment", "-config Debug\n#x\n");
    box.write("indented", "-config Debug\n #x\n");
    box.write("emptyquoted", "-config Debug a.tbp \"\"\n");
    box.write("unterminated", "# one\n-config Debug\n# two\n#three\n-batch \"a.tbp\n");
    const std::vector<Case> cases{
        {{}, usage(), banner, 0},
        {{"-config", "Debug", "-help", "x.tbp", "-clean", "-solution", "s", "-project", "p"}, usage(), banner, 0},
        {{"-help"}, usage(), banner, 0},
        // Errors of the first pass come before help.
        {{"-bogus", "-help"}, "", error("unrecognised option -bogus"), 1},
        {{"-clean", "-helpdg", "options.txt", "a.tbp"}, "", "", 0},
        {{"-helpdg", "no/such/dir/options.txt"}, "",
         error("can't write no/such/dir/options.txt: No such file or directory"), 1},

        {{"-config"}, "", error("expected argument for option -config"), 1},
        {{"a.tbp", "-project", "p", "-D"}, "", error("expected argument for option -D"), 1},
        // Every unrecognised option is reported, once.
        {{"-config", "Debug", "-Dx=1", "-", "a.tbp", "-CONFIG", "x"}, "",
         error("unrecognised option -Dx=1") + error("unrecognised option -") + error("unrecognised option -CONFIG"), 1},
        // "-bogus" is the value of -project and "-D" the value of -config.
        {{"-project", "-bogus", "-config", "-D", "a.tbp"}, "", notLoading, 1},
        {{"", "-batch", "", "a.tbp", ""}, "", notLoading, 1},
        // An empty value counts as given.
        {{"-solution", "", "-project", "p", "a.tbp"}, "", error("-solution and -project are exclusive."), 1},
        // The last solution file is the one loaded.
        {{"-config", "Debug", "a.tbp", "b.tbp"}, "", "load error: <box>/b.tbp  does not exist\n", 1},

        // The first broken rule is the only one reported.
        {{"-solution", "s", "-project", "p"}, "", error("-solution and -project are exclusive."), 1},
        {{"-config", "Debug"}, "", error(noFile), 1},
        {{"-verbose"}, "", error(noFile), 1},
        {{"a.tbp"}, "", error("-config must be specified."), 1},
        {{"-config", "", "a.tbp"}, "", error("-config must be specified."), 1},
        {{"-template", "t"}, "", error("-config must be specified."), 1},
        {{"-config", "Debug", "-template", "t"}, "", error("-project must be specified with -template."), 1},
        {{"-batch", "-template", "t", "-project", ""}, "", error("-project must be specified with -template."), 1},
        {{"-config", "Debug", "-type", "x"}, "", error("-project must be specified with -type."), 1},
        {{"-batch", "-template", "t", "-type", "x"}, "", error("-project must be specified with -template."), 1},
        {{"-batch", "a.tbp"}, "", notLoading, 1},
        {{"-config", "Debug", "-template", "t", "-project", "p"},
         "can't find template 't' installed templates:\nCOMBINING\nCORTEX_M_EXECUTABLE\nCORTEX_M_LIBRARY\nSTAGING\n", "", 1},
        // No batch configurations: nothing to build.
        {{"-batch", "-type", "Executable", "-project", "p", "-file", "main.c"}, "", "", 0},

        {{"@args"}, "", notLoading, 1},
        // A hundred levels of files open; the hundred and first doesn't, and
        // parsing goes on after it.
        {{"@level1"}, "", notLoading, 1},
        {{"@deep1", "-outer"}, "",
         error("too many indirect files") + error("unrecognised option -after") + error("unrecognised option -outer"),
         1},
        {{"-config", "Debug", "a.tbp", "@self"}, "", error("too many indirect files"), 1},
        {{"-config", "Debug", "a.tbp", "@twice"}, "", error("too many indirect files"), 1},
        // "Debug Version" is one value: nothing is left for a solution file.
        {{"@quoted"}, "", error(noFile), 1},
        {{"@quotedhelp"}, "", "", 0},
        // A value option takes nothing from the next line.
        {{"@split"}, "", error("expected argument for option -config"), 1},
        // Comments only in the first column.
        {{"@comment"}, "", error(noFile), 1},
        {{"@indented"}, "", "load error: <box>/#x  does not exist\n", 1},
        {{"@emptyquoted"}, "", notLoading, 1},
        // The line number counts no comment lines.
        {{"@unterminated"}, "", error("unterminated string in indirect file unterminated(2)"), 1},
        {{"-config", "Debug", "a.tbp", "@missing.txt"}, "",
         error("can't open indirect file missing.txt: No such file or directory"), 1},
        {{"@" + box.at("none")}, "", error("can't open indirect file <box>/none: No such file or directory"), 1},
    };
    for (const Case &c : cases) {
        const auto r = runQuillmake(box, c.arguments);
        const std::string line = testing::PrintToString(c.arguments);
        EXPECT_EQ(r.out, c.out) << line;
        EXPECT_EQ(r.err, box.expand(c.err)) << line;
        EXPECT_EQ(r.status, c.status) << line;
    }
    EXPECT_EQ(box.read("options.txt"), documentationTable());
    EXPECT_EQ(box.read("my options.txt"), documentationTable());
}
