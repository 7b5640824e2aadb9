// The ARM toolchain's link: ldplan's generated script, ld and ld.lld run
// by the build itself, the driver's link, the commands after a link, and
// the links that the installation can't run yet.

#include "toolchain/arm/arm_project_system.h"
#include "toolchain/toolchain_test_fixture.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using Arm = Toolchain<ARMProjectSystem>;

const std::string executable = "arm_core_type=\"Cortex-M3\" project_type=\"Executable\" ";
const std::string segments = "linker_section_placements_segments=\"RAM RW 0x20000000 0x10000;FLASH RX 0x0 0x80000\" ";
const std::string bin = "command @ | /studio/gcc/arm-none-eabi/bin/";
const std::string ldplan = "command @ | /studio/bin/ldplan ";
const std::string imagedump = "command @ | /studio/bin/imagedump ";
const std::string lib = "/studio/lib/", ext = "_v7m_t_le_eabi.a";
const std::string symbols = "__vfprintf=__vfprintf_float_long_long;__vfscanf=__vfscanf_long_long;__dso_handle=0";

void touch(const std::string &path, std::time_t seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0) << path;
}

TEST(OstrandLink, CommandsOfTheLinkAndWhatFollowsIt) {
    const struct {
        std::string name, attributes;
        Lines expected;
    } rows[] = {
        {"GNU: segments, relative paths, the C++ runtime, every command after the link",
         executable + segments +
             "arm_supply_absolute_file_path=\"No\" build_quietly=\"No\" gcc_entry_point=\"Reset_Handler\" "
             "arm_linker_treat_warnings_as_errors=\"Yes\" arm_linker_no_warn_on_rwx_segments=\"Yes\" "
             "linker_additional_options=\"--print-gc-sections\" arm_linker_search_path=\"lib\" "
             "link_symbol_definitions=\"A=1\" linker_keep_symbols=\"vectors\" arm_linker_emit_relocations=\"Yes\" "
             "arm_linker_symbols_files=\"rom.elf\" arm_linker_whole_archive=\"libw.a\" "
             "linker_additional_system_libraries=\"gcc\" link_supply_library_linker_symbols=\"No\" "
             "cpp_enable_exceptions=\"Yes\" arm_unwind_tables=\"Yes\" arm_library_check_memory_section_overflow=\"No\" "
             "linker_memory_map_macros=\"X=1\" arm_additional_ldplan_options=\"-v\" keep_linker_script_file=\"No\" "
             "arm_linker_gap_fill=\"0xff\" linker_patch_build_command=\"sign $(RelTargetPath)\" "
             "gcc_strip_symbols=\"Yes\" linker_print_memory_usage=\"Yes\" linker_output_format=\"bin\" "
             "arm_linker_additional_output_file_gap_fill=\"7\" linker_map_file=\"No\"",
         {"begin Generating linker script 'P.ld'",
          ldplan + "-memory-map-segments RAM RW 0x20000000 0x10000;FLASH RX 0x0 0x80000 -check-segment-overflow "
                   "-symbols " + symbols + " -memory-map-macros X=1 @/obj/P.ld -v | @/obj/P.ld",
          "end", "begin Linking 'P.elf'",
          bin + "ld -X --omagic -eReset_Handler -EL -v --fatal-warnings --no-warn-rwx-segments --print-gc-sections "
                "--gc-sections -Llib -Tobj/P.ld --defsym=A=1 --defsym=__vfprintf=__vfprintf_float_long_long "
                "--defsym=__vfscanf=__vfscanf_long_long --defsym=__dso_handle=0 -uvectors -o out/P.elf "
                "--emit-relocs --just-symbols=rom.elf --start-group obj/m.o --whole-archive /opt/libw.a "
                "--no-whole-archive " + lib + "libm" + ext + " " + lib + "libc" + ext + " " + lib + "libprobeio" + ext +
              " " + lib + "libcm" + ext + " " + lib + "libcxxabi" + ext + " " + lib + "libunwind" + ext +
              " --end-group -lgcc | @/out/P.elf",
          "delete @/obj/P.ld", bin + "objcopy out/P.elf out/P.elf --gap-fill 0xff | @/out/P.elf",
          "command @ | sign out/P.elf | @/out/P.elf", bin + "strip out/P.elf | @/out/P.elf",
          imagedump + "out/P.elf -memory-usage FLASH,0x0,0x80000,RAM,0x20000000,0x10000 | ",
          bin + "objcopy out/P.elf out/P.bin -Obinary --gap-fill 0x07 | @/out/P.bin", "end"}},
        {"LLVM: memory map and placement files, absolute paths, libraries as objects",
         executable + "arm_linker_variant=\"LLVM\" linker_memory_map_file=\"map.xml\" "
                      "linker_section_placement_file=\"place.xml\" linker_section_placement_macros=\"P=2\" "
                      "arm_linker_script_generator_default_fill_pattern=\"0xAA\" link_include_standard_libraries=\"No\" "
                      "link_supply_library_linker_symbols=\"No\" linker_treat_libraries_as_object_files=\"Yes\" "
                      "arm_linker_whole_archive=\"libw.a\"",
         {"begin Generating linker script 'P.ld'",
          ldplan + "-memory-map-file @/map.xml -section-placement-file @/place.xml -check-segment-overflow "
                   "-check-section-overflow -section-placement-macros P=2 -default-fill-pattern 0xAA @/obj/P.ld | "
                   "@/obj/P.ld",
          "end", "begin Linking 'P.elf'",
          "command @ | /studio/llvm/bin/ld.lld -EL --gc-sections -T@/obj/P.ld -Map @/out/P.map -o @/out/P.elf --whole-archive "
          "@/obj/m.o /opt/libw.a --no-whole-archive | @/out/P.elf",
          "end"}},
        {"an external driver generates the script and reports the memory usage",
         executable + segments + "use_external_gcc=\"Yes\" linker_print_memory_usage=\"Yes\" linker_map_file=\"No\" "
                                 "gcc_target=\"arm-none-eabi\" gcc_prefix=\"arm-none-eabi-\" "
                                 "build_toolchain_directory=\"/usr/bin\"",
         {"begin Generating linker script 'P.ld'",
          ldplan + "-memory-map-segments RAM RW 0x20000000 0x10000;FLASH RX 0x0 0x80000 -check-segment-overflow "
                   "-check-section-overflow -symbols __STACKSIZE__=1024;__STACKSIZE_PROCESS__=0;__STACKSIZE_IRQ__=0;"
                   "__STACKSIZE_FIQ__=0;__STACKSIZE_SVC__=0;__STACKSIZE_ABT__=0;__STACKSIZE_UND__=0;__HEAPSIZE__=1024 "
                   "@/obj/P.ld | @/obj/P.ld",
          "end", "begin Linking 'P.axf'",
          "command @ | /usr/bin/arm-none-eabi-g++ -g -Wl,--gc-sections -Wl,--start-group "
          "@/obj/m.o /opt/libw.a -Wl,--end-group -o out/P.axf -march=armv7-m -mlittle-endian -mfloat-abi=soft "
          "-T@/obj/P.ld | @/out/P.axf",
          imagedump + "out/P.axf -memory-usage FLASH,0x0,0x80000,RAM,0x20000000,0x10000 | ", "end"}},
    };
    for (const auto &row : rows) {
        Arm arm(row.attributes);
        arm.directory.write("map.xml", "<Root name=\"M\" />");
        arm.directory.write("place.xml", "<Root name=\"P\" />");
        const std::string output = row.name.starts_with("an external") ? "out/P.axf" : "out/P.elf";
        EXPECT_EQ(arm.step(arm.project, 7, output, {arm.directory / "obj/m.o", "/opt/libw.a"}), row.expected)
            << row.name;
    }
}

