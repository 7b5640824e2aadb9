#include "environment/config_file.h"

#include "environment/system_macros.h"
#include "environment/user_environment.h"
#include "project/xml/qxml_document.h"
#include "support/test_directory.h"
#include "support/trace.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

// An installation in a scratch directory, whose bin/config.xml a test writes,
// and the trace sent to a file there.
struct Configuration : ::testing::Test {
    TestDirectory scratch;
    UserEnvironment user{"/home/a", std::nullopt};
    SystemMacros macros;
    ConfigFile config{macros};
    std::string install = scratch / "inst";
    std::string traceFile = scratch / "trace.txt";

    Configuration() { setTraceDestination(traceFile.c_str()); }
    ~Configuration() override { setTraceDestination(nullptr); }

    void load(const std::string &body) {
        scratch.write("inst/bin/config.xml", "<?xml version=\"1.0\"?>\n<configuration>\n" + body +
                                                 "</configuration>\n");
        config.load(install);
    }
    std::string traced() const { return TestDirectory::read(traceFile); }
};

// The value of a lone element with these attributes.
std::string valueOf(const std::string &value, const char *expand = nullptr) {
    XMLElement element("setting");
    element.setAttribute("value", value);
    if (expand)
        element.setAttribute("expand", expand);
    return configurationValue(element, "/inst");
}

}  // namespace

TEST(ConfigurationValue, TheThreeKnownNames) {
    UserEnvironment user("/home/a", std::nullopt);
    EXPECT_EQ(valueOf("$(StudioDir)/x"), "/inst/x");
    EXPECT_EQ(valueOf("$(UserHomeDir)"), "/home/a");
    EXPECT_EQ(valueOf("[$(UserDataDir)]$(StudioDir)"), "[/home/a/.local/share]/inst");
}

TEST(ConfigurationValue, OtherNamesGiveNothing) {
    UserEnvironment user("/home/a", std::nullopt);
    EXPECT_EQ(valueOf("$(Unknown)/a"), "/a");
    EXPECT_EQ(valueOf("$(studiodir)/a"), "/a");
    EXPECT_EQ(valueOf("$(HostOS)$()"), "");
    EXPECT_EQ(valueOf("$$(StudioDir)"), "$/inst");
    EXPECT_EQ(valueOf("no references"), "no references");
    EXPECT_EQ(valueOf(""), "");
}

TEST(ConfigurationValue, AnUnclosedReferenceEndsTheReplacing) {
    UserEnvironment user("/home/a", std::nullopt);
    EXPECT_EQ(valueOf("a$(StudioDir)b$(UserHomeDir c"), "a/instb$(UserHomeDir c");
    EXPECT_EQ(valueOf("$(x$(StudioDir)"), "");
}

TEST(ConfigurationValue, ExpandNoInAnyCase) {
    EXPECT_EQ(valueOf("$(StudioDir)", "NO"), "$(StudioDir)");
    EXPECT_EQ(valueOf("$(StudioDir)", "no"), "$(StudioDir)");
    EXPECT_EQ(valueOf("$(StudioDir)", "No"), "$(StudioDir)");
    EXPECT_EQ(valueOf("$(StudioDir)", "yes"), "/inst");
    EXPECT_EQ(valueOf("$(StudioDir)", "none"), "/inst");
}

TEST(ConfigurationValue, AReplacementIsNotSearchedAgain) {
    UserEnvironment user("/home/$(UserHomeDir)", std::nullopt);
    EXPECT_EQ(valueOf("$(UserHomeDir)!"), "/home/$(UserHomeDir)!");
}

TEST_F(Configuration, SettingsInDocumentOrder) {
    load("  <setting name=\"a\" value=\"1\"/>\n"
         "  <group><setting name=\"b\" value=\"$(StudioDir)/b\"/></group>\n"
         "  <setting name=\"a\" value=\"2\"/>\n"
         "  <setting value=\"nameless\"/>\n"
         "  <setting name=\"\" value=\"empty name\"/>\n"
         "  <setting name=\"kept\" value=\"$(StudioDir)\" expand=\"NO\"/>\n"
         "  <setting name=\"c\"/>\n");
    EXPECT_EQ(config.setting("a", "x"), "2");
    EXPECT_EQ(config.setting("b", "x"), install + "/b");
    EXPECT_EQ(config.setting("kept", "x"), "$(StudioDir)");
    EXPECT_EQ(config.setting("c", "x"), "");
    EXPECT_EQ(config.setting("", "x"), "x");
    EXPECT_EQ(config.setting("missing", "fallback"), "fallback");
    EXPECT_EQ(traced(), "");
}

TEST_F(Configuration, DeeplyNestedElements) {
    const int depth = 100000;
    std::string body;
    for (int i = 0; i < depth; ++i)
        body += "<g>";
    body += "<setting name=\"deep\" value=\"$(StudioDir)\"/>";
    for (int i = 0; i < depth; ++i)
        body += "</g>";
    load(body + "\n<setting name=\"after\" value=\"1\"/>\n");
    EXPECT_EQ(config.setting("deep", "x"), install);
    EXPECT_EQ(config.setting("after", "x"), "1");
}

