// Which properties a node takes: the lines of a property listing, by the
// kind of the node and the type of its project.

#include "project/build_output_file_name_property_class.h"
#include "project/project_system.h"
#include "project/property_group_files.h"
#include "project/tree_walk.h"
#include "support/file_info.h"
#include "support/text_split.h"

#include <algorithm>
#include <initializer_list>
#include <set>
#include <string_view>

namespace {

const std::string commonName = "Common";

using Names = std::initializer_list<std::string_view>;

bool isOneOf(const std::string &text, Names words) {
    return std::find(words.begin(), words.end(), text) != words.end();
}

bool isExternallyBuilt(const std::string &type) { return type.starts_with("Externally Built"); }

// The classes of the names that the map holds; other names are passed over,
// since a toolchain's table may lack them.
void addNamed(const PropertyClassMap &map, ProjectSystem::PropertyClassList &list, Names names) {
    for (std::string_view name : names)
        if (PropertyClass *property = map.propertyClass(name))
            list.push_back(property);
}

// The four classes of a numbered family: the plain name and 1 to 3 behind.
void addFamily(const PropertyClassMap &map, ProjectSystem::PropertyClassList &list,
               const std::string &name) {
    for (const char *suffix : {"", "1", "2", "3"})
        if (PropertyClass *property = map.propertyClass(name + suffix))
            list.push_back(property);
}

// build_output_file_name, worded for the kind of output it names.
void addOutputFileName(const PropertyClassMap &map, ProjectSystem::PropertyClassList &list,
                       bool library) {
    PropertyClass *property = map.propertyClass("build_output_file_name");
    if (!property)
        return;
    if (auto *outputName = dynamic_cast<BuildOutputFileNamePropertyClass *>(property)) {
        if (library)
            outputName->setLibraryMode();
        else
            outputName->setExecutableMode();
    }
    list.push_back(property);
}

template <class Value = ProjectPropertyValue>
void addLine(ProjectSystem &system, PropertyValueList &list, ProjectElement *element,
             std::string_view name, const std::string &configuration) {
    if (PropertyClass *property = system.propertyClasses.propertyClass(name))
        list.append(std::make_unique<Value>(element, property, configuration, &system));
}

void addLines(ProjectSystem &system, PropertyValueList &list, ProjectElement *element, Names names,
              const std::string &configuration) {
    for (std::string_view name : names)
        addLine(system, list, element, name, configuration);
}

void addSimpleLine(ProjectSystem &system, PropertyValueList &list, std::string_view name,
                   std::optional<std::string> text) {
    if (PropertyClass *property = system.propertyClasses.propertyClass(name))
        list.append(std::make_unique<SimplePropertyValue>(property, std::move(text)));
}

// date_created and date_modified of a file; empty texts if there is none.
void addFileTimes(ProjectSystem &system, PropertyValueList &list, const std::string &path) {
    FileTime created, modified;
    if (!path.empty()) {
        const FileInfo info(path);
        created = info.created();
        modified = info.lastModified();
    }
    addSimpleLine(system, list, "date_created", created.toText());
    addSimpleLine(system, list, "date_modified", modified.toText());
}

const Names userCommands = {"pre_build_command",  "pre_build_command_wd",
                            "pre_build_command_control", "post_build_command",
                            "post_build_command_wd", "post_build_command_control"};

const Names externalCommands = {"external_c_compile_command", "external_cpp_compile_command",
                                "external_assemble_command"};

const Names compileSteps = {"compile_pre_build_command", "compile_pre_build_command_output_file_name",
                            "compile_pre_build_command_wd", "compile_post_build_command",
                            "compile_post_build_command_wd"};

const Names additionalOptions = {"asm_additional_options", "c_additional_options",
                                 "c_only_additional_options", "cpp_only_additional_options"};

const Names compileBackups = {"asm_additional_options_backup", "c_additional_options_backup",
                              "c_only_additional_options_backup",
                              "cpp_only_additional_options_backup"};

const Names analysis = {"clang_tidy_checks_c",       "clang_tidy_checks_cpp",
                        "analyze_headers",           "analyze_after_compile",
                        "analyze_command",           "analyze_command_c_options",
                        "analyze_command_cpp_options"};

// The groups that a project may choose from, one line per name: those of
// its group file and, for projects that compile, of the libraries.
void addGroupLines(ProjectSystem &system, PropertyValueList &list, ProjectElement *project,
                   const std::string &configuration) {
    const std::string type = system.getPropertyValue(project, system.nodeProperties.projectType,
                                                     configuration)
                                 .value_or(std::string());
    const bool libraries =
        isOneOf(type, {"Executable", "Library", "Object file", "Externally Built Executable"});
    const auto target = static_cast<std::uint32_t>(system.platformCode());
    std::set<std::string_view> names;
    for (PropertyValueGroupClass *group :
         system.groupClasses(system.groupFileOf(project, configuration),
                             system.isCppProject(project, configuration))) {
        if ((group->fromLibrary() && !libraries) || !group->appliesTo(target) ||
            !names.insert(group->name()).second)
            continue;
        list.append(std::make_unique<PropertyValueGroupValue>(project, group, configuration, &system));
    }
}

} // namespace

