// A trace by the lines of a case: calls, and directives for what stands beside them.
#pragma once

#include <string>

#include "tests/support/trace_builder.h"

namespace kestrail {

class CTraceText {
public:
    /// By what stands behind the word trace. Throws std::runtime_error, as does Add.
    explicit CTraceText(const std::string& head);

    /// A call or a directive, once or several times, or many of them.
    void Add(const std::string& line);

    CTraceBuilder trace;

private:
    void AddOnce(const std::string& line);
    void Fill(std::uint32_t mebibytes, std::string calls);

    bool m_es1 = false;
};

}  // namespace kestrail
