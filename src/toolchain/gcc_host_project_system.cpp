#include "toolchain/gcc_host_project_system.h"

#include "project/property_table_maker.h"

GCCHostProjectSystem::GCCHostProjectSystem(SystemMacros *macroTable)
    : GCCProjectSystem(macroTable, "$(GCCDIR:)", "$(StudioDir)/bin/gcc_warning_options.xml", "",
                       GCCTableFlags{true, false, true, true, false}) {
    using T = PropertyClass::Type;
    const std::optional<std::string> none;
    PropertyTableMaker m(propertyClasses, ownProperties_);
    m.section("Debug", "Debugger Options");
    debugProperties = {
        m.text("gdb_executable", T::String, "Debugger", "The debugger program.", "$(ToolChainDir)/gdb"),
        m.text("gdb_additional_options", T::StringList, "Additional Debugger Options",
               "Options given to the debugger.", none),
        m.boolean("debug_run_in_terminal", "Run In Terminal", "<b>Yes</b> runs the program in a terminal.",
                  true),
        m.boolean("load_gdbinit", "Load .gdbinit", "<b>Yes</b> lets the debugger read .gdbinit.", true),
        m.boolean("gdb_console_output", "Show Console Output",
                  "<b>Yes</b> shows the debugger's console output.", true),
        m.boolean("gdb_debug_output", "Show Debug Output", "<b>Yes</b> shows the debugger's own trace.",
                  false),
        m.boolean("gdb_pretty_printing", "Pretty Printing", "<b>Yes</b> shows values with pretty printers.",
                  true),
    };
    m.section("Debug", "Remote Debug Options");
    for (PropertyClass *property : {
             m.enumeration("remote_protocol", {"SSH + GDB Server", "GDB Server"}, "Remote Protocol",
                           "How the debugger reaches the remote machine.", "SSH + GDB Server"),
             m.text("remote_target", T::String, "Remote Target", "The machine that runs the program.", none),
             m.text("remote_ssh_additional_options", T::StringList, "Additional SSH Options",
                    "Options given to ssh.", none),
             m.text("remote_ssh_executable", T::String, "SSH Program", "The ssh program.", "ssh"),
             m.text("remote_gdbserver_executable", T::String, "GDB Server Program",
                    "The debug server on the remote machine.", "gdbserver"),
             m.text("remote_executable", T::String, "Remote Program",
                    "The program's path on the remote machine.", "$(TargetPath)"),
             m.text("remote_sysroot", T::String, "Remote System Root",
                    "The system root of the remote machine.", ""),
             m.text("local_sysroot", T::String, "Local System Root",
                    "A local copy of the remote machine's system root.", ""),
         })
        debugProperties.push_back(property);
}

void GCCHostProjectSystem::appendDebugProperties(ProjectElement *element,
                                                 const std::string &configuration,
                                                 PropertyClassList &list) {
    GCCProjectSystem::appendDebugProperties(element, configuration, list);
    list.insert(list.end(), debugProperties.begin(), debugProperties.end());
}