TEST_F(Configuration, SystemMacrosWithoutDescription) {
    const size_t described = macros.macroDescriptions().size();
    load("<system-macro name=\"ToolRoot\" value=\"$(StudioDir)/tools\"/>\n"
         "<system-macro name=\"HostOS\" value=\"other\"/>\n"
         "<system-macro value=\"x\"/>\n");
    EXPECT_EQ(macros.systemMacros().at("ToolRoot"), install + "/tools");
    EXPECT_EQ(macros.systemMacros().at("HostOS"), "other");
    EXPECT_EQ(macros.macroDescriptions().size(), described);
    EXPECT_EQ(config.setting("ToolRoot", "none"), "none");
}

TEST_F(Configuration, EnvironmentVariables) {
    ScopedVariable set("QUILLMAKE_CONFIG_TEST_SET", "old");
    ScopedVariable empty("QUILLMAKE_CONFIG_TEST_EMPTY", "old");
    ScopedVariable made("QUILLMAKE_CONFIG_TEST_MADE", std::nullopt);
    load("<environment-variable name=\"QUILLMAKE_CONFIG_TEST_SET\" value=\"$(UserHomeDir)/x\"/>\n"
         "<environment-variable name=\"QUILLMAKE_CONFIG_TEST_EMPTY\" value=\"\"/>\n"
         "<environment-variable name=\"QUILLMAKE_CONFIG_TEST_MADE\" value=\"new\"/>\n");
    EXPECT_STREQ(std::getenv("QUILLMAKE_CONFIG_TEST_SET"), "/home/a/x");
    EXPECT_STREQ(std::getenv("QUILLMAKE_CONFIG_TEST_EMPTY"), "");
    EXPECT_STREQ(std::getenv("QUILLMAKE_CONFIG_TEST_MADE"), "new");
}

TEST_F(Configuration, TheDocumentIsKept) {
    load("<environment-setting name=\"Environment/Package/Destination Directory\" value=\"/p\"/>\n");
    const XMLElement *root = config.document().root;
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->tagName, "configuration");
    const XMLElement *setting = root->firstChild ? root->firstChild->toElement() : nullptr;
    ASSERT_NE(setting, nullptr);
    EXPECT_EQ(setting->tagName, "environment-setting");
    EXPECT_EQ(*setting->attribute("value"), "/p");
}

TEST_F(Configuration, TheFileIsPreProcessed) {
    scratch.write("inst/bin/local.xml", "<group>\n  <setting name=\"included\" value=\"$(StudioDir)/i\"/>\n</group>\n");
    load("  <define_macro name=\"Kind\" value=\"full\"/>\n"
         "  <if Kind=\"full\"><setting name=\"a\" value=\"full\"/></if>\n"
         "  <ifnot Kind=\"full\"><setting name=\"a\" value=\"lite\"/></ifnot>\n"
         "  <include filename=\"local.xml\" no_root=\"\"/>\n"
         "  <setting name=\"b\" value=\"$(Kind)\" expand_attributes=\"value\"/>\n");
    EXPECT_EQ(config.setting("a", "x"), "full");
    EXPECT_EQ(config.setting("included", "x"), install + "/i");
    EXPECT_EQ(config.setting("b", "x"), "full");
    EXPECT_EQ(traced(), "");
}

TEST_F(Configuration, AMissingFileIsNoError) {
    config.load(install);
    EXPECT_EQ(config.document().root, nullptr);
    EXPECT_EQ(config.setting("a", "x"), "x");
    EXPECT_EQ(traced(), "");
}

TEST_F(Configuration, ReadOnce) {
    config.load(install);
    load("<setting name=\"a\" value=\"1\"/>\n");
    EXPECT_EQ(config.setting("a", "x"), "x");
}

TEST_F(Configuration, BadXMLIsTracedAndTheRunGoesOn) {
    load("<setting name=\"a\" value=\"1\">\n</group>\n");
    EXPECT_EQ(traced(), "error: cannot load configuration file - tagName mismatch line: 4 column: 0\n");
    EXPECT_EQ(config.setting("a", "x"), "x");
}

TEST_F(Configuration, AnUnreadableFileIsTraced) {
    scratch.write("inst/bin/config.xml/inside");
    config.load(install);
    EXPECT_EQ(traced(), "error: cannot load configuration file - couldn't read " + install + "/bin/config.xml\n");
}

TEST_F(Configuration, TraceOffSaysNothing) {
    const unsigned flags = traceFlags;
    traceFlags &= ~TraceErrors;
    load("</bad>");
    traceFlags = flags;
    EXPECT_EQ(traced(), "");
}

TEST(ConfigFileInstance, OneStorePerProcess) {
    SystemMacros first;
    SystemMacros second;
    ConfigFile &store = ConfigFile::instance(first);
    EXPECT_EQ(&ConfigFile::instance(second), &store);
}

TEST(ShippedConfiguration, ReadsCleanly) {
    TestDirectory scratch;
    const std::string traceFile = scratch / "trace.txt";
    setTraceDestination(traceFile.c_str());
    scratch.write("inst/bin/config.xml", TestDirectory::read(QUILLMAKE_SHIPPED_CONFIG));
    SystemMacros macros;
    ConfigFile config(macros);
    config.load(scratch / "inst");
    setTraceDestination(nullptr);
    EXPECT_EQ(TestDirectory::read(traceFile), "");
    ASSERT_NE(config.document().root, nullptr);
    EXPECT_EQ(config.setting("root-user-dir", "unset"), "");
}
