#pragma once

#include "environment/settings.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

class XMLElement;

// The value types of environment settings, numbered as the property types of
// a project.
enum class EnvironmentSettingType {
    Boolean = 0,
    Integer = 1,
    IntegerRange = 3,
    String = 4,
    FileName = 5,
    StringList = 7,
    DirPath = 8,
    DirPathList = 9,
};

// What describes a setting: its key in the store, its type and default, and
// where a settings page shows it.
struct EnvironmentSettingClass {
    std::string name;
    EnvironmentSettingType type = EnvironmentSettingType::String;
    std::string page;
    std::string group;
    std::string title;
    std::string description;
    // A Boolean without one has "No".
    std::string defaultValue;
    std::string specialValueText;
    std::string suffix;
    int minimum = 0;
    int maximum = 0;
};

class EnvironmentSettings;

// One setting: its description, and its value in one of the two stores. The
// store holds only values that differ from the default.
class EnvironmentPropertyValue {
public:
    EnvironmentPropertyValue(EnvironmentSettings &owner, EnvironmentSettingClass description, int store);

    EnvironmentSettingClass &propertyClass() { return class_; }
    const EnvironmentSettingClass &propertyClass() const { return class_; }
    int store() const { return store_; }

    // The store's value, else the default; read on the first call and kept.
    const std::string &string();
    // The items of a ";"-separated list; empty items are dropped.
    std::vector<std::string> stringList();
    // Writes a new value through to the store; the default removes the key.
    void setString(const std::string &text);
    // The next string() reads the store again.
    void unload() { loaded_ = false; }

private:
    EnvironmentSettings &owner_;
    EnvironmentSettingClass class_;
    bool loaded_ = false;
    std::string value_;
    int store_;
};

// The user's options that belong to no solution, each kept in one of two
// settings files: the root store, shared by every version of the product, and
// the version store of this major version, which holds almost all of them.
// The files are written when the object goes.
class EnvironmentSettings {
public:
    enum StoreIndex { RootStore = 0, VersionStore = 1 };

    // Opens <rootUserDirectory>/settings.xml and
    // <studioUserDirectory>/settings.xml, and makes the general settings.
    EnvironmentSettings(const std::string &rootUserDirectory, const std::string &studioUserDirectory);
    EnvironmentSettings(const EnvironmentSettings &) = delete;
    EnvironmentSettings &operator=(const EnvironmentSettings &) = delete;
    virtual ~EnvironmentSettings();

    Settings &store(int index) { return index == RootStore ? rootStore_ : versionStore_; }
    // The setting of that key, if a page shows it; else null.
    EnvironmentPropertyValue *settingByName(const std::string &key) const;
    // The settings of each page, in the order they were made.
    const std::map<std::string, std::vector<EnvironmentPropertyValue *>> &pages() const { return pages_; }

    // Applies the environment-setting elements below `root` (bin/config.xml),
    // in document order: a known setting takes the element's value (written
    // to its store) and default-value; an unknown one is made from the
    // element's type, page, group, title, description and default-value.
    void applyConfiguration(const XMLElement *root);

    // Brings both files and the tables together, the version store first.
    void sync();
    // Forgets every value of both stores.
    void reset();
    // Deletes the keys that match the wildcard pattern from both stores.
    void removeMatching(const std::string &pattern);

    // Off: sync() does nothing.
    bool syncAllowed = true;

    // The settings that a build reads.
    EnvironmentPropertyValue *packageDestinationDirectory = nullptr;
    EnvironmentPropertyValue *globalMacros = nullptr;

protected:
    // Makes a setting; a page other than "" and "(Internal)" lists it and
    // makes it known by name.
    EnvironmentPropertyValue *addSetting(EnvironmentSettingClass description, int store = VersionStore);

private:
    void unloadAll();
    EnvironmentPropertyValue *makeSetting(const XMLElement &element, const std::string &name);

    Settings rootStore_;
    Settings versionStore_;
    std::vector<std::unique_ptr<EnvironmentPropertyValue>> values_;
    std::map<std::string, std::vector<EnvironmentPropertyValue *>> pages_;
    std::map<std::string, EnvironmentPropertyValue *> byName_;
};

// The settings of the ARM product: the general ones and the directory under
// which its tools are installed.
class ARMTarnbenchEnvironmentSettings : public EnvironmentSettings {
public:
    ARMTarnbenchEnvironmentSettings(const std::string &rootUserDirectory, const std::string &studioUserDirectory);

    // The directory that stands for $(StudioDir) in the tool directory.
    EnvironmentPropertyValue *studioDirDirectory = nullptr;
};

// The process's settings object; null before it is installed and after it is
// closed.
EnvironmentSettings *environmentSettings();
void installEnvironmentSettings(std::unique_ptr<EnvironmentSettings> settings);
// Deletes the process's settings object, which writes both settings files.
void closeEnvironmentSettings();
