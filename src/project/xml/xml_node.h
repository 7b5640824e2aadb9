#pragma once

#include <cstdint>
#include <string>

class XMLElement;

// A node of the program's own XML tree. The links are plain public fields, as
// the tree is walked everywhere; a node owns its children and deletes them.
// line is the zero-based line on which the parser found the node, -1 for a
// node made by program.
class XMLNode {
public:
    enum class Kind : std::uint8_t { Element, Data, Comment, CDATASection };

    XMLNode(const XMLNode &) = delete;
    XMLNode &operator=(const XMLNode &) = delete;
    virtual ~XMLNode();

    // Links child at the end and makes this node its parent.
    virtual void appendChild(XMLNode *child);
    // Links child at the front.
    virtual void prependChild(XMLNode *child);
    // Unlinks child without deleting it. The child's own parent and
    // nextSibling links stay as they were, so a loop can go on from it.
    virtual void removeChild(XMLNode *child);
    // Puts newChild where oldChild was; oldChild is unlinked, not deleted.
    virtual void replaceChild(XMLNode *oldChild, XMLNode *newChild);
    // Links newChild, which may be a chain joined by nextSibling, behind
    // sibling; at the end if sibling isn't a child of this node.
    virtual void insertAfter(XMLNode *sibling, XMLNode *newChild);

    Kind kind() const { return kind_; }
    bool isElement() const { return kind_ == Kind::Element; }
    // A mark that a class derived from XMLElement sets on its nodes, so that
    // a checked downcast on a hot path needs no dynamic_cast; 0 for a plain
    // node.
    std::uint8_t classMark() const { return classMark_; }
    // This node as an element, or null if it is text of some kind.
    XMLElement *toElement();
    const XMLElement *toElement() const;

    XMLNode *parent = nullptr;
    XMLNode *nextSibling = nullptr;
    XMLNode *firstChild = nullptr;
    XMLNode *lastChild = nullptr;
    std::int32_t line = -1;

protected:
    explicit XMLNode(Kind kind) : kind_(kind) {}
    void setClassMark(std::uint8_t mark) { classMark_ = mark; }

private:
    Kind kind_;
    std::uint8_t classMark_ = 0;
};

// The common form of the three text nodes: character data, comments and
// CDATA sections each hold one owned byte string.
class XMLTextNode : public XMLNode {
public:
    virtual const std::string &text() const { return text_; }
    void setText(std::string text) { text_ = std::move(text); }

protected:
    XMLTextNode(Kind kind, std::string text) : XMLNode(kind), text_(std::move(text)) {}

private:
    std::string text_;
};

// Character data between tags; written escaped.
class XMLData : public XMLTextNode {
public:
    explicit XMLData(std::string text = {}) : XMLTextNode(Kind::Data, std::move(text)) {}
};

// <!--text-->, written as it stands.
class XMLComment : public XMLTextNode {
public:
    explicit XMLComment(std::string text = {}) : XMLTextNode(Kind::Comment, std::move(text)) {}
};

// <![CDATA[text]]>, written as it stands.
class XMLCDATASection : public XMLTextNode {
public:
    explicit XMLCDATASection(std::string text = {})
        : XMLTextNode(Kind::CDATASection, std::move(text)) {}
};
