#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QXMLDocument;
class SystemMacros;
class XMLElement;
class XmlPP;

// The installation's bin/config.xml: settings that the installation fixes,
// system macros it adds, and environment variables it sets for the program
// and its children. Its environment-setting elements are applied by the
// environment settings, from document().
class ConfigFile {
public:
    // The program's one store, made on the first call; later calls return
    // it and ignore `macros`.
    static ConfigFile &instance(SystemMacros &macros);

    // A store of its own; the program uses instance().
    explicit ConfigFile(SystemMacros &macros);
    ConfigFile(const ConfigFile &) = delete;
    ConfigFile &operator=(const ConfigFile &) = delete;
    ~ConfigFile();

    // Reads <installDirectory>/bin/config.xml, on the first call only. A
    // missing file is no error; one that can't be read or parsed is written
    // to the trace ("cannot load configuration file - ...") and the run goes
    // on with what was stored before.
    void load(const std::string &installDirectory);

    // The value of the setting `name`, else `defaultValue`.
    std::string setting(const std::string &name, const std::string &defaultValue) const;

    // The parsed and pre-processed file; its root is null if there is none.
    const QXMLDocument &document() const;

private:
    // The pre-processor and the document it holds.
    std::unique_ptr<XmlPP> reader_;
    bool loadTried_ = false;
    std::map<std::string, std::string> settings_;
    SystemMacros &macros_;
};

// The elements named `tag` below `root`, in document order.
std::vector<const XMLElement *> configurationElements(const XMLElement *root, std::string_view tag);

// The value of a setting, system-macro or environment-variable element: its
// `value` attribute, as it stands with expand="no" (in any case), else with
// $(StudioDir), $(UserHomeDir) and $(UserDataDir) replaced by the install,
// home and data directories and every other $(...) by nothing. A "$(" without
// ")" ends the replacing; the rest stays as it is.
std::string configurationValue(const XMLElement &element, const std::string &installDirectory);