// ---- What the toolchains fill in.

bool ProjectSystem::isHostedToolchain() const { return false; }

void ProjectSystem::appendCProperties(ProjectElement *, const std::string &, PropertyClassList &) {}

void ProjectSystem::appendCppProperties(ProjectElement *, const std::string &,
                                        PropertyClassList &) {}

void ProjectSystem::appendAssemblerProperties(ProjectElement *, const std::string &,
                                              PropertyClassList &) {}

void ProjectSystem::appendSourceFileProperties(ProjectElement *, const std::string &,
                                               PropertyClassList &) {}

void ProjectSystem::appendLinkerProperties(ProjectElement *, const std::string &,
                                           PropertyClassList &) {}

void ProjectSystem::appendDebugProperties(ProjectElement *, const std::string &,
                                          PropertyClassList &) {}

void ProjectSystem::appendLibraryProperties(ProjectElement *, const std::string &,
                                            PropertyClassList &) {}

void ProjectSystem::appendToolchainProperties(ProjectElement *, const std::string &,
                                              PropertyClassList &) {}

void ProjectSystem::appendLanguageProperties(ProjectElement *, const std::string &,
                                             PropertyClassList &) {}

// ---- The classes of a project type.

void ProjectSystem::appendProjectTypeProperties(ProjectElement *element,
                                                const std::string &configuration,
                                                PropertyClassList &set, const std::string &type) {
    const PropertyClassMap &map = propertyClasses;
    const auto add = [&](Names names) { addNamed(map, set, names); };
    const auto core = [&] {
        add({"build_toolchain_directory", "build_output_directory", "build_intermediate_directory",
             "build_object_file_name"});
    };
    const auto languages = [&] {
        appendCProperties(element, configuration, set);
        if (isCppProject(element, configuration))
            appendCppProperties(element, configuration, set);
        appendAssemblerProperties(element, configuration, set);
    };
    const auto loadAndDebug = [&] {
        add({"external_build_file_name", "external_load_address", "external_load_file_type"});
        addFamily(map, set, "external_debug_symbols_file_name");
        addFamily(map, set, "external_debug_symbols_load_address");
    };
    const auto externallyBuilt = [&] {
        core();
        add({"external_build_command", "external_clean_command"});
        add(externalCommands);
    };
    const auto externalTail = [&] {
        add(compileSteps);
        appendLanguageProperties(element, configuration, set);
    };

    if (type == "Executable") {
        core();
        languages();
        appendLinkerProperties(element, configuration, set);
        appendDebugProperties(element, configuration, set);
        addOutputFileName(map, set, false);
        add({"property_groups_file_path", "add_property_group_includes_defines"});
        if (!isHostedToolchain()) {
            loadAndDebug();
            add(externalCommands);
            add({"external_link_command", "external_cpp_link_command", "external_objects_file_name"});
        }
    } else if (type == "Library") {
        core();
        languages();
        appendLibraryProperties(element, configuration, set);
        addOutputFileName(map, set, true);
        add(externalCommands);
        add({"external_archive_command", "external_objects_file_name"});
    } else if (type == "Object file") {
        core();
        languages();
    } else if (type == "Staging") {
        add({"build_output_directory", "stage_command", "stage_command_wd", "stage_output_filepath",
             "stage_output_filepath_replace", "stage_post_build_command",
             "stage_post_build_command_wd", "stage_set_readonly"});
    } else if (type == "Combining") {
        add({"build_output_directory", "combine_command", "combine_command_wd",
             "combine_output_filepath", "combine_set_readonly"});
    } else if (type == "Externally Built Executable") {
        externallyBuilt();
        addOutputFileName(map, set, false);
        add({"external_link_command", "external_cpp_link_command", "external_objects_file_name"});
        add(additionalOptions);
        add({"linker_additional_options", "link_use_linker_script_file", "link_linker_script_file",
             "link_dependent_projects", "linker_pre_build_command",
             "linker_pre_build_command_output_file_name", "linker_pre_build_command_wd",
             "linker_post_build_command", "linker_post_build_command_wd",
             "linker_post_build_command_output_file", "build_generic_options_file_name",
             "link_additional_options_backup"});
        add(compileBackups);
        loadAndDebug();
        appendDebugProperties(element, configuration, set);
        add({"property_groups_file_path", "add_property_group_includes_defines",
             "linker_memory_map_file", "linker_memory_map_macros",
             "linker_section_placements_segments"});
        appendToolchainProperties(element, configuration, set);
        add(analysis);
        externalTail();
    } else if (type == "Externally Built Library") {
        externallyBuilt();
        addOutputFileName(map, set, true);
        add({"external_archive_command", "external_objects_file_name"});
        add(additionalOptions);
        add({"build_generic_options_file_name"});
        add(compileBackups);
        appendToolchainProperties(element, configuration, set);
        add(analysis);
        externalTail();
    } else if (type == "Externally Built Object file") {
        externallyBuilt();
        add(additionalOptions);
        appendToolchainProperties(element, configuration, set);
        add(analysis);
        externalTail();
    } else if (type == "Preprocess") {
        add({"build_toolchain_directory", "build_preprocess_output_file_name"});
        languages();
    }
}

