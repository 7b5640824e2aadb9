#pragma once

#include "project/xml/include_chain.h"
#include "project/xml/preprocessor_limits.h"
#include "project/xml/qxml_document.h"
#include "support/macro_expansion.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

// A document that pre-processes its tree after parsing: conditionals, local
// macros, loops, reusable blocks and includes are resolved, and readers see a
// plain tree. Directives (elements by tag):
//
//   <if NAME="a,b">       body kept if local macro NAME is one of the items
//   <ifnot NAME="a,b">    body kept if it is none of them
//   <ifex expression="">  body kept if the expression is true
//   <ifdef name="">, <ifndef name="">
//   <switch name=""><case value="a,b">..</case><default>..</default></switch>
//   <define name="" value=""|expression=""|hex_expression="" [expand_macros=""]/>
//   <for index="" start="" end="" incr="" [add|sub] [mul]>..</for>
//   <foreach var="a,b" [split_by] [expand_macros] [exclude_entries] [exclude_wildcard]>
//   <xmldef name="">..</xmldef>, <xmlput name="" [macros] [expand_macros]/>
//   <include filename="" [inherit_attributes] [macros] [expand_macros] [no_root]/>
//
// Local macros live in scopes: a define is seen by the siblings that follow
// it and everything inside them, and ends with its element list. Wrong use of
// a directive is reported through warning() and the rest goes on.
//
// Nothing recurses on the call stack: element lists wait on an explicit stack,
// and scopes are shared until a define changes one. Includes that form a
// cycle or nest deeper than the limits are dropped with a warning; copies,
// included nodes, scope copies and macro expansion are bounded by `limits`,
// past which processing stops with a warning.
class XMLPP2 : public QXMLDocument {
public:
    // `macroTable` gives the system macros of include paths and the macro
    // character. It may be null (tests): an empty table stands in.
    explicit XMLPP2(const MacroTable *macroTable, bool keepCharacterData = false);
    ~XMLPP2() override;

    // Where the pre-processor's complaints go. The base writes them to the
    // trace under "warning".
    virtual void warning(const std::string &text);

    // Parses the file and processes the tree. `macroText` is a ";"-separated
    // list of name=value items (backslash escapes) that starts the scope; a
    // non-empty list turns on attribute expansion. The result is the parse's.
    bool load(const std::string &fileName, const std::string &macroText, bool expandAttributes);
    // The same for a text; relative includes are taken from the working
    // directory.
    bool loadText(const std::string &text, bool expandAttributes);

    // Processes `firstNode` and its following siblings. A node without a
    // parent must be the root; directives may replace it, and the root is
    // then the first element that they leave at the top (null if none).
    void process(XMLNode *firstNode, const std::string &currentFile, const MacroMap &scope,
                 bool expandAttributes);

    const MacroTable *macros;
    // The xmldef blocks seen so far, by name; owned.
    std::map<std::string, XMLElement *, std::less<>> xmlDefs;
    PreprocessorLimits limits;

private:
    using Scope = std::shared_ptr<MacroMap>;
    using Chain = std::shared_ptr<const IncludeChain>;

    // An element list being processed: from `next` up to `stop`, among the
    // children of `parent`. A range is a body that took its element's place
    // in the list of the frame below; when done it tells that frame where it
    // ended.
    struct Frame {
        XMLNode *parent;
        XMLNode *previous;
        XMLNode *next;
        XMLNode *stop;
        bool range;
        Scope scope;
        Chain file;
        bool expandAttributes;
    };

    void run(Frame first);
    void handle(XMLElement *element);

    // What happens to the element at hand, in the frame on top of the stack.
    void keep(XMLElement *element);
    void drop(XMLElement *element);
    // Children of `body` (the element or one inside it) take its place and
    // are processed with `scope`.
    void keepBody(XMLElement *element, XMLElement *body, Scope scope, bool expand, Chain file);
    // The same with the frame's scope, switch and file.
    void keepBody(XMLElement *element, XMLElement *body);
    // The element stays and its children are processed with a copy of the
    // scope.
    void plain(XMLElement *element);

    void ifCondition(XMLElement *element, bool wanted);
    void ifExpression(XMLElement *element);
    void ifDefined(XMLElement *element, bool wanted);
    void switchElement(XMLElement *element);
    void define(XMLElement *element);
    void forLoop(XMLElement *element);
    void forEachLoop(XMLElement *element);
    void xmlDef(XMLElement *element);
    void xmlPut(XMLElement *element);
    void include(XMLElement *element);

    // Puts `count` copies of the children of `element` behind it, each
    // attribute of copy n expanded with the map that mapOf(n, map) fills
    // alone; then drops `element` and goes on with the first copy.
    void insertCopies(XMLElement *element, std::size_t count,
                      const std::function<void(std::size_t, MacroMap &)> &mapOf);
    // The scope for an xmlput or include: the frame's, or with `macros` a
    // copy with those merged over it. Null when a limit stops processing.
    Scope mergedScope(const XMLElement *element);

    Frame &frame() { return stack_.back(); }
    const MacroTable &table() const;
    const std::string *lookUp(std::string_view name);
    // The frame's scope, copied first if another list shares it.
    MacroMap *ownScope();
    std::string expand(const std::string &text, const MacroMap &map);
    void expandAttributes(XMLElement &element, const MacroMap &map);
    // Takes `count` nodes from the budget; false (with a warning, and
    // processing stops) if that would pass the limit.
    bool makeNodes(std::size_t count, const std::string &directive);
    bool chargeScopeCopy(const MacroMap &map);
    void stop(const std::string &why);

    std::vector<Frame> stack_;
    IncludeFiles includeFiles_;
    std::size_t nodesMade_ = 0;
    std::size_t scopeBytes_ = 0;
    std::size_t expandedBytes_ = 0;
    bool stopped_ = false;
};