TEST(OstrandLink, MoreThanOneHundredLibrariesGoThroughAResponseFileUnderAuto) {
    for (const std::size_t count : {100u, 101u}) {
        Arm arm(executable + segments + "link_include_standard_libraries=\"No\" arm_supply_absolute_file_path=\"No\" "
                                        "linker_keep_indirect_files=\"No\" arm_linker_whole_archive=\"o0.o\"");
        StringList inputs;
        for (std::size_t i = 0; i < count; ++i)
            inputs.push_back(arm.directory / ("o" + std::to_string(i) + ".o"));
        const Lines lines = arm.step(arm.project, 7, "out/P.elf", inputs);
        ASSERT_EQ(lines.size(), count == 100 ? 6u : 8u);
        const std::string &link = lines[count == 100 ? 4 : 5];
        EXPECT_TRUE(link.ends_with(count == 100 ? " o98.o o99.o --end-group | @/out/P.elf"
                                                : " --start-group @obj/P_files.ind --end-group | @/out/P.elf"))
            << link;
        const std::string &wholeFirst = count == 100 ? link : lines[4];
        EXPECT_NE(wholeFirst.find(count == 100 ? " --start-group --whole-archive o0.o --no-whole-archive o1.o o2.o "
                                               : "write @/obj/P_files.ind | --whole-archive \"o0.o\" "
                                                 "--no-whole-archive \"o1.o\" \"o2.o\""),
                  std::string::npos);
        EXPECT_EQ(lines[count == 100 ? 5 : 6], count == 100 ? "end" : "delete @/obj/P_files.ind");
    }
}

