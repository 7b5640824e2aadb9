#include "project/standard_property_table.h"

#include "project/property_class_map.h"
#include "project/property_table_maker.h"

namespace {

using T = PropertyClass;

const std::optional<std::string> none;

// Build step kinds whose option lists take rows of this table.
constexpr int cStep = 2;
constexpr int cppStep = 3;
constexpr int assemblyStep = 4;
constexpr int linkStep = 7;

const std::vector<std::string> yesNo = {"Yes", "No"};
const std::vector<std::string> yesNoNone = {"Yes", "No", "None"};
const std::vector<std::string> loadFileTypes = {
    "Detect", "ELF", "Intel Hex", "Motorola S-Record", "Binary",
};

std::string joined(const std::vector<std::string> &items, const char *separator)
{
    std::string text;
    for (const std::string &item : items) {
        if (!text.empty())
            text += separator;
        text += item;
    }
    return text;
}

// The four classes of a numbered family: the plain name and the names with
// 1 to 3 behind, titled "<title>[<n>]".
template <class Make>
std::array<PropertyClass *, 4> family(const std::string &name, const std::string &title, Make make)
{
    std::array<PropertyClass *, 4> classes{};
    for (int n = 0; n < 4; ++n) {
        std::string suffix = n == 0 ? std::string() : std::to_string(n);
        classes[static_cast<std::size_t>(n)] =
            make(name + suffix, title + "[" + std::to_string(n) + "]");
    }
    return classes;
}

} // namespace

