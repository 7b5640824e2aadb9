#include "project/xml/xml_pp.h"

#include "project/xml/preprocessor_text.h"
#include "project/xml/xml_subtree.h"
#include "support/date_time_macros.h"
#include "support/file_info.h"
#include "support/macro_expansion.h"
#include "support/text_split.h"
#include "support/trace.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace {

const char *const kPrefix = "XmlPP::processConditionals(): ";

std::string lowerCase(std::string text) {
    for (char &c : text)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// Latin-1 bytes as UTF-8.
std::string fromLatin1(const std::string &bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const unsigned char u = static_cast<unsigned char>(c);
        if (u < 0x80) {
            text += c;
        } else {
            text += char(0xC0 | (u >> 6));
            text += char(0x80 | (u & 0x3F));
        }
    }
    return text;
}

} // namespace

XmlPP::XmlPP(const MacroTable &macroTable) : macros(macroTable) {}

void XmlPP::traceWarning(const std::string &text) {
    if (traceFlags & TraceWarnings)
        trace("warning", true, "%s", text.c_str());
}

void XmlPP::traceError(const std::string &text) {
    if (traceFlags & TraceErrors)
        trace("error", true, "%s", text.c_str());
}

bool XmlPP::load(const std::string &fileName, const std::string &macroText, bool expandAttributes) {
    nodesMade_ = scopeBytes_ = expandedBytes_ = 0;
    stopped_ = false;
    errorText.clear();
    errorLine = errorColumn = 0;
    std::FILE *stream = std::fopen(fileName.c_str(), "rb");
    if (!stream) {
        errorText = "couldn't read " + fileName;
        return false;
    }
    const bool parsed = document.parseFile(stream);
    std::fclose(stream);
    if (!parsed) {
        errorText = document.errorText;
        errorLine = document.errorLine + 1;
        return false;
    }
    dropBlankText(document.root);

    MacroMap map = defaultMacros;
    if (!macroText.empty()) {
        for (auto &[name, value] : parseMacroList(splitEscaped(macroText, false)))
            map[name] = std::move(value);
    }
    processConditionals(document.root, fileName, map, expandAttributes);
    includeFiles_.clear();
    return true;
}

void XmlPP::processConditionals(XMLNode *node, const std::string &currentFile, MacroMap &map,
                                bool expandAttributes) {
    if (!node || (!node->parent && node != document.root))
        return;
    // The frames refer to the caller's map without owning it.
    std::shared_ptr<MacroMap> shared(std::shared_ptr<MacroMap>(), &map);
    Frame first{node->parent, nullptr, node, nullptr, false, shared, IncludeChain::start(currentFile),
                expandAttributes};
    if (first.parent) {
        for (XMLNode *at = first.parent->firstChild; at && at != node; at = at->nextSibling)
            first.previous = at;
        run(std::move(first));
        return;
    }

    // The root gets a parent for the time of the walk, so that directives at
    // the top can replace it.
    XMLElement holder("");
    XMLNode *last = node;
    while (last->nextSibling)
        last = last->nextSibling;
    linkChildren(&holder, nullptr, node, last);
    first.parent = &holder;
    document.root = nullptr;
    run(std::move(first));
    XMLNode *previous = nullptr;
    for (XMLNode *at = holder.firstChild; at; previous = at, at = at->nextSibling) {
        if (at->isElement()) {
            unlinkChild(&holder, previous, at);
            document.root = at->toElement();
            break;
        }
    }
}

