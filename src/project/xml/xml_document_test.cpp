#include "project/xml/xml_document.h"

#include <gtest/gtest.h>

#include "support/test_directory.h"

#include <cstdio>
#include <string>

namespace {

class XMLDocumentFiles : public ::testing::Test {
protected:
    std::string path(const std::string &name) const { return directory_ / name; }
    void writeFile(const std::string &name, const std::string &content) const {
        directory_.write(name, content);
    }
    std::string readFile(const std::string &name) const { return TestDirectory::read(path(name)); }

    TestDirectory directory_;
};

} // namespace

TEST_F(XMLDocumentFiles, LoadAndSaveKeepBytes) {
    const std::string text = "<!DOCTYPE Tarnbench_Project_File>\n"
                             "<solution Name=\"caf\xc3\xa9 &quot;1&quot; &lt;2&gt;\" />\n";
    writeFile("in.tbp", text);
    XMLDocument document;
    ASSERT_TRUE(document.load(path("in.tbp").c_str()));
    EXPECT_EQ(*document.root->attribute("Name"), "caf\xc3\xa9 \"1\" <2>");
    ASSERT_TRUE(document.save(path("out.tbp").c_str(), 2, 75));
    EXPECT_EQ(readFile("out.tbp"), "<!DOCTYPE Tarnbench_Project_File>\n"
                                   "<solution Name=\"caf&#xc3;&#xa9; &quot;1&quot; &lt;2&gt;\" />\n");
    XMLDocument again;
    ASSERT_TRUE(again.load(path("out.tbp").c_str()));
    EXPECT_EQ(*again.root->attribute("Name"), *document.root->attribute("Name"));
}

TEST_F(XMLDocumentFiles, FailuresNameTheFile) {
    XMLDocument document;
    const std::string missing = path("missing.xml");
    EXPECT_FALSE(document.load(missing.c_str()));
    EXPECT_EQ(document.errorText, "couldn't read " + missing);
    EXPECT_EQ(document.errorLine, 0);

    EXPECT_FALSE(document.load(directory_.path().c_str()));
    EXPECT_EQ(document.errorText, "couldn't read " + directory_.path());

    const std::string unwritable = path("no/such/dir.xml");
    document.root = new XMLElement("a");
    EXPECT_FALSE(document.save(unwritable.c_str(), 2, 75));
    EXPECT_EQ(document.errorText, "couldn't write " + unwritable);

    EXPECT_FALSE(document.save("/dev/full", 2, 75));
    EXPECT_EQ(document.errorText, "couldn't write /dev/full");
}

TEST_F(XMLDocumentFiles, ByteOrderMarkNeedsAllThreeBytes) {
    writeFile("bom3.xml", "\xEF\xBB\xBF<a/>");
    writeFile("bom2.xml", "\xEF\xBB<a/>");
    writeFile("bom1.xml", "\xEF<a/>");
    for (const char *name : {"bom3.xml", "bom2.xml", "bom1.xml"}) {
        XMLDocument document;
        ASSERT_TRUE(document.load(path(name).c_str())) << name;
        ASSERT_NE(document.root, nullptr) << name << ": the \"<\" after the mark stays";
        EXPECT_EQ(document.root->tagName, "a");
    }

    std::FILE *stream = std::fopen(path("bom3.xml").c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    XMLDocument streamed;
    EXPECT_TRUE(streamed.parseFile(stream));
    std::fclose(stream);
    ASSERT_NE(streamed.root, nullptr);
    EXPECT_EQ(streamed.root->tagName, "a");
}

TEST_F(XMLDocumentFiles, ParseErrorOfLoadedFileHasItsLine) {
    writeFile("bad.xml", "<a>\n<b>\n</c>\n</a>\n");
    XMLDocument document;
    EXPECT_FALSE(document.load(path("bad.xml").c_str()));
    EXPECT_EQ(document.errorText, "tagName mismatch");
    EXPECT_EQ(document.errorLine, 2);
}

TEST_F(XMLDocumentFiles, LargeStreamedWriteEqualsStringWrite) {
    XMLDocument document;
    document.doctype = "d";
    document.root = new XMLElement("root");
    for (int i = 0; i < 20000; ++i) {
        auto *child = new XMLElement("file");
        child->setAttribute("file_name", "src/file" + std::to_string(i) + ".c");
        document.root->appendChild(child);
    }
    std::string expected;
    document.write(expected, 2, 75);
    ASSERT_GT(expected.size(), 256u * 1024u * 2u);
    ASSERT_TRUE(document.save(path("big.xml").c_str(), 2, 75));
    EXPECT_EQ(readFile("big.xml"), expected);
}

TEST(XMLDocument, TakeRootDetachesTheTree) {
    XMLDocument document;
    ASSERT_TRUE(document.parse("<a><b/></a>"));
    XMLElement *tree = document.takeRoot();
    EXPECT_EQ(document.root, nullptr);
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(tree->tagName, "a");
    delete tree;
}
