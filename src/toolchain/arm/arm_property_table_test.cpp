#include "toolchain/arm/arm_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include <gtest/gtest.h>

namespace {

// A solution with values of the ARM, Ost and target connection rows, written
// as a save writes it.
const std::string head = "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\" target=\"8\" version=\"2\">\n"
                         "  <configuration Name=\"Debug\" />\n  <project Name=\"P\">\n    <configuration\n"
                         "      Name=\"Common\"\n";
// A save writes the attributes in name order.
const std::string values = "      arm_compiler_variant=\"Brenlow\"\n"
                           "      arm_core_type=\"Cortex-M4\"\n"
                           "      arm_fpu_type=\"FPv4-SP-D16\"\n"
                           "      arm_linker_gap_fill=\"0xff\"\n"
                           "      arm_linker_jtag_pad_pre_ir=\"4\"\n"
                           "      arm_linker_stack_size=\"2048\"\n"
                           "      gdb_server_port=\"3333\"\n"
                           "      link_align_rx=\"64\"\n"
                           "      project_type=\"Executable\"\n"
                           "      target_reset_script=\"Reset()\"";
const std::string tail = " />\n    <file file_name=\"a.c\" />\n    <file file_name=\"b.s\" />\n"
                         "    <file file_name=\"c.c\">\n"
                         "      <configuration Name=\"Common\" use_external_gcc=\"Yes\" />\n"
                         "    </file>\n  </project>\n  <project Name=\"L\">\n"
                         "    <configuration Name=\"Common\" project_type=\"Library\" />\n  </project>\n</solution>\n";

struct Solution {
    Solution() {
        system.loadSolution(directory.write("s.tbp", head + values + tail));
        project = system.findProject(system.solution, "P");
    }
    std::optional<std::string> value(ProjectElement *element, const std::string &name) {
        return system.getPropertyValue(element, system.propertyClasses.propertyClass(name), "Debug");
    }
    TestDirectory directory;
    SystemMacros macros;
    ARMProjectSystem system{&macros};
    ProjectElement *project = nullptr;
};

TEST(ARMPropertyTable, ValuesLoadAndSaveBackExactly) {
    Solution s;
    for (const auto &[name, expected] : std::vector<std::pair<std::string, std::string>>{
             {"arm_core_type", "Cortex-M4"},   {"arm_linker_stack_size", "2048"},
             {"arm_linker_gap_fill", "0xff"},   {"arm_compiler_variant", "Brenlow"},
             {"gdb_server_port", "3333"},       {"arm_linker_jtag_pad_pre_ir", "4"},
             {"target_reset_script", "Reset()"}, {"link_align_rx", "64"}})
        EXPECT_EQ(s.value(s.project, name), expected) << name;
    // The debugger's copies show the value of their row; the name in the map
    // still means the row itself.
    for (PropertyClass *copy : s.system.armProperties.debugCopies) {
        EXPECT_NE(s.system.propertyClasses.propertyClass(copy->name()), copy) << copy->name();
        EXPECT_EQ(s.system.getPropertyValue(s.project, copy, "Debug"), s.value(s.project, copy->name()));
    }
    EXPECT_EQ(s.system.getPropertyValue(s.project, s.system.armProperties.debugCopies[2], "Debug"), "Cortex-M4");

    ASSERT_TRUE(s.system.saveSolution(s.system.solution, false));
    EXPECT_EQ(TestDirectory::read(s.directory / "s.tbp"), head + values + tail);

    // A value set through a copy is the row's one value.
    s.system.setPropertyValue(s.project, s.system.armProperties.debugCopies[3], "Common", "Big");
    s.system.setPropertyValue(s.project, s.system.propertyClasses.propertyClass("gdb_server_hostname"), "Common",
                              "probe");
    ASSERT_TRUE(s.system.saveSolution(s.system.solution, false));
    std::string saved = head + values + tail;
    saved.insert(saved.find("      arm_fpu_type"), "      arm_endian=\"Big\"\n");
    saved.insert(saved.find("      gdb_server_port"), "      gdb_server_hostname=\"probe\"\n");
    EXPECT_EQ(TestDirectory::read(s.directory / "s.tbp"), saved);
}

TEST(ARMPropertyTable, DefaultsOfANewProject) {
    Solution s;
    ProjectElement *library = s.system.findProject(s.system.solution, "L");
    for (const auto &[name, expected] : std::vector<std::pair<std::string, std::optional<std::string>>>{
             {"arm_instruction_set", "ARM"},      {"arm_architecture", "v4T"},
             {"arm_linker_stack_size", "1024"},   {"arm_linker_heap_size", "1024"},
             {"arm_linker_irq_stack_size", "256"}, {"arm_linker_fiq_stack_size", "256"},
             {"arm_linker_svc_stack_size", "0"},  {"arm_linker_abt_stack_size", "0"},
             {"arm_linker_und_stack_size", "0"},  {"arm_linker_process_stack_size", "0"},
             {"arm_linker_variant", "GNU"},       {"arm_compiler_variant", "gcc"},
             {"arm_num_interrupt_priority_bits", "0"}, {"arm_linker_gap_fill", std::nullopt},
             {"arm_library_architecture", "Default"}, {"clang_gnu_version", "Auto"},
             {"link_pad_zi", "No"},               {"link_align_ro", "None"},
             {"gdb_server_port", "2331"},         {"target_reset_script", " TargetInterface.resetAndStop(1)"},
             {"gdb_server_read_timeout", "60"},   {"arm_linker_jtag_pad_post_dr", "0"}})
        EXPECT_EQ(s.value(library, name), expected) << name;
}

// "name page/group" of the rows of a listing whose names are wanted.
std::set<std::string> placed(const PropertyValueList &list, const std::set<std::string> &wanted) {
    std::set<std::string> rows;
    for (const auto &row : list)
        if (wanted.count(row->name()))
            rows.insert(row->name() + " " + std::string(row->propertyClass->page()) + "/" + std::string(row->propertyClass->group()));
    return rows;
}

TEST(ARMPropertyTable, EachNodeListsTheRowsOfItsSteps) {
    Solution s;
    const std::set<std::string> wanted = {
        "arm_core_type",        "arm_tls_model",         "arm_compiler_variant",    "arm_preprocess_assembly_code",
        "use_external_gcc",     "gcc_prefix",            "gcc_target",              "arm_linker_stack_size",
        "gdb_server_port",      "arm_library_optimization", "linker_keep_indirect_files", "arm_has_vector_catch",
        "link_pad_ro"};
    const std::string codeGeneration = " Code/Code Generation", debugger = " Debug/Debugger";
    const auto listed = [&](ProjectElement *element) {
        return placed(s.system.toolPropertyValues(element, "Debug"), wanted);
    };
    const std::set<std::string> compile = {"arm_core_type" + codeGeneration, "use_external_gcc Code/Build",
                                           "gcc_target Code/Build"};
    std::set<std::string> c = compile, assembly = compile;
    c.insert({"arm_tls_model" + codeGeneration, "arm_compiler_variant Code/Compiler"});
    assembly.insert("arm_preprocess_assembly_code Code/Assembler");
    // With an external driver, the rows that choose its programs count.
    std::set<std::string> external = c;
    external.insert("gcc_prefix Code/Build");
    EXPECT_EQ(listed(s.system.findFileByPath(s.project, "a.c")), c);
    EXPECT_EQ(listed(s.system.findFileByPath(s.project, "b.s")), assembly);
    EXPECT_EQ(listed(s.system.findFileByPath(s.project, "c.c")), external);

    std::set<std::string> executable = c;
    executable.insert({"arm_preprocess_assembly_code Code/Assembler",
                       "arm_linker_stack_size Code/Runtime Memory Area", "arm_library_optimization Code/Library",
                       "linker_keep_indirect_files Code/Linker", "link_pad_ro Code/Linker",
                       "arm_core_type" + debugger, "arm_has_vector_catch" + debugger,
                       "gdb_server_port Debug/GDB Server"});
    EXPECT_EQ(listed(s.project), executable);

    std::set<std::string> library = c;
    library.insert({"arm_preprocess_assembly_code Code/Assembler",
                    "arm_library_optimization Code/Library", "linker_keep_indirect_files Code/Linker"});
    EXPECT_EQ(listed(s.system.findProject(s.system.solution, "L")), library);
}

}  // namespace
