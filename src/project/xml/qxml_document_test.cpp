#include "project/xml/qxml_document.h"

#include <gtest/gtest.h>

#include "support/test_directory.h"

#include <string>

namespace {

class QXMLDocumentFiles : public ::testing::Test {
protected:
    // Writes a file and returns the doctype read from it.
    std::string doctypeOf(const std::string &content) {
        return QXMLDocument::readDoctypeOfFile(
            directory_.write("f" + std::to_string(count_++), content));
    }

    TestDirectory directory_;
    int count_ = 0;
};

} // namespace

TEST_F(QXMLDocumentFiles, ReadDoctypeOfFile) {
    EXPECT_EQ(doctypeOf("<!DOCTYPE Tarnbench_Project_File>\n<solution/>"),
              "Tarnbench_Project_File");
    EXPECT_EQ(doctypeOf("\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<!-- a <!DOCTYPE x> -->\n"
                        "<?other ?>\n<!DOCTYPE  Veldane_Settings_File >"),
              "Veldane_Settings_File");
    EXPECT_EQ(doctypeOf("<!DOCTYPE\nProject_Templates_File\n>"), "Project_Templates_File");
    EXPECT_EQ(doctypeOf("<solution/>\n<!DOCTYPE Tarnbench_Project_File>"), "");
    EXPECT_EQ(doctypeOf("<!ELEMENT x>\n<!DOCTYPE Tarnbench_Project_File>"), "");
    EXPECT_EQ(doctypeOf("<!DOCTYPE x [ <!ENTITY y \"z\"> ]>"), "");
    EXPECT_EQ(doctypeOf("<!DOCTYPEx>"), "");
    EXPECT_EQ(doctypeOf("<!-- unterminated <!DOCTYPE x>"), "");
    EXPECT_EQ(doctypeOf("<?xml version=\"1.0\""), "");
    EXPECT_EQ(doctypeOf("<!DOCTYPE x"), "");
    EXPECT_EQ(doctypeOf(""), "");
    EXPECT_EQ(doctypeOf(std::string(100000, ' ') + "<!-- " + std::string(100000, '-') +
                        " -->\n<!DOCTYPE far>"),
              "far");
    EXPECT_EQ(QXMLDocument::readDoctypeOfFile(directory_ / "missing"), "");
}

TEST_F(QXMLDocumentFiles, LoadAndSaveByStringName) {
    QXMLDocument document;
    const std::string name = directory_ / "a.xml";
    EXPECT_FALSE(document.load(name));
    EXPECT_EQ(document.errorText, "couldn't read " + name);
    ASSERT_TRUE(document.parse("<a x=\"1\"/>"));
    ASSERT_TRUE(document.save(name, 2, 75));
    QXMLDocument back;
    ASSERT_TRUE(back.load(name));
    EXPECT_EQ(*back.root->attribute("x"), "1");
    EXPECT_FALSE(document.save(directory_ / "no/a.xml", 2, 75));
    EXPECT_EQ(document.errorText, "couldn't write " + (directory_ / "no/a.xml"));
}

TEST(QXMLDocument, ElementTextJoinsDataChildrenOnly) {
    QXMLDocument document(true);
    ASSERT_TRUE(document.parse("<a>one <b>no</b>two<!--no--><![CDATA[no]]>\xc3\xa9&amp;</a>"));
    EXPECT_EQ(QXMLDocument::elementText(document.root), "one two\xc3\xa9&");
    EXPECT_EQ(document.elementText(nullptr), "");

    QXMLDocument withoutText;
    ASSERT_TRUE(withoutText.parse("<a>text</a>"));
    EXPECT_EQ(withoutText.elementText(withoutText.root), "");
}
