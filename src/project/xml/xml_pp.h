#pragma once

#include "project/xml/include_chain.h"
#include "project/xml/preprocessor_limits.h"
#include "project/xml/qxml_document.h"
#include "support/macro_expansion.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The pre-processor of the installation's own files, such as bin/config.xml.
// It keeps character data (white-space-only text is dropped after parsing),
// and its local macros form one map for the whole document: a define is seen
// by everything that follows it, also outside the element that holds it.
// Directives:
//
//   <if NAME="a,b">, <ifnot NAME="a,b">, <ifdef name="">, <ifndef name="">
//   <switch name=""><case value="a,b">..</case><default>..</default></switch>
//   <define name="" value=""/>, <define_macro name="" value=""/>
//   <expand_definition name="" [default] [lowercase] [underscore_spaces]/>
//   <include filename="" [type="text"] [expand_macros] [macros] [no_root]
//            [tag] [class] [id] [style] [encoding]/>
//
// With expansion off, an element's expand_attributes="a,b" expands just the
// attributes it names. Problems go to the trace under "warning" or "error".
// Nothing recurses on the call stack; includes are bounded as in XMLPP2.
class XmlPP {
public:
    explicit XmlPP(const MacroTable &macroTable);
    XmlPP(const XmlPP &) = delete;
    XmlPP &operator=(const XmlPP &) = delete;

    // Reads and parses the file and processes it with `defaultMacros`, over
    // which the ";"-separated name=value items of `macroText` are merged.
    // False if the file can't be read or parsed: errorText, errorLine and
    // errorColumn (1-based; 0 where unknown) tell why.
    bool load(const std::string &fileName, const std::string &macroText, bool expandAttributes);

    // Processes `node` and its following siblings with `map`, which the
    // defines change. A node without a parent must be the root.
    void processConditionals(XMLNode *node, const std::string &currentFile, MacroMap &map,
                             bool expandAttributes);

    QXMLDocument document{true};
    const MacroTable &macros;
    MacroMap defaultMacros;
    PreprocessorLimits limits;
    std::string errorText;
    int errorLine = 0;
    int errorColumn = 0;

private:
    // An element list: from `next` up to `stop` among the children of
    // `parent`. A range is a body that took its element's place in the list
    // of the frame below, and tells that frame where it ended.
    struct Frame {
        XMLNode *parent;
        XMLNode *previous;
        XMLNode *next;
        XMLNode *stop;
        bool range;
        // Shared with the frames around, except in an include with macros.
        std::shared_ptr<MacroMap> map;
        std::shared_ptr<const IncludeChain> file;
        bool expandAttributes;
    };

    void run(Frame first);
    void handle(XMLElement *element);
    void plain(XMLElement *element);
    void drop(XMLElement *element);
    // Children of `body` (the element or one inside it) take the element's
    // place and are processed there.
    void keepBody(XMLElement *element, XMLElement *body, std::shared_ptr<MacroMap> map, bool expand,
                  std::shared_ptr<const IncludeChain> file);
    void keepBody(XMLElement *element, XMLElement *body);
    void expandNamedAttributes(XMLElement &element);
    void expandAll(XMLElement &element, const MacroMap &map);
    std::string expand(const std::string &text, const MacroMap &map);
    // Counts a copy of `map` against the limit; false (with a warning, and
    // processing stops) past it.
    bool chargeMapCopy(const MacroMap &map);
    void stop(const std::string &why);

    void ifCondition(XMLElement *element, bool wanted);
    void ifDefined(XMLElement *element, bool wanted);
    void switchElement(XMLElement *element);
    void define(XMLElement *element);
    void expandDefinition(XMLElement *element);
    void include(XMLElement *element);
    // The element that a text include of the file's bytes makes.
    XMLElement *textInclude(const XMLElement &element, const std::string &bytes, const std::string &path);
    // The root that an XML include of the file's bytes makes; null with an
    // error traced.
    XMLElement *xmlInclude(const std::string &bytes, const std::string &path);

    Frame &frame() { return stack_.back(); }
    void traceWarning(const std::string &text);
    void traceError(const std::string &text);

    std::vector<Frame> stack_;
    IncludeFiles includeFiles_;
    std::size_t nodesMade_ = 0;
    std::size_t scopeBytes_ = 0;
    std::size_t expandedBytes_ = 0;
    bool stopped_ = false;
};
