#pragma once

#include "environment/system_macros.h"
#include "project/xml/xmlpp2.h"
#include "support/file_time.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// One element of a memory map or section placement file. Its start and size
// are evaluated when the document is loaded; the rest stays text, read
// through the accessors below.
class MemoryMapElement : public XMLElement {
public:
    // From the tag name, exactly; every other tag is Other.
    enum Kind : int {
        MemorySegment = 0,
        Register = 1,
        ProgramSection = 2,
        Root = 3,
        RegisterGroup = 4,
        BitField = 5,
        Enum = 6,
        Processor = 7,
        Vector = 8,
        Other = 9,
    };
    // The value of the access attribute.
    enum Access : int { ReadWrite = 0, ReadOnly = 1, WriteOnly = 2, NoAccess = 3 };

    // The mark that every MemoryMapElement carries (see XMLNode::classMark).
    static constexpr std::uint8_t classMark = 2;
    static MemoryMapElement *from(XMLNode *node) {
        return node && node->classMark() == classMark ? static_cast<MemoryMapElement *>(node) : nullptr;
    }

    MemoryMapElement(std::string_view tag, bool readOnlyFile);

    static Kind kindOf(std::string_view tag);

    // The attribute's text, or null if it is missing.
    const char *text(std::string_view name) const;
    // True if the attribute is there and not empty.
    bool has(std::string_view name) const;
    // The attribute read by strtoull with base 0; 0 if it is missing.
    std::uint64_t number(std::string_view name) const;

    const char *name() const { return text("name"); }
    Access access() const;
    bool isMemoryMapped() const { return hasAttribute("memory_mapped"); }

    // The first child element and the next sibling element that are memory
    // map elements; null at the end.
    MemoryMapElement *firstChildElement() const;
    MemoryMapElement *nextSiblingElement() const;

    Kind kind;
    std::uint64_t start = 0;
    std::uint64_t size = 0;
    // For an imported root: the Import element it replaced. Owned by nobody
    // in the tree once replaced; the document keeps it.
    XMLElement *import = nullptr;
    // For a root: when its file was last modified.
    FileTime modified;
    const bool readOnly;
};

// A memory map or section placement file read into a tree: the Import
// elements of the root are replaced by the roots of the files they name, and
// every start and size has been evaluated.
class MemoryMap : public XMLPP2 {
public:
    explicit MemoryMap(SystemMacros *macroTable);
    ~MemoryMap() override;

    XMLElement *createElement(std::string_view tagName) override;

    // Reads and evaluates fileName. macroList ("name=value;...") is handed to
    // the pre-processor when preprocess is set. False if no root could be
    // read.
    bool load(const std::string &fileName, const std::string &macroList, bool preprocess);

    MemoryMapElement *rootElement() const { return MemoryMapElement::from(root); }

    // Depth first from element (itself included): the first element of the
    // kind whose name is name; null if none.
    static MemoryMapElement *findElement(MemoryMapElement *element, std::string_view name,
                                         MemoryMapElement::Kind kind);

    // Evaluates the start and size of every element below root, with base 0
    // at the top.
    static void evaluateAddresses(MemoryMapElement *root);

    SystemMacros *systemMacros;
    bool preprocess = false;
    bool readOnly = false;
    std::string macroList;
    std::string fileName;
    std::string rootTag;

private:
    // Reads one file and returns its root, which the caller then owns; the
    // document's root and read-only flag are left as they were.
    MemoryMapElement *readRoot(const std::string &name);
    void processImports(MemoryMapElement *top);

    // Import elements that imported roots replaced; owned here.
    std::vector<XMLElement *> replacedImports_;
};
