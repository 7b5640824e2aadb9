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

// The inputs as arguments, or quoted as the lines of a response file.
std::string joined(const StringList &inputs, const std::string &quote = "") {
    std::string line;
    for (const std::string &input : inputs)
        line += " " + quote + input + quote;
    return line;
}

const std::string noGroup = "project_type=\"Executable\" is_cpp_project=\"No\" build_debug_information=\"No\" "
                            "linker_requires_start_group=\"No\" ";

TEST(HostLink, CommandsOfALinkOfObjM) {
    const struct {
        std::string configuration;
        Lines lines;
    } cases[] = {
        {"project_type=\"Executable\" is_cpp_project=\"Yes\" build_quietly=\"No\" cpp_enable_exceptions=\"No\" "
         "cpp_enable_rtti=\"Yes\" arm_linker_no_start_files=\"Yes\" link_include_standard_libraries=\"No\" "
         "gcc_signed_char=\"No\" link_time_optimization=\"Yes\" arm_linker_treat_warnings_as_errors=\"Yes\" "
         "arm_linker_no_warn_on_mismatch=\"Yes\" arm_linker_emit_relocations=\"Yes\" "
         "arm_linker_symbols_files=\"syms.elf\" gcc_entry_point=\"start\" link_symbol_definitions=\"A=1;B=2\" "
         "linker_keep_symbols=\"keep1;keep2\" build_remove_unused_symbols=\"No\" "
         "arm_linker_search_path=\"/usr/local/lib;lib\" linker_map_file=\"Yes\" linker_requires_start_group=\"No\" "
         "linker_additional_options=\"-Wl,-z,now &quot;-Wl,-rpath,/a b&quot;\" "
         "linker_additional_system_libraries=\"m pthread\" use_clang_not_gcc=\"Yes\" gcc_target=\"x86_64-linux-gnu\"",
         {"begin Linking 'P'",
          "command @ | clang++ --target=x86_64-linux-gnu -fno-exceptions -frtti -v -g -nostartfiles -nodefaultlibs "
          "-fno-signed-char -flto -Wl,--fatal-warnings -Wl,--no-warn-mismatch -Wl,--emit-relocs "
          "-Wl,--just-symbols=syms.elf -Wl,-estart -Wl,--defsym=A=1 -Wl,--defsym=B=2 -Wl,-ukeep1 -Wl,-ukeep2 "
          "-Wl,--no-gc-sections -L/usr/local/lib -Llib -Wl,-Map,out/P.map obj/m.o -Wl,-z,now -Wl,-rpath,/a b "
          "-o out/P -lm -lpthread | @/out/P",
          "end"}},
        // A response file that is not kept is deleted after the link.
        {noGroup + "linker_use_indirect_files=\"Yes\" linker_keep_indirect_files=\"No\" "
                   "linker_indirect_file_name=\"link/files.txt\"",
         {"begin Linking 'P'", "write @/link/files.txt | \"obj/m.o\"", "command @ | gcc @link/files.txt -o out/P | @/out/P",
          "delete @/link/files.txt", "end"}},
        // The commands after the link, in their order.
        {noGroup + "linker_breakpad_symbols_directory=\"syms\" "
                   "linker_patch_build_command=\"patcher $(RelTargetPath) $(TargetPath)\" "
                   "linker_patch_build_command_wd=\"tools\" gcc_strip_symbols=\"Yes\" "
                   "linker_strip_debug_information=\"Yes\" linker_output_format=\"hex\"",
         {"begin Linking 'P'", "command @ | gcc obj/m.o -o out/P | @/out/P",
          "command @ | /studio/bin/symplan -extract-symbols-to-dir out/P syms | ",
          "command @/tools | patcher out/P @/out/P | @/out/P", "command @ | strip out/P | @/out/P",
          "command @ | strip -S out/P -o out/P | @/out/P", "command @ | objcopy out/P out/P.hex -Oihex | @/out/P.hex",
          "end"}},
        {noGroup + "linker_generate_breakpad_symbols=\"No\" linker_breakpad_symbols_directory=\"syms\" "
                   "linker_output_format=\"bin\"",
         {"begin Linking 'P'", "command @ | gcc obj/m.o -o out/P | @/out/P",
          "command @ | objcopy out/P out/P.bin -Obinary | @/out/P.bin", "end"}},
        // A program of the machine itself has no memory segments to report on.
        {noGroup + "linker_print_memory_usage=\"Yes\"",
         {"begin Linking 'P'", "command @ | gcc obj/m.o -o out/P | @/out/P", "end"}},
    };
    for (const auto &c : cases) {
        Host host(c.configuration);
        EXPECT_EQ(host.step(host.project, 7, "out/P", {"obj/m.o"}), c.lines) << c.configuration;
    }
}

