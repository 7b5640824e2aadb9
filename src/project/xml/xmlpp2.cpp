#include "project/xml/xmlpp2.h"

#include "project/xml/preprocessor_text.h"
#include "project/xml/xml_subtree.h"
#include "support/file_info.h"
#include "support/macro_expansion.h"
#include "support/simple_expression_parser.h"
#include "support/text_split.h"
#include "support/trace.h"

#include <fnmatch.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <functional>
#include <limits>

namespace {

const char *const kPrefix = "XmlPP::processConditionals(): ";

std::string decimal(std::uint64_t value) {
    return std::to_string(value);
}

std::string upperHex(std::uint64_t value) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%" PRIX64, value);
    return text;
}

// A signed number in hexadecimal as a number conversion writes it: a minus
// sign before the digits of the magnitude.
std::string upperHexSigned(std::int64_t value) {
    if (value >= 0)
        return upperHex(std::uint64_t(value));
    return "0x-" + upperHex(0 - std::uint64_t(value)).substr(2);
}

// The character of code `code`, cut to 16 bits, in UTF-8; a surrogate code
// gives U+FFFD.
std::string character(std::uint64_t code) {
    std::uint32_t c = std::uint32_t(code & 0xFFFF);
    if (c >= 0xD800 && c <= 0xDFFF)
        c = 0xFFFD;
    std::string text;
    if (c < 0x80) {
        text += char(c);
    } else if (c < 0x800) {
        text += char(0xC0 | (c >> 6));
        text += char(0x80 | (c & 0x3F));
    } else {
        text += char(0xE0 | (c >> 12));
        text += char(0x80 | ((c >> 6) & 0x3F));
        text += char(0x80 | (c & 0x3F));
    }
    return text;
}

std::size_t saturatingProduct(std::size_t a, std::size_t b) {
    if (a && b > std::numeric_limits<std::size_t>::max() / a)
        return std::numeric_limits<std::size_t>::max();
    return a * b;
}

} // namespace

XMLPP2::XMLPP2(const MacroTable *macroTable, bool keepCharacterData)
    : QXMLDocument(keepCharacterData), macros(macroTable) {}

XMLPP2::~XMLPP2() {
    for (auto &[name, block] : xmlDefs)
        delete block;
}

void XMLPP2::warning(const std::string &text) {
    if (traceFlags & TraceWarnings)
        trace("warning", true, "%s", text.c_str());
}

const MacroTable &XMLPP2::table() const {
    static const MacroTable empty;
    return macros ? *macros : empty;
}

bool XMLPP2::load(const std::string &fileName, const std::string &macroText, bool expandAttributes) {
    nodesMade_ = scopeBytes_ = expandedBytes_ = 0;
    stopped_ = false;
    if (!XMLDocument::load(fileName.c_str()))
        return false;
    const MacroMap scope = parseMacroList(splitEscaped(macroText, false));
    process(root, fileName, scope, expandAttributes || !macroText.empty());
    includeFiles_.clear();
    return true;
}

bool XMLPP2::loadText(const std::string &text, bool expandAttributes) {
    nodesMade_ = scopeBytes_ = expandedBytes_ = 0;
    stopped_ = false;
    if (!parse(text))
        return false;
    process(root, std::string(), MacroMap(), expandAttributes);
    includeFiles_.clear();
    return true;
}

void XMLPP2::process(XMLNode *firstNode, const std::string &currentFile, const MacroMap &scope,
                     bool expandAttributes) {
    if (!firstNode || (!firstNode->parent && firstNode != root))
        return;
    Frame first{firstNode->parent, nullptr, firstNode, nullptr, false, std::make_shared<MacroMap>(scope),
                IncludeChain::start(currentFile), expandAttributes};
    if (first.parent) {
        for (XMLNode *node = first.parent->firstChild; node && node != firstNode; node = node->nextSibling)
            first.previous = node;
        run(std::move(first));
        return;
    }

    // The root gets a parent for the time of the walk, so that directives at
    // the top can replace it like any other element.
    XMLElement holder("");
    XMLNode *last = firstNode;
    while (last->nextSibling)
        last = last->nextSibling;
    linkChildren(&holder, nullptr, firstNode, last);
    first.parent = &holder;
    root = nullptr;
    run(std::move(first));
    XMLNode *previous = nullptr;
    for (XMLNode *node = holder.firstChild; node; previous = node, node = node->nextSibling) {
        if (node->isElement()) {
            unlinkChild(&holder, previous, node);
            root = node->toElement();
            break;
        }
    }
}

