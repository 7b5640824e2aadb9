#include "environment/environment_settings.h"

#include "environment/config_file.h"
#include "environment/user_directories.h"
#include "project/xml/xml_element.h"
#include "support/trace.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <optional>

namespace {

using Type = EnvironmentSettingType;

std::unique_ptr<EnvironmentSettings> &processSettings() {
    static auto *settings = new std::unique_ptr<EnvironmentSettings>;
    return *settings;
}

// A setting that the constructor defines: the page is the key up to its last
// "/", the title the rest.
EnvironmentSettingClass definition(const std::string &key, Type type, const std::string &defaultValue = {}) {
    EnvironmentSettingClass description;
    description.name = key;
    description.type = type;
    const size_t slash = key.rfind('/');
    description.page = slash == std::string::npos ? std::string() : key.substr(0, slash);
    description.title = key.substr(slash == std::string::npos ? 0 : slash + 1);
    description.defaultValue = defaultValue;
    return description;
}

std::string attributeText(const XMLElement &element, const char *name) {
    const std::string *value = element.attribute(name);
    return value ? *value : std::string();
}

// A whole decimal number that fits an int; anything else counts as 0.
int decimal(const std::string &text) {
    if (text.empty())
        return 0;
    char *end = nullptr;
    errno = 0;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (*end || errno || value < INT_MIN || value > INT_MAX)
        return 0;
    return int(value);
}

std::optional<Type> typeOfWord(const std::string &word) {
    static const std::map<std::string, Type> words{
        {"string", Type::String},     {"integer", Type::Integer}, {"boolean", Type::Boolean},
        {"filepath", Type::FileName}, {"dirpath", Type::DirPath}, {"dirpaths", Type::DirPathList},
    };
    const auto found = words.find(word);
    return found == words.end() ? std::nullopt : std::optional<Type>(found->second);
}

}  // namespace

EnvironmentPropertyValue::EnvironmentPropertyValue(EnvironmentSettings &owner, EnvironmentSettingClass description,
                                                   int store)
    : owner_(owner), class_(std::move(description)), store_(store) {
    if (class_.type == Type::Boolean && class_.defaultValue.empty())
        class_.defaultValue = "No";
}

const std::string &EnvironmentPropertyValue::string() {
    if (!loaded_) {
        value_ = owner_.store(store_).value(class_.name, class_.defaultValue);
        loaded_ = true;
    }
    return value_;
}

