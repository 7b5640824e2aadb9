#include "frontend/console_progress.h"

#include <algorithm>
#include <string_view>

namespace {

// Every template sets these; a line per property would drown the rest.
bool isFilteredLine(std::string_view text) {
    for (std::string_view prefix : {"template property target_", "template property arm_target",
                                    "template property arm_linker_jtag",
                                    "template property arm_simulator"}) {
        if (text.starts_with(prefix))
            return true;
    }
    return false;
}

}  // namespace

void QuillmakeProjectLoadProgress::beginTask(const std::string &text, int) {
    if (quiet_)
        return;
    ++depth_;
    printLine(text);
}

void QuillmakeProjectLoadProgress::endTask() {
    if (!quiet_)
        --depth_;
}

void QuillmakeProjectLoadProgress::printLine(const std::string &text) {
    if (isFilteredLine(text))
        return;
    const std::string indent(static_cast<std::size_t>(2 * std::max(depth(), 0)), ' ');
    std::fprintf(out_, "%s%s\n", indent.c_str(), text.c_str());
}

void QuillmakeWarning::warning(ProjectElement *, const std::string &, const std::string &title,
                               const std::vector<std::string> &messages) {
    std::string joined;
    for (std::size_t i = 0; i < messages.size(); ++i) {
        if (i)
            joined += '\n';
        joined += messages[i];
    }
    std::fprintf(noStderr_ ? err_ : out_, "%s %s\n", title.c_str(), joined.c_str());
}