void XMLPP2::run(Frame first) {
    stack_.clear();
    stack_.push_back(std::move(first));
    while (!stack_.empty()) {
        Frame &top = stack_.back();
        if (stopped_ || top.next == top.stop) {
            XMLNode *previous = top.previous;
            const bool range = top.range;
            stack_.pop_back();
            if (range && !stack_.empty())
                stack_.back().previous = previous;
            continue;
        }
        XMLNode *node = top.next;
        top.next = node->nextSibling;
        if (XMLElement *element = node->toElement())
            handle(element);
        else
            top.previous = node;
    }
}

void XMLPP2::handle(XMLElement *element) {
    if (frame().expandAttributes) {
        const Scope scope = frame().scope;
        expandAttributes(*element, *scope);
        if (stopped_)
            return;
    }
    const std::string &tag = element->tagName;
    if (tag == "if")
        ifCondition(element, true);
    else if (tag == "ifnot")
        ifCondition(element, false);
    else if (tag == "ifex")
        ifExpression(element);
    else if (tag == "ifdef")
        ifDefined(element, true);
    else if (tag == "ifndef")
        ifDefined(element, false);
    else if (tag == "switch")
        switchElement(element);
    else if (tag == "define")
        define(element);
    else if (tag == "for")
        forLoop(element);
    else if (tag == "foreach")
        forEachLoop(element);
    else if (tag == "xmldef")
        xmlDef(element);
    else if (tag == "xmlput")
        xmlPut(element);
    else if (tag == "include")
        include(element);
    else
        plain(element);
}

void XMLPP2::keep(XMLElement *element) {
    frame().previous = element;
}

void XMLPP2::drop(XMLElement *element) {
    unlinkChild(frame().parent, frame().previous, element);
    delete element;
}

void XMLPP2::plain(XMLElement *element) {
    keep(element);
    if (!element->firstChild)
        return;
    const Frame &outer = frame();
    Frame inner{element, nullptr, element->firstChild, nullptr, false, outer.scope, outer.file, outer.expandAttributes};
    stack_.push_back(std::move(inner));
}

void XMLPP2::keepBody(XMLElement *element, XMLElement *body) {
    keepBody(element, body, frame().scope, frame().expandAttributes, frame().file);
}

// The body's children move into the element's place at once, and are
// processed there as a range; so nothing is moved again when the body is
// done, and a body nested many levels deep costs no more than a flat one.
void XMLPP2::keepBody(XMLElement *element, XMLElement *body, Scope scope, bool expand, Chain file) {
    Frame &outer = frame();
    XMLNode *parent = outer.parent;
    XMLNode *previous = outer.previous;
    XMLNode *following = element->nextSibling;
    const bool ownBody = body != element && !body->parent;
    unlinkChild(parent, previous, element);
    XMLNode *first = body->firstChild;
    moveChildren(body, parent, previous);
    delete element;
    if (ownBody)
        delete body;
    if (first)
        stack_.push_back(Frame{parent, previous, first, following, true, std::move(scope), std::move(file), expand});
}

const std::string *XMLPP2::lookUp(std::string_view name) {
    const MacroMap &scope = *frame().scope;
    const auto found = scope.find(name);
    return found == scope.end() ? nullptr : &found->second;
}

void XMLPP2::ifCondition(XMLElement *element, bool wanted) {
    const XMLAttributes &attributes = element->attributes();
    if (attributes.size() != 1) {
        warning(std::string(kPrefix) + "one condition required for <if[not]>");
        plain(element);
        return;
    }
    const auto &[name, list] = *attributes.begin();
    const std::string &value = textOf(lookUp(name));
    if (listHolds(list ? *list : std::string(), value) == wanted)
        keepBody(element, element);
    else
        drop(element);
}