// ---- The listing.

PropertyValueList ProjectSystem::toolPropertyValues(ProjectElement *element,
                                                    const std::string &configuration) {
    loadGenericOptions(element, configuration);

    const PropertyClassMap &map = propertyClasses;
    PropertyClassList set;
    const auto add = [&](Names names) { addNamed(map, set, names); };
    ProjectElement *project = projectOf(element);
    const std::string type =
        project ? getPropertyValue(project, nodeProperties.projectType, configuration)
                      .value_or(std::string())
                : std::string();

    if (isProject(element)) {
        appendProjectTypeProperties(element, configuration, set, type);
        add({"build_exclude_from_build", "build_always_rebuild", "file_codec"});
    } else if (isSolution(element)) {
        // Every project below, nested solutions included; a project holds
        // no projects, so its subtree is passed over.
        for (XMLNode *node = element; node;) {
            ProjectElement *below = ProjectElement::from(node);
            if (isProject(below))
                appendProjectTypeProperties(
                    below, configuration, set,
                    getPropertyValue(below, nodeProperties.projectType, configuration)
                        .value_or(std::string()));
            node = nextInSubtree(node, element, !isProject(below));
        }
        add({"file_codec"});
    } else if (isFolder(element)) {
        if (isOneOf(type, {"Executable", "Library", "Object file"})) {
            appendProjectTypeProperties(element, configuration, set, "Object file");
            add({"build_intermediate_directory", "unity_build_file_name",
                 "unity_build_exclude_filter"});
        } else if (type == "Staging") {
            appendProjectTypeProperties(element, configuration, set, "Staging");
        }
        add({"build_exclude_from_build", "build_always_rebuild", "file_type", "file_codec"});
    } else if (isFile(element) && !project) {
        add({"file_codec", "file_open_with", "file_type"});
    } else if (isFile(element) && type == "Staging") {
        add({"stage_output_filepath", "stage_command", "stage_command_wd",
             "build_exclude_from_build", "stage_set_readonly"});
    } else if (isFile(element)) {
        add({"file_codec", "file_open_with", "file_type", "build_exclude_from_build",
             "build_always_rebuild"});
        const bool external = isExternallyBuilt(type);
        const std::string fileType = fileTypeName(element, configuration);
        const auto externalTail = [&] {
            add(compileSteps);
            appendLanguageProperties(element, configuration, set);
        };
        if (fileType == "C") {
            add({"external_c_compile_command", "build_object_file_name"});
            if (external) {
                add({"c_additional_options", "c_only_additional_options"});
                externalTail();
            } else {
                appendCProperties(element, configuration, set);
            }
        } else if (fileType == "C++") {
            add({"external_cpp_compile_command", "build_object_file_name"});
            if (external) {
                add({"c_additional_options", "cpp_only_additional_options"});
                externalTail();
            } else {
                appendCppProperties(element, configuration, set);
            }
        } else if (fileType == "Assembly") {
            add({"external_assemble_command", "build_object_file_name"});
            if (external) {
                add({"asm_additional_options"});
                externalTail();
            } else {
                appendAssemblerProperties(element, configuration, set);
            }
        } else if (fileType == "Header") {
            appendSourceFileProperties(element, configuration, set);
            add({"analyze_headers"});
        }
    }

    // properties_filter keeps the pages it names, in the form that the
    // classes store them.
    std::set<std::string, std::less<>> pages;
    for (const std::string &page : splitAtAny(
             getPropertyValue(element, nodeProperties.propertiesFilter, configuration)
                 .value_or(std::string()),
             ";"))
        pages.insert(std::string(PropertyClass::normalisedPage(page)));

    // One line per class, in name order: the order of the set means
    // nothing, and a listing is easiest to read sorted. A copy of a row for
    // another page is a class of its own, with the same save name.
    set.erase(std::remove(set.begin(), set.end(), nullptr), set.end());
    std::stable_sort(set.begin(), set.end(), [](const PropertyClass *a, const PropertyClass *b) {
        return a->name() != b->name() ? a->name() < b->name() : a->page() < b->page();
    });
    set.erase(std::unique(set.begin(), set.end()), set.end());

    PropertyValueList list;
    for (PropertyClass *property : set)
        if (pages.empty() || pages.count(property->page()))
            list.append(std::make_unique<ProjectPropertyValue>(element, property, configuration, this));

    GenericOptionSet *options = activeGenericOptions();
    if (options && isProject(element) &&
        (isOneOf(type, {"Executable", "Library", "Object file"}) || isExternallyBuilt(type))) {
        for (const auto &group : options->groupClasses())
            list.append(std::make_unique<PropertyValueGroupValue>(element, group.get(),
                                                                  configuration, this));
    }
    return list;
}

