#include "support/macro_expansion.h"

#include "support/date_time_macros.h"

#include <array>
#include <cstdio>
#include <vector>

namespace {

constexpr auto npos = std::string_view::npos;

// One text being expanded: the input, a macro's value or a default.
struct Level {
    std::string_view text;
    std::size_t position = 0;
    // The value of the macro that this level expands; null for the input
    // and for defaults.
    const std::string *value = nullptr;
};

// A reference "$(name...)" in a text, from its macro character on.
struct Reference {
    std::string_view name;
    std::string_view defaultText;
    bool hasDefault = false;
    bool literalDefault = false;
    bool defaultHasMacro = false;
    // Where the text goes on behind the reference.
    std::size_t end = 0;
};

// Reads the reference whose "$(" starts at `start`. False if the text ends
// before the name does.
bool readReference(std::string_view text, std::size_t start, char macroCharacter, Reference &reference) {
    const std::size_t nameStart = start + 2;
    const std::size_t nameEnd = text.find_first_of(":)", nameStart);
    if (nameEnd == npos)
        return false;
    reference.name = text.substr(nameStart, nameEnd - nameStart);
    if (text[nameEnd] == ')') {
        reference.end = nameEnd + 1;
        return true;
    }
    reference.hasDefault = true;
    std::size_t defaultStart = nameEnd + 1;
    if (defaultStart < text.size() && text[defaultStart] == ':') {
        reference.literalDefault = true;
        ++defaultStart;
    }
    // The default ends at the bracket that balances the one after the macro
    // character, or with the text.
    std::size_t depth = 1;
    std::size_t at = defaultStart;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '(')
            ++depth;
        else if (c == ')' && --depth == 0)
            break;
    }
    reference.defaultText = text.substr(defaultStart, at - defaultStart);
    reference.defaultHasMacro = reference.defaultText.find(macroCharacter) != npos;
    reference.end = at == text.size() ? at : at + 1;
    return true;
}

const std::string *lookUp(const MacroMap &map, std::string_view name) {
    const auto found = map.find(name);
    return found == map.end() ? nullptr : &found->second;
}

class MapSource : public MacroSource {
public:
    explicit MapSource(const MacroMap &map) : map_(map) {}
    const std::string *find(std::string_view name) override { return lookUp(map_, name); }

private:
    const MacroMap &map_;
};

// The levels of one expansion. Nearly every expansion is a few levels deep,
// so the first ones live in place and only a deeper nesting takes the heap.
class LevelStack {
public:
    bool empty() const { return size_ == 0; }
    std::size_t size() const { return size_; }
    Level &back() { return at(size_ - 1); }
    void push_back(const Level &level) {
        if (size_ < inPlace_.size())
            inPlace_[size_] = level;
        else
            beyond_.push_back(level);
        ++size_;
    }
    void pop_back() {
        if (--size_ >= inPlace_.size())
            beyond_.pop_back();
    }
    bool isBeingExpanded(const std::string *value) {
        for (std::size_t i = 0; i < size_; ++i) {
            if (at(i).value == value)
                return true;
        }
        return false;
    }

private:
    Level &at(std::size_t i) { return i < inPlace_.size() ? inPlace_[i] : beyond_[i - inPlace_.size()]; }

    std::array<Level, 8> inPlace_;
    std::vector<Level> beyond_;
    std::size_t size_ = 0;
};

}  // namespace

std::string expandMacrosWith(const MacroTable &macros, const MacroMap &localMap, std::string_view text,
                             bool useGlobal, bool useSystem) {
    return expandMacrosWith(macros, localMap, text, useGlobal, useSystem, MacroExpansionLimits());
}

std::string expandMacrosWith(const MacroTable &macros, const MacroMap &localMap, std::string_view text,
                             bool useGlobal, bool useSystem, const MacroExpansionLimits &limits) {
    MapSource source(localMap);
    return expandMacrosWith(macros, source, text, useGlobal, useSystem, limits);
}

