#pragma once

#include <string>
#include <string_view>
#include <vector>

// Command text as it stands in property values, turned into argument lists.
// Commands never pass through a shell: quoting is this splitter's, and a
// chain "a && b" is split into separate commands that the build runs in turn,
// stopping at the first that fails.

// The arguments of a command string. Only a blank separates arguments, and a
// tab is an ordinary character. A double quote opens or closes a quoted part
// and is dropped; "" is an empty argument. \" opens or closes a quoted part
// too but stays in the argument as a double quote. A backslash before
// anything else is an ordinary character.
std::vector<std::string> splitCommandLine(std::string_view text);

// The commands of a chain: the parts of `text` between occurrences of
// `separator`, with parts that are empty or hold only blanks dropped. Most
// command properties use " && "; a few that are split after macro expansion
// use "&&".
std::vector<std::string> splitCommandChain(std::string_view text, std::string_view separator = " && ");

// The arguments as one line of shell text, one blank between them. An
// argument with a blank is put between double quotes, with each double quote
// in it written as \"; any other argument stands as it is.
std::string joinArguments(const std::vector<std::string> &arguments);
