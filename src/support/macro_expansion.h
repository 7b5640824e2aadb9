#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// A macro table: name to value, sorted by name. Names are compared exactly,
// with case; look-ups by string_view don't allocate.
using MacroMap = std::map<std::string, std::string, std::less<>>;

// The tables that every expansion may consult behind its local macros: the
// system macros, the user's global macros, and the character that opens a
// reference. The process-wide table (SystemMacros) fills them.
class MacroTable {
public:
    const MacroMap &systemMacros() const { return systemMacros_; }
    MacroMap &systemMacros() { return systemMacros_; }
    const MacroMap &globalMacros() const { return globalMacros_; }
    MacroMap &globalMacros() { return globalMacros_; }
    char macroCharacter() const { return macroCharacter_; }

private:
    MacroMap systemMacros_;
    MacroMap globalMacros_;
    char macroCharacter_ = '$';
};

// Expansion of macro references, with $ standing for the table's macro
// character:
//   $(Name)            the value of Name; an unknown name stays as written
//   $(Name:default)    the default, itself expanded, if Name is unknown
//   $(Name::default)   the same with the default taken literally
//   $$                 one $
//   $x                 $ and x as they stand
// Names are looked up in `localMap`, then (with useGlobal) in the global and
// (with useSystem) in the system macros of `macros`; the first table that
// has the name decides, and the clock macros give the time of the call.
// A value or default that holds references is expanded in turn.
//
// Bounds, so that any input ends in an orderly result:
//   - a reference to a macro whose value is being expanded around it (a
//     cycle such as A=$(B), B=$(A)) is left as written; a value that is the
//     whole text being expanded (A=$(A)) is emitted as it stands;
//   - values and defaults nest at most `depth` levels deep (the text itself
//     is the first); a reference that would go deeper is left as written;
//   - once `references` references plus one per byte of the text have been
//     read, or the result holds more than `size` bytes, nothing more is
//     expanded: the rest of each open level is emitted as it stands.
// Nothing recurses on the call stack, and the work is linear in the text
// scanned, each byte at most once per level that holds it.
struct MacroExpansionLimits {
    std::size_t depth = 64;
    std::size_t references = std::size_t(1) << 22;
    std::size_t size = std::size_t(1) << 26;
};

// A table of local macros that may compute its values when they are asked
// for. A value it returns must stay in place until the expansion ends: the
// expansion tells a macro from another by the address of its value.
class MacroSource {
public:
    virtual ~MacroSource() = default;
    virtual const std::string *find(std::string_view name) = 0;
};

std::string expandMacrosWith(const MacroTable &macros, const MacroMap &localMap, std::string_view text,
                             bool useGlobal, bool useSystem);
// The same with other bounds.
std::string expandMacrosWith(const MacroTable &macros, const MacroMap &localMap, std::string_view text,
                             bool useGlobal, bool useSystem, const MacroExpansionLimits &limits);

// The same with the local macros of a source.
std::string expandMacrosWith(const MacroTable &macros, MacroSource &local, std::string_view text,
                             bool useGlobal, bool useSystem,
                             const MacroExpansionLimits &limits = MacroExpansionLimits());

// With the global and the system macros.
std::string expandMacros(const MacroTable &macros, std::string_view text);
// With the system macros only, for the paths of template and include files.
std::string expandSystemMacros(const MacroTable &macros, std::string_view text);

// A map from "name=value" items: the name ends at the first "=", the value is
// all that follows (empty without "="). A later name replaces an earlier one.
// Nothing is expanded.
MacroMap parseMacroList(const std::vector<std::string> &list);

// Splits at ";". A backslash takes the next character literally and is
// dropped; a backslash at the very end stays. Empty items are kept only with
// keepEmpty (then "" gives one empty item).
std::vector<std::string> splitEscaped(std::string_view text, bool keepEmpty);

// The 32-bit hash of project macros such as $(ConfigurationHash):
// h = h * 31 + c over the characters of the text, where a character is a
// 16-bit unit of its UTF-16 form and counts as its ASCII value, or 0 if it
// isn't ASCII (so a character beyond U+FFFF counts twice, and each byte of
// malformed UTF-8 once).
std::uint32_t macroHash(std::string_view text);
// The hash as lower-case hexadecimal digits without leading zeros.
std::string macroHashText(std::string_view text);
