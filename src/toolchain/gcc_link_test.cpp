// The link and archive commands of the driver form, their response files
// and the commands that follow a link.

#include "toolchain/gcc_host_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include <gtest/gtest.h>

namespace {

using Host = Toolchain<GCCHostProjectSystem>;

StringList objects(std::size_t count) {
    StringList list;
    for (std::size_t i = 0; i < count; ++i)
        list.push_back("obj/o" + std::to_string(i) + ".o");
    return list;
}

TEST(HostLink, PlainCProgram) {
    Host host("project_type=\"Executable\" is_cpp_project=\"No\" build_debug_information=\"No\"");
    CommandBuilder builder;
    const std::string dir = host.directory.path();
    host.system.buildStep(host.project, "Debug", 7, "out/P", dir + "/out/P", {"obj/m.o", "/lib/libx.a"}, &builder, 0);
    EXPECT_EQ(builder.lines, (std::vector<std::string>{
                                 "begin Linking 'P'",
                                 "gcc -Wl,--start-group obj/m.o /lib/libx.a -Wl,--end-group -o out/P => " + dir + "/out/P",
                                 "end",
                             }));
}

TEST(HostLink, EveryOptionInItsOrder) {
    Host host("project_type=\"Executable\" is_cpp_project=\"Yes\" build_quietly=\"No\" "
              "cpp_enable_exceptions=\"No\" cpp_enable_rtti=\"Yes\" arm_linker_no_start_files=\"Yes\" "
              "link_include_standard_libraries=\"No\" gcc_signed_char=\"No\" link_time_optimization=\"Yes\" "
              "arm_linker_treat_warnings_as_errors=\"Yes\" arm_linker_no_warn_on_mismatch=\"Yes\" "
              "arm_linker_emit_relocations=\"Yes\" arm_linker_symbols_files=\"syms.elf\" gcc_entry_point=\"start\" "
              "link_symbol_definitions=\"A=1;B=2\" linker_keep_symbols=\"keep1;keep2\" "
              "build_remove_unused_symbols=\"No\" arm_linker_search_path=\"/usr/local/lib;lib\" "
              "linker_map_file=\"Yes\" linker_requires_start_group=\"No\" "
              "linker_additional_options=\"-Wl,-z,now &quot;-Wl,-rpath,/a b&quot;\" "
              "linker_additional_system_libraries=\"m pthread\" use_clang_not_gcc=\"Yes\" gcc_target=\"x86_64-linux-gnu\"");
    CommandBuilder builder;
    const std::string dir = host.directory.path();
    host.system.buildStep(host.project, "Debug", 7, "out/P", dir + "/out/P", {"obj/m.o"}, &builder, 0);
    ASSERT_EQ(builder.lines.size(), 3u);
    EXPECT_EQ(builder.lines[1],
              "clang++ --target=x86_64-linux-gnu -fno-exceptions -frtti -v -g -nostartfiles -nodefaultlibs "
              "-fno-signed-char -flto -Wl,--fatal-warnings -Wl,--no-warn-mismatch -Wl,--emit-relocs "
              "-Wl,--just-symbols=syms.elf -Wl,-estart -Wl,--defsym=A=1 -Wl,--defsym=B=2 -Wl,-ukeep1 -Wl,-ukeep2 "
              "-Wl,--no-gc-sections -L/usr/local/lib -Llib -Wl,-Map,out/P.map obj/m.o -Wl,-z,now -Wl,-rpath,/a b "
              "-o out/P -lm -lpthread => " + dir + "/out/P");
}

TEST(HostLink, DefaultsOfTheSolutionAddNoEntryNorSymbols) {
    // gcc_entry_point "None" and the defaults of the symbol lists add nothing.
    Host host("project_type=\"Executable\" is_cpp_project=\"No\" build_debug_information=\"No\" linker_requires_start_group=\"No\"");
    CommandBuilder builder;
    host.system.buildStep(host.project, "Debug", 7, "out/P", "/x/out/P", {"obj/m.o"}, &builder, 0);
    EXPECT_EQ(builder.lines[1], "gcc obj/m.o -o out/P => /x/out/P");
}

TEST(HostLink, ResponseFileFromOneHundredInputsUnderAuto) {
    Host host("project_type=\"Executable\" is_cpp_project=\"No\" build_debug_information=\"No\" linker_requires_start_group=\"No\" "
              "arm_linker_whole_archive=\"libwhole.a\"");
    const std::string dir = host.directory.path();
    CommandBuilder asArguments;
    host.system.buildStep(host.project, "Debug", 7, "out/P", dir + "/out/P", objects(99), &asArguments, 0);
    EXPECT_EQ(asArguments.lines[1].find("@"), std::string::npos);
    EXPECT_TRUE(asArguments.files.empty());

    CommandBuilder throughFile;
    StringList inputs = objects(99);
    inputs.push_back("/lib/libwhole.a");
    host.system.buildStep(host.project, "Debug", 7, "out/P", dir + "/out/P", inputs, &throughFile, 0);
    EXPECT_EQ(throughFile.lines, (std::vector<std::string>{
                                     "begin Linking 'P'",
                                     "write " + dir + "/obj/P.ind",
                                     "gcc @obj/P.ind -o out/P => " + dir + "/out/P",
                                     "end",
                                 }));
    ASSERT_EQ(throughFile.files.size(), 1u);
    const std::vector<std::string> &lines = throughFile.files[0];
    ASSERT_EQ(lines.size(), 102u);
    EXPECT_EQ(lines[0], "\"obj/o0.o\"");
    EXPECT_EQ(lines[98], "\"obj/o98.o\"");
    EXPECT_EQ(lines[99], "-Wl,--whole-archive");
    EXPECT_EQ(lines[100], "\"/lib/libwhole.a\"");
    EXPECT_EQ(lines[101], "-Wl,--no-whole-archive");
}

TEST(HostLink, AResponseFileThatIsNotKeptIsDeletedAfterTheLink) {
    Host host("project_type=\"Executable\" is_cpp_project=\"No\" build_debug_information=\"No\" linker_requires_start_group=\"No\" "
              "linker_use_indirect_files=\"Yes\" linker_keep_indirect_files=\"No\" "
              "linker_indirect_file_name=\"link/files.txt\"");
    const std::string dir = host.directory.path();
    CommandBuilder builder;
    host.system.buildStep(host.project, "Debug", 7, "out/P", dir + "/out/P", {"obj/m.o"}, &builder, 0);
    EXPECT_EQ(builder.lines, (std::vector<std::string>{
                                 "begin Linking 'P'",
                                 "write " + dir + "/link/files.txt",
                                 "gcc @link/files.txt -o out/P => " + dir + "/out/P",
                                 "delete quietly " + dir + "/link/files.txt",
                                 "end",
                             }));
}

TEST(HostLink, CommandsAfterTheLinkInTheirOrder) {
    Host host("project_type=\"Executable\" is_cpp_project=\"No\" build_debug_information=\"No\" linker_requires_start_group=\"No\" "
              "linker_breakpad_symbols_directory=\"syms\" "
              "linker_patch_build_command=\"patcher $(RelTargetPath) $(TargetPath)\" "
              "linker_patch_build_command_wd=\"tools\" gcc_strip_symbols=\"Yes\" "
              "linker_strip_debug_information=\"Yes\" linker_output_format=\"hex\"");
    const std::string dir = host.directory.path();
    CommandBuilder builder;
    host.system.buildStep(host.project, "Debug", 7, "out/P", dir + "/out/P", {"obj/m.o"}, &builder, 0);
    EXPECT_EQ(builder.lines, (std::vector<std::string>{
                                 "begin Linking 'P'",
                                 "gcc obj/m.o -o out/P => " + dir + "/out/P",
                                 "/studio/bin/symplan -extract-symbols-to-dir out/P syms => ",
                                 "patcher out/P " + dir + "/out/P => " + dir + "/out/P",
                                 "strip out/P => " + dir + "/out/P",
                                 "strip -S out/P -o out/P => " + dir + "/out/P",
                                 "objcopy out/P out/P.hex -Oihex => " + dir + "/out/P.hex",
                                 "end",
                             }));

    Host binary("project_type=\"Executable\" is_cpp_project=\"No\" build_debug_information=\"No\" linker_requires_start_group=\"No\" "
                "linker_generate_breakpad_symbols=\"No\" linker_breakpad_symbols_directory=\"syms\" "
                "linker_output_format=\"bin\"");
    CommandBuilder other;
    binary.system.buildStep(binary.project, "Debug", 7, "out/P.elf", "/x/out/P.elf", {"m.o"}, &other, 0);
    EXPECT_EQ(other.lines[2], "objcopy out/P.elf out/P.bin -Obinary => /x/out/P.bin");
    EXPECT_EQ(other.lines.size(), 4u);
}

TEST(HostLink, MemoryUsageIsNotPrintedYetAndSaysSo) {
    Host host("project_type=\"Executable\" linker_print_memory_usage=\"Yes\"");
    CommandBuilder builder;
    host.system.buildStep(host.project, "Debug", 7, "out/P", "/x/out/P", {"obj/m.o"}, &builder, 0);
    EXPECT_EQ(builder.lines, (std::vector<std::string>{
                                 "begin Linking 'P'",
                                 "error printing the memory usage of a link is not available yet",
                                 "end",
                             }));
}

TEST(HostArchive, RemovesTheOldArchiveThenArchivesAndIndexes) {
    Host host("project_type=\"Library\"");
    const std::string dir = host.directory.path();
    CommandBuilder builder;
    host.system.buildStep(host.project, "Debug", 8, "out/P.a", dir + "/out/P.a", objects(2), &builder, 0);
    EXPECT_EQ(builder.lines, (std::vector<std::string>{
                                 "begin Archiving 'P.a'",
                                 "delete quietly " + dir + "/out/P.a",
                                 "ar -rcs out/P.a obj/o0.o obj/o1.o => " + dir + "/out/P.a",
                                 "ranlib out/P.a => " + dir + "/out/P.a",
                                 "end",
                             }));
}

TEST(HostArchive, NinetyNineInputsAreArgumentsAndOneHundredGoThroughAFile) {
    Host host("project_type=\"Library\"");
    const std::string dir = host.directory.path();
    CommandBuilder few;
    host.system.buildStep(host.project, "Debug", 8, "out/P.a", dir + "/out/P.a", objects(99), &few, 0);
    EXPECT_TRUE(few.files.empty());
    EXPECT_NE(few.lines[2].find("obj/o98.o => "), std::string::npos);

    CommandBuilder many;
    host.system.buildStep(host.project, "Debug", 8, "out/P.a", dir + "/out/P.a", objects(100), &many, 0);
    EXPECT_EQ(many.lines[2], "write " + dir + "/obj/P.ind");
    EXPECT_EQ(many.lines[3], "ar -rcs out/P.a @obj/P.ind => " + dir + "/out/P.a");
    ASSERT_EQ(many.files.size(), 1u);
    EXPECT_EQ(many.files[0].size(), 100u);

    // "No" passes every input as an argument however many there are.
    Host never("project_type=\"Library\" linker_use_indirect_files=\"No\"");
    CommandBuilder all;
    never.system.buildStep(never.project, "Debug", 8, "out/P.a", dir + "/out/P.a", objects(500), &all, 0);
    EXPECT_TRUE(all.files.empty());
}

TEST(HostLink, CleanFindsTheKeptResponseFile) {
    Host host("project_type=\"Executable\"");
    const std::string dir = host.directory.path();
    StringList list;
    host.system.appendIntermediateFiles(host.project, "Debug", 7, dir + "/out/P", list);
    EXPECT_TRUE(list.empty());
    host.directory.write("obj/P.ind", "\"m.o\"\n");
    host.system.appendIntermediateFiles(host.project, "Debug", 7, dir + "/out/P", list);
    EXPECT_EQ(list, (StringList{dir + "/obj/P.ind"}));
}

TEST(HostLink, ImportsTheOptionsOfAnExistingLinkCommand) {
    Host host("project_type=\"Executable\" link_symbol_definitions=\"OLD=0\"");
    GCCHostProjectSystem &system = host.system;
    StringList options{"-T", "app.ld", "-L/opt/lib", "-L", "lib", "-Wl,-Map,app.map", "-Wl,--defsym=STACK=0x400",
                       "-Xlinker", "--gc-sections", "-e_start", "--gcc-toolchain=\"/opt/gnu\"", "-lm", "-O2"};
    system.importLinkerOption(host.project, "Debug", options);
    EXPECT_EQ(options, (StringList{"-Xlinker", "--gc-sections", "-lm", "-O2"}));
    auto value = [&](const char *name) {
        return system.getPropertyValue(host.project, system.propertyClasses.propertyClass(name), "Debug")
            .value_or("(none)");
    };
    EXPECT_EQ(value("link_use_linker_script_file"), "Yes");
    EXPECT_EQ(value("link_linker_script_file"), "app.ld");
    EXPECT_EQ(value("arm_linker_search_path"), "/opt/lib;lib");
    EXPECT_EQ(value("linker_map_file"), "Yes");
    EXPECT_EQ(value("linker_map_file_name"), "app.map");
    EXPECT_EQ(value("link_symbol_definitions"), "OLD=0;STACK=0x400");
    EXPECT_EQ(value("gcc_entry_point"), "_start");
    EXPECT_EQ(value("clang_gcc_toolchain"), "/opt/gnu");

    StringList scripted{"-Xlinker", "--script=other.ld", "-Wl,-Map=x.map", "--target=aarch64-linux-gnu"};
    system.importLinkerOption(host.project, "Debug", scripted);
    EXPECT_TRUE(scripted.empty());
    EXPECT_EQ(value("link_linker_script_file"), "other.ld");
    EXPECT_EQ(value("linker_map_file_name"), "x.map");
    EXPECT_EQ(value("gcc_target"), "aarch64-linux-gnu");
}

}  // namespace
