// The options of a generic option file on a command line: each property of
// one list of the node's active set becomes the flags that its value stands
// for.

#include "toolchain/gcc_project_system.h"

#include "support/command_line.h"
#include "support/text_split.h"

namespace {

// The arguments of a value: the entries of a list type, else the value
// split as a command line is.
StringList valueArguments(const std::string &value, PropertyClass::Type type) {
    if (type == PropertyClass::StringList || type == PropertyClass::DirPathList)
        return splitAtAny(value, ";");
    return splitCommandLine(value);
}

} // namespace

void GCCProjectSystem::appendGenericOptions(ProjectElement *element, const std::string &configuration,
                                            GenericOptionSet::Tool tool, const std::string &filter,
                                            StringList &list) {
    loadGenericOptions(element, configuration);
    const GenericOptionSet *options = activeGenericOptions();
    if (!options)
        return;
    for (GenericPropertyClass *property : options->toolProperties(tool)) {
        // A property whose variant names a tool serves that tool only.
        if (!property->variant().empty() && !filter.empty() && property->variant() != filter)
            continue;
        const std::optional<std::string> value = getExpandedPropertyValue(element, property, configuration);
        if (!value)
            continue;
        if (property->type() == PropertyClass::Enumeration) {
            for (const auto &[choice, flags] : property->options()) {
                if (choice != *value)
                    continue;
                const std::string append = expandProjectMacros(element, property->appendText(), configuration);
                for (const std::string &flag : splitAtAny(flags, ";"))
                    list.push_back(flag + append);
                break;
            }
        } else if (!value->empty() && !property->optionName().empty()) {
            for (const std::string &argument : valueArguments(*value, property->type()))
                list.push_back("-" + property->optionName() + argument);
        }
    }
}
