#include "environment/config_file.h"

#include "environment/system_macros.h"
#include "environment/user_environment.h"
#include "project/xml/qxml_document.h"
#include "support/test_directory.h"
#include "support/trace.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace {

// An installation in a scratch directory, whose bin/config.xml a test writes,
// and the trace sent to a file there.
struct Configuration : ::testing::Test {
    TestDirectory scratch;
    UserEnvironment user{"/home/a", std::nullopt};
    SystemMacros macros;
    std::string install = scratch / "inst";
    std::string traceFile = scratch / "trace.txt";

    Configuration() { setTraceDestination(traceFile.c_str()); }
    ~Configuration() override { setTraceDestination(nullptr); }

    // A configuration read from a file with the body given.
    std::unique_ptr<ConfigFile> load(const std::string &body) {
        scratch.write("inst/bin/config.xml", "<?xml version='1.0'?>\n<configuration>\n" + body + "</configuration>\n");
        auto config = std::make_unique<ConfigFile>(macros);
        config->load(install);
        return config;
    }
    std::string traced() const { return TestDirectory::read(traceFile); }
};

} // namespace

TEST(ConfigurationValue, KnownNamesOnlyAndEachOnce) {
    // A home directory that holds a reference: a replacement isn't searched again.
    UserEnvironment user("/home/$(UserHomeDir)", std::nullopt);
    const struct {
        const char *value, *expand, *expected;
    } cases[] = {
        {"$(StudioDir)/x", nullptr, "/inst/x"}, {"$(UserHomeDir)!", nullptr, "/home/$(UserHomeDir)!"},
        {"[$(UserDataDir)]$(StudioDir)", nullptr, "[/home/$(UserHomeDir)/.local/share]/inst"},
        // Other names give nothing; the names are case sensitive.
        {"$(Unknown)/a", nullptr, "/a"}, {"$(studiodir)/a", nullptr, "/a"}, {"$(HostOS)$()", nullptr, ""},
        {"$$(StudioDir)", nullptr, "$/inst"}, {"no references", nullptr, "no references"}, {"", nullptr, ""},
        // An unclosed reference ends the replacing.
        {"a$(StudioDir)b$(UserHomeDir c", nullptr, "a/instb$(UserHomeDir c"}, {"$(x$(StudioDir)", nullptr, ""},
        // expand="no" in any case keeps the text.
        {"$(StudioDir)", "nO", "$(StudioDir)"}, {"$(StudioDir)", "yes", "/inst"}, {"$(StudioDir)", "none", "/inst"},
    };
    for (const auto &c : cases) {
        XMLElement element("setting");
        element.setAttribute("value", c.value);
        if (c.expand)
            element.setAttribute("expand", c.expand);
        EXPECT_EQ(configurationValue(element, "/inst"), c.expected) << c.value << " " << (c.expand ? c.expand : "");
    }
}

