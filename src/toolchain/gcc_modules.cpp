// C++ modules with the driver's toolchain. Before the file jobs of a
// project are ordered, clang-scan-deps reads a compilation database of the
// project and reports which module each file provides and which it
// imports. The build orders the jobs by that, and each compile gets a
// module map that tells gcc where the interfaces of its modules lie.

#include "toolchain/gcc_project_system.h"

#include "build/sibling_walk.h"
#include "project/project_system_helpers.h"
#include "support/exceptions.h"
#include "support/file_info.h"
#include "support/file_utils.h"
#include "support/json_value.h"
#include "support/normalise_path.h"
#include "support/paths.h"
#include "support/qtx_process.h"
#include "support/text_split.h"
#include "toolchain/gcc_arguments.h"

#include <cstring>
#include <fstream>
#include <set>

using gcc_arguments::replaceAll;

namespace {

const char *const scanErrorTitle = "Dependency Detection Error";

}  // namespace

bool GCCProjectSystem::scanModuleDependencies(ProjectElement *project, const std::string &configuration) {
    if (getPropertyValue(project, gccProperties.enablePrecompiledHeader, configuration) == "Yes")
        return true;
    if (getPropertyValue(project, gccProperties.enableModules, configuration) != "Yes")
        return false;
    std::string directory = projectDirectory(project, configuration);
    if (directory.empty())
        directory = ".";
    const std::string database = directory + "/" + elementName(project) + ".json";
    moduleScan_.scanning = true;
    const bool written = writeScanDatabase(database, project, configuration);
    moduleScan_.scanning = false;
    auto report = [&](const StringList &lines) {
        if (helpers)
            helpers->warning(project, configuration, scanErrorTitle, lines);
    };
    if (!written) {
        report({"can't write '" + database + "'"});
        return true;
    }

    const std::string scanner = expandProjectMacros(project, "$(StudioDir)/llvm/bin/clang-scan-deps$(HostEXE)",
                                                    configuration);
    StringList output, errors;
    QTxProcess process(&output, &errors);
    int status = process.startChild({scanner, "-compilation-database", database, "-format=p1689"}, directory, true,
                                    false);
    while (process.pollChild(status) != 0) {
    }
    if (status < 0 || process.startFailed())
        errors.push_back("can't run '" + scanner + "': " + std::strerror(process.startError()));
    if (errors.empty())
        removeFile(database);
    else
        report(errors);

    JSON::Value answer;
    try {
        JSON::parse(joinItems(output, "\n"), answer);
    } catch (const HException &e) {
        // Nothing readable came back; what the scanner said is reported.
        if (errors.empty())
            report({e.message()});
        return true;
    }
    const JSON::Value &rules = answer.member("rules");
    if (rules.type() == JSON::Null)
        return true;

    moduleScan_.required.clear();
    std::map<std::string, ProjectElement *> byObject, bySource;
    walkFromSibling(firstChild(project), [&](ProjectElement *node) {
        if (!isFile(node))
            return true;
        byObject.emplace(objectFilePath(node, configuration), node);
        std::string source = sourcePath(node, configuration);
        normalisePath(source);
        bySource.emplace(source, node);
        return false;
    });
    for (const JSON::Value &rule : rules.elements()) {
        const auto found = byObject.find(rule.stringMember("primary-output"));
        ProjectElement *element = found == byObject.end() ? nullptr : found->second;
        const JSON::Elements &provides = rule.arrayMember("provides");
        if (element && provides.size() == 1 && provides.front().member("logical-name").type() == JSON::String)
            moduleScan_.names[element] = provides.front().stringMember("logical-name");
        const JSON::Value &requirements = rule.member("requires");
        if (!element || requirements.type() == JSON::Null)
            continue;
        std::vector<ProjectElement *> &list = moduleScan_.required[element];
        list.clear();
        for (const JSON::Value &entry : requirements.elements()) {
            const JSON::Value &sourcePath = entry.member("source-path");
            if (sourcePath.type() != JSON::String)
                continue;  // a module of a system library
            std::string path = sourcePath.string();
            normalisePath(path);
            const auto file = bySource.find(path);
            if (file != bySource.end())
                list.push_back(file->second);
            else
                report({sourcePath.string() + " file not found in project"});
        }
    }
    return true;
}

std::string GCCProjectSystem::moduleNameOf(ProjectElement *element, const std::string &configuration) {
    const auto found = moduleScan_.names.find(element);
    return found != moduleScan_.names.end() ? found->second
                                            : StandardProjectSystem::moduleNameOf(element, configuration);
}

