#include "support/exceptions.h"

namespace {
int liveExceptions = 0;
}

HException::HException(std::string message) : message_(std::move(message)) { ++liveExceptions; }

HException::HException(std::string message, int line, int column)
    : message_(std::move(message) + " line: " + std::to_string(line) + " column: " +
               std::to_string(column)) {
    ++liveExceptions;
}

HException::HException(const HException &other) : message_(other.message_) { ++liveExceptions; }

HException::~HException() { --liveExceptions; }

int HException::liveCount() { return liveExceptions; }
