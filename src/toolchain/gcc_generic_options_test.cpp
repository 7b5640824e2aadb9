// The flags of generic option files on driver compile commands, their rows
// in the listing, and the shipped warning options file.

#include "toolchain/gcc_host_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include <algorithm>
#include <cstdlib>
#include <map>

#include <gtest/gtest.h>

namespace {

// The host toolchain with the generic option flags in reach.
class Host : public GCCHostProjectSystem {
public:
    using GCCHostProjectSystem::GCCHostProjectSystem;
    using GCCProjectSystem::appendGenericOptions;

    // The flags of the tools' lists, one after the other.
    StringList flags(ProjectElement *element, std::initializer_list<GenericOptionSet::Tool> tools,
                     const std::string &filter = "") {
        StringList list;
        for (GenericOptionSet::Tool tool : tools)
            appendGenericOptions(element, "Debug", tool, filter, list);
        return list;
    }
};

// A project whose build_generic_options_file_name names opts.xml beside it.
struct OwnFile : Toolchain<Host> {
    explicit OwnFile(const std::string &options) : Toolchain<Host>("build_generic_options_file_name=\"opts.xml\"") {
        directory.write("opts.xml", "<options>\n" + options + "\n</options>\n");
    }
    // Sets an option of the file, which is known once the file is active.
    void set(const char *name, const std::string &value) {
        system.loadGenericOptions(project, "Debug");
        PropertyClass *property = system.propertyClasses.propertyClass(name);
        ASSERT_NE(property, nullptr) << name;
        system.setPropertyValue(project, property, "Common", value);
    }
};

const char *const kinds = R"xml(
  <property tool="compiler" name="g_pairs" type="Enumeration" append="=$(ProjectName)">
    <option value="Both" option="-Wa;;-Wb"/>
    <option value="None" option=""/>
  </property>
  <property tool="compiler" name="g_brackets" type="Enumeration" enumeration="Off;On (fstack-protector)"/>
  <property tool="compiler" name="g_prefix" type="Enumeration" option="-include" values="first.h;second.h"/>
  <property tool="compiler" name="g_option2" type="Enumeration" option2="-std=" values="c99;c11"/>
  <property tool="compiler" name="g_defines" type="String" option="D"/>
  <property tool="compiler" name="g_list" type="StringList" option="W"/>
  <property tool="compiler" name="g_limit" type="Integer" option="Wstack-usage="/>
  <property tool="compiler" name="g_nameless" type="String"/>
  <property tool="compiler" name="g_clang" type="Enumeration" variant="clang"><option value="Yes" option="-Wclang"/></property>)xml";

TEST(GenericOptionFlags, EachKindOfPropertyGivesItsFlags) {
    OwnFile own(kinds);
    // Nothing set: the enumerations have no value and the rest no text.
    EXPECT_EQ(own.system.flags(own.source, {GenericOptionSet::Compiler}), StringList{});
    const struct {
        std::map<const char *, std::string> values;
        const char *filter;
        StringList flags;
    } cases[] = {
        {{{"g_pairs", "Both"}, {"g_brackets", "On (fstack-protector)"}, {"g_prefix", "second.h"}, {"g_option2", "c11"},
          {"g_defines", "A=1 \"B=two words\" $(ProjectName)"}, {"g_list", "shadow;;undef;$(ProjectName)"},
          {"g_limit", "512"}, {"g_nameless", "ignored"}, {"g_clang", "Yes"}},
         "clang",
         {"-Wa=P", "-Wb=P", "-fstack-protector", "-include", "second.h", "-std=c11", "-DA=1", "-DB=two words", "-DP",
          "-Wshadow", "-Wundef", "-WP", "-Wstack-usage=512", "-Wclang"}},
        // A value that no pair has, the pairs without an option, and empty
        // texts give nothing; a filter passes over the options of another
        // variant.
        {{{"g_pairs", "Neither"}, {"g_brackets", "Off"}, {"g_prefix", "third.h"}, {"g_option2", "None"},
          {"g_defines", ""}, {"g_list", ""}, {"g_limit", ""}},
         "gcc", {}},
    };
    for (const auto &c : cases) {
        for (const auto &[name, value] : c.values)
            own.set(name, value);
        EXPECT_EQ(own.system.flags(own.source, {GenericOptionSet::Compiler}, c.filter), c.flags);
    }
}

TEST(GenericOptionFlags, TheRowsShowWithTheirTool) {
    OwnFile own(R"xml(
  <property tool="compiler" name="g_all" type="StringList" option="W"/>
  <property tool="c_compiler" name="g_c" type="StringList" option="W"/>
  <property tool="cpp_compiler" name="g_cpp" type="StringList" option="W"/>
  <property tool="assembler" name="g_asm" type="StringList" option="W"/>
  <property tool="linker" name="g_link" type="StringList" option="Wl,"/>)xml");
    const Names generic = {"g_all", "g_c", "g_cpp", "g_asm", "g_link"};
    const auto listing = [&](ProjectElement *element) {
        return among(own.system.toolPropertyValues(element, "Debug"), generic);
    };
    EXPECT_EQ(listing(own.system.addFile(own.project, "c.c")), (Names{"g_all", "g_c"}));
    EXPECT_EQ(listing(own.source), (Names{"g_all", "g_cpp"}));
    EXPECT_EQ(listing(own.system.addFile(own.project, "a.s")), Names{"g_asm"});
    EXPECT_EQ(listing(own.header), Names{});
    EXPECT_EQ(listing(own.project), generic);
}

// Whether gcc takes the flags on an empty source of the language with
// -Werror; what it says shows in the test's output.
bool gccAccepts(const std::string &language, const StringList &flags) {
    std::string command = "gcc -x" + language + " -fsyntax-only -Werror";
    for (const std::string &flag : flags)
        command += " '" + flag + "'";
    return std::system((command + " /dev/null").c_str()) == 0;
}

TEST(ShippedWarningOptions, DefaultsPassNothingAndGccKnowsEveryFlag) {
    Toolchain<Host> host(std::string("build_generic_options_file_name=\"") + QUILLMAKE_SHIPPED_WARNING_OPTIONS + "\"");
    Host &system = host.system;
    using Set = GenericOptionSet;
    EXPECT_EQ(system.flags(host.source, {Set::Compiler, Set::CCompiler, Set::CppCompiler}), StringList{});

    // Round n gives each enumeration its n-th value and every other property
    // a text: each round's flags must be known to gcc for the language.
    ASSERT_NE(system.activeGenericOptions(), nullptr);
    const auto &properties = system.activeGenericOptions()->properties();
    std::size_t rounds = 0;
    for (const auto &property : properties)
        rounds = std::max(rounds, property->options().size());
    for (std::size_t round = 0; round < rounds; ++round) {
        for (const auto &property : properties) {
            const auto &options = property->options();
            if (property->type() == PropertyClass::Enumeration)
                system.setPropertyValue(host.project, property.get(), "Common",
                                        options[std::min(round, options.size() - 1)].first);
            else
                system.setPropertyValue(host.project, property.get(), "Common",
                                        property->type() == PropertyClass::Integer ? "4096" : "missing-include-dirs");
        }
        const StringList cFlags = system.flags(host.source, {Set::Compiler, Set::CCompiler});
        EXPECT_FALSE(cFlags.empty());
        EXPECT_TRUE(gccAccepts("c", cFlags)) << "round " << round;
        EXPECT_TRUE(gccAccepts("c++", system.flags(host.source, {Set::Compiler, Set::CppCompiler}))) << "round " << round;
    }
}

}  // namespace
