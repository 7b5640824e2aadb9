#pragma once

#include "support/lexer.h"

// The tokens of C-like expressions. The order of the table decides between
// tokens that share a prefix: "<<=" comes before "<<", "::" before ":".
//
// The matchers never change, so all CStyleLexers share one table, built on
// first use: a lexer costs one short list of pointers, which matters as the
// XML pre-processor makes a parser, and so a lexer, per element.
class CStyleLexer : public Lexer {
public:
    CStyleLexer();
};