std::string expandMacrosWith(const MacroTable &macros, MacroSource &local, std::string_view text,
                             bool useGlobal, bool useSystem, const MacroExpansionLimits &limits) {
    const char macroCharacter = macros.macroCharacter();
    if (text.find(macroCharacter) == npos)
        return std::string(text);

    // The levels are kept in a stack of their own rather than on the call
    // stack, and all of them write to one result: what a level emits is final.
    std::string result;
    result.reserve(text.size());
    LevelStack levels;
    levels.push_back({text, 0, nullptr});
    std::size_t referencesLeft = limits.references + text.size();
    bool exhausted = false;

    while (!levels.empty()) {
        Level &level = levels.back();
        const std::string_view current = level.text;
        const std::size_t position = level.position;
        const std::size_t start = exhausted ? npos : current.find(macroCharacter, position);
        if (start == npos) {
            result.append(current.substr(position));
            levels.pop_back();
            continue;
        }
        result.append(current.substr(position, start - position));

        // "$$" is one macro character; "$x" and a "$" at the end stand as
        // they are.
        if (start + 1 == current.size() || current[start + 1] != '(') {
            result += macroCharacter;
            const bool doubled = start + 1 < current.size() && current[start + 1] == macroCharacter;
            level.position = start + (doubled ? 2 : 1);
            continue;
        }

        if (referencesLeft == 0 || result.size() > limits.size) {
            exhausted = true;
            level.position = start;
            continue;
        }
        --referencesLeft;

        Reference reference;
        if (!readReference(current, start, macroCharacter, reference)) {
            // "$(" without a name: it goes, the rest stays as it is.
            result.append(current.substr(start + 2));
            level.position = current.size();
            continue;
        }
        level.position = reference.end;
        if (reference.name.empty())
            continue;
        const std::string_view written = current.substr(start, reference.end - start);

        const std::string *value = local.find(reference.name);
        if (!value && useGlobal)
            value = lookUp(macros.globalMacros(), reference.name);
        if (!value && useSystem)
            value = lookUp(macros.systemMacros(), reference.name);

        if (value) {
            std::string clock;
            if (expandDateTimeMacro(reference.name, clock)) {
                result += clock;
            } else if (value->find(macroCharacter) == npos || *value == current) {
                result += *value;
            } else if (levels.size() >= limits.depth || levels.isBeingExpanded(value)) {
                result.append(written);
            } else {
                levels.push_back({*value, 0, value});
            }
            continue;
        }
        if (!reference.hasDefault) {
            result += macroCharacter;
            result += '(';
            result.append(reference.name);
            result += ')';
        } else if (reference.literalDefault || !reference.defaultHasMacro) {
            result.append(reference.defaultText);
        } else if (levels.size() >= limits.depth) {
            result.append(written);
        } else {
            levels.push_back({reference.defaultText, 0, nullptr});
        }
    }
    return result;
}

std::string expandMacros(const MacroTable &macros, std::string_view text) {
    return expandMacrosWith(macros, MacroMap(), text, true, true);
}

std::string expandSystemMacros(const MacroTable &macros, std::string_view text) {
    return expandMacrosWith(macros, MacroMap(), text, false, true);
}

MacroMap parseMacroList(const std::vector<std::string> &list) {
    MacroMap map;
    for (const std::string &item : list) {
        const auto equals = item.find('=');
        if (equals == std::string::npos)
            map.insert_or_assign(item, std::string());
        else
            map.insert_or_assign(item.substr(0, equals), item.substr(equals + 1));
    }
    return map;
}

std::vector<std::string> splitEscaped(std::string_view text, bool keepEmpty) {
    std::vector<std::string> items;
    std::string item;
    const auto endItem = [&] {
        if (keepEmpty || !item.empty())
            items.push_back(std::move(item));
        item.clear();
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\\' && i + 1 < text.size())
            item += text[++i];
        else if (c == ';')
            endItem();
        else
            item += c;
    }
    endItem();
    return items;
}

namespace {

// The length of the well-formed UTF-8 sequence at `at`, or 0.
std::size_t utf8SequenceLength(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    std::size_t length;
    unsigned char low = 0x80, high = 0xBF;  // the range of the second byte
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0)
            low = 0xA0;  // no overlong forms
        else if (lead == 0xED)
            high = 0x9F;  // no surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0)
            low = 0x90;
        else if (lead == 0xF4)
            high = 0x8F;  // nothing beyond U+10FFFF
    } else {
        return 0;
    }
    if (at + length > text.size() || byte(at + 1) < low || byte(at + 1) > high)
        return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if (byte(at + i) < 0x80 || byte(at + i) > 0xBF)
            return 0;
    }
    return length;
}

}  // namespace

std::uint32_t macroHash(std::string_view text) {
    std::uint32_t hash = 0;
    for (std::size_t at = 0; at < text.size();) {
        const unsigned char byte = static_cast<unsigned char>(text[at]);
        if (byte < 0x80) {
            hash = hash * 31 + byte;
            ++at;
            continue;
        }
        // A character without an ASCII value adds 0; one beyond U+FFFF is
        // two UTF-16 units.
        const std::size_t length = utf8SequenceLength(text, at);
        hash = hash * 31;
        if (length == 4)
            hash = hash * 31;
        at += length == 0 ? 1 : length;
    }
    return hash;
}

std::string macroHashText(std::string_view text) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%x", static_cast<unsigned>(macroHash(text)));
    return digits;
}
