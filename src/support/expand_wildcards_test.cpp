#include "support/expand_wildcards.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/test_directory.h"

namespace {

using Names = std::vector<std::string>;

TEST(ExpandWildcards, EachPartMatchesInTurn) {
    TestDirectory scratch;
    for (const char *file : {"src/a.c", "t1/other.xml", "t2/other.h", "deep/x1/leaf/f.txt", "deep/x2/leaf/f.txt",
                             "deep/x3/g.txt", "s_file"})
        scratch.write(file, "x");
    ASSERT_EQ(symlink("src", (scratch / "s_link").c_str()), 0);
    const ChangeDirectory into(scratch.path());
    // Patterns that start with "/" are taken below the scratch directory,
    // the others relative to it, the current directory.
    const struct {
        std::string pattern;
        Names names;
    } cases[] = {
        {"/deep/*/leaf/*.txt", {"deep/x1/leaf/f.txt", "deep/x2/leaf/f.txt"}},
        // A part before others matches directories only, links to them included.
        {"/s*/", {"s_link", "src"}},
        // A plain path is added if it exists.
        {"/src/a.c", {"src/a.c"}}, {"/src/none.c", {}},
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
    // The names in the root directory.
    std::vector<FilePath> roots;
    expandWildcards("/*", roots);
    const FilePath top("/" + FilePath(scratch.path()).components().front());
    EXPECT_NE(std::find(roots.begin(), roots.end(), top), roots.end());
}

}  // namespace