NodeProperties::NodeProperties(PropertyClassMap &map)
{
    PropertyTableMaker m(map, objects);

    m.section("Properties", "(Information)");
    dateCreated = m.text("date_created", T::String, "Date Created",
                         "The time at which the file was created.", none);
    dateModified = m.text("date_modified", T::String, "Date Modified",
                          "The time at which the file was last modified.", none);
    platform = m.text("Platform", T::String, "Platform",
                      "The platform that a configuration builds for. A configuration counts only "
                      "for the toolchain of that platform.",
                      none);
    target = m.text("target", T::Integer, "Target",
                    "The target code of the solution; 0 or nothing means that no target is stated.",
                    none);
    target->setPerConfiguration(false);
    fullPath = m.text("full_path", T::FileName, "Full Path", "The absolute path of the file.", none);
    relativePath = m.text("relative_path", T::FileName, "Relative Path",
                          "The path of the file relative to its project directory.", none);
    nodeName = m.text("Name", T::String, "Name", "The name of the node.", none);
    hidden = m.boolean("hidden", "Hidden",
                       "<b>Yes</b> makes the configuration private: it is not offered for building.",
                       false);
    fileName = m.text("file_name", T::FileName, "File Name",
                      "The file's path as it is stored, relative to the project directory unless "
                      "absolute.",
                      none);
    for (PropertyClass *computed :
         {dateCreated, dateModified, fullPath, relativePath, nodeName, hidden, fileName})
        computed->setReadOnly(true);

    m.section("General", "File Options");
    fileCodec = m.enumeration("file_codec", {"Default", "UTF-8", "ISO-8859-1", "Windows-1252"},
                              "File Encoding", "The character encoding of the file's text.",
                              "Default");
    fileCodec->setEditable(true);
    fileOpenWith = m.enumeration(
        "file_open_with",
        {"Default", "Text Editor", "Binary Editor", "Web Browser", "HTML Viewer", "Run File"},
        "Open With", "How the file is opened from the project.", "Default");
    fileType = m.enumeration("file_type", {"Default"}, "File Type",
                             "What kind of file this is; <b>Default</b> decides by the extension.",
                             "Default");
    fileFlag = m.boolean("file_flag", "Flag", "Marks the file in a project browser.", false);
    projectFlag = m.boolean("project_flag", "Flag", "Marks the project in a project browser.", false);
    solutionFlag =
        m.boolean("solution_flag", "Flag", "Marks the solution in a project browser.", false);
    name = m.text("name", T::FileName, "Solution File", "The path of the solution's file.", none);
    name->setReadOnly(true);

    m.section("General", "Dynamic Folder Options");
    path = m.text("path", T::DirPathList, "Folder Path",
                  "The directories whose files the folder shows, separated by ';'.", none);
    recurse = m.boolean("recurse", "Recurse Into Subdirectories",
                        "<b>Yes</b> takes the files of subdirectories too.", false);
    exclude = m.text("exclude", T::String, "Exclude",
                     "Wildcards, separated by ';', of files and directories to leave out.", none);
    for (PropertyClass *onFolder : {path, recurse, exclude})
        onFolder->setPerConfiguration(false);

    m.section("General", "Unity Build Options");
    unityBuildFileName = m.text(
        "unity_build_file_name", T::FileName, "Unity Build File Name",
        "When set, the folder's files are compiled as one unit through a generated file of this "
        "name, relative to the project directory.",
        none);
    unityBuildExcludeFilter = m.text(
        "unity_build_exclude_filter", T::String, "Unity Build Exclude Filter",
        "Wildcards, separated by ';', of files that are compiled on their own instead.", none);

    m.section("General", "Project Options");
    projectType = m.enumeration("project_type",
                                {"Executable", "Library", "Object file", "Staging", "Combining",
                                 "Externally Built Executable", "Externally Built Library",
                                 "Externally Built Object file"},
                                "Project Type", "", "Executable");
    std::vector<std::string> standardTypes = projectType->values();
    setProjectTypes(standardTypes);
    projectDirectory = m.text("project_directory", T::String, "Project Directory",
                              "The project's directory, relative to the directory of the solution "
                              "file.",
                              none);
    projectDirectory->setPerConfiguration(false);
    fullProjectDirectory = m.text("full_project_directory", T::DirPath, "Full Project Directory",
                                  "The absolute directory of the project.", none);
    fullProjectDirectory->setReadOnly(true);
    fullProjectDirectory->setPerConfiguration(false);
    projectDependencies = m.text("project_dependencies", T::StringList, "Project Dependencies",
                                 "Projects that are built before this one. Names may hold "
                                 "wildcards.",
                                 none);
    projectCanBuildInParallel = m.enumeration(
        "project_can_build_in_parallel", {"Default", "Yes", "No"}, "Can Build In Parallel",
        "Whether the project's dependencies may build at the same time. <b>Default</b> allows it "
        "except for staging and combining projects.",
        "Default");
    macros = m.text("macros", T::StringList, "Macros",
                    "Macro definitions of the form <i>name</i>=<i>value</i>.", none);
    packageDependencies = m.text("package_dependencies", T::StringList, "Package Dependencies",
                                 "Packages that the project needs.", none);
    packageDirectory = m.text("package_directory", T::DirPath, "Package Directory",
                              "The directory where packages are installed, if not the user's "
                              "default.",
                              none);
    batchBuildConfigurations = m.text(
        "batch_build_configurations", T::StringList, "Batch Build Configurations",
        "The configurations that a batch build makes. Names may hold wildcards.", none);
    inheritedConfigurations = m.text(
        "inherited_configurations", T::StringList, "Inherited Configurations",
        "The configurations whose values this configuration falls back on, in order.", none);
    projectInhibitIndexing = m.boolean("project_inhibit_indexing", "Inhibit Indexing",
                                       "<b>Yes</b> keeps the source indexer away from these files.",
                                       false);
    sourceCodeControlDirectory = m.text(
        "source_code_control_directory", T::DirPath, "Source Code Control Directory",
        "The root directory of the source code control checkout.", "$(SolutionDir)");
    sourceCodeControlDirectory->setPerConfiguration(false);
    codeCompletionOptions = m.text("code_completion_options", T::StringList,
                                   "Code Completion Options",
                                   "Extra options for the code completion engine.", none);
    environmentVariables = m.text(
        "environment_variables", T::StringList, "Environment Variables",
        "Variables of the form <i>name</i>=<i>value</i> that are set when the solution is loaded.",
        none);
    environmentVariables->setPerConfiguration(false);
    compilationDatabaseFile = m.text("compilation_database_file", T::FileName,
                                     "Compilation Database File",
                                     "The file the compilation database is written to.",
                                     "$(OutDir)/$(ProjectName).json");
    generateCompilationDatabaseFile = m.enumeration(
        "generate_compilation_database_file", yesNo, "Generate Compilation Database",
        "<b>Yes</b> writes the compile commands of the build to the compilation database file.",
        "No");

    m.section("General", "Build Options");
    buildToolchainDirectory = m.text("build_toolchain_directory", T::DirPath,
                                     "Toolchain Directory",
                                     "The directory of the tools; it gives $(ToolChainDir).",
                                     "$(StudioDir)");
    buildTreatWarningsAsErrors =
        m.boolean("build_treat_warnings_as_errors", "Treat Warnings As Errors",
                  "<b>Yes</b> makes the tools fail on a warning.", false);
    buildSuppressWarnings = m.boolean("build_suppress_warnings", "Suppress Warnings",
                                      "<b>Yes</b> tells the tools not to print warnings.", false);
    buildIntermediateDirectory = m.text(
        "build_intermediate_directory", T::DirPath, "Intermediate Directory",
        "The directory of object files and other intermediate files; it gives $(IntDir).",
        "$(ProjectName) $(Configuration)");
    buildOutputDirectory = m.text("build_output_directory", T::DirPath, "Output Directory",
                                  "The directory of the build's results; it gives $(OutDir).",
                                  "$(ProjectName) $(Configuration)");
    buildRootOutputDirectory = m.text(
        "build_root_output_directory", T::DirPath, "Root Output Directory",
        "A directory under which the output directories lie; it gives $(RootOutDir).", "");
    buildObjectFileName = m.text("build_object_file_name", T::FileName, "Object File Name",
                                 "The object file that a source file compiles to.",
                                 "$(IntDir)/$(InputName)$(OBJ)");
    buildPreprocessOutputFileName = m.text(
        "build_preprocess_output_file_name", T::FileName, "Preprocessor Output File Name",
        "The file that a preprocess-only run writes.", "$(OutDir)/$(ProjectName).i");
    buildQuietly = m.boolean("build_quietly", "Build Quietly",
                             "<b>No</b> asks the tools to show what they do.", true);
    buildDebugInformation = m.boolean("build_debug_information", "Include Debug Information",
                                      "<b>Yes</b> generates debug information.", true);
    buildExcludeFromBuild = m.boolean("build_exclude_from_build", "Exclude From Build",
                                      "<b>Yes</b> leaves the node out of the build.", false);
    buildAlwaysRebuild = m.boolean("build_always_rebuild", "Always Rebuild",
                                   "<b>Yes</b> builds the node whether or not it is up to date.",
                                   false);
    propertyGroupsFilePath = m.text("property_groups_file_path", T::FileName,
                                    "Property Groups File",
                                    "The property group file of the project; <b>None</b> for none.",
                                    none);
    propertyGroupsFilePath->setSpecialValue("XML (*.xml)");
    buildGenerateDependencyFile = m.enumeration<ProjectPropertyClass>(
        "build_generate_dependency_file", {"Yes", "No", "User Header Files Only"},
        "Generate Dependency File",
        "Whether the compiler writes the headers that a file includes, so that a change to one "
        "of them rebuilds the file.",
        "Yes");
    buildDependencyFileName = m.text(
        "build_dependency_file_name", T::FileName, "Dependency File Name",
        "The dependency file of a compile; when empty it lies in the intermediate directory.",
        none);
    buildGenericOptionsFileName = m.text(
        "build_generic_options_file_name", T::FileName, "Generic Options File",
        "An XML file that defines further tool options; when not set the toolchain's own file "
        "is used.",
        none);
    buildGenericOptionsFileName->setSpecialValue("XML (*.xml)");
    propertiesFilter = m.text("properties_filter", T::String, "Properties Filter",
                              "Pages, separated by ';', to which the listed properties are "
                              "limited.",
                              none);
    buildRemoveUnusedSymbols = m.enumeration(
        "build_remove_unused_symbols", yesNoNone, "Remove Unused Symbols",
        "Whether the linker removes unreferenced sections; <b>None</b> leaves it to the linker.",
        "None");
    inputsFile = m.text("inputs_file", T::FileName, "Inputs File",
                        "A file naming the inputs of the link or archive, one a line, in place of "
                        "the project's objects.",
                        none);
    inputsOrder = m.text("inputs_order", T::StringList, "Inputs Order",
                         "Names of nodes whose objects come first, in this order.", none);
    deleteIntermediateDirectory =
        m.boolean("delete_intermediate_directory", "Delete Intermediate Directory",
                  "<b>Yes</b> deletes the intermediate directory after a successful link or "
                  "archive.",
                  false);

    for (PropertyClass *everyStep :
         {buildTreatWarningsAsErrors, buildSuppressWarnings, buildQuietly, buildDebugInformation})
        m.tools(everyStep, {cStep, cppStep, assemblyStep, linkStep});
    m.tools(buildGenerateDependencyFile, {cStep, cppStep, assemblyStep});
    m.tools(buildDependencyFileName, {cStep, cppStep, assemblyStep});
    for (PropertyClass *linkOption :
         {buildRemoveUnusedSymbols, inputsFile, inputsOrder, deleteIntermediateDirectory})
        m.tools(linkOption, {linkStep});

    filter = m.keep(std::make_unique<FilterPropertyClass>());
    buildOutputFileName = m.keep(std::make_unique<BuildOutputFileNamePropertyClass>());

    m.appendBuildMacros(buildMacros, {
        {"Configuration", "The name of the configuration being built."},
        {"ConfigurationHash", "A hash of the configuration name, in hexadecimal."},
        {"EXE", "The file extension of an executable."},
        {"FolderName", "The name of the enclosing folder."},
        {"FolderPath", "The names of the enclosing folders, joined by '/'."},
        {"InputDir", "The absolute directory of the input file."},
        {"InputExt", "The extension of the input file, without the dot."},
        {"InputFileName", "The file name of the input file, with its extension."},
        {"InputName", "The file name of the input file, without its extension."},
        {"InputPath", "The absolute path of the input file."},
        {"InputPathHash", "A hash of the input file's absolute path, in hexadecimal."},
        {"IntDir", "The intermediate directory."},
        {"LIB", "The file extension of a library."},
        {"OBJ", "The file extension of an object file."},
        {"OutDir", "The output directory."},
        {"PackageExt", "The file extension of a package."},
        {"ProjectDir", "The absolute directory of the project."},
        {"ProjectName", "The name of the project."},
        {"ProjectNodeName", "The name of the node being built."},
        {"RootOutDir", "The root output directory."},
        {"RootRelativeOutDir", "The output directory relative to the root output directory."},
        {"RelInputPath", "The path of the input file as stored in the project."},
        {"RelInputDir", "The directory of the input file as stored in the project."},
        {"SolutionDir", "The absolute directory of the solution file."},
        {"SolutionExt", "The extension of the solution file, without the dot."},
        {"SolutionFileName", "The file name of the solution file."},
        {"SolutionName", "The name of the solution file, without its extension."},
        {"SolutionPath", "The absolute path of the solution file."},
        {"ToolChainDir", "The directory of the tools."},
    });
}

