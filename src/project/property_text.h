#pragma once

#include <memory>
#include <string>
#include <string_view>

// A text of a property class: its title, help, page or group. The tables
// of the program give literals, which are only viewed; a text made at run
// time (a definition file's, a composed title) lives in a copy that the
// classes holding it share. A toolchain makes hundreds of classes at every
// start, and copying their texts was most of that cost.
class PropertyText {
public:
    PropertyText() = default;
    // Only a literal, or another constant, converts this way: a pointer
    // known at run time only must be made a string first.
    consteval PropertyText(const char *literal) : view_(literal) {}
    PropertyText(std::string text) {
        if (!text.empty()) {
            owner_ = std::make_shared<const std::string>(std::move(text));
            view_ = *owner_;
        }
    }

    std::string_view view() const { return view_; }
    operator std::string_view() const { return view_; }
    bool empty() const { return view_.empty(); }

    // part, which lies in this text or in a literal of the program, with
    // this text's storage kept.
    PropertyText keeping(std::string_view part) const {
        PropertyText text = *this;
        text.view_ = part;
        return text;
    }

private:
    std::shared_ptr<const std::string> owner_;
    std::string_view view_;
};
