// Runs the cases of this folder's files against the built player, each as a test of its own.
#include <fnmatch.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>

#include "tests/cases/case_file.h"
#include "tests/cases/trace_text.h"
#include "tests/support/call_notation.h"
#include "tests/support/program_run.h"

namespace kestrail {
namespace {

using Lines = std::vector<std::string>;

std::string Joined(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
}

/// What stands in a call's line behind its number, without the blank at the end.
std::string CallText(const std::string& line) {
    const std::size_t call = line.find(" Call:");
    const std::size_t name = line.find(' ', call + 1);
    if (name == std::string::npos) return line;
    return line.substr(name + 1, line.find_last_not_of(' ') - name);
}

bool Begins(const std::string& text, const std::string& start) {
    return text.rfind(start, 0) == 0;
}

Lines Matching(Lines calls, const Lines& patterns) {
    std::erase_if(calls, [&](const std::string& call) {
        const std::string entry = call.substr(0, call.find('('));
        return std::none_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
            return fnmatch(pattern.c_str(), entry.c_str(), 0) == 0;
        });
    });
    return calls;
}

/// Messages are written with M, W and E for the prefixes, with a dot for an empty line, and with a
/// ~ for a blank at a line's beginning or end.
Lines Unfolded(Lines lines) {
    static const std::map<std::string, std::string> prefixes = {
        {"M: ", "KESTRAIL(M) "}, {"W: ", "KESTRAIL(W) WARNING: "}, {"E: ", "KESTRAIL(W) ERROR: "}};
    for (std::string& line : lines) {
        const auto prefix = prefixes.find(line.substr(0, 3));
        if (prefix != prefixes.end()) line.replace(0, 3, prefix->second);
        if (line == ".") line.clear();
        if (Begins(line, "~")) line.front() = ' ';
        if (!line.empty() && line.back() == '~') line.back() = ' ';
    }
    return lines;
}

/// What one section expects of one run.
struct SExpectation {
    const SRunResult& run;
    const std::string& rest;
    Lines words;
    Lines lines;
    std::size_t startUpCalls;
    std::size_t traceSize;

    void Check(const std::string& word) const {
        static const std::map<std::string, void (SExpectation::*)() const> checks = {
            {"host", &SExpectation::Host},         {"tail", &SExpectation::Tail},
            {"messages", &SExpectation::Messages}, {"lines", &SExpectation::CallLines},
            {"printed", &SExpectation::Printed},   {"unprinted", &SExpectation::Unprinted},
            {"output", &SExpectation::Output},     {"frames", &SExpectation::Frames},
            {"errors", &SExpectation::Errors},     {"starts", &SExpectation::Starts},
            {"peak", &SExpectation::Peak},         {"count", &SExpectation::Count},
            {"ends", &SExpectation::Ends}};
        const auto check = checks.find(word);
        if (check == checks.end()) throw std::runtime_error(word + ": no such section");
        (this->*check->second)();
    }

    /// Names of enumerants may stand for the numbers that the host logs.
    void Compare(const Lines& seen) const {
        const std::string expected = Joined(lines);
        EXPECT_EQ(WithValues(expected), Joined(seen)) << "Which stands as\n" << expected;
    }
    std::int64_t Number(std::size_t place) const { return NumberOf(words.at(place)); }
    Lines Behind() const {
        const Lines all = run.CallLines();
        const std::size_t first = std::min(startUpCalls, all.size());
        return {all.begin() + static_cast<std::ptrdiff_t>(first), all.end()};
    }