std::vector<ProjectElement *> GCCProjectSystem::filePrerequisites(ProjectElement *element,
                                                                  const std::string &configuration) {
    if (ProjectElement *header = precompiledHeaderOf(element, configuration))
        return header == element ? std::vector<ProjectElement *>() : std::vector<ProjectElement *>{header};
    const auto found = moduleScan_.required.find(element);
    return found != moduleScan_.required.end() ? found->second : std::vector<ProjectElement *>();
}

void GCCProjectSystem::importedModules(ProjectElement *element, const std::string &configuration,
                                       ModuleList &result) {
    // Depth first, without recursion, each file once.
    const auto &names = moduleScan_.names;
    std::set<ProjectElement *> visited{element};
    struct Frame {
        const std::vector<ProjectElement *> *required;
        std::size_t next;
    };
    std::vector<Frame> stack;
    auto enter = [&](ProjectElement *node) {
        const auto found = moduleScan_.required.find(node);
        if (found != moduleScan_.required.end())
            stack.push_back({&found->second, 0});
    };
    enter(element);
    while (!stack.empty()) {
        Frame &frame = stack.back();
        if (frame.next == frame.required->size()) {
            stack.pop_back();
            continue;
        }
        ProjectElement *node = (*frame.required)[frame.next++];
        if (const auto name = names.find(node); name != names.end())
            result[name->second] = outputFilePath(KindCpp, node, configuration);
        if (visited.insert(node).second)
            enter(node);
    }
}

void GCCProjectSystem::collectModules(ProjectElement *element, const std::string &configuration,
                                      const std::string &ownFile, ModuleList &result) {
    if (const auto own = moduleScan_.names.find(element); own != moduleScan_.names.end())
        result[own->second] = ownFile;
    importedModules(element, configuration, result);
    for (const std::string &entry :
         splitAtAny(expandedValue(element, gccProperties.additionalModules, configuration), ";")) {
        const std::size_t equals = entry.find('=');
        if (equals == std::string::npos)
            result[entry] = entry;
        else
            result[entry.substr(0, equals)] = entry.substr(equals + 1);
    }
}

std::string GCCProjectSystem::writeModuleMapFile(ProjectElement *element, const std::string &configuration,
                                                 const std::string &ownFile) {
    const std::string path =
        intermediateFilePath(element, configuration, sourcePath(element, configuration), ".modmap");
    makeDirectories(directoryOf(path));
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file)
        return std::string();
    file << "$root .\n";
    ModuleList modules;
    collectModules(element, configuration, ownFile, modules);
    for (const auto &[name, object] : modules)
        file << name << ' ' << replaceAll(object, ".o", ".gcm") << '\n';
    file.close();
    if (!file)
        return std::string();
    return relativeOrAbsolute(projectDirectory(element, configuration), path);
}

const StringList &GCCProjectSystem::fileDependencies(ProjectElement *element, const std::string &configuration,
                                                     const std::string &output) {
    const StringList &files = StandardProjectSystem::fileDependencies(element, configuration, output);
    if (!isFile(element) || sourceKind(element, configuration) != KindCpp ||
        getPropertyValue(element, gccProperties.enableModules, configuration) != "Yes")
        return files;
    ModuleList modules;
    importedModules(element, configuration, modules);
    if (modules.empty())
        return files;
    StringList &result = moduleScan_.dependencies;
    result = files.empty() ? StringList{sourcePath(element, configuration)} : files;
    for (const auto &[name, object] : modules)
        result.push_back(replaceAll(object, ".o", ".gcm"));
    return result;
}

void GCCProjectSystem::appendModuleOptions(ProjectElement *element, const std::string &configuration,
                                           const std::string &object, StringList &list) {
    if (usesModuleMapper(element, configuration)) {
        list.push_back("-Mno-modules");
        const std::string map = writeModuleMapFile(element, configuration, object);
        if (!map.empty())
            list.push_back("-fmodule-mapper=" + map);
        return;
    }
    // Without a mapper each imported interface that exists is named.
    ModuleList modules;
    importedModules(element, configuration, modules);
    const std::string extension = "." + FileInfo(moduleInterfaceFilePath(element, configuration)).suffix();
    for (const auto &[name, file] : modules) {
        const std::string interface = replaceAll(file, ".o", extension);
        if (FileInfo(interface).exists())
            list.push_back("-fmodule-file=" + name + "=" + interface);
    }
}