void XMLPP2::ifExpression(XMLElement *element) {
    const std::string *expression = element->attribute("expression");
    if (!expression || expression->empty()) {
        plain(element);
        return;
    }
    const std::string text = expand(*expression, *frame().scope);
    if (stopped_)
        return;
    bool ok = false;
    const bool holds = SimpleExpressionParser().evaluateBoolean(text, ok);
    if (ok && holds)
        keepBody(element, element);
    else
        drop(element);
}

void XMLPP2::ifDefined(XMLElement *element, bool wanted) {
    if ((lookUp(textOf(element->attribute("name"))) != nullptr) == wanted)
        keepBody(element, element);
    else
        drop(element);
}

void XMLPP2::switchElement(XMLElement *element) {
    const std::string &value = textOf(lookUp(textOf(element->attribute("name"))));
    XMLElement *chosen = nullptr;
    XMLElement *fallback = nullptr;
    for (XMLNode *child = element->firstChild; child && !chosen; child = child->nextSibling) {
        XMLElement *option = child->toElement();
        if (!option)
            continue;
        if (option->tagName == "case" && listHolds(textOf(option->attribute("value")), value))
            chosen = option;
        else if (option->tagName == "default")
            fallback = option;
    }
    if (!chosen)
        chosen = fallback;
    if (chosen)
        keepBody(element, chosen);
    else
        drop(element);
}

MacroMap *XMLPP2::ownScope() {
    Frame &current = frame();
    if (current.scope.use_count() > 1) {
        if (!chargeScopeCopy(*current.scope))
            return nullptr;
        current.scope = std::make_shared<MacroMap>(*current.scope);
    }
    return current.scope.get();
}

void XMLPP2::define(XMLElement *element) {
    // The switch holds from here on, whatever else the element has.
    if (element->hasAttribute("expand_macros"))
        frame().expandAttributes = textOf(element->attribute("expand_macros")) == "Yes";
    const std::string *name = element->attribute("name");
    if (!name || name->empty()) {
        warning(std::string(kPrefix) + "missing name in <define>");
        drop(element);
        return;
    }
    std::optional<std::string> value;
    if (const std::string *written = element->attribute("value")) {
        value = *written;
    } else {
        const std::string *expression = element->attribute("expression");
        const std::string *hexExpression = expression ? nullptr : element->attribute("hex_expression");
        if (!expression && !hexExpression) {
            warning(std::string(kPrefix) + "missing value or expression in <define>");
            drop(element);
            return;
        }
        const std::string text = expand(expression ? *expression : *hexExpression, *frame().scope);
        if (stopped_)
            return;
        bool ok = false;
        const std::uint64_t number = SimpleExpressionParser().evaluateUnsigned(text, ok);
        if (ok)
            value = expression ? decimal(number) : upperHex(number);
    }
    if (value) {
        MacroMap *scope = ownScope();
        if (!scope)
            return;
        (*scope)[*name] = std::move(*value);
    }
    drop(element);
}

