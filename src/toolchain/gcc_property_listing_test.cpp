// The rows that the GNU toolchains list for C, C++, assembly and header
// nodes and for a link: per language, hosted and for a target, and with the
// options of a generic option file.

#include "toolchain/arm/arm_project_system.h"
#include "toolchain/gcc_host_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include <set>

#include <gtest/gtest.h>

namespace {

using Names = std::set<std::string>;
using Append = void (ProjectSystem::*)(ProjectElement *, const std::string &, ProjectSystem::PropertyClassList &);

template <class System>
Names listed(Toolchain<System> &toolchain, Append append, ProjectElement *element = nullptr) {
    ProjectSystem::PropertyClassList list;
    (toolchain.system.*append)(element ? element : toolchain.source, "Debug", list);
    Names names;
    for (const PropertyClass *property : list)
        names.insert(property->name());
    return names;
}

// The names of `wanted` that `names` holds.
Names present(const Names &names, const Names &wanted) {
    Names result;
    for (const std::string &name : wanted)
        if (names.count(name))
            result.insert(name);
    return result;
}

const Names targetCode = {"gcc_wchar_size", "gcc_short_enum", "gcc_signed_char", "arm_use_builtins",
                          "arm_math_errno", "arm_instrument_functions", "arm_unwind_tables"};
const Names targetCpp = {"gcc_enable_coroutines", "gcc_enable_modules", "gcc_use_cxa_at_exit",
                         "gcc_thread_safe_statics"};
const Names targetLink = {"gcc_entry_point", "link_time_optimization", "arm_linker_no_enum_size_warning",
                          "arm_linker_no_wchar_size_warning", "arm_generate_linker_script",
                          "arm_library_check_memory_segment_overflow", "arm_library_check_memory_section_overflow",
                          "arm_linker_script_generator_default_fill_pattern", "arm_additional_ldplan_options",
                          "keep_linker_script_file", "arm_linker_symbols_files", "linker_print_memory_usage"};
// Rows that every toolchain lists in the four lists.
const Names driverRows = {"gcc_prefix", "gcc_target", "use_clang_not_gcc", "clang_multi_lib_config",
                          "clang_gcc_toolchain"};

// The hosted tools leave out the rows of a target, and keep what they read.
TEST(GccListing, TheHostedToolsLeaveOutTheRowsOfATarget) {
    Toolchain<GCCHostProjectSystem> host;
    Toolchain<ARMProjectSystem> arm;
    Names allCpp = targetCode;
    allCpp.insert(targetCpp.begin(), targetCpp.end());
    Names hosted = driverRows;
    hosted.insert({"build_debug_information", "build_treat_warnings_as_errors"});
    const Append link = &ProjectSystem::appendLinkerProperties, cpp = &ProjectSystem::appendCppProperties;
    for (Append append : {&ProjectSystem::appendCProperties, cpp, &ProjectSystem::appendAssemblerProperties, link}) {
        const Names target = append == link ? targetLink : append == cpp ? allCpp : targetCode;
        const Names onHost = listed(host, append, append == link ? host.project : host.source);
        EXPECT_EQ(present(onHost, target), Names{});
        EXPECT_EQ(present(onHost, hosted), hosted);
        EXPECT_EQ(present(listed(arm, append, append == link ? arm.project : arm.source), target), target);
    }
}

TEST(GccListing, AHeaderListsItsPrecompiledHeaderRowInAProjectThatHasThem) {
    Toolchain<GCCHostProjectSystem> plain;
    EXPECT_EQ(listed(plain, &ProjectSystem::appendSourceFileProperties, plain.header), Names{});
    Toolchain<GCCHostProjectSystem> precompiled("gcc_enable_precompiled_header=\"Yes\"");
    EXPECT_EQ(listed(precompiled, &ProjectSystem::appendSourceFileProperties, precompiled.header),
              Names{"gcc_precompiled_header"});
    // The whole listing of the header: the row and the analysis switch.
    Names names;
    for (const auto &value : precompiled.system.toolPropertyValues(precompiled.header, "Debug"))
        names.insert(value->name());
    EXPECT_EQ(present(names, {"gcc_precompiled_header", "analyze_headers", "gcc_optimization_level"}),
              (Names{"gcc_precompiled_header", "analyze_headers"}));
}

TEST(GccListing, TheOptionsOfTheGenericFileShowWithTheirTool) {
    Toolchain<GCCHostProjectSystem> host("project_type=\"Executable\" build_generic_options_file_name=\"opts.xml\"");
    host.directory.write("opts.xml", R"xml(<options>
  <property tool="compiler" name="g_all" type="StringList" option="W"/>
  <property tool="c_compiler" name="g_c" type="StringList" option="W"/>
  <property tool="cpp_compiler" name="g_cpp" type="StringList" option="W"/>
  <property tool="assembler" name="g_asm" type="StringList" option="W"/>
  <property tool="linker" name="g_link" type="StringList" option="Wl,"/>
</options>)xml");
    const Names generic = {"g_all", "g_c", "g_cpp", "g_asm", "g_link"};
    const auto listing = [&](ProjectElement *element) {
        Names names;
        for (const auto &value : host.system.toolPropertyValues(element, "Debug"))
            names.insert(value->name());
        return present(names, generic);
    };
    EXPECT_EQ(listing(host.system.addFile(host.project, "c.c")), (Names{"g_all", "g_c"}));
    EXPECT_EQ(listing(host.source), (Names{"g_all", "g_cpp"}));
    EXPECT_EQ(listing(host.system.addFile(host.project, "a.s")), Names{"g_asm"});
    EXPECT_EQ(listing(host.header), Names{});
    EXPECT_EQ(listing(host.project), generic);
}

}  // namespace