    void Host() const { Compare(words.empty() ? run.GlCalls() : Matching(run.calls, words)); }
    void Tail() const {
        const bool counted = std::isdigit(static_cast<unsigned char>(words.at(0)[0])) != 0;
        const auto& all = run.calls;
        auto first = all.begin();
        for (auto call = all.begin(); !counted && call != all.end(); ++call) {
            if (Begins(*call, words[0] + "(")) first = call + 1;
        }
        const Lines patterns(words.begin() + 1, words.end());
        Lines calls = Matching({first, all.end()}, patterns.empty() ? Lines{"*"} : patterns);
        const auto count = static_cast<std::ptrdiff_t>(calls.size());
        const std::ptrdiff_t left = counted ? std::max<std::ptrdiff_t>(0, count - Number(0)) : 0;
        Compare({calls.begin() + left, calls.end()});
    }
    void Messages() const {
        if (words.empty()) Compare(run.Messages());
    }
    void CallLines() const {
        Lines seen = Behind();
        Lines expected = lines;
        std::transform(seen.begin(), seen.end(), seen.begin(), CallText);
        for (std::string& call : expected) {
            if (call.find("=>") == std::string::npos) call += " =>  :: Error: GL_NO_ERROR";
        }
        EXPECT_EQ(Joined(seen), Joined(expected));
    }
    void Printed() const {
        if (words.empty()) {
            EXPECT_NE(("\n" + run.out).find("\n" + Joined(lines)), std::string::npos)
                << Joined(lines) << "is not in\n"
                << run.out;
            return;
        }
        Lines seen = run.Lines();
        std::erase_if(
            seen, [&](const std::string& line) { return line.find(rest) == std::string::npos; });
        EXPECT_EQ(Joined(seen), Joined(lines));
    }
    void Unprinted() const {
        for (const std::string& text : lines) EXPECT_FALSE(run.Printed(text)) << text;
    }
    void Output() const {
        std::string out = run.out;
        const std::size_t path = out.find(KESTRAIL_PLAYER);
        if (path != std::string::npos) out.replace(path, sizeof KESTRAIL_PLAYER - 1, "PLAYER");
        EXPECT_EQ(out, Joined(lines));
    }
    void Errors() const { EXPECT_EQ(run.err, Joined(lines)); }
    void Frames() const {
        constexpr std::size_t number = sizeof("KESTRAIL(M) Frame(P): ") - 1;
        std::string frames;
        for (const std::string& line : Behind()) {
            frames += " " + line.substr(number, line.find(' ', number) - number);
        }
        EXPECT_EQ(frames, " " + rest);
    }
    void Starts() const {
        const Lines seen = run.Lines();
        for (const std::string& start : lines) {
            EXPECT_EQ(std::count_if(seen.begin(), seen.end(),
                                    [&](const std::string& one) { return Begins(one, start); }),
                      Number(0))
                << start << "\n"
                << run.out;
        }
    }
    void Peak() const {
        EXPECT_GT(run.maxResidentKilobytes, 0);
        EXPECT_LE(run.maxResidentKilobytes,
                  static_cast<std::int64_t>(traceSize >> 10) * Number(0) + (Number(1) << 10));
    }
    void Count() const {
        for (std::size_t i = 0; i + 1 < words.size(); i += 2) {
            const auto live = run.live.find(words[i]);
            EXPECT_EQ(live == run.live.end() ? Matching(run.calls, {words[i]}).size()
                                             : static_cast<std::size_t>(live->second),
                      static_cast<std::size_t>(Number(i + 1)))
                << words[i];
        }
    }
    void Ends() const {
        if (rest == "crash") {
            // A sanitizer turns the fault into an exit of its own.
            EXPECT_TRUE(run.signal != 0 || (IsSanitized() && run.status != 0)) << run.Ending();
        } else {
            EXPECT_EQ(words.at(0) == "signal" ? run.signal : run.status, Number(1)) << run.Ending();
        }
    }
};

class CCaseRun {
public:
    explicit CCaseRun(const SCase& one)
        : m_sections(one.sections), m_head(TraceSection()), m_text(m_head.rest) {
        m_startUpCalls = m_text.trace.CallCount();
        for (const std::string& line : m_head.lines) m_text.Add(line);
        std::erase_if(m_sections, [&](const SSection& section) { return TakeSetting(section); });
    }

    /// The sections up to the first run, which needs no line of its own, and each run's.
    void Run() const {
        auto first = m_sections.begin();
        do {
            const bool named = first != m_sections.end() && first->word == "run";
            const std::string arguments = named ? first->rest : "";
            if (named) ++first;
            const auto end = std::find_if(first, m_sections.end(),
                                          [](const SSection& s) { return s.word == "run"; });
            RunAll(arguments, {first, end});
            first = end;
        } while (first != m_sections.end());
    }

private:
    SSection TraceSection() const {
        for (const SSection& section : m_sections) {
            if (section.word == "trace") return section;
        }
        throw std::runtime_error("a case needs a trace");
    }

