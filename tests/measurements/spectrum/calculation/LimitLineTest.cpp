#include "LimitLine.h"

#include "Test.h"

namespace {

TEST(LimitLine, RunsStraightBetweenItsBreakpoints) {
    const Values limits{-50, 50};
    const struct {
        const char* why;
        Values mask;
        double offset, frequency, level;
    } rows[] = {
        {"one level", {3}, 7, 50, 3},
        {"one infinite level", {-infinity}, 0, 0, -infinity},
        {"no level", {}, 0, 0, nan},
        {"a slope", {0, 100, -10, 30}, 0, 25, 0},
        {"its first breakpoint", {0, 100, -10, 30}, 0, 0, -10},
        {"its last breakpoint", {0, 100, -10, 30}, 0, 100, 30},
        {"a hair outside", {0, 100, -10, 30}, 0, std::nextafter(100.0, 200.0), nan},
        {"an offset", {0, 100, -10, 30}, 1000, 1025, 0},
        {"an odd last number", {0, 100, -10, 30, 99}, 0, 25, 0},
        {"on a step", {0, 40, 40, 90, 1, 1, 5, 5}, 0, 40, 1},
        {"a step that begins the line", {40, 40, 90, 1, 5, 5}, 0, 40, 1},
        {"a step at 0 Hz", {-40, 0, 0, 90, 1, 1, 5, 5}, 0, 0, 1},
        {"a level to an infinite one", {0, 10, 3, infinity}, 0, 0, 3},
        {"a single breakpoint", {10, -3}, 0, 10, -3},
        {"out of order: the first piece that ends above", {0, 60, 20, 80, 0, 60, 0, 60}, 0, 30, 30},
        {"a NaN frequency", {0, 100, -10, 30}, 0, nan, nan},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.why);
        expectValues({LimitLine(row.mask, limits, row.offset).levelAt(row.frequency)}, {row.level}, 1e-15);
    }
    EXPECT_TRUE(std::isnan(LimitLine({3}, {}, 0).levelAt(0))) << "limits that are not there";
}

}  // namespace
