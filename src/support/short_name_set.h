#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

// A few dozen short names that are asked about far more often than they
// change. The names are kept by length, so most questions end at an empty
// slot or a first letter that differs, without hashing the name. The set
// holds views: the names must outlive it (string literals).
class ShortNameSet {
public:
    void insert(std::string_view name) {
        if (name.empty())
            return;
        std::vector<std::string_view> &slot = slots_[slotOf(name.size())];
        if (std::find(slot.begin(), slot.end(), name) == slot.end())
            slot.push_back(name);
    }

    bool contains(std::string_view name) const {
        for (std::string_view held : slots_[slotOf(name.size())])
            if (held.size() == name.size() && held[0] == name[0] && held == name)
                return true;
        return false;
    }

private:
    // Names of this length or longer share the last slot.
    static constexpr std::size_t Slots = 16;
    static std::size_t slotOf(std::size_t length) { return std::min(length, Slots - 1); }
    std::array<std::vector<std::string_view>, Slots> slots_;
};
