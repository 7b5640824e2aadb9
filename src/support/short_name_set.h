#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

// A few dozen short names that are asked about far more often than they
// change. The names are kept by length, with a mask of the first letters of
// each length, so most questions end at one bit, without hashing the name.
// The set holds views: the names must outlive it (string literals).
class ShortNameSet {
public:
    void insert(std::string_view name) {
        if (name.empty())
            return;
        const std::size_t index = slotOf(name.size());
        std::vector<std::string_view> &slot = slots_[index];
        if (std::find(slot.begin(), slot.end(), name) == slot.end())
            slot.push_back(name);
        firstLetters_[index] |= letterBit(name[0]);
    }

    bool contains(std::string_view name) const {
        if (name.empty())
            return false;
        const std::size_t index = slotOf(name.size());
        if (!(firstLetters_[index] & letterBit(name[0])))
            return false;
        for (std::string_view held : slots_[index])
            if (held.size() == name.size() && held[0] == name[0] && held == name)
                return true;
        return false;
    }

private:
    // Names of this length or longer share the last slot.
    static constexpr std::size_t Slots = 16;
    static std::size_t slotOf(std::size_t length) { return std::min(length, Slots - 1); }
    // Letters that differ in their low six bits get bits of their own.
    static std::uint64_t letterBit(char c) { return std::uint64_t{1} << (static_cast<unsigned char>(c) & 63); }
    std::array<std::vector<std::string_view>, Slots> slots_;
    std::array<std::uint64_t, Slots> firstLetters_{};
};
