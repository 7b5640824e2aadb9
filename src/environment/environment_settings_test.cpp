#include "environment/environment_settings.h"

#include "project/xml/xml_document.h"
#include "support/test_directory.h"
#include "support/trace.h"

#include <gtest/gtest.h>

TEST(EnvironmentSettings, TheConfigurationAndWritesThrough) {
    TestDirectory dir;
    const auto file = [](const std::string &entries) {
        return "<!DOCTYPE Veldane_Settings_File>\n<settings>\n" + entries + "</settings>\n";
    };
    dir.write("v5/settings.xml", file("  <setting name=\"Opaque\">&lt;kept&gt;</setting>\n"));
    XMLDocument config;
    ASSERT_TRUE(config.parse(
        "<c><environment-setting name=\"Environment/Build/Building Threads\" value=\"2\" default-value=\"4\"/>"
        "<g><environment-setting name=\"Mine/Count\" type=\"integer\" page=\"Mine\" minimum-value=\"1\" "
        "maximum-value=\"9\" default-value=\"7x\" suffix=\"s\"/></g>"
        "<environment-setting name=\"Mine/Flag\" type=\"boolean\" page=\"(Internal)\"/>"
        "<environment-setting name=\"Mine/Colour\" type=\"colour\" page=\"Mine\"/></c>"));
    setTraceDestination((dir / "trace").c_str());
    {
        ARMTarnbenchEnvironmentSettings settings(dir.path(), dir / "v5");
        settings.applyConfiguration(config.root);
        setTraceDestination(nullptr);
        EnvironmentPropertyValue *threads = settings.settingByName("Environment/Build/Building Threads");
        EXPECT_EQ(threads->string(), "2");
        threads->setString("4");  // the default leaves the file
        const EnvironmentSettingClass &count = settings.settingByName("Mine/Count")->propertyClass();
        EXPECT_EQ(count.type, EnvironmentSettingType::IntegerRange);
        EXPECT_EQ(count.defaultValue + count.suffix + std::to_string(count.minimum) + std::to_string(count.maximum),
                  "0s19");
        EXPECT_EQ(settings.pages().at("Mine").size(), 1u);
        EXPECT_EQ(settings.settingByName("Mine/Flag"), nullptr);
        settings.packageDestinationDirectory->setString("/p");
        settings.packageDestinationDirectory->setString("$(StudioUserDir)/packages");
    }
    EXPECT_EQ(TestDirectory::read(dir / "trace"), "error: unknown environment setting type: colour\n");
    EXPECT_EQ(TestDirectory::read(dir / "settings.xml"), file(""));
    EXPECT_EQ(TestDirectory::read(dir / "v5/settings.xml"),
              file("  <setting name=\"Opaque\">&lt;kept&gt;</setting>\n"));
}
