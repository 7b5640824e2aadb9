// The option pairs of the GCC rows: each option a row stands for is the one
// that the compile command passes for that value.

#include "project/project_property_class.h"
#include "toolchain/gcc_host_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include <gtest/gtest.h>

namespace {

using Host = Toolchain<GCCHostProjectSystem>;

TEST(GccTable, EachOptionPairIsWhatTheCompilePasses) {
    Host host("is_cpp_project=\"Yes\" gcc_debugging_level=\"None\"");
    GCCHostProjectSystem &system = host.system;
    const GCCProperties &gcc = system.gccProperties;
    const std::string dir = host.directory.path();
    std::size_t checked = 0;
    for (PropertyClass *row :
         {static_cast<PropertyClass *>(gcc.optimizationLevel), gcc.omitFramePointer, gcc.noCommon, gcc.wcharSize,
          gcc.shortEnum, gcc.signedChar, gcc.useBuiltins, gcc.mathErrno, gcc.strictAliasing, gcc.tlsModel,
          gcc.fastMath, gcc.diagnosticsShowCaret, gcc.colorDiagnostics, gcc.cplusplusLanguageStandard}) {
        const auto *project = dynamic_cast<ProjectPropertyClass *>(row);
        ASSERT_NE(project, nullptr) << row->name();
        EXPECT_FALSE(project->options().empty()) << row->name();
        for (const auto &[option, value] : project->options()) {
            system.setPropertyValue(host.source, row, "Common", value);
            CommandBuilder builder;
            system.buildStep(host.source, "Debug", 3, "obj/m.o", dir + "/obj/m.o", {dir + "/m.cpp"}, &builder, 0);
            ASSERT_EQ(builder.lines.size(), 3u);
            EXPECT_NE(builder.lines[1].find(" " + option + " "), std::string::npos)
                << row->name() << "=" << value << ": " << builder.lines[1];
            ++checked;
        }
        system.clearPropertyValue(host.source, row, "Common");
    }
    EXPECT_GT(checked, 40u);
}

TEST(GccTable, OptionPairsOfTheRowsThatTheDebugAndLinkListsRead) {
    Host host;
    const GCCProperties &gcc = host.system.gccProperties;
    auto optionFor = [](PropertyClass *row, const std::string &value) {
        return static_cast<ProjectPropertyClass *>(row)->optionFor(value);
    };
    EXPECT_EQ(optionFor(gcc.debuggingLevel, "Level 3"), "-g3");
    EXPECT_EQ(optionFor(gcc.dwarfVersion, "dwarf-4"), "-gdwarf-4");
    EXPECT_EQ(optionFor(gcc.unwindTables, "Asynchronous"), "-fasynchronous-unwind-tables");
    EXPECT_EQ(optionFor(gcc.unwindTables, "No"), "");
    EXPECT_EQ(optionFor(gcc.emitRelocations, "Yes"), "-Wl,--emit-relocs");
    EXPECT_EQ(optionFor(gcc.cLanguageStandard, "gnu11"), "-std=gnu11");
    EXPECT_EQ(optionFor(gcc.cLanguageStandard, "None"), "");
}

}  // namespace
