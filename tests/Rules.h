#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace vantrel {

/// A row of a table of tests. The name says the rule and becomes the test's.
struct Rule {
    std::string rule;

    friend std::ostream& operator<<(std::ostream& out, const Rule& row) { return out << row.rule; }
};

/// Names the tests of `INSTANTIATE_TEST_SUITE_P` after their rows.
struct ByRule {
    template <class Row>
    std::string operator()(const testing::TestParamInfo<Row>& info) const {
        return info.param.rule;
    }
};

}  // namespace vantrel
