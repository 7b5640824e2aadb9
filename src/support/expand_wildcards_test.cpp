#include "support/expand_wildcards.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/test_directory.h"

namespace {

using Names = std::vector<std::string>;

TEST(ExpandWildcards, EachPartMatchesInTurn) {
    TestDirectory scratch;
    for (const char *file : {"src/a.c", "src/b.c", "src/c.h", "src/.hidden.c", "src/ab.cpp", "t1/project_templates.xml",
                             "t1/project_templates_extra.xml", "t1/other.xml", "t2/project_templates2.xml",
                             "deep/x1/leaf/f.txt", "deep/x2/leaf/f.txt", "deep/x3/g.txt", "s_file"})
        scratch.write(file, "x");
    makeDirectories(scratch / "t3");
    ASSERT_EQ(symlink("src", (scratch / "s_link").c_str()), 0);
    const ChangeDirectory into(scratch.path());
    // Patterns that start with "/" are taken below the scratch directory,
    // the others relative to it, the current directory.
    const struct {
        std::string pattern;
        Names names;
    } cases[] = {
        // The last part matches files and directories, hidden ones too.
        {"/src/*.c", {"src/.hidden.c", "src/a.c", "src/b.c"}},
        {"/src/?.c", {"src/a.c", "src/b.c"}},
        {"/s*", {"s_file", "s_link", "src"}},
        {"/*/project_templates*.xml",
         {"t1/project_templates.xml", "t1/project_templates_extra.xml", "t2/project_templates2.xml"}},
        {"/deep/*/leaf/*.txt", {"deep/x1/leaf/f.txt", "deep/x2/leaf/f.txt"}},
        {"/*/*/leaf", {"deep/x1/leaf", "deep/x2/leaf"}},
        // A part before others matches directories only, links to them included.
        {"/s*/", {"s_link", "src"}},
        {"/s*/c.h", {"s_link/c.h", "src/c.h"}},
        // Results are normalised paths.
        {"/deep/./x3/../x3//*.txt", {"deep/x3/g.txt"}},
        {"/deep/*/../x3/g.txt", {"deep/x3/g.txt", "deep/x3/g.txt", "deep/x3/g.txt"}},
        // A plain path is added if it exists.
        {"/src/a.c", {"src/a.c"}},
        {"/src/none.c", {}}, {"/src/*.cpp.none", {}}, {"/t3/*", {}}, {"/missing/*.c", {}}, {"/s_file/*", {}},
        {"src/*.h", {"src/c.h"}}, {"./src/*.h", {"src/c.h"}}, {"t?", {"t1", "t2", "t3"}},
        {"src/../t*/other.xml", {"t1/other.xml"}},
    };
    for (const auto &c : cases) {
        // Results are added to what is there.
        std::vector<FilePath> results{FilePath("kept")};
        expandWildcards(c.pattern.starts_with("/") ? scratch.path() + c.pattern : c.pattern, results);
        EXPECT_EQ(results.front().text(), "kept");
        Names texts;
        for (auto path = results.begin() + 1; path != results.end(); ++path)
            texts.push_back(path->text().starts_with("/") ? path->text().substr(scratch.path().size() + 1)
                                                          : path->text());
        std::sort(texts.begin(), texts.end());
        EXPECT_EQ(texts, c.names) << c.pattern;
    }
}

TEST(ExpandWildcards, RootDirectory) {
    std::vector<FilePath> results;
    expandWildcards("/*", results);
    const FilePath top("/" + FilePath(currentDirectory()).components().front());
    EXPECT_NE(std::find(results.begin(), results.end(), top), results.end());
    for (const FilePath &path : results)
        EXPECT_EQ(path.text().find("//"), std::string::npos) << path.text();
}

}  // namespace
