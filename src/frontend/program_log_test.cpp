#include "frontend/program_log.h"

#include <gtest/gtest.h>

#include <sstream>

TEST(ProgramLog, EveryErrorIsOneCountedLine) {
    std::ostringstream stream;
    ProgramLog log("/usr/bin/quillmake", stream);
    EXPECT_EQ(log.errorCount(), 0);
    log.errorStream() << "first" << '\n';
    log.error("second");
    EXPECT_EQ(stream.str(), "/usr/bin/quillmake: error: first\n/usr/bin/quillmake: error: second\n");
    EXPECT_EQ(log.errorCount(), 2);
}

TEST(ProgramLog, AskingForTheStreamCountsBeforeWriting) {
    std::ostringstream stream;
    ProgramLog log("qm", stream);
    std::ostream &out = log.errorStream();
    EXPECT_EQ(log.errorCount(), 1);
    EXPECT_EQ(stream.str(), "qm: error: ");
    EXPECT_EQ(&out, &stream);
}
