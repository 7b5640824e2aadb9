#include "harness.h"

#include <gtest/gtest.h>

using e2e::runQuillmake;
using e2e::Sandbox;

TEST(Cli, Placeholder) {
    Sandbox box;
    const auto r = runQuillmake(box, {"x.tbp"});
    EXPECT_EQ(r.status, 1);
}