void XmlPP::run(Frame first) {
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

void XmlPP::handle(XMLElement *element) {
    if (frame().expandAttributes)
        expandAll(*element, *frame().map);
    else if (element->hasAttribute("expand_attributes"))
        expandNamedAttributes(*element);
    if (stopped_)
        return;

    const std::string &tag = element->tagName;
    if (tag == "if")
        ifCondition(element, true);
    else if (tag == "ifnot")
        ifCondition(element, false);
    else if (tag == "ifdef")
        ifDefined(element, true);
    else if (tag == "ifndef")
        ifDefined(element, false);
    else if (tag == "switch")
        switchElement(element);
    else if (tag == "define" || tag == "define_macro")
        define(element);
    else if (tag == "expand_definition")
        expandDefinition(element);
    else if (tag == "include")
        include(element);
    else
        plain(element);
}

std::string XmlPP::expand(const std::string &text, const MacroMap &map) {
    std::string result = expandMacrosWith(macros, map, text, false, false);
    expandedBytes_ += result.size();
    if (expandedBytes_ > limits.expandedBytes)
        stop(std::string(kPrefix) + "macro expansion made more than " + std::to_string(limits.expandedBytes) +
             " bytes; processing stops");
    return result;
}

bool XmlPP::chargeMapCopy(const MacroMap &map) {
    // A map node's own size is reckoned at 64 bytes.
    for (const auto &[name, value] : map)
        scopeBytes_ += name.size() + value.size() + 64;
    if (scopeBytes_ <= limits.scopeBytes)
        return true;
    stop(std::string(kPrefix) + "local macros copied past " + std::to_string(limits.scopeBytes) +
         " bytes; processing stops");
    return false;
}

void XmlPP::stop(const std::string &why) {
    if (stopped_)
        return;
    stopped_ = true;
    traceWarning(why);
}

void XmlPP::expandAll(XMLElement &element, const MacroMap &map) {
    const char macroCharacter = macros.macroCharacter();
    for (const auto &[name, value] : element.attributes()) {
        if (!value || value->find(macroCharacter) == std::string::npos)
            continue;
        const std::string expanded = expand(*value, map);
        if (expanded != *value)
            element.setAttribute(std::string_view(name), std::string_view(expanded));
    }
}

void XmlPP::expandNamedAttributes(XMLElement &element) {
    const std::string names = textOf(element.attribute("expand_attributes"));
    element.removeAttribute("expand_attributes");
    for (const std::string &name : splitList(names, ",")) {
        if (!name.empty())
            element.setAttribute(std::string_view(name), expand(textOf(element.attribute(name)), *frame().map));
    }
}

void XmlPP::plain(XMLElement *element) {
    frame().previous = element;
    if (!element->firstChild)
        return;
    const Frame &outer = frame();
    Frame inner{element, nullptr, element->firstChild, nullptr, false, outer.map, outer.file, outer.expandAttributes};
    stack_.push_back(std::move(inner));
}

void XmlPP::drop(XMLElement *element) {
    unlinkChild(frame().parent, frame().previous, element);
    delete element;
}

// The body's children take the element's place at once and are processed
// there as a range, so nothing moves again afterwards.
void XmlPP::keepBody(XMLElement *element, XMLElement *body, std::shared_ptr<MacroMap> map, bool expand,
                     std::shared_ptr<const IncludeChain> file) {
    Frame &outer = frame();
    XMLNode *parent = outer.parent;
    XMLNode *previous = outer.previous;
    XMLNode *following = element->nextSibling;
    unlinkChild(parent, previous, element);
    XMLNode *first = body->firstChild;
    moveChildren(body, parent, previous);
    delete element;
    if (first)
        stack_.push_back(Frame{parent, previous, first, following, true, std::move(map), std::move(file), expand});
}

void XmlPP::keepBody(XMLElement *element, XMLElement *body) {
    keepBody(element, body, frame().map, frame().expandAttributes, frame().file);
}

void XmlPP::ifCondition(XMLElement *element, bool wanted) {
    const XMLAttributes &attributes = element->attributes();
    if (attributes.size() != 1) {
        traceWarning(std::string(kPrefix) + "one condition required for <if[not]>");
        plain(element);
        return;
    }
    const auto &[name, list] = *attributes.begin();
    const MacroMap &map = *frame().map;
    const auto found = map.find(name);
    const std::string &value = found == map.end() ? textOf(nullptr) : found->second;
    if (listHolds(textOf(list ? &*list : nullptr), value) == wanted)
        keepBody(element, element);
    else
        drop(element);
}

void XmlPP::ifDefined(XMLElement *element, bool wanted) {
    if (frame().map->contains(textOf(element->attribute("name"))) == wanted)
        keepBody(element, element);
    else
        drop(element);
}

void XmlPP::switchElement(XMLElement *element) {
    const MacroMap &map = *frame().map;
    const auto found = map.find(textOf(element->attribute("name")));
    const std::string &value = found == map.end() ? textOf(nullptr) : found->second;
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

void XmlPP::define(XMLElement *element) {
    const std::string *name = element->attribute("name");
    const std::string *value = element->attribute("value");
    if (!name || name->empty() || !value)
        traceWarning(std::string(kPrefix) + "missing name and/or value in <define_macro>");
    else
        (*frame().map)[*name] = *value;
    drop(element);
}

void XmlPP::expandDefinition(XMLElement *element) {
    const std::string &name = textOf(element->attribute("name"));
    const MacroMap &map = *frame().map;
    std::string text;
    if (const auto found = map.find(name); found != map.end())
        text = found->second;
    else
        expandDateTimeMacro(name, text);
    if (text.empty())
        text = textOf(element->attribute("default"));
    if (text.empty()) {
        drop(element);
        return;
    }
    if (element->hasAttribute("lowercase"))
        text = lowerCase(std::move(text));
    if (element->hasAttribute("underscore_spaces"))
        std::replace(text.begin(), text.end(), ' ', '_');
    XMLNode *made = new XMLData(std::move(text));
    made->line = element->line;
    Frame &current = frame();
    unlinkChild(current.parent, current.previous, element);
    linkChildren(current.parent, current.previous, made, made);
    current.previous = made;
    delete element;
}

XMLElement *XmlPP::textInclude(const XMLElement &element, const std::string &bytes, const std::string &path) {
    // Known encodings are UTF-8, Latin-1 and ASCII; any other name reads the
    // bytes as having none.
    const std::string encoding = lowerCase(textOf(element.attribute("encoding")));
    std::string text;
    if (encoding == "utf-8" || encoding == "utf8") {
        text = bytes;
    } else if (encoding == "iso-8859-1" || encoding == "iso8859-1" || encoding == "latin1" ||
               encoding == "latin-1") {
        text = fromLatin1(bytes);
    } else {
        if (!encoding.empty() && encoding != "us-ascii" && encoding != "ascii")
            traceWarning(std::string(kPrefix) + "unknown encoding " + textOf(element.attribute("encoding")) +
                         " of include file " + path + "; read as ASCII");
        text = bytes.substr(0, bytes.find('\0'));
    }

    const std::string &tag = textOf(element.attribute("tag"));
    XMLElement *made = document.createElement(tag.empty() ? "pre" : tag);
    for (const char *name : {"class", "id", "style"}) {
        const std::string &value = textOf(element.attribute(name));
        if (!value.empty())
            made->setAttribute(name, value.c_str());
    }
    made->appendChild(new XMLData(std::move(text)));
    return made;
}

XMLElement *XmlPP::xmlInclude(const std::string &bytes, const std::string &path) {
    QXMLDocument included(true);
    const bool parsed = included.parse(bytes.c_str() + (bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0));
    if (!parsed || !included.root) {
        const std::string why = parsed ? std::string("no root element") : included.errorText;
        traceError("XmlPP: error reading XML - " + why + " on line " + std::to_string(included.errorLine + 1) +
                   " column 0 of include file " + path);
        return nullptr;
    }
    dropBlankText(included.root);
    return included.takeRoot();
}

void XmlPP::include(XMLElement *element) {
    const std::string *fileName = element->attribute("filename");
    if (!fileName || fileName->empty()) {
        traceError(std::string(kPrefix) + "missing filename in <include>");
        plain(element);
        return;
    }
    const std::shared_ptr<const IncludeChain> outerFile = frame().file;
    const std::string name = element->hasAttribute("expand_macros") ? expandSystemMacros(macros, *fileName) : *fileName;
    const std::string path = includeFilePath(outerFile->file, name);
    if (outerFile->depth >= limits.includeDepth) {
        traceWarning(std::string(kPrefix) + "include file " + path + " is nested more than " +
                     std::to_string(limits.includeDepth) + " deep; dropped");
        drop(element);
        return;
    }
    const std::string absolute = absolutePathOf(path);
    if (outerFile->includes(absolute)) {
        traceWarning(std::string(kPrefix) + "include file " + path + " includes itself; dropped");
        drop(element);
        return;
    }

    const std::string *bytes = includeFiles_.read(absolute);
    if (!bytes) {
        traceError("XmlPP::processConditionals could not open include file " + path);
        plain(element);
        return;
    }
    XMLElement *included = textOf(element->attribute("type")) == "text" ? textInclude(*element, *bytes, path)
                                                                      : xmlInclude(*bytes, path);
    if (!included) {
        plain(element);
        return;
    }
    const std::size_t count = countSubtree(included);
    if (count > limits.nodesMade - std::min(nodesMade_, limits.nodesMade)) {
        stop(std::string(kPrefix) + "<include> would make more than " + std::to_string(limits.nodesMade) +
             " copied and included nodes; processing stops");
        delete included;
        return;
    }
    nodesMade_ += count;

    std::shared_ptr<MacroMap> map = frame().map;
    bool expand = frame().expandAttributes;
    if ((expand || element->hasAttribute("expand_macros")) && element->hasAttribute("macros")) {
        if (!chargeMapCopy(*map)) {
            delete included;
            return;
        }
        map = std::make_shared<MacroMap>(*map);
        for (auto &[macro, value] :
             parseMacroList(splitEscaped(withoutLineBreaks(textOf(element->attribute("macros"))), false)))
            (*map)[macro] = std::move(value);
        expand = true;
        expandAll(*included, *map);
    } else if (expand) {
        expandAll(*included, *map);
    }

    Frame &current = frame();
    unlinkChild(current.parent, current.previous, element);
    linkChildren(current.parent, current.previous, included, included);
    const bool noRoot = element->hasAttribute("no_root");
    delete element;
    auto file = IncludeChain::enter(outerFile, path, absolute);
    if (noRoot) {
        keepBody(included, included, std::move(map), expand, std::move(file));
        return;
    }
    current.previous = included;
    if (included->firstChild)
        stack_.push_back(Frame{included, nullptr, included->firstChild, nullptr, false, std::move(map),
                               std::move(file), expand});
}
