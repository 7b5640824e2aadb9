#include "support/expand_wildcards.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/test_directory.h"

namespace {

class ExpandWildcards : public testing::Test {
protected:
    void SetUp() override {
        for (const char *file : {"src/a.c", "src/b.c", "src/c.h", "src/.hidden.c", "src/ab.cpp",
                                 "t1/project_templates.xml", "t1/project_templates_extra.xml",
                                 "t1/other.xml", "t2/project_templates2.xml", "deep/x1/leaf/f.txt",
                                 "deep/x2/leaf/f.txt", "deep/x3/g.txt", "s_file"})
            scratch.write(file, "x");
        makeDirectories(scratch / "t3");
        ASSERT_EQ(symlink("src", (scratch / "s_link").c_str()), 0);
    }

    // The results' texts below the scratch directory, sorted.
    std::vector<std::string> expand(const std::string &pattern) {
        std::vector<FilePath> results;
        expandWildcards(pattern, results);
        return relative(results);
    }

    std::vector<std::string> relative(const std::vector<FilePath> &results) {
        std::vector<std::string> texts;
        for (const FilePath &path : results) {
            std::string text = path.text();
            if (text.starts_with(scratch.path() + "/"))
                text.erase(0, scratch.path().size() + 1);
            texts.push_back(text);
        }
        std::sort(texts.begin(), texts.end());
        return texts;
    }

    using Names = std::vector<std::string>;
    TestDirectory scratch;
};

TEST_F(ExpandWildcards, LastPartMatchesFilesAndDirectories) {
    EXPECT_EQ(expand(scratch / "src/*.c"), (Names{"src/.hidden.c", "src/a.c", "src/b.c"}));
    EXPECT_EQ(expand(scratch / "src/?.c"), (Names{"src/a.c", "src/b.c"}));
    EXPECT_EQ(expand(scratch / "s*"), (Names{"s_file", "s_link", "src"}));
    EXPECT_EQ(expand(scratch / "src/a*"), (Names{"src/a.c", "src/ab.cpp"}));
}

TEST_F(ExpandWildcards, WildcardDirectoryParts) {
    EXPECT_EQ(expand(scratch / "*/project_templates*.xml"),
              (Names{"t1/project_templates.xml", "t1/project_templates_extra.xml",
                     "t2/project_templates2.xml"}));
    EXPECT_EQ(expand(scratch / "deep/*/leaf/*.txt"), (Names{"deep/x1/leaf/f.txt", "deep/x2/leaf/f.txt"}));
    EXPECT_EQ(expand(scratch / "*/*/leaf"), (Names{"deep/x1/leaf", "deep/x2/leaf"}));
    // A part before others matches directories only, links to them included.
    EXPECT_EQ(expand(scratch / "s*/"), (Names{"s_link", "src"}));
    EXPECT_EQ(expand(scratch / "s*/c.h"), (Names{"s_link/c.h", "src/c.h"}));
}

TEST_F(ExpandWildcards, ResultsAreNormalisedPaths) {
    std::vector<FilePath> results;
    expandWildcards(scratch / "deep/./x3/../x3//*.txt", results);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].text(), scratch / "deep/x3/g.txt");
    EXPECT_EQ(expand(scratch / "deep/*/../x3/g.txt"), (Names{"deep/x3/g.txt", "deep/x3/g.txt", "deep/x3/g.txt"}));
}

TEST_F(ExpandWildcards, NoMatchAddsNothing) {
    std::vector<FilePath> results{FilePath("kept")};
    expandWildcards(scratch / "src/*.cpp.none", results);
    expandWildcards(scratch / "t3/*", results);
    expandWildcards(scratch / "missing/*.c", results);
    expandWildcards("/x/*.c", results);
    expandWildcards(scratch / "s_file/*", results);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].text(), "kept");
}

TEST_F(ExpandWildcards, PlainPathsAreAddedIfTheyExist) {
    const std::string file = scratch / "src/a.c";
    std::vector<FilePath> results;
    expandWildcards(file, results);
    expandWildcards(scratch / "src/none.c", results);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].text(), file);
}

TEST_F(ExpandWildcards, RelativePatterns) {
    const ChangeDirectory into(scratch.path());
    EXPECT_EQ(expand("src/*.h"), Names{"src/c.h"});
    EXPECT_EQ(expand("./src/*.h"), Names{"src/c.h"});
    EXPECT_EQ(expand("t?"), (Names{"t1", "t2", "t3"}));
    EXPECT_EQ(expand("src/../t*/other.xml"), Names{"t1/other.xml"});
}

TEST_F(ExpandWildcards, RootDirectory) {
    std::vector<FilePath> results;
    expandWildcards("/*", results);
    const FilePath top("/" + FilePath(scratch.path()).components().front());
    EXPECT_NE(std::find(results.begin(), results.end(), top), results.end());
    for (const FilePath &path : results)
        EXPECT_EQ(path.text().find("//"), std::string::npos) << path.text();
}

}  // namespace
