// The flags of generic option files on driver compile commands, and the
// shipped warning options file.

#include "toolchain/gcc_host_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

#include <gtest/gtest.h>

namespace {

// The host toolchain with the generic option flags in reach.
class Host : public GCCHostProjectSystem {
public:
    using GCCHostProjectSystem::GCCHostProjectSystem;
    using GCCProjectSystem::appendGenericOptions;

    StringList flags(ProjectElement *element, GenericOptionSet::Tool tool, const std::string &filter = "") {
        StringList list;
        appendGenericOptions(element, "Debug", tool, filter, list);
        return list;
    }
};

// A project whose build_generic_options_file_name names opts.xml beside it.
struct OwnFile : Toolchain<Host> {
    explicit OwnFile(const std::string &options, const std::string &configuration = "")
        : Toolchain<Host>("build_generic_options_file_name=\"opts.xml\" " + configuration) {
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
  <property tool="compiler" name="g_nameless" type="String"/>)xml";

TEST(GenericOptionFlags, EachKindOfPropertyGivesItsFlags) {
    OwnFile own(kinds);
    // Nothing set: the enumerations have no value and the rest no text.
    EXPECT_EQ(own.system.flags(own.source, GenericOptionSet::Compiler), StringList{});
    const struct {
        std::map<const char *, std::string> values;
        StringList flags;
    } cases[] = {
        {{{"g_pairs", "Both"}, {"g_brackets", "On (fstack-protector)"}, {"g_prefix", "second.h"}, {"g_option2", "c11"},
          {"g_defines", "A=1 \"B=two words\" $(ProjectName)"}, {"g_list", "shadow;;undef;$(ProjectName)"},
          {"g_limit", "512"}, {"g_nameless", "ignored"}},
         {"-Wa=P", "-Wb=P", "-fstack-protector", "-include", "second.h", "-std=c11", "-DA=1", "-DB=two words", "-DP",
          "-Wshadow", "-Wundef", "-WP", "-Wstack-usage=512"}},
        // A value that no pair has, the pairs without an option, and empty
        // texts give nothing.
        {{{"g_pairs", "Neither"}, {"g_brackets", "Off"}, {"g_prefix", "third.h"}, {"g_option2", "None"},
          {"g_defines", ""}, {"g_list", ""}, {"g_limit", ""}},
         {}},
    };
    for (const auto &c : cases) {
        for (const auto &[name, value] : c.values)
            own.set(name, value);
        EXPECT_EQ(own.system.flags(own.source, GenericOptionSet::Compiler), c.flags);
    }
}

TEST(GenericOptionFlags, AFilterPassesOverTheOptionsOfOtherVariants) {
    OwnFile own(R"xml(
  <property tool="c_compiler" name="g_any" type="Enumeration"><option value="Yes" option="-Wany"/></property>
  <property tool="c_compiler" name="g_gcc" type="Enumeration" variant="gcc"><option value="Yes" option="-Wgcc"/></property>
  <property tool="c_compiler" name="g_clang" type="Enumeration" variant="clang"><option value="Yes" option="-Wclang"/></property>)xml");
    for (const char *name : {"g_any", "g_gcc", "g_clang"})
        own.set(name, "Yes");
    EXPECT_EQ(own.system.flags(own.source, GenericOptionSet::CCompiler), (StringList{"-Wany", "-Wgcc", "-Wclang"}));
    EXPECT_EQ(own.system.flags(own.source, GenericOptionSet::CCompiler, "clang"), (StringList{"-Wany", "-Wclang"}));
}

TEST(GenericOptionFlags, TheDriverCompilePassesTheCompilerListThenTheLanguagesOwn) {
    OwnFile own(R"xml(
  <property tool="compiler" name="g_all" type="StringList" option="W"/>
  <property tool="c_compiler" name="g_c" type="StringList" option="W"/>
  <property tool="cpp_compiler" name="g_cpp" type="StringList" option="W"/>
  <property tool="assembler" name="g_asm" type="StringList" option="W"/>
  <property tool="linker" name="g_link" type="StringList" option="Wl,"/>)xml",
                "build_generate_dependency_file=\"No\" c_additional_options=\"-pipe\"");
    own.set("g_all", "all-of-them");
    own.set("g_c", "c-only");
    own.set("g_cpp", "cpp-only");
    own.set("g_asm", "asm-only");
    own.set("g_link", "--link-only");
    const std::string common = "-c -fmessage-length=0 -ffunction-sections -fdata-sections ";
    EXPECT_EQ(own.step(own.source, 3, "obj/m.o", {own.directory / "m.cpp"})[1],
              "command @ | g++ -xc++ " + common + "-Wall-of-them -Wcpp-only -pipe -g @/m.cpp -o obj/m.o | @/obj/m.o");
    EXPECT_EQ(own.step(own.system.addFile(own.project, "c.c"), 2, "obj/c.o", {own.directory / "c.c"})[1],
              "command @ | gcc -xc " + common + "-Wall-of-them -Wc-only -pipe -g @/c.c -o obj/c.o | @/obj/c.o");
    // The driver's assembly compile takes no generic options.
    EXPECT_EQ(own.step(own.system.addFile(own.project, "a.s"), 4, "obj/a.o", {own.directory / "a.s"})[1],
              "command @ | gcc -xassembler-with-cpp " + common + "-g @/a.s -o obj/a.o | @/obj/a.o");
}

// Runs gcc on an empty source of the language with the flags and -Werror;
// the empty text when it succeeds, else what gcc said.
std::string gccComplaint(const std::string &language, const StringList &flags) {
    std::string command = "gcc -x" + language + " -fsyntax-only -Werror";
    for (const std::string &flag : flags)
        command += " '" + flag + "'";
    command += " /dev/null 2>&1";
    std::string output;
    FILE *pipe = ::popen(command.c_str(), "r");
    if (!pipe)
        return "can't run " + command;
    char buffer[512];
    while (std::fgets(buffer, sizeof buffer, pipe))
        output += buffer;
    if (::pclose(pipe) != 0 && output.empty())
        output = "failed: " + command;
    return output;
}

TEST(ShippedWarningOptions, DefaultsPassNothingAndGccKnowsEveryFlag) {
    Toolchain<Host> host(std::string("build_generic_options_file_name=\"") + QUILLMAKE_SHIPPED_WARNING_OPTIONS + "\"");
    Host &system = host.system;
    const auto languageFlags = [&](GenericOptionSet::Tool language) {
        StringList list = system.flags(host.source, GenericOptionSet::Compiler);
        const StringList own = system.flags(host.source, language);
        list.insert(list.end(), own.begin(), own.end());
        return list;
    };
    EXPECT_EQ(languageFlags(GenericOptionSet::CCompiler), StringList{});
    EXPECT_EQ(languageFlags(GenericOptionSet::CppCompiler), StringList{});

    const GenericOptionSet *set = system.activeGenericOptions();
    ASSERT_NE(set, nullptr);
    for (auto tool : {GenericOptionSet::Compiler, GenericOptionSet::CCompiler, GenericOptionSet::CppCompiler})
        EXPECT_FALSE(set->toolProperties(tool).empty()) << tool;
    // The driver reads no assembler or linker list.
    EXPECT_TRUE(set->toolProperties(GenericOptionSet::Assembler).empty());
    EXPECT_TRUE(set->toolProperties(GenericOptionSet::Linker).empty());

    // Round n gives each enumeration its n-th value and every other property
    // a text: each round's flags must be known to gcc for the language.
    std::size_t rounds = 0;
    std::set<std::string> names;
    for (const auto &property : set->properties()) {
        EXPECT_TRUE(names.insert(property->name()).second) << property->name();
        if (property->type() == PropertyClass::Enumeration) {
            EXPECT_EQ(property->defaultValue(), "None") << property->name();
            rounds = std::max(rounds, property->options().size());
        } else {
            EXPECT_EQ(property->defaultValue(), std::nullopt) << property->name();
        }
    }
    const std::map<PropertyClass::Type, std::string> texts = {{PropertyClass::Integer, "4096"},
                                                              {PropertyClass::StringList, "missing-include-dirs"}};
    for (std::size_t round = 0; round < rounds; ++round) {
        for (const auto &property : set->properties()) {
            const auto &options = property->options();
            if (property->type() == PropertyClass::Enumeration)
                system.setPropertyValue(host.project, property.get(), "Common",
                                        options[std::min(round, options.size() - 1)].first);
            else
                system.setPropertyValue(host.project, property.get(), "Common", texts.at(property->type()));
        }
        const StringList cFlags = languageFlags(GenericOptionSet::CCompiler);
        const StringList cppFlags = languageFlags(GenericOptionSet::CppCompiler);
        EXPECT_FALSE(cFlags.empty());
        EXPECT_EQ(gccComplaint("c", cFlags), "") << "round " << round;
        EXPECT_EQ(gccComplaint("c++", cppFlags), "") << "round " << round;
    }
}

}  // namespace