void XMLPP2::forLoop(XMLElement *element) {
    const std::string *index = element->attribute("index");
    const std::string *startText = element->attribute("start");
    const std::string *endText = element->attribute("end");
    const std::string *incrementText = element->attribute("incr");
    SimpleExpressionParser parser;
    bool ok = index && startText && endText && incrementText && element->firstChild;
    std::uint64_t start = 0, end = 0, increment = 0;
    if (ok)
        start = parser.evaluateUnsigned(*startText, ok);
    if (ok)
        end = parser.evaluateUnsigned(*endText, ok);
    if (ok)
        increment = parser.evaluateUnsigned(*incrementText, ok);
    if (!ok) {
        warning(std::string(kPrefix) + "<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">");
        drop(element);
        return;
    }

    // add, sub and mul read as signed numbers after expansion; what doesn't
    // read counts as 0. The arithmetic wraps.
    const auto signedValue = [&](const char *name, std::int64_t fallback) {
        const std::string *text = element->attribute(name);
        if (!text || text->empty())
            return fallback;
        const std::string expanded = expand(*text, *frame().scope);
        bool read = false;
        const std::int64_t value = parser.evaluateSigned(expanded, read);
        return read ? value : 0;
    };
    std::uint64_t add = 0;
    if (const std::string *text = element->attribute("add"); text && !text->empty())
        add = std::uint64_t(signedValue("add", 0));
    else
        add = 0 - std::uint64_t(signedValue("sub", 0));
    const std::uint64_t multiplier = std::uint64_t(signedValue("mul", 1));
    if (stopped_)
        return;

    // An increment of 0 never ends; it is stopped by the node limit.
    std::size_t count = 0;
    if (start < end)
        count = increment ? std::size_t((end - start - 1) / increment + 1) : std::numeric_limits<std::size_t>::max();
    if (!makeNodes(saturatingProduct(count, countChildren(element)), "for"))
        return;

    const std::string name = *index;
    std::uint64_t ap = add + multiplier * start;
    std::uint64_t i = start;
    insertCopies(element, count, [&](std::size_t, MacroMap &map) {
        map[name] = decimal(i);
        map[name + "_alpha"] = character(i + 65);
        map[name + "_hex"] = upperHex(i);
        map[name + "_ap"] = std::to_string(std::int64_t(ap));
        map[name + "_ap_hex"] = upperHexSigned(std::int64_t(ap));
        i += increment;
        ap += multiplier * increment;
    });
}

void XMLPP2::forEachLoop(XMLElement *element) {
    const XMLAttributes attributes = element->attributes();
    const std::string *splitBy = element->attribute("split_by");
    const std::string separator = splitBy ? *splitBy : std::string(",");
    const bool expandLists = element->hasAttribute("expand_macros");

    std::vector<std::pair<std::string, std::vector<std::string>>> variables;
    std::vector<std::string> excludedEntries;
    std::vector<std::string> excludedPatterns;
    const auto excluded = [&](const std::string &value) {
        if (std::find(excludedEntries.begin(), excludedEntries.end(), value) != excludedEntries.end())
            return true;
        return std::any_of(excludedPatterns.begin(), excludedPatterns.end(), [&](const std::string &pattern) {
            return fnmatch(pattern.c_str(), value.c_str(), 0) == 0;
        });
    };
    const auto removeExcluded = [&] {
        for (auto &variable : variables)
            std::erase_if(variable.second, excluded);
    };
    for (const auto &[name, attributeValue] : attributes) {
        if (name == "split_by" || name == "expand_macros")
            continue;
        std::string text = attributeValue ? *attributeValue : std::string();
        if (expandLists) {
            text = expand(text, *frame().scope);
            if (stopped_)
                return;
        }
        if (name == "exclude_entries") {
            for (std::string &entry : splitList(text, separator)) {
                const bool known = std::any_of(variables.begin(), variables.end(), [&](const auto &variable) {
                    return std::find(variable.second.begin(), variable.second.end(), entry) != variable.second.end();
                });
                if (!known)
                    warning(std::string(kPrefix) + "exclude_entries cannot find entry named " + entry);
                excludedEntries.push_back(std::move(entry));
            }
            removeExcluded();
        } else if (name == "exclude_wildcard") {
            for (std::string &pattern : splitList(text, separator))
                excludedPatterns.push_back(std::move(pattern));
            removeExcluded();
        } else {
            std::vector<std::string> values = splitList(withoutLineBreaks(std::move(text)), separator);
            std::erase_if(values, excluded);
            variables.emplace_back(name, std::move(values));
        }
    }

    // The combinations, the first variable varying slowest. Without any
    // variable there is nothing to go through.
    std::size_t count = variables.empty() ? 0 : 1;
    for (const auto &variable : variables)
        count = saturatingProduct(count, variable.second.size());
    if (!makeNodes(saturatingProduct(count, countChildren(element)), "foreach"))
        return;
    std::vector<std::size_t> at(variables.size(), 0);
    insertCopies(element, count, [&](std::size_t number, MacroMap &map) {
        for (std::size_t v = 0; v < variables.size(); ++v)
            map[variables[v].first] = variables[v].second[at[v]];
        map["FOREACH_COUNT"] = decimal(number);
        for (std::size_t v = variables.size(); v-- > 0;) {
            if (++at[v] < variables[v].second.size())
                break;
            at[v] = 0;
        }
    });
}

void XMLPP2::insertCopies(XMLElement *element, std::size_t count,
                          const std::function<void(std::size_t, MacroMap &)> &mapOf) {
    XMLNode *parent = frame().parent;
    XMLNode *previous = element;
    XMLNode *firstCopy = nullptr;
    MacroMap map;
    for (std::size_t number = 0; number < count && !stopped_; ++number) {
        map.clear();
        mapOf(number, map);
        for (const XMLNode *child = element->firstChild; child && !stopped_; child = child->nextSibling) {
            XMLNode *copy = copySubtree(*this, child);
            forEachElement(copy, [&](XMLElement &made) {
                if (!stopped_)
                    expandAttributes(made, map);
            });
            linkChildren(parent, previous, copy, copy);
            previous = copy;
            if (!firstCopy)
                firstCopy = copy;
        }
    }
    drop(element);
    if (firstCopy)
        frame().next = firstCopy;
}

void XMLPP2::xmlDef(XMLElement *element) {
    const std::string *name = element->attribute("name");
    if (!name || name->empty()) {
        plain(element);
        return;
    }
    unlinkChild(frame().parent, frame().previous, element);
    auto [found, added] = xmlDefs.try_emplace(*name, element);
    if (!added) {
        delete found->second;
        found->second = element;
    }
}

XMLPP2::Scope XMLPP2::mergedScope(const XMLElement *element) {
    const std::string *macroText = element->attribute("macros");
    if (!macroText)
        return frame().scope;
    const MacroMap extra = parseMacroList(splitEscaped(withoutLineBreaks(*macroText), false));
    if (!chargeScopeCopy(*frame().scope))
        return nullptr;
    auto merged = std::make_shared<MacroMap>(*frame().scope);
    for (const auto &[name, value] : extra)
        (*merged)[name] = value;
    return merged;
}

void XMLPP2::xmlPut(XMLElement *element) {
    const std::string &name = textOf(element->attribute("name"));
    const auto found = xmlDefs.find(name);
    if (found == xmlDefs.end()) {
        warning(std::string(kPrefix) + "xmlput cannot fine xmldef named " + name);
        plain(element);
        return;
    }
    if (!makeNodes(countChildren(found->second), "xmlput"))
        return;
    Scope scope = frame().scope;
    bool expand = false;
    if (frame().expandAttributes || (element->hasAttribute("expand_macros") && element->hasAttribute("macros"))) {
        scope = mergedScope(element);
        if (!scope)
            return;
        expand = true;
    }
    XMLElement *copy = copySubtree(*this, found->second)->toElement();
    keepBody(element, copy, std::move(scope), expand, frame().file);
}

void XMLPP2::include(XMLElement *element) {
    const std::string *fileName = element->attribute("filename");
    if (!fileName || fileName->empty()) {
        warning(std::string(kPrefix) + "missing filename in <include>");
        plain(element);
        return;
    }
    const Chain outerFile = frame().file;
    const std::string path = includeFilePath(outerFile->file, expandSystemMacros(table(), *fileName));
    if (outerFile->depth >= limits.includeDepth) {
        warning(std::string(kPrefix) + "include file " + path + " is nested more than " +
                std::to_string(limits.includeDepth) + " deep; dropped");
        drop(element);
        return;
    }
    const std::string absolute = absolutePathOf(path);
    if (outerFile->includes(absolute)) {
        warning(std::string(kPrefix) + "include file " + path + " includes itself; dropped");
        drop(element);
        return;
    }

    // The file is parsed by this document, so that its elements are of the
    // document's class; what the document holds is kept aside meanwhile.
    XMLElement *ownRoot = takeRoot();
    const auto ownDoctype = doctype, ownVersion = version, ownEncoding = encoding;
    const std::string ownError = errorText;
    const std::int32_t ownErrorLine = errorLine;
    bool parsed = false;
    if (const std::string *text = includeFiles_.read(absolute)) {
        parsed = parse(text->c_str() + (text->starts_with("\xEF\xBB\xBF") ? 3 : 0));
    } else {
        errorText = "couldn't read " + path;
        errorLine = 0;
    }
    XMLElement *included = takeRoot();
    root = ownRoot;
    doctype = ownDoctype;
    version = ownVersion;
    encoding = ownEncoding;
    if (!parsed) {
        warning(std::string(kPrefix) + "error \"" + errorText + "\" in include file " + path +
                " line:" + std::to_string(errorLine + 1));
        plain(element);
        return;
    }
    errorText = ownError;
    errorLine = ownErrorLine;
    if (!included) {
        warning(std::string(kPrefix) + "error: include file '" + path + "' is empty");
        plain(element);
        return;
    }
    if (!makeNodes(countSubtree(included), "include")) {
        delete included;
        return;
    }

    Scope scope = frame().scope;
    bool expand = false;
    if (frame().expandAttributes || (element->hasAttribute("expand_macros") && element->hasAttribute("macros"))) {
        scope = mergedScope(element);
        if (!scope) {
            delete included;
            return;
        }
        expand = true;
        expandAttributes(*included, *scope);
    }
    const bool noRoot = element->hasAttribute("no_root");
    if (const std::string *names = element->attribute("inherit_attributes"); names && !noRoot) {
        for (const std::string &name : splitAtAny(*names, ";")) {
            const auto found = element->attributes().find(name);
            if (found != element->attributes().end())
                included->setAttribute(name.c_str(), found->second ? found->second->c_str() : nullptr);
        }
    }

    // The included root takes the include's place.
    Frame &outer = frame();
    unlinkChild(outer.parent, outer.previous, element);
    linkChildren(outer.parent, outer.previous, included, included);
    delete element;
    Chain file = IncludeChain::enter(outerFile, path, absolute);
    if (noRoot || included->tagName == "envelope") {
        keepBody(included, included, std::move(scope), expand, std::move(file));
        return;
    }
    keep(included);
    if (included->firstChild)
        stack_.push_back(Frame{included, nullptr, included->firstChild, nullptr, false, std::move(scope),
                               std::move(file), expand});
}

std::string XMLPP2::expand(const std::string &text, const MacroMap &map) {
    std::string result = expandMacrosWith(table(), map, text, false, false);
    expandedBytes_ += result.size();
    if (expandedBytes_ > limits.expandedBytes)
        stop(std::string(kPrefix) + "macro expansion made more than " + std::to_string(limits.expandedBytes) +
             " bytes; processing stops");
    return result;
}

void XMLPP2::expandAttributes(XMLElement &element, const MacroMap &map) {
    const char macroCharacter = table().macroCharacter();
    for (const auto &[name, value] : element.attributes()) {
        if (!value || value->find(macroCharacter) == std::string::npos)
            continue;
        const std::string expanded = expand(*value, map);
        if (expanded != *value)
            element.setAttribute(std::string_view(name), std::string_view(expanded));
        if (stopped_)
            return;
    }
}

bool XMLPP2::makeNodes(std::size_t count, const std::string &directive) {
    if (count <= limits.nodesMade - std::min(nodesMade_, limits.nodesMade)) {
        nodesMade_ += count;
        return true;
    }
    stop(std::string(kPrefix) + "<" + directive + "> would make more than " + std::to_string(limits.nodesMade) +
         " copied and included nodes; processing stops");
    return false;
}

bool XMLPP2::chargeScopeCopy(const MacroMap &map) {
    // A map node's own size is reckoned at 64 bytes.
    std::size_t bytes = 0;
    for (const auto &[name, value] : map)
        bytes += name.size() + value.size() + 64;
    scopeBytes_ += bytes;
    if (scopeBytes_ <= limits.scopeBytes)
        return true;
    stop(std::string(kPrefix) + "local macros copied past " + std::to_string(limits.scopeBytes) +
         " bytes; processing stops");
    return false;
}

void XMLPP2::stop(const std::string &why) {
    if (stopped_)
        return;
    stopped_ = true;
    warning(why);
}