TEST(HostLink, OneHundredInputsGoThroughAResponseFileUnderAuto) {
    Host host(noGroup + "arm_linker_whole_archive=\"libwhole.a\"");
    StringList inputs = objects(99);
    inputs.push_back("/lib/libwhole.a");
    EXPECT_EQ(host.step(host.project, 7, "out/P", inputs),
              (Lines{"begin Linking 'P'",
                     "write @/obj/P.ind |" + joined(objects(99), "\"") +
                         " -Wl,--whole-archive \"/lib/libwhole.a\" -Wl,--no-whole-archive",
                     "command @ | gcc @obj/P.ind -o out/P | @/out/P", "end"}));
    // Kept by default, so a clean finds it once it is there.
    host.directory.write("obj/P.ind", "");
    StringList kept;
    host.system.appendIntermediateFiles(host.project, "Debug", 7, host.directory / "out/P", kept);
    EXPECT_EQ(kept, (StringList{host.directory / "obj/P.ind"}));
}

TEST(HostArchive, RemovesTheOldArchiveThenArchivesAndIndexes) {
    Host host("project_type=\"Library\"");
    // Ninety-nine inputs are arguments, one hundred go through a file.
    EXPECT_EQ(host.step(host.project, 8, "out/P.a", objects(99))[2],
              "command @ | ar -rcs out/P.a" + joined(objects(99)) + " | @/out/P.a");
    EXPECT_EQ(host.step(host.project, 8, "out/P.a", objects(100)),
              (Lines{"begin Archiving 'P.a'", "delete @/out/P.a", "write @/obj/P.ind |" + joined(objects(100), "\""),
                     "command @ | ar -rcs out/P.a @obj/P.ind | @/out/P.a", "command @ | ranlib out/P.a | @/out/P.a",
                     "end"}));
    // "No" passes every input as an argument however many there are.
    Host never("project_type=\"Library\" linker_use_indirect_files=\"No\"");
    EXPECT_EQ(never.step(never.project, 8, "out/P.a", objects(500)).size(), 5u);
}

TEST(HostLink, ImportsTheOptionsOfAnExistingLinkCommand) {
    Host host("project_type=\"Executable\" link_symbol_definitions=\"OLD=0\"");
    GCCHostProjectSystem &system = host.system;
    const auto values = [&](std::vector<const char *> names) {
        std::string text;
        for (const char *name : names)
            text += std::string(text.empty() ? "" : " ") + name + "=" +
                    system.getPropertyValue(host.project, system.propertyClasses.propertyClass(name), "Debug")
                        .value_or("(none)");
        return text;
    };
    StringList options{"-T", "app.ld", "-L/opt/lib", "-L", "lib", "-Wl,-Map,app.map", "-Wl,--defsym=STACK=0x400",
                       "-Xlinker", "--gc-sections", "-e_start", "--gcc-toolchain=\"/opt/gnu\"", "-lm", "-O2"};
    system.importLinkerOption(host.project, "Debug", options);
    EXPECT_EQ(options, (StringList{"-Xlinker", "--gc-sections", "-lm", "-O2"}));
    EXPECT_EQ(values({"link_use_linker_script_file", "link_linker_script_file", "arm_linker_search_path",
                      "linker_map_file", "linker_map_file_name", "link_symbol_definitions", "gcc_entry_point",
                      "clang_gcc_toolchain"}),
              "link_use_linker_script_file=Yes link_linker_script_file=app.ld arm_linker_search_path=/opt/lib;lib "
              "linker_map_file=Yes linker_map_file_name=app.map link_symbol_definitions=OLD=0;STACK=0x400 "
              "gcc_entry_point=_start clang_gcc_toolchain=/opt/gnu");

    StringList scripted{"-Xlinker", "--script=other.ld", "-Wl,-Map=x.map", "--target=aarch64-linux-gnu"};
    system.importLinkerOption(host.project, "Debug", scripted);
    EXPECT_TRUE(scripted.empty());
    EXPECT_EQ(values({"link_linker_script_file", "linker_map_file_name", "gcc_target"}),
              "link_linker_script_file=other.ld linker_map_file_name=x.map gcc_target=aarch64-linux-gnu");
}

}  // namespace