TEST_F(Configuration, SettingsSystemMacrosAndEnvironmentVariables) {
    scratch.write("inst/bin/local.xml", "<group>\n  <setting name=\"included\" value=\"$(StudioDir)/i\"/>\n</group>\n");
    ScopedVariable set("QUILLMAKE_CONFIG_TEST_SET", "old");
    ScopedVariable empty("QUILLMAKE_CONFIG_TEST_EMPTY", "old");
    ScopedVariable made("QUILLMAKE_CONFIG_TEST_MADE", std::nullopt);
    const size_t described = macros.macroDescriptions().size();
    const auto config = load("  <setting name=\"a\" value=\"1\"/>\n"
                             "  <group><setting name=\"b\" value=\"$(StudioDir)/b\"/></group>\n"
                             "  <setting name=\"a\" value=\"2\"/>\n"
                             "  <setting value=\"nameless\"/>\n"
                             "  <setting name=\"\" value=\"empty name\"/>\n"
                             "  <setting name=\"kept\" value=\"$(StudioDir)\" expand=\"NO\"/>\n"
                             "  <setting name=\"c\"/>\n"
                             // The file is pre-processed.
                             "  <define_macro name=\"Kind\" value=\"full\"/>\n"
                             "  <if Kind=\"full\"><setting name=\"d\" value=\"full\"/></if>\n"
                             "  <ifnot Kind=\"full\"><setting name=\"d\" value=\"lite\"/></ifnot>\n"
                             "  <include filename=\"local.xml\" no_root=\"\"/>\n"
                             "  <setting name=\"e\" value=\"$(Kind)\" expand_attributes=\"value\"/>\n"
                             "<system-macro name=\"ToolRoot\" value=\"$(StudioDir)/tools\"/>\n"
                             "<system-macro name=\"HostOS\" value=\"other\"/>\n"
                             "<system-macro value=\"x\"/>\n"
                             "<environment-variable name=\"QUILLMAKE_CONFIG_TEST_SET\" value=\"$(UserHomeDir)/x\"/>\n"
                             "<environment-variable name=\"QUILLMAKE_CONFIG_TEST_EMPTY\" value=\"\"/>\n"
                             "<environment-variable name=\"QUILLMAKE_CONFIG_TEST_MADE\" value=\"new\"/>\n"
                             "<environment-setting name='Environment/Package/Destination Directory' value='/p'/>\n");
    const std::pair<const char *, std::string> settings[] = {
        {"a", "2"},  {"b", install + "/b"}, {"kept", "$(StudioDir)"}, {"c", ""},    {"", "x"},
        {"d", "full"}, {"included", install + "/i"}, {"e", "full"}, {"missing", "x"}, {"ToolRoot", "x"},
    };
    for (const auto &[name, value] : settings)
        EXPECT_EQ(config->setting(name, "x"), value) << name;
    EXPECT_EQ(macros.systemMacros().at("ToolRoot"), install + "/tools");
    EXPECT_EQ(macros.systemMacros().at("HostOS"), "other");
    EXPECT_EQ(macros.macroDescriptions().size(), described);
    EXPECT_STREQ(std::getenv("QUILLMAKE_CONFIG_TEST_SET"), "/home/a/x");
    EXPECT_STREQ(std::getenv("QUILLMAKE_CONFIG_TEST_EMPTY"), "");
    EXPECT_STREQ(std::getenv("QUILLMAKE_CONFIG_TEST_MADE"), "new");
    // The document is kept for the environment settings.
    EXPECT_EQ(*config->document().root->lastChild->toElement()->attribute("value"), "/p");
    EXPECT_EQ(traced(), "");
}

TEST_F(Configuration, DeeplyNestedElements) {
    std::string open, close;
    for (int i = 0; i < 100000; ++i) {
        open += "<g>";
        close += "</g>";
    }
    const auto config = load(open + "<setting name=\"deep\" value=\"$(StudioDir)\"/>" + close +
                             "\n<setting name=\"after\" value=\"1\"/>\n");
    EXPECT_EQ(config->setting("deep", "x"), install);
    EXPECT_EQ(config->setting("after", "x"), "1");
}

TEST_F(Configuration, FailuresAreTracedAndTheRunGoesOn) {
    // A missing file is no error, and the file is read once only.
    ConfigFile config(macros);
    config.load(install);
    EXPECT_EQ(config.document().root, nullptr);
    load("<setting name=\"a\" value=\"1\"/>\n");
    config.load(install);
    EXPECT_EQ(config.setting("a", "x"), "x");
    EXPECT_EQ(traced(), "");

    EXPECT_EQ(load("<setting name=\"a\" value=\"1\">\n</group>\n")->setting("a", "x"), "x");
    EXPECT_EQ(traced(), "error: cannot load configuration file - tagName mismatch line: 4 column: 0\n");

    const unsigned flags = traceFlags;
    traceFlags &= ~TraceErrors;
    load("</bad>");
    traceFlags = flags;
    EXPECT_EQ(traced(), "error: cannot load configuration file - tagName mismatch line: 4 column: 0\n");

    std::remove((install + "/bin/config.xml").c_str());
    scratch.write("inst/bin/config.xml/inside");
    ConfigFile(macros).load(install);
    EXPECT_EQ(traced(), "error: cannot load configuration file - tagName mismatch line: 4 column: 0\n"
                        "error: cannot load configuration file - couldn't read " + install + "/bin/config.xml\n");
}

TEST_F(Configuration, OneStorePerProcessAndTheShippedFileReadsCleanly) {
    SystemMacros other;
    EXPECT_EQ(&ConfigFile::instance(macros), &ConfigFile::instance(other));
    scratch.write("inst/bin/config.xml", TestDirectory::read(QUILLMAKE_SHIPPED_CONFIG));
    ConfigFile shipped(macros);
    shipped.load(install);
    EXPECT_EQ(traced(), "");
    ASSERT_NE(shipped.document().root, nullptr);
    EXPECT_EQ(shipped.setting("root-user-dir", "unset"), "");
}