TEST(OstrandLink, TheScriptIsMadeAgainOnlyWhenItIsStale) {
    Arm arm(executable + "linker_memory_map_file=\"map.xml\" link_include_standard_libraries=\"No\"");
    const std::string map = arm.directory.write("map.xml", "<Root />");
    const std::string script = arm.directory.write("obj/P.ld", "SECTIONS {}");
    const std::time_t now = std::time(nullptr);
    touch(map, now - 20);
    touch(script, now - 10);
    auto generates = [&](BuildFlags flags) {
        arm.recorder.lines.clear();
        arm.system.buildStep(arm.project, "Debug", 7, "out/P.elf", arm.directory / "out/P.elf",
                             {arm.directory / "m.o"}, &arm.recorder, flags);
        return arm.recorder.lines.front() == "begin Generating linker script 'P.ld'";
    };
    EXPECT_FALSE(generates(0));
    EXPECT_TRUE(generates(BuildAlways));
    touch(map, now - 5);
    EXPECT_TRUE(generates(0));
    touch(map, now - 20);
    arm.system.setPropertyValue(arm.project, arm.system.toolProperties.linkerMemoryMapMacros, "Debug", "X=2");
    EXPECT_TRUE(generates(0));

    // The build's up-to-date test sees the memory map; a clean removes the
    // kept script.
    std::string linkerScript, memoryMap;
    EXPECT_TRUE(arm.system.linkerControlFiles(arm.project, "Debug", nullptr, linkerScript, memoryMap));
    EXPECT_EQ(linkerScript + "|" + memoryMap, "|" + map);
    StringList files;
    arm.system.appendIntermediateFiles(arm.project, "Debug", 7, arm.directory / "out/P.elf", files);
    EXPECT_EQ(files, StringList{script});
}

TEST(OstrandLink, LinksThatCannotRunSaySo) {
    const std::pair<std::string, Lines> rows[] = {
        {"", {"begin Checking Linker Control Files", "error no linker script, memory map file or memory segments "
                                                     "specified", "end"}},
        {"linker_memory_map_file=\"gone.xml\"",
         {"begin Locating Memory Map File", "error Memory map file 'gone.xml' does not exist.", "end"}},
        {"arm_linker_variant=\"Brenlow\"",
         {"begin Checking Linker Control Files", "error linker script must be specified", "end"}},
        {"arm_linker_variant=\"Brenlow\" link_linker_script_file=\"app.ld\"",
         {"begin Linking 'P'", "error error: the Brenlow linker (arm_linker_variant) is not available yet", "end"}},
        {segments + "link_time_optimization=\"Yes\"",
         {"begin Linking 'P'", "error error: link-time optimization with the installation's linker "
                               "(link_time_optimization) is not available yet; set use_external_gcc to \"Yes\" to "
                               "link with an external GNU toolchain", "end"}},
    };
    for (const auto &[attributes, expected] : rows) {
        Arm arm(executable + attributes);
        arm.directory.write("app.ld", "SECTIONS {}");
        EXPECT_EQ(arm.step(arm.project, 7, "out/P.elf", {arm.directory / "m.o"}), expected) << attributes;
    }
}

}  // namespace