PropertyValueList ProjectSystem::loaderPropertyValues(ProjectElement *element,
                                                      const std::string &configuration) {
    PropertyValueList list;
    for (PropertyClass *property : loaderProperties())
        if (property)
            list.append(std::make_unique<ProjectPropertyValue>(element, property, configuration, this));
    return list;
}

PropertyValueList ProjectSystem::getPropertyValues(ProjectElement *element,
                                                   const std::string &configuration) {
    if (!element)
        return {};
    // Loader configurations belong to projects.
    if (configuration != commonName && isProject(element)) {
        ProjectElement *store = findConfiguration(element, configuration);
        if (store && isLoaderConfiguration(store))
            return loaderPropertyValues(element, configuration);
    }

    // The files of a dynamic folder come and go with the directory: they take
    // only the lines of their kind.
    ProjectElement *folder = folderOf(element);
    PropertyValueList list;
    if (!hasAttribute(folder, "path"))
        list = toolPropertyValues(element, configuration);

    const auto lines = [&](Names names) { addLines(*this, list, element, names, configuration); };
    const auto filterHelp = [&](PropertyText text) {
        if (PropertyClass *filter = propertyClasses.propertyClass("filter"))
            filter->setLongText(text);
    };

    if (isFile(element)) {
        const std::string path = absoluteFilePath(element, configuration);
        addSimpleLine(*this, list, "full_path", path);
        addSimpleLine(*this, list, "file_name", attribute(element, "file_name"));
        addFileTimes(*this, list, path);
        lines({"project_inhibit_indexing", "code_completion_options"});
    } else if (isFolder(element) && hasAttribute(element, "path")) {
        filterHelp("Dynamic folder filter specification - ; seperated wildcards.");
        for (std::string_view name : {"path", "filter", "recurse", "exclude"})
            addLine<DynamicFolderPropertyValue>(*this, list, element, name, configuration);
        lines({"project_inhibit_indexing", "code_completion_options"});
    } else if (isFolder(element)) {
        filterHelp("A filter used when adding new files to the project.");
        addLine(*this, list, element, "filter", commonName);
        lines({"project_inhibit_indexing", "code_completion_options"});
    } else if (isProject(element)) {
        lines({"project_type"});
        addLine<ProjectDirectoryProjectPropertyValue>(*this, list, element, "project_directory",
                                                      configuration);
        addSimpleLine(*this, list, "full_project_directory", fullProjectDirectory(element));
        addLine<ProjectMacrosProjectPropertyValue>(*this, list, element, "macros", configuration);
        lines({"project_dependencies", "project_can_build_in_parallel", "package_dependencies",
               "batch_build_configurations", "project_inhibit_indexing", "code_completion_options",
               "compilation_database_file", "generate_compilation_database_file"});
        lines(userCommands);
        addGroupLines(*this, list, element, configuration);
    } else if (isSolution(element)) {
        const std::string path =
            element->filePath.isEmpty() ? std::string() : element->filePath.absoluteFilePath();
        addSimpleLine(*this, list, "name", path);
        addFileTimes(*this, list, path);
        addLine<ProjectMacrosProjectPropertyValue>(*this, list, element, "macros", configuration);
        lines({"package_directory", "project_inhibit_indexing", "code_completion_options",
               "compilation_database_file", "generate_compilation_database_file"});
        lines(userCommands);
        lines({"batch_build_configurations", "source_code_control_directory",
               "environment_variables"});
    }

    for (PropertyChangeListener *listener : propertyListeners)
        listener->appendPropertyValues(element, configuration, list);
    return list;
}
