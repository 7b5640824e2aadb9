// The user's guide, docs/guide.md, run as it stands: every block of the form
// ```xml file=PATH is written to a demo directory, and every ```console block
// runs there in one shell, in document order, with its "$ " lines as the
// commands and its other lines as what the terminal shows. A line "..."
// stands for any number of lines. The demo directory is /home/user/demo of
// the guide: the sandbox's path is cut out of what the commands print.

#include "harness.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

struct Block {
    int line = 0;  // of the opening fence
    std::string info, text;
};

std::vector<Block> fencedBlocks(const std::string &markdown) {
    std::vector<Block> blocks;
    std::istringstream in(markdown);
    std::string line;
    Block *open = nullptr;
    for (int number = 1; std::getline(in, line); ++number) {
        if (line.starts_with("```")) {
            if (open) {
                open = nullptr;
                continue;
            }
            blocks.push_back({number, line.substr(3), ""});
            open = &blocks.back();
        } else if (open) {
            open->text += line + "\n";
        }
    }
    return blocks;
}

std::vector<std::string> lines(const std::string &text) {
    std::vector<std::string> list;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        list.push_back(line);
    return list;
}

// Whether `actual` from line a on is `expected` from line e on; "..." takes
// any number of lines.
bool matches(const std::vector<std::string> &expected, std::size_t e,
             const std::vector<std::string> &actual, std::size_t a) {
    if (e == expected.size())
        return a == actual.size();
    if (expected[e] == "...") {
        for (std::size_t skip = a; skip <= actual.size(); ++skip)
            if (matches(expected, e + 1, actual, skip))
                return true;
        return false;
    }
    return a < actual.size() && expected[e] == actual[a] && matches(expected, e + 1, actual, a + 1);
}

std::string quoted(const std::string &text) {
    std::string result = "'";
    for (const char c : text)
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
}

// The commands of a transcript as one script that prints each of them, as a
// terminal would show it, before running it; $? survives the printing.
std::string script(const std::string &transcript) {
    std::string text = "exec 2>&1\nstatus=0\n";
    for (const std::string &line : lines(transcript))
        if (line.starts_with("$ "))
            text += "printf '%s\\n' " + quoted(line) + "\n(exit $status)\n" + line.substr(2) +
                    "\nstatus=$?\n";
    return text;
}

std::string replacedAll(std::string text, const std::string &from, const std::string &to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

TEST(Guide, EveryExampleBuildsAndEveryTranscriptIsWhatTheProgramPrints) {
    std::ifstream in(std::string(QUILLMAKE_SOURCE_DIR) + "/docs/guide.md");
    std::stringstream markdown;
    markdown << in.rdbuf();
    const std::vector<Block> blocks = fencedBlocks(markdown.str());
    ASSERT_FALSE(blocks.empty());

    // quillmake is found on the PATH through a link, as an installation is.
    e2e::Sandbox box;
    const std::string home = box.at("home/user"), demo = home + "/demo";
    std::filesystem::create_directories(demo);
    std::filesystem::create_directories(box.at("bin"));
    std::filesystem::create_symlink(e2e::quillmakePath(), box.at("bin/quillmake"));
    const char *searchPath = std::getenv("PATH");
    const std::map<std::string, std::optional<std::string>> environment = {
        {"HOME", home},
        {"PATH", box.at("bin") + ":" + (searchPath ? searchPath : "/usr/bin:/bin")},
        {"QUILLMAKE_THREADNUM", "1"},
        {"VELDANE_ROOT_USER_DIR", std::nullopt}};

    int transcripts = 0;
    for (const Block &block : blocks) {
        const std::size_t file = block.info.find(" file=");
        if (file != std::string::npos) {
            const std::filesystem::path path = demo + "/" + block.info.substr(file + 6);
            std::filesystem::create_directories(path.parent_path());
            std::ofstream(path, std::ios::binary) << block.text;
        } else if (block.info == "console") {
            ++transcripts;
            const e2e::RunResult result =
                e2e::runProgram({"/bin/bash", "-c", script(block.text)}, demo, environment);
            const std::string shown = replacedAll(result.out, box.path(), "");
            EXPECT_TRUE(matches(lines(block.text), 0, lines(shown), 0))
                << "docs/guide.md:" << block.line << " shows\n" << block.text << "but the commands print\n"
                << shown;
        }
    }
    EXPECT_GT(transcripts, 0);
}

}  // namespace
