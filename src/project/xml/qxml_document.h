#pragma once

#include "project/xml/xml_document.h"

#include <string>

// The document as the rest of the program uses it: file names and texts as
// strings, and the helpers that look at a file without building its tree.
class QXMLDocument : public XMLDocument {
public:
    explicit QXMLDocument(bool keepCharacterData = false) : XMLDocument(keepCharacterData) {}

    bool load(const std::string &fileName) { return XMLDocument::load(fileName.c_str()); }
    bool save(const std::string &fileName, int indentWidth, int width) {
        return XMLDocument::save(fileName.c_str(), indentWidth, width);
    }

    // The text of the element's XMLData children, in order, as bytes.
    static std::string elementText(const XMLElement *element);

    // The DOCTYPE name of a file, read from its start only: byte-order mark,
    // white space, <?...?> and comments are passed over, and the first other
    // tag decides. Empty if that isn't "<!DOCTYPE name>" or the file can't be
    // read.
    static std::string readDoctypeOfFile(const std::string &fileName);
};