    /// True for what holds for every run: how it is made, not what is expected of it.
    bool TakeSetting(const SSection& section) {
        if (section.word == "script") {
            m_options.script = WithValues(Joined(section.lines));
        } else if (section.word == "library") {
            m_options.host = section.rest;
        } else if (section.word == "memory") {
            m_options.memoryLimit = static_cast<unsigned>(NumberOf(section.rest));
        } else if (section.word == "files") {
            MakeFiles(SplitWords(section.rest));
        } else if (section.word == "peak") {
            m_options.measureMemory = true;
            m_options.timeoutSeconds = 60;
            return false;
        } else {
            return section.word == "trace";
        }
        return true;
    }

    void MakeFiles(const Lines& names) {
        const std::string recording = KESTRAIL_HOST_FOLDER "/recording";
        for (const std::string& name : names) std::ofstream(m_folder.File(name)) << "text";
        m_options.host.clear();
        m_options.environment = {"LD_LIBRARY_PATH=" + m_folder.Path() + ":" + recording};
        m_options.folder = names.size() == 1 ? recording : m_folder.Path();
    }

    void RunAll(const std::string& arguments, const std::vector<SSection>& expected) const {
        const std::size_t size = m_options.measureMemory ? m_text.trace.Build().size() : 0;
        std::istringstream ways(arguments + "|");
        for (std::string way; std::getline(ways, way, '|');) {
            // What the sanitizer takes would count as well.
            if (m_options.measureMemory && IsSanitized()) continue;
            SCOPED_TRACE("run " + way);
            const SRunResult run = m_head.rest == "absent"
                                       ? RunProgram(SplitWords(way), m_options)
                                       : RunTrace(m_text.trace, SplitWords(way), m_options);
            bool messages = false;
            bool ends = false;
            for (const SSection& section : expected) {
                SCOPED_TRACE(section.word + " of line " + std::to_string(section.number));
                messages = messages || section.word == "messages";
                ends = ends || section.word == "ends";
                const SExpectation expectation = {run,
                                                  section.rest,
                                                  SplitWords(section.rest),
                                                  Unfolded(section.lines),
                                                  m_startUpCalls,
                                                  size};
                expectation.Check(section.word);
            }
            EXPECT_TRUE(ends || run.Ok()) << run.Ending();
            EXPECT_EQ(messages ? "" : Joined(run.Messages()), "") << "no messages are expected";
        }
    }

    std::vector<SSection> m_sections;
    SSection m_head;
    CTraceText m_text;
    SRunOptions m_options;
    CTempFolder m_folder;
    std::size_t m_startUpCalls = 0;
};

class CCaseTest : public ::testing::Test {
public:
    explicit CCaseTest(std::vector<SCase> rows) : m_rows(std::move(rows)) {}

    void TestBody() override {
        for (const SCase& row : m_rows) {
            SCOPED_TRACE(row.row);
            try {
                CCaseRun(row).Run();
            } catch (const std::exception& fault) {
                ADD_FAILURE() << fault.what();
            }
        }
    }

private:
    std::vector<SCase> m_rows;
};

void RegisterFile(const std::filesystem::path& path) {
    for (const std::vector<SCase>& rows : ReadCases(path.string())) {
        if (rows.empty()) throw std::runtime_error(path.string() + ": a case without rows");
        std::string name = rows.front().name;
        for (char& letter : name) {
            if (std::isalnum(static_cast<unsigned char>(letter)) == 0) letter = '_';
        }
        ::testing::RegisterTest(path.stem().c_str(), name.c_str(), nullptr, nullptr, __FILE__,
                                __LINE__, [rows] { return new CCaseTest(rows); });
    }
}

}  // namespace
}  // namespace kestrail

int main(int argc, char** argv) {
    try {
        ::testing::InitGoogleTest(&argc, argv);
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(KESTRAIL_CASES)) {
            if (entry.path().extension() == ".cases") files.push_back(entry.path());
        }
        std::sort(files.begin(), files.end());
        for (const std::filesystem::path& file : files) kestrail::RegisterFile(file);
        return RUN_ALL_TESTS();
    } catch (const std::exception& fault) {
        std::cerr << fault.what() << "\n";
        return 2;
    }
}
