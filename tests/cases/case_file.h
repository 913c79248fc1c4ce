// A file of cases, read. Sections begin at the margin, what is in them is indented; a line that
// begins with # is a remark, one that ends with a \ goes on in the next. CONTRIBUTING.md tells the
// sections.
#pragma once

#include <string>
#include <vector>

namespace kestrail {

struct SSection {
    std::string word;
    /// What stands behind the word in its line.
    std::string rest;
    std::vector<std::string> lines;
    int number = 0;
};

/// One case, or one row of a case with rows.
struct SCase {
    std::string name;
    /// What the row fills in; empty for a case without rows.
    std::string row;
    std::vector<SSection> sections;
};

/// Fragments put in and rows filled in; cases with rows become one a row. Throws
/// std::runtime_error with the line that makes no sense.
std::vector<std::vector<SCase>> ReadCases(const std::string& path);

}  // namespace kestrail
