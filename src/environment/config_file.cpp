#include "environment/config_file.h"

#include "environment/system_macros.h"
#include "environment/user_directories.h"
#include "project/xml/xml_pp.h"
#include "support/file_info.h"
#include "support/file_utils.h"
#include "support/trace.h"

#include <cctype>
#include <string_view>
#include <vector>

namespace {

bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) {
    if (text.size() != lowerCase.size())
        return false;
    for (size_t i = 0; i < text.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(text[i])) != lowerCase[i])
            return false;
    }
    return true;
}

// The elements of the three kinds below `root`, each in document order.
struct ConfigurationElements {
    std::vector<const XMLElement *> settings;
    std::vector<const XMLElement *> systemMacros;
    std::vector<const XMLElement *> environmentVariables;
};

ConfigurationElements collectElements(const XMLElement *root) {
    return {configurationElements(root, "setting"), configurationElements(root, "system-macro"),
            configurationElements(root, "environment-variable")};
}

void traceLoadError(const std::string &message) {
    if (traceFlags & TraceErrors)
        trace("error", true, "cannot load configuration file - %s", message.c_str());
}

// The element's name; empty if it has none.
std::string nameOf(const XMLElement &element) {
    const std::string *name = element.attribute("name");
    return name ? *name : std::string();
}

}  // namespace

std::vector<const XMLElement *> configurationElements(const XMLElement *root, std::string_view tag) {
    std::vector<const XMLElement *> found;
    // A walk in document order along the links, without recursion.
    const XMLNode *node = root;
    while (node) {
        const XMLElement *element = node->toElement();
        if (element && element->tagName == tag)
            found.push_back(element);
        if (node->firstChild) {
            node = node->firstChild;
            continue;
        }
        while (node && node != root && !node->nextSibling)
            node = node->parent;
        node = node && node != root ? node->nextSibling : nullptr;
    }
    return found;
}

std::string configurationValue(const XMLElement &element, const std::string &installDirectory) {
    const std::string *attribute = element.attribute("value");
    if (!attribute || attribute->empty())
        return {};
    const std::string &value = *attribute;
    const std::string *expand = element.attribute("expand");
    if (expand && equalsIgnoringCase(*expand, "no"))
        return value;

    // What a replacement brings in isn't searched again, so a home directory
    // that holds "$(" stays as it is.
    std::string result;
    size_t at = 0;
    for (;;) {
        const size_t open = value.find("$(", at);
        const size_t close = open == std::string::npos ? open : value.find(')', open + 2);
        if (close == std::string::npos) {
            result.append(value, at, std::string::npos);
            return result;
        }
        result.append(value, at, open - at);
        const std::string_view name(value.data() + open + 2, close - open - 2);
        if (name == "StudioDir")
            result += installDirectory;
        else if (name == "UserHomeDir")
            result += userHomeDirectory();
        else if (name == "UserDataDir")
            result += userDataDirectory();
        at = close + 1;
    }
}

ConfigFile &ConfigFile::instance(SystemMacros &macros) {
    // Made once and never freed: it lives as long as the process.
    static ConfigFile *store = new ConfigFile(macros);
    return *store;
}

ConfigFile::ConfigFile(SystemMacros &macros) : reader_(std::make_unique<XmlPP>(macros)), macros_(macros) {}

ConfigFile::~ConfigFile() = default;

const QXMLDocument &ConfigFile::document() const {
    return reader_->document;
}

void ConfigFile::load(const std::string &installDirectory) {
    if (loadTried_)
        return;
    loadTried_ = true;
    const std::string file = installDirectory + "/bin/config.xml";
    const FileInfo info(file);
    if (!info.exists())
        return;
    if (!info.isFile() || !info.isReadable()) {
        traceLoadError("couldn't read " + file);
        return;
    }
    // The macros of the pre-processor's conditions are its own defines;
    // the system table serves the names of include files.
    if (!reader_->load(file, std::string(), false)) {
        traceLoadError(reader_->errorText + " line: " + std::to_string(reader_->errorLine) +
                       " column: " + std::to_string(reader_->errorColumn));
        return;
    }

    const ConfigurationElements elements = collectElements(reader_->document.root);
    for (const XMLElement *element : elements.settings) {
        const std::string name = nameOf(*element);
        if (!name.empty())
            settings_[name] = configurationValue(*element, installDirectory);
    }
    for (const XMLElement *element : elements.systemMacros) {
        const std::string name = nameOf(*element);
        if (!name.empty())
            macros_.addSystemMacro(name, configurationValue(*element, installDirectory), "");
    }
    for (const XMLElement *element : elements.environmentVariables) {
        const std::string name = nameOf(*element);
        if (!name.empty())
            setEnvironment(name, configurationValue(*element, installDirectory));
    }
}

std::string ConfigFile::setting(const std::string &name, const std::string &defaultValue) const {
    const auto found = settings_.find(name);
    return found == settings_.end() ? defaultValue : found->second;
}
