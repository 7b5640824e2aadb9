#pragma once

#include <cstddef>

// What the pre-processing of one document may do at most, so that any input
// ends in bounded time and memory. Past a limit the pre-processor warns once
// and stops: the nodes it hasn't reached stay as they are written.
struct PreprocessorLimits {
    // Includes nested below the document's own file; a deeper include is
    // dropped with a warning.
    int includeDepth = 1000;
    // Nodes made by copying (for, foreach, xmlput) or read from include
    // files. A directive that would pass it makes nothing.
    std::size_t nodesMade = 1000000;
    // Bytes of local macros copied when a scope is changed.
    std::size_t scopeBytes = std::size_t(256) << 20;
    // Bytes that macro expansion produces for attributes and expressions.
    std::size_t expandedBytes = std::size_t(256) << 20;
};