void NodeProperties::setProjectTypes(const std::vector<std::string> &types)
{
    projectType->setValues(types);
    projectType->setLongText("The type of the project: " + joined(types, ", ") + ".");
}

void NodeProperties::setFileTypes(const std::vector<std::string> &types)
{
    std::vector<std::string> values{"Default"};
    values.insert(values.end(), types.begin(), types.end());
    fileType->setValues(values);
}

ToolProperties::ToolProperties(PropertyClassMap &map)
{
    PropertyTableMaker m(map, objects);
    const std::string projectDir = "$(ProjectDir)";

    m.section("General", "Staging Options");
    stageOutputFilepath = m.text("stage_output_filepath", T::String, "Output File Path",
                                 "Where a staged file is copied to; it gives "
                                 "$(StageOutputFilePath).",
                                 "$(OutDir)/$(RelInputPath)");
    stageCommand = m.text("stage_command", T::CommandLine, "Stage Command",
                          "The commands that stage a file, separated by '&amp;&amp;'.",
                          "cp \"$(RelInputPath)\" \"$(StageOutputFilePath)\"");
    stageCommandWd = m.text("stage_command_wd", T::String, "Stage Command Working Directory",
                            "The directory in which the stage command runs.", projectDir);
    stageSetReadonly = m.enumeration("stage_set_readonly", {"Yes", "No", "Don't"},
                                     "Set Read-Only",
                                     "Makes the staged file read-only (<b>Yes</b>) or writable "
                                     "(<b>No</b>); <b>Don't</b> leaves it as it is.",
                                     "No");
    stagePostBuildCommand = m.text("stage_post_build_command", T::CommandLine,
                                   "Post-Stage Command",
                                   "A command that runs after the files are staged.", none);
    stagePostBuildCommandWd = m.text("stage_post_build_command_wd", T::String,
                                     "Post-Stage Command Working Directory",
                                     "The directory in which the post-stage command runs.",
                                     projectDir);
    stageOutputFilepathReplace = m.text(
        "stage_output_filepath_replace", T::String, "Output File Path Replace",
        "Text to replace in the output file path of a staged file.", none);

    m.section("General", "Combining Options");
    combineOutputFilepath = m.text("combine_output_filepath", T::String, "Output File Path",
                                   "The file that the combine command makes; it gives "
                                   "$(CombiningOutputFilePath).",
                                   "$(OutDir)/$(ProjectName)");
    combineCommand = m.text("combine_command", T::CommandLine, "Combine Command",
                            "The commands that combine the project's files, separated by "
                            "'&amp;&amp;'.",
                            none);
    combineCommandWd = m.text("combine_command_wd", T::String,
                              "Combine Command Working Directory",
                              "The directory in which the combine command runs.", projectDir);
    combineSetReadonly = m.enumeration("combine_set_readonly", {"Yes", "No", "Don't"},
                                       "Set Read-Only",
                                       "Makes the output read-only (<b>Yes</b>) or writable "
                                       "(<b>No</b>); <b>Don't</b> leaves it as it is.",
                                       "No");

    m.section("General", "User Build Step Options");
    preBuildCommand = m.text("pre_build_command", T::CommandLine, "Pre-Build Command",
                             "A command that runs before the project is built.", none);
    preBuildCommandWd = m.text("pre_build_command_wd", T::String,
                               "Pre-Build Command Working Directory",
                               "The directory in which the pre-build command runs.", projectDir);
    preBuildCommandControl = m.enumeration(
        "pre_build_command_control", {"Always Run", "Run When Build Required"},
        "Pre-Build Command Control", "When the pre-build command runs.", "Run When Build Required");
    postBuildCommand = m.text("post_build_command", T::CommandLine, "Post-Build Command",
                              "A command that runs after the project is built.", none);
    postBuildCommandWd = m.text("post_build_command_wd", T::String,
                                "Post-Build Command Working Directory",
                                "The directory in which the post-build command runs.", projectDir);
    postBuildCommandControl = m.enumeration(
        "post_build_command_control", {"Always Run", "Run When Build Has Occurred"},
        "Post-Build Command Control", "When the post-build command runs.",
        "Run When Build Has Occurred");
    compilePreBuildCommand = m.text("compile_pre_build_command", T::CommandLine,
                                    "Pre-Compile Command",
                                    "A command that runs before each compile.", none);
    compilePreBuildCommandOutputFileName = m.text(
        "compile_pre_build_command_output_file_name", T::FileName,
        "Pre-Compile Command Output File",
        "A file that the pre-compile command writes; when set it is compiled in place of the "
        "source.",
        none);
    compilePreBuildCommandWd = m.text("compile_pre_build_command_wd", T::String,
                                      "Pre-Compile Command Working Directory",
                                      "The directory in which the pre-compile command runs.",
                                      projectDir);
    compilePostBuildCommand = m.text("compile_post_build_command", T::CommandLine,
                                     "Post-Compile Command",
                                     "A command that runs after each compile; $(TargetPath) is "
                                     "the object file.",
                                     none);
    compilePostBuildCommandWd = m.text("compile_post_build_command_wd", T::String,
                                       "Post-Compile Command Working Directory",
                                       "The directory in which the post-compile command runs.",
                                       projectDir);
    for (PropertyClass *compileStep : {compilePreBuildCommand, compilePreBuildCommandOutputFileName,
                                       compilePreBuildCommandWd, compilePostBuildCommand,
                                       compilePostBuildCommandWd})
        m.tools(compileStep, {cStep, cppStep, assemblyStep});
    linkerPreBuildCommand = m.text("linker_pre_build_command", T::CommandLine, "Pre-Link Command",
                                   "A command that runs before the link.", none);
    linkerPreBuildCommandOutputFileName = m.text(
        "linker_pre_build_command_output_file_name", T::FileName, "Pre-Link Command Output File",
        "A file that the pre-link command writes; it gives $(PostLinkOutputFilePath).", none);
    linkerPreBuildCommandWd = m.text("linker_pre_build_command_wd", T::String,
                                     "Pre-Link Command Working Directory",
                                     "The directory in which the pre-link command runs.",
                                     projectDir);
    linkerPatchBuildCommand = m.text("linker_patch_build_command", T::CommandLine,
                                     "Patch Command",
                                     "A command that patches the linked file; $(TargetPath) is "
                                     "that file.",
                                     none);
    linkerPatchBuildCommandWd = m.text("linker_patch_build_command_wd", T::String,
                                       "Patch Command Working Directory",
                                       "The directory in which the patch command runs.",
                                       projectDir);
    linkerPostBuildCommand = m.text("linker_post_build_command", T::CommandLine,
                                    "Post-Link Command",
                                    "A command that runs after the link; $(TargetPath) is the "
                                    "linked file.",
                                    none);
    linkerPostBuildCommandWd = m.text("linker_post_build_command_wd", T::String,
                                      "Post-Link Command Working Directory",
                                      "The directory in which the post-link command runs.",
                                      projectDir);
    linkerPostBuildCommandOutputFile = m.text(
        "linker_post_build_command_output_file", T::FileName, "Post-Link Command Output File",
        "A file that the post-link command writes; it gives $(PostLinkOutputFilePath).", none);
    for (PropertyClass *linkStepCommand :
         {linkerPreBuildCommand, linkerPreBuildCommandOutputFileName, linkerPreBuildCommandWd,
          linkerPatchBuildCommand, linkerPatchBuildCommandWd, linkerPostBuildCommand,
          linkerPostBuildCommandWd, linkerPostBuildCommandOutputFile})
        m.tools(linkStepCommand, {linkStep});
    archivePostBuildCommand = m.text("archive_post_build_command", T::CommandLine,
                                     "Post-Archive Command",
                                     "A command that runs after the library is made; "
                                     "$(TargetPath) is the library.",
                                     none);
    archivePostBuildCommandWd = m.text("archive_post_build_command_wd", T::String,
                                       "Post-Archive Command Working Directory",
                                       "The directory in which the post-archive command runs.",
                                       projectDir);

    m.section("Linker", "Linker Options");
    linkIncludeStandardLibraries =
        m.boolean("link_include_standard_libraries", "Include Standard Libraries",
                  "<b>Yes</b> links the C runtime libraries of the installation.", true);
    linkStandardLibrariesDirectory = m.text(
        "link_standard_libraries_directory", T::String, "Standard Libraries Directory",
        "The directory of the standard libraries.", "$(StudioLibDir:$(StudioDir)/lib)");
    linkSymbolDefinitions = m.text("link_symbol_definitions", T::StringList,
                                   "Linker Symbol Definitions",
                                   "Symbols to define at link time, as <i>name</i>=<i>value</i>.",
                                   none);
    linkerKeepSymbols = m.text("linker_keep_symbols", T::StringList, "Keep Symbols",
                               "Symbols that the linker must keep even if nothing uses them.",
                               none);
    linkerAdditionalFiles = m.text("linker_additional_files", T::StringList, "Additional Input Files",
                                   "Further object files and libraries to link.", none);
    linkerAdditionalOptions = m.text("linker_additional_options", T::StringList,
                                     "Additional Linker Options",
                                     "Options passed to the linker as they are.", none);
    linkerAdditionalOptionsFromFile = m.text(
        "linker_additional_options_from_file", T::FileName, "Additional Linker Options From File",
        "A file whose lines are further linker options.", none);
    linkerMemoryMapFile = m.text("linker_memory_map_file", T::FileName, "Memory Map File",
                                 "The memory map of the target, when the project has none.",
                                 none);
    linkerMemoryMapFile->setSpecialValue("XML (*.xml)");
    linkerMemoryMapMacros = m.text("linker_memory_map_macros", T::StringList,
                                   "Memory Map Macros",
                                   "Macros of the form <i>name</i>=<i>value</i> for reading the "
                                   "memory map.",
                                   none);
    linkerSectionPlacementFile = m.text("linker_section_placement_file", T::FileName,
                                        "Section Placement File",
                                        "The section placement file, when the project has none.",
                                        none);
    linkerSectionPlacementFile->setSpecialValue("XML (*.xml)");
    linkerSectionPlacementMacros = m.text(
        "linker_section_placement_macros", T::StringList, "Section Placement Macros",
        "Macros of the form <i>name</i>=<i>value</i> for reading the section placement.", none);
    linkerSectionPlacementsSegments = m.text(
        "linker_section_placements_segments", T::StringList, "Memory Segments",
        "Memory segments, each as <i>name</i> <i>access</i> <i>start</i> <i>size</i>, used when "
        "there is no memory map.",
        none);
    linkUseLinkerScriptFile = m.boolean("link_use_linker_script_file", "Use Linker Script File",
                                        "<b>Yes</b> links with the linker script file instead of "
                                        "a generated one.",
                                        false);
    linkLinkerScriptFile = m.text("link_linker_script_file", T::FileName, "Linker Script File",
                                  "The linker script to use.", "$(ProjectName).ld");
    linkLinkerScriptFile->setSpecialValue("LD (*.ld)");
    linkDependentProjects = m.boolean("link_dependent_projects", "Link In Dependent Projects",
                                      "<b>Yes</b> links the outputs of the projects this one "
                                      "depends on.",
                                      true);
    linkerOutputFormat = m.enumeration(
        "linker_output_format", {"None", "bin", "hex", "srec", "verilog"}, "Additional Output Format",
        "A further file in this format, made from the linked file.", "None");
    linkerMapFile = m.boolean("linker_map_file", "Generate Map File",
                              "<b>Yes</b> writes a map file beside the output.", true);
    linkerMapFileName = m.text("linker_map_file_name", T::FileName, "Map File Name",
                               "The name of the map file.", none);

    m.section("Linker", "Printf/Scanf Options");
    const std::vector<std::string> formatLevels = {"int", "long", "long long"};
    linkerPrintfFmtLevel = m.enumeration("linker_printf_fmt_level", formatLevels,
                                         "Printf Integer Support",
                                         "The largest integer type that printf formats.",
                                         "long long");
    linkerPrintfWidthPrecisionSupported = m.boolean(
        "linker_printf_width_precision_supported", "Printf Width/Precision Support",
        "<b>Yes</b> lets an integer-only printf handle field width and precision.", true);
    linkerPrintfFpEnabled = m.enumeration("linker_printf_fp_enabled", {"No", "Float", "Double"},
                                          "Printf Floating Point Support",
                                          "Which floating-point types printf formats.", "Double");
    linkerPrintfWcharEnabled = m.boolean("linker_printf_wchar_enabled", "Printf Wide Character Support",
                                         "<b>Yes</b> lets printf format wide characters.", false);
    linkerScanfFmtLevel = m.enumeration("linker_scanf_fmt_level", formatLevels,
                                        "Scanf Integer Support",
                                        "The largest integer type that scanf reads.", "long long");
    linkerScanfFpEnabled = m.boolean("linker_scanf_fp_enabled", "Scanf Floating Point Support",
                                     "<b>Yes</b> lets scanf read floating-point numbers.", false);
    linkerScanfCharacterGroupMatchingEnabled = m.boolean(
        "linker_scanf_character_group_matching_enabled", "Scanf Character Group Matching",
        "<b>Yes</b> lets scanf match character groups such as %[a-z].", false);

    m.section("Linker", "Linker Options");
    linkAdditionalOptionsBackup = m.text("link_additional_options_backup", T::StringList,
                                         "Additional Linker Options Backup",
                                         "A saved copy of the additional linker options.", none);

    for (PropertyClass *linkOption :
         {linkIncludeStandardLibraries, linkStandardLibrariesDirectory, linkSymbolDefinitions,
          linkerKeepSymbols, linkerAdditionalFiles, linkerAdditionalOptions,
          linkerAdditionalOptionsFromFile, linkerMemoryMapFile, linkerMemoryMapMacros,
          linkerSectionPlacementFile, linkerSectionPlacementMacros,
          linkerSectionPlacementsSegments, linkUseLinkerScriptFile, linkLinkerScriptFile,
          linkDependentProjects, linkerOutputFormat, linkerMapFile, linkerMapFileName,
          linkerPrintfFmtLevel, linkerPrintfWidthPrecisionSupported, linkerPrintfFpEnabled,
          linkerPrintfWcharEnabled, linkerScanfFmtLevel, linkerScanfFpEnabled,
          linkerScanfCharacterGroupMatchingEnabled})
        m.tools(linkOption, {linkStep});

    m.section("C/C++", "Preprocessor Options");
    cEnforceAnsiChecking = m.boolean("c_enforce_ansi_checking", "Enforce ANSI Checking",
                                     "<b>Yes</b> makes the compiler hold to the language "
                                     "standard strictly.",
                                     false);
    cUndefineAllPreprocessorDefinitions = m.boolean(
        "c_undefine_all_preprocessor_definitions", "Undefine All Preprocessor Definitions",
        "<b>Yes</b> drops the compiler's own predefined macros.", false);
    cPreprocessorDefinitions = m.text("c_preprocessor_definitions", T::StringList,
                                      "Preprocessor Definitions",
                                      "Macros to define, as <i>name</i> or "
                                      "<i>name</i>=<i>value</i>.",
                                      none);
    cPreprocessorUndefinitions = m.text("c_preprocessor_undefinitions", T::StringList,
                                        "Preprocessor Undefinitions", "Macros to undefine.", none);
    cUserIncludeDirectories = m.text("c_user_include_directories", T::StringList,
                                     "User Include Directories",
                                     "Directories searched for included files.", none);
    cIncludeFiles = m.text("c_include_files", T::StringList, "Include Files",
                           "Files included before the first line of each source.", none);
    cMacrosFiles = m.text("c_macros_files", T::StringList, "Macros Files",
                          "Files whose macro definitions are read before each source.", none);
    cIgnoreIncludes = m.boolean("c_ignore_includes", "Ignore Includes",
                                "<b>Yes</b> passes no include directories to the tools.", false);
    cSystemIncludeDirectories = m.text("c_system_include_directories", T::StringList,
                                       "System Include Directories",
                                       "Directories searched for system headers.",
                                       "$(StudioIncDir:$(StudioDir)/include)");
    for (PropertyClass *preprocessorOption :
         {cUndefineAllPreprocessorDefinitions, cPreprocessorDefinitions,
          cPreprocessorUndefinitions, cUserIncludeDirectories, cIncludeFiles, cMacrosFiles,
          cIgnoreIncludes, cSystemIncludeDirectories})
        m.tools(preprocessorOption, {cStep, cppStep, assemblyStep});
    m.tools(cEnforceAnsiChecking, {cStep, cppStep});

    m.section("C/C++", "User Options");
    cAdditionalOptions = m.text("c_additional_options", T::StringList, "Additional C/C++ Options",
                                "Options passed to the C and C++ compilers as they are.", none);
    cAdditionalOptionsFromFile = m.text("c_additional_options_from_file", T::FileName,
                                        "Additional C/C++ Options From File",
                                        "A file whose lines are further C and C++ compiler "
                                        "options.",
                                        none);
    cOnlyAdditionalOptions = m.text("c_only_additional_options", T::StringList,
                                    "Additional C Only Options",
                                    "Options passed to the C compiler only.", none);
    cOnlyAdditionalOptionsFromFile = m.text("c_only_additional_options_from_file", T::FileName,
                                            "Additional C Only Options From File",
                                            "A file whose lines are further C compiler options.",
                                            none);
    cppOnlyAdditionalOptions = m.text("cpp_only_additional_options", T::StringList,
                                      "Additional C++ Only Options",
                                      "Options passed to the C++ compiler only.", none);
    cppOnlyAdditionalOptionsFromFile = m.text(
        "cpp_only_additional_options_from_file", T::FileName,
        "Additional C++ Only Options From File", "A file whose lines are further C++ compiler "
                                                 "options.",
        none);
    m.tools(cAdditionalOptions, {cStep, cppStep});
    m.tools(cAdditionalOptionsFromFile, {cStep, cppStep});
    m.tools(cOnlyAdditionalOptions, {cStep});
    m.tools(cOnlyAdditionalOptionsFromFile, {cStep});
    m.tools(cppOnlyAdditionalOptions, {cppStep});
    m.tools(cppOnlyAdditionalOptionsFromFile, {cppStep});

    m.section("C/C++", "Code Generation Options");
    cppEnableExceptions = m.enumeration<ProjectPropertyClass>(
        "cpp_enable_exceptions", yesNoNone, "Enable Exception Support",
        "Whether C++ exceptions are supported; <b>None</b> leaves it to the compiler.", "None");
    cppEnableRtti = m.enumeration<ProjectPropertyClass>(
        "cpp_enable_rtti", yesNoNone, "Enable RTTI Support",
        "Whether C++ run-time type information is generated; <b>None</b> leaves it to the "
        "compiler.",
        "None");
    m.tools(cppEnableExceptions, {cppStep});
    m.tools(cppEnableRtti, {cppStep});

    m.section("C/C++", "Assembler Options");
    asmAdditionalOptions = m.text("asm_additional_options", T::StringList,
                                  "Additional Assembler Options",
                                  "Options passed to the assembler as they are.", none);
    asmAdditionalOptionsFromFile = m.text("asm_additional_options_from_file", T::FileName,
                                          "Additional Assembler Options From File",
                                          "A file whose lines are further assembler options.",
                                          none);
    asmGenerateListingFile = m.boolean("asm_generate_listing_file", "Generate Listing File",
                                       "<b>Yes</b> writes a listing of the generated code.", false);
    m.tools(asmAdditionalOptions, {assemblyStep});
    m.tools(asmAdditionalOptionsFromFile, {assemblyStep});
    m.tools(asmGenerateListingFile, {cStep, cppStep, assemblyStep});

    m.section("C/C++", "Section Options");
    defaultCodeSection = m.text("default_code_section", T::String, "Code Section Name",
                                "The section that code is placed in.", ".text");
    defaultDataSection = m.text("default_data_section", T::String, "Data Section Name",
                                "The section that initialised data is placed in.", ".data");
    defaultZeroedSection = m.text("default_zeroed_section", T::String, "Zeroed Section Name",
                                  "The section that zero-initialised data is placed in.", ".bss");
    defaultConstSection = m.text("default_const_section", T::String, "Constant Section Name",
                                 "The section that read-only data is placed in.", ".rodata");
    defaultVectorSection = m.text("default_vector_section", T::String, "Vector Section Name",
                                  "The section that the vector table is placed in.", ".vectors");
    defaultIsrSection = m.text("default_isr_section", T::String, "ISR Section Name",
                               "The section that interrupt handlers are placed in.", ".text");
    for (PropertyClass *section : {defaultCodeSection, defaultDataSection, defaultZeroedSection,
                                   defaultConstSection, defaultVectorSection, defaultIsrSection})
        m.tools(section, {cStep, cppStep, assemblyStep});

    m.section("C/C++", "User Options");
    asmAdditionalOptionsBackup = m.text("asm_additional_options_backup", T::StringList,
                                        "Additional Assembler Options Backup",
                                        "A saved copy of the additional assembler options.", none);
    cAdditionalOptionsBackup = m.text("c_additional_options_backup", T::StringList,
                                      "Additional C/C++ Options Backup",
                                      "A saved copy of the additional C/C++ options.", none);
    cOnlyAdditionalOptionsBackup = m.text("c_only_additional_options_backup", T::StringList,
                                          "Additional C Only Options Backup",
                                          "A saved copy of the additional C only options.", none);
    cppOnlyAdditionalOptionsBackup = m.text("cpp_only_additional_options_backup", T::StringList,
                                            "Additional C++ Only Options Backup",
                                            "A saved copy of the additional C++ only options.",
                                            none);

    m.section("C/C++", "Language Options");
    cFilesAreCpp = m.boolean("c_files_are_cpp", "Compile C Files As C++",
                             "<b>Yes</b> compiles files of type C as C++.", false);
    m.tools(cFilesAreCpp, {cStep});
    isCppProject = m.enumeration("is_cpp_project", {"Yes", "No", "Detect"}, "Is C++ Project",
                                 "Whether the project is linked as C++; <b>Detect</b> looks for a "
                                 "C++ file in it.",
                                 "Detect");
    m.tools(isCppProject, {linkStep});
    addPropertyGroupIncludesDefines = m.boolean(
        "add_property_group_includes_defines", "Add Property Group Includes And Defines",
        "<b>Yes</b> passes the include directories and definitions of the selected property "
        "groups to the compiler.",
        true);

    m.section("Debugging", "Debugger Options");
    debugCpuRegistersFile = m.text("debug_cpu_registers_file", T::FileName, "CPU Registers File",
                                   "A file describing the registers of the CPU.", none);
    debugCpuRegistersFile->setSpecialValue("XML (*.xml)");
    debugRegisterDefinitionFile = m.text("debug_register_definition_file", T::FileName,
                                         "Register Definition File",
                                         "A file describing the peripheral registers.", none);
    debugRegisterDefinitionFileType = m.enumeration(
        "debug_register_definition_file_type", {"XML", "SVD"}, "Register Definition File Type",
        "The format of the register definition file.", "XML");

    m.section("Debugging", "Loader Options");
    externalBuildFileName = m.text("external_build_file_name", T::FileName,
                                   "External Build File Name",
                                   "A file built elsewhere that is loaded and debugged in place "
                                   "of the project's output.",
                                   none);
    externalStartAddress = m.text("external_start_address", T::String, "Start Address",
                                  "The address at which the loaded program starts.", none);
    externalLoadAddress = m.text("external_load_address", T::String, "Load Address",
                                 "The address at which a binary file is loaded.", none);
    externalLoadFileType = m.enumeration("external_load_file_type", loadFileTypes,
                                         "Load File Type", "The format of the file to load.",
                                         "Detect");
    externalDebugSymbolsFileName = family(
        "external_debug_symbols_file_name", "Debug Symbols File",
        [&](std::string name, std::string title) {
            return m.text(std::move(name), T::FileName, std::move(title),
                          "A file whose debug symbols are loaded with the program.", none);
        });
    externalDebugSymbolsLoadAddress = family(
        "external_debug_symbols_load_address", "Debug Symbols Load Address",
        [&](std::string name, std::string title) {
            return m.text(std::move(name), T::String, std::move(title),
                          "The address at which the debug symbols file was linked to run.", none);
        });

    m.section("Debugging", "Debugger Options");
    debugTargetConnection = m.text("debug_target_connection", T::String, "Target Connection",
                                   "How the debugger reaches the target.", none);
    debugTargetConnectionString = m.text("debug_target_connection_string", T::String,
                                         "Target Connection String",
                                         "Settings of the target connection.", none);
    debugWorkingDirectory = m.text("debug_working_directory", T::DirPath, "Working Directory",
                                   "The working directory of the debugged program.", none);
    debugCommandArguments = m.text("debug_command_arguments", T::String, "Command Arguments",
                                   "The arguments given to the debugged program.", none);

    m.section("Debugging", "Loader Options");
    debugAdditionalLoadFile = family(
        "debug_additional_load_file", "Additional Load File",
        [&](std::string name, std::string title) {
            return m.text(std::move(name), T::FileName, std::move(title),
                          "A further file that is loaded with the program.", none);
        });
    debugAdditionalLoadFileAddress = family(
        "debug_additional_load_file_address", "Additional Load File Address",
        [&](std::string name, std::string title) {
            return m.text(std::move(name), T::String, std::move(title),
                          "The address at which the further file is loaded.", none);
        });
    debugAdditionalLoadFileType = family(
        "debug_additional_load_file_type", "Additional Load File Type",
        [&](std::string name, std::string title) {
            return m.enumeration(std::move(name), loadFileTypes, std::move(title),
                                 "The format of the further file.", "Detect");
        });

    m.section("Debugging", "Debugger Options");
    debugStartFromEntryPointSymbol = m.boolean(
        "debug_start_from_entry_point_symbol", "Start From Entry Point Symbol",
        "<b>Yes</b> starts the program at the entry point symbol.", true);
    debugEntryPointSymbol = m.text("debug_entry_point_symbol", T::String, "Entry Point Symbol",
                                   "The symbol at which the program starts; when empty the "
                                   "entry point of the file.",
                                   none);
    debugStartupCompletionPoint = m.text("debug_startup_completion_point", T::String,
                                         "Startup Completion Point",
                                         "The place at which start-up is complete and the "
                                         "debugger stops first.",
                                         "main");
    debugLoadAdditionalProjects = m.text("debug_load_additional_projects", T::StringList,
                                         "Load Additional Projects",
                                         "Further projects whose outputs are loaded with this "
                                         "one.",
                                         none);
    debugDependentProjects = m.boolean("debug_dependent_projects", "Debug Dependent Projects",
                                       "<b>Yes</b> loads the outputs of the projects this one "
                                       "depends on.",
                                       false);
    debugAdditionalConfigurations = m.text(
        "debug_additional_configurations", T::StringList, "Additional Configurations",
        "The configurations in which the additional projects are loaded.", none);
    debugProjectName = m.text("debug_project_name", T::String, "Debug Project Name",
                              "The project that is debugged in place of this one.", none);
    debugInitialBreakpoint = m.text("debug_initial_breakpoint", T::String, "Initial Breakpoint",
                                    "A breakpoint that is set when debugging starts.", none);
    debugInitialBreakpointSetOption = m.enumeration(
        "debug_initial_breakpoint_set_option",
        {"Never", "Only With No Breakpoints Set", "Always"}, "Initial Breakpoint Is Set",
        "When the initial breakpoint is set.", "Only With No Breakpoints Set");
    debugLeaveTargetRunning = m.boolean("debug_leave_target_running", "Leave Target Running",
                                        "<b>Yes</b> lets the target run on when debugging stops.",
                                        false);
    debugThreadsScript = m.text("debug_threads_script", T::FileName, "Threads Script",
                                "A script that shows the threads of the program.", none);
    debugThreadsScript->setSpecialValue("JavaScript (*.js)");
    debugThreadsMax = m.number("debug_threads_max", T::Integer, 0, 65535, "Threads Maximum",
                               "The largest number of threads shown.", 20);
    debugHtmlWatch = m.boolean("debug_html_watch", "HTML Watch",
                               "<b>Yes</b> shows watched values as HTML.", false);
    debugTerminalLogFile = m.text("debug_terminal_log_file", T::FileName, "Terminal Log File",
                                  "A file to which the debug terminal's output is written.", none);

    m.section("General", "External Build Options");
    externalBuildCommand = m.text("external_build_command", T::CommandLine, "Build Command",
                                  "The command that builds the project.", none);
    externalCleanCommand = m.text("external_clean_command", T::CommandLine, "Clean Command",
                                  "The command that cleans the project.", none);
    externalCCompileCommand = m.text("external_c_compile_command", T::CommandLine,
                                     "C Compile Command", "The command that compiles a C file.",
                                     none);
    externalCppCompileCommand = m.text("external_cpp_compile_command", T::CommandLine,
                                       "C++ Compile Command",
                                       "The command that compiles a C++ file.", none);
    externalAssembleCommand = m.text("external_assemble_command", T::CommandLine,
                                     "Assemble Command",
                                     "The command that assembles an assembly file.", none);
    externalLinkCommand = m.text("external_link_command", T::CommandLine, "Link Command",
                                 "The command that links the project.", none);
    externalCppLinkCommand = m.text("external_cpp_link_command", T::CommandLine,
                                    "C++ Link Command",
                                    "The command that links a C++ project; when empty the link "
                                    "command is used.",
                                    none);
    externalArchiveCommand = m.text("external_archive_command", T::CommandLine, "Archive Command",
                                    "The command that makes the library.", none);
    externalObjectsFileName = m.text("external_objects_file_name", T::FileName,
                                     "Objects File Name",
                                     "A file to which the objects of the link are written; it "
                                     "gives $(ObjectsFilePath).",
                                     none);

    m.section("C/C++", "Code Analysis Options");
    analyzeHeaders = m.boolean("analyze_headers", "Analyze Header Files",
                               "<b>Yes</b> lets header files be analyzed.", true);
    analyzeAfterCompile = m.boolean("analyze_after_compile", "Analyze After Compile",
                                    "<b>Yes</b> analyzes each C and C++ file after it is "
                                    "compiled.",
                                    false);
    clangTidyChecksC = m.text("clang_tidy_checks_c", T::StringList, "C Checks",
                              "The checks run on C files.",
                              "clang-analyzer-*;-clang-analyzer-cplusplus*");
    clangTidyChecksCpp = m.text("clang_tidy_checks_cpp", T::StringList, "C++ Checks",
                                "The checks run on C++ files.", "clang-analyzer-*");
    analyzeCommand = m.text("analyze_command", T::CommandLine, "Analyze Command",
                            "A command that analyzes a file in place of the default one.", none);
    analyzeCommandCOptions = m.text("analyze_command_c_options", T::StringList,
                                    "Analyze C Options",
                                    "Further options for analyzing C files.", none);
    analyzeCommandCppOptions = m.text("analyze_command_cpp_options", T::StringList,
                                      "Analyze C++ Options",
                                      "Further options for analyzing C++ files.", none);
    m.tools(analyzeAfterCompile, {cStep, cppStep});
    m.tools(clangTidyChecksC, {cStep});
    m.tools(clangTidyChecksCpp, {cppStep});
    m.tools(analyzeCommand, {cStep, cppStep});
    m.tools(analyzeCommandCOptions, {cStep});
    m.tools(analyzeCommandCppOptions, {cppStep});

    // Both the pre-link and the post-link command see $(PostLinkOutputFilePath).
    m.appendBuildMacros(commandMacros, {
        {"CombiningOutputFilePath", "The file that a combine command makes."},
        {"CombiningRelInputPaths", "The inputs of a combine command, quoted, relative to "
                                        "its working directory."},
        {"StageOutputFilePath", "The file that a stage command makes."},
        {"TargetPath", "The absolute path of the file that the step makes."},
        {"RelTargetPath", "The path of the file that the step makes, relative to the "
                               "project directory."},
        {"PostLinkOutputFilePath", "The file that the pre-link command writes."},
        {"PostLinkOutputFilePath", "The file that the post-link command writes."},
        {"MapPath", "The absolute path of the map file."},
        {"RelMapPath", "The path of the map file, relative to the project directory."},
        {"DependencyPath", "The absolute path of the dependency file."},
        {"RelDependencyPath", "The path of the dependency file, relative to the project "
                                   "directory."},
        {"Defines", "The preprocessor definitions as compiler options."},
        {"Includes", "The include directories as compiler options."},
        {"IncludeFiles", "The forced include files as compiler options."},
        {"MacroFiles", "The macro files as compiler options."},
        {"Undefines", "The preprocessor undefinitions as compiler options."},
        {"Objects", "The object files of the link, quoted."},
        {"ObjectsFilePath", "The absolute path of the objects file."},
        {"RelObjectsFilePath", "The path of the objects file, relative to the project "
                                    "directory."},
        {"LinkerScriptPath", "The absolute path of the linker script."},
        {"RelLinkerScriptPath", "The path of the linker script, relative to the project "
                                     "directory."},
        {"AsmOptions", "The assembler options."},
        {"COptions", "The options of the C and C++ compilers."},
        {"COnlyOptions", "The options of the C compiler only."},
        {"CppOnlyOptions", "The options of the C++ compiler only."},
        {"LinkOptions", "The linker options."},
        {"CLANGTIDY", "The path to the clang-tidy command."},
        {"MemorySegments", "The memory segments of the target."},
        {"CC", "The path to the C compiler driver."},
        {"CCPP", "The path to the C++ compiler driver."},
        {"LinkLibraries", "The libraries and library directories of the link."},
    });
}