std::vector<std::string> EnvironmentPropertyValue::stringList() {
    std::vector<std::string> items;
    const std::string &text = string();
    for (size_t start = 0; start <= text.size();) {
        const size_t end = std::min(text.find(';', start), text.size());
        if (end > start)
            items.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return items;
}

void EnvironmentPropertyValue::setString(const std::string &text) {
    if (text == string())
        return;
    value_ = text;
    Settings &settings = owner_.store(store_);
    std::string previous;
    if (text == class_.defaultValue)
        settings.remove(class_.name, previous);
    else
        settings.setValue(class_.name, text, previous);
}

EnvironmentSettings::EnvironmentSettings(const std::string &rootUserDirectory,
                                         const std::string &studioUserDirectory) {
    rootStore_.open(rootUserDirectory + "/settings.xml");
    versionStore_.open(studioUserDirectory + "/settings.xml");
    // The general settings that quillmake names; the rest of the file passes
    // through as it is.
    addSetting(definition("Environment/Launcher Enabled", Type::Boolean), RootStore);
    addSetting(definition("Environment/Launcher Use Latest Installations Only", Type::Boolean), RootStore);
    addSetting(definition("Environment/Build/Building Threads", Type::Integer, "0"));
    addSetting(definition("Environment/Build/Keep Going On Error", Type::Boolean));
    addSetting(definition("Environment/Build/Disable Unity Build", Type::Boolean));
    addSetting(definition("Environment/Build/Show Command Lines", Type::Boolean));
    packageDestinationDirectory = addSetting(
        definition("Environment/Package/Destination Directory", Type::String, defaultPackagesDirectory));
    globalMacros = addSetting(definition("Environment/Macros/Global Macros", Type::StringList));
}

EnvironmentSettings::~EnvironmentSettings() = default;

EnvironmentPropertyValue *EnvironmentSettings::addSetting(EnvironmentSettingClass description, int store) {
    values_.push_back(std::make_unique<EnvironmentPropertyValue>(*this, std::move(description), store));
    EnvironmentPropertyValue *value = values_.back().get();
    const std::string &page = value->propertyClass().page;
    if (!page.empty() && page != "(Internal)") {
        pages_[page].push_back(value);
        byName_[value->propertyClass().name] = value;
    }
    return value;
}

EnvironmentPropertyValue *EnvironmentSettings::settingByName(const std::string &key) const {
    const auto found = byName_.find(key);
    return found == byName_.end() ? nullptr : found->second;
}

EnvironmentPropertyValue *EnvironmentSettings::makeSetting(const XMLElement &element, const std::string &name) {
    const std::string typeWord = attributeText(element, "type");
    std::optional<Type> type = typeOfWord(typeWord);
    if (!type) {
        if (traceFlags & TraceErrors)
            trace("error", true, "unknown environment setting type: %s", typeWord.c_str());
        return nullptr;
    }
    EnvironmentSettingClass description;
    description.name = name;
    description.page = attributeText(element, "page");
    description.group = attributeText(element, "group");
    description.title = attributeText(element, "title");
    description.description = attributeText(element, "description");
    description.defaultValue = attributeText(element, "default-value");
    const std::string *minimum = element.attribute("minimum-value");
    const std::string *maximum = element.attribute("maximum-value");
    if (type == Type::Integer && minimum && maximum) {
        type = Type::IntegerRange;
        description.minimum = decimal(*minimum);
        description.maximum = decimal(*maximum);
        description.defaultValue = std::to_string(decimal(description.defaultValue));
    }
    description.type = *type;
    description.specialValueText = attributeText(element, "special-value-text");
    description.suffix = attributeText(element, "suffix");
    return addSetting(std::move(description));
}

void EnvironmentSettings::applyConfiguration(const XMLElement *root) {
    for (const XMLElement *element : configurationElements(root, "environment-setting")) {
        const std::string *name = element->attribute("name");
        if (!name)
            continue;
        EnvironmentPropertyValue *setting = settingByName(*name);
        if (!setting) {
            makeSetting(*element, *name);
            continue;
        }
        if (const std::string *value = element->attribute("value"))
            setting->setString(*value);
        if (const std::string *defaultValue = element->attribute("default-value")) {
            setting->propertyClass().defaultValue = *defaultValue;
            setting->unload();
        }
    }
}

void EnvironmentSettings::unloadAll() {
    for (const auto &value : values_)
        value->unload();
}

void EnvironmentSettings::sync() {
    if (!syncAllowed)
        return;
    versionStore_.sync();
    rootStore_.sync();
    unloadAll();
}

void EnvironmentSettings::reset() {
    rootStore_.reset();
    versionStore_.reset();
    unloadAll();
}

void EnvironmentSettings::removeMatching(const std::string &pattern) {
    rootStore_.removeMatching(pattern);
    versionStore_.removeMatching(pattern);
    unloadAll();
}

ARMTarnbenchEnvironmentSettings::ARMTarnbenchEnvironmentSettings(const std::string &rootUserDirectory,
                                                                 const std::string &studioUserDirectory)
    : EnvironmentSettings(rootUserDirectory, studioUserDirectory) {
    studioDirDirectory = addSetting(definition("ARM/Build/StudioDir Directory", Type::DirPath, "$(StudioDir)"));
}

EnvironmentSettings *environmentSettings() { return processSettings().get(); }

void installEnvironmentSettings(std::unique_ptr<EnvironmentSettings> settings) {
    processSettings() = std::move(settings);
}

void closeEnvironmentSettings() { processSettings().reset(); }
