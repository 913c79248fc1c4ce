// Runs the cases of this folder's files against the built player, each as a test of its own.
#include <fnmatch.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "tests/cases/case_file.h"
#include "tests/support/call_notation.h"
#include "tests/support/program_run.h"

namespace kestrail {
namespace {

using Lines = std::vector<std::string>;
using Words = std::vector<std::string>;

std::string Joined(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
}

std::uint32_t Unsigned(const std::string& word) {
    return static_cast<std::uint32_t>(NumberOf(word));
}

std::pair<std::uint32_t, std::uint32_t> SizeOf(const std::string& word) {
    const std::size_t cross = word.find('x');
    return {Unsigned(word.substr(0, cross)), Unsigned(word.substr(cross + 1))};
}

/// A trace in the making, by the lines of a section.
class CTraceText {
public:
    CTraceText(const Words& head) : trace(VersionOf(head)) {
        std::string kind = head.at(0);
        std::string window = "300x300";
        for (const std::string& word : head) {
            if (word.rfind("window=", 0) == 0) window = word.substr(7);
        }
        m_es1 = kind == "es1";
        if (kind.rfind("es", 0) == 0) Add("startup " + kind.substr(2) + " " + window);
    }

    void Add(const std::string& line) {
        const Words words = SplitWords(line);
        const auto directive = directives.find(words[0]);
        if (words[0] == "fill")
            return Fill(Unsigned(words[1]), line.substr(line.find_first_of(' ', 5)));
        if (directive != directives.end()) {
            Words padded = words;
            padded.resize(std::max<std::size_t>(words.size(), 8));
            directive->second(trace, padded);
        } else if (std::isdigit(static_cast<unsigned char>(words[0][0])) != 0) {
            const std::int64_t times = NumberOf(words[0].substr(0, words[0].size() - 1));
            for (std::int64_t i = 0; i < times; ++i) Add(line.substr(words[0].size() + 1));
        } else {
            AddCall(trace, line, m_es1);
        }
    }

    CTraceBuilder trace;

private:
    using Directive = std::function<void(CTraceBuilder&, const Words&)>;

    /// Repeats the calls until they take that many MiB. The number of the time stands for each #,
    /// changed by what stands behind it: #*12, #%32+4. Built once, as there are tens of thousands.
    void Fill(std::uint32_t mebibytes, std::string calls) {
        static const std::regex number("#(\\*(\\d+))?(%(\\d+))?(\\+(\\d+))?");
        constexpr std::uint32_t mark = 0x5A5A5A00;
        std::vector<std::function<std::uint32_t(std::uint32_t)>> numbers;
        for (std::smatch match; std::regex_search(calls, match, number);) {
            numbers.push_back(
                [times = Or(match[2], 1), most = Or(match[4], ~0U),
                 more = Or(match[6], 0)](std::uint32_t n) { return n * times % most + more; });
            calls.replace(static_cast<std::size_t>(match.position()),
                          static_cast<std::size_t>(match.length()),
                          std::to_string(mark + numbers.size() - 1));
        }
        CTraceText once({"none", "version=" + std::to_string(trace.Version())});
        const auto head = static_cast<std::ptrdiff_t>(once.trace.SetFooter(false).Build().size());
        once.m_es1 = m_es1;
        for (std::size_t at = 0; at < calls.size();) {
            const std::size_t end = std::min(calls.find(";;", at), calls.size());
            once.Add(calls.substr(at, end - at));
            at = end + 2;
        }
        const Bytes whole = once.trace.Build();
        const Bytes turn(whole.begin() + head, whole.end());
        const std::size_t turns = (std::size_t{mebibytes} << 20) / turn.size();
        for (std::uint32_t n = 1; n <= turns; ++n) {
            Bytes filled = turn;
            for (std::size_t at = 0; at + 4 <= filled.size(); ++at) {
                std::uint32_t value = 0;
                std::memcpy(&value, &filled[at], 4);
                if (value < mark || value - mark >= numbers.size()) continue;
                value = numbers[value - mark](n);
                std::memcpy(&filled[at], &value, 4);
            }
            trace.AddRaw(filled);
        }
    }

    static std::uint32_t VersionOf(const Words& head) {
        for (const std::string& word : head) {
            if (word.rfind("version=", 0) == 0) return Unsigned(word.substr(8));
        }
        return 14;
    }
    static std::uint32_t Or(const std::string& word, std::uint32_t usual) {
        return word.empty() ? usual : Unsigned(word);
    }
    static std::string Unquoted(const std::string& word) { return word.substr(1, word.size() - 2); }
    static std::int8_t Small(const std::string& word) {
        return static_cast<std::int8_t>(NumberOf(word));
    }

    static const std::map<std::string, Directive> directives;
    bool m_es1 = false;
};

// What stands in a trace beside its calls; words[0] is the directive's own.
const std::map<std::string, CTraceText::Directive> CTraceText::directives = {
    {"startup",
     [](CTraceBuilder& trace, const Words& w) {
         const auto [width, height] = SizeOf(w[2]);
         trace.StartUp(static_cast<int>(NumberOf(w[1])), width, height);
     }},
    {"display", [](CTraceBuilder& trace, const Words& w) { trace.GetDisplay(Or(w[1], 0x100)); }},
    {"init", [](CTraceBuilder& trace, const Words& w) { trace.Initialize(Or(w[1], 0x100)); }},
    {"context",
     [](CTraceBuilder& trace, const Words& w) {
         trace.CreateContext(static_cast<int>(NumberOf(w[1])), Or(w[2], CTraceBuilder::context),
                             Or(w[3], 0));
     }},
    {"window",
     [](CTraceBuilder& trace, const Words& w) {
         const auto [width, height] = SizeOf(w[1]);
         trace.CreateWindowSurface(width, height, Or(w[2], CTraceBuilder::surface));
     }},
    {"current",
     [](CTraceBuilder& trace, const Words& w) {
         trace.MakeCurrent(Or(w[1], CTraceBuilder::surface), Or(w[2], CTraceBuilder::context));
     }},
    {"swap", [](CTraceBuilder& trace,
                const Words& w) { trace.SwapBuffers(0, 0, {}, Or(w[1], CTraceBuilder::surface)); }},
    {"config",
     [](CTraceBuilder& trace, const Words& w) {
         std::vector<std::int64_t> list;
         for (const std::string& word : SplitWords(Unquoted(w[1]))) list.push_back(NumberOf(word));
         trace.SetConfigAttributes(list);
     }},
    {"thread", [](CTraceBuilder& trace, const Words& w) { trace.Thread(Unsigned(w[1])); }},
    {"marker", [](CTraceBuilder& trace,
                  const Words& w) { trace.Marker(static_cast<std::uint16_t>(Unsigned(w[1]))); }},
    {"state", [](CTraceBuilder& trace, const Words&) { trace.BeginState(); }},
    {"endstate", [](CTraceBuilder& trace, const Words&) { trace.EndState(); }},
    {"stateoffset",
     [](CTraceBuilder& trace, const Words& w) {
         trace.SetStateOffset(static_cast<std::uint64_t>(NumberOf(w[1])));
     }},
    {"disable",
     [](CTraceBuilder& trace, const Words& w) {
         for (std::size_t i = 1; i < w.size() && !w[i].empty(); ++i) {
             const auto last = Unsigned(w[i].substr(w[i].find('-') + 1));
             for (auto n = Unsigned(w[i].substr(0, w[i].find('-'))); n <= last; ++n)
                 trace.Disable(n);
         }
     }},
    {"override",
     [](CTraceBuilder& trace, const Words& w) {
         const auto last = Unsigned(w[1].substr(w[1].find('-') + 1));
         for (auto n = Unsigned(w[1].substr(0, w[1].find('-'))); n <= last; ++n) {
             trace.OverrideText(n, Unquoted(w[2]));
         }
     }},
    {"patch",
     [](CTraceBuilder& trace, const Words& w) { trace.Patch(Unsigned(w[1]), Unsigned(w[2])); }},
    {"cut", [](CTraceBuilder& trace, const Words& w) { trace.CutAt(Unsigned(w[1])); }},
    {"footer",
     [](CTraceBuilder& trace, const Words& w) {
         if (w[1] == "on" || w[1] == "off") {
             trace.SetFooter(w[1] == "on");
         } else {
             trace.SetFooterMarks(Small(w[1]), Small(w[2]));
         }
     }},
    {"magic", [](CTraceBuilder& trace, const Words& w) { trace.SetMagic(Unquoted(w[1])); }},
    {"mark", [](CTraceBuilder& trace, const Words& w) { trace.SetByteOrderMark(Unsigned(w[1])); }},
    {"flags",
     [](CTraceBuilder& trace, const Words& w) {
         trace.SetDataFlag(static_cast<std::uint8_t>(Unsigned(w[1])));
         if (!w[2].empty()) trace.SetSecondFlag(static_cast<std::uint8_t>(Unsigned(w[2])));
     }},
    {"typeset", [](CTraceBuilder& trace, const Words& w) { trace.SetTypeSet(Unsigned(w[1])); }},
    {"widths",
     [](CTraceBuilder& trace, const Words& w) {
         WidthTable widths;
         for (const std::string& word : SplitWords(Unquoted(w[1]))) widths.push_back(Small(word));
         trace.SetWidths(widths);
     }},
    {"widthcount", [](CTraceBuilder& trace, const Words& w) { trace.SetWidthCount(Small(w[1])); }},
    // A record as bytes; a size of its own may stand behind.
    {"record",
     [](CTraceBuilder& trace, const Words& w) {
         const Bytes bytes = BytesOf(w[2]);
         trace.AddSized(Or(w[3], static_cast<std::uint32_t>(bytes.size())),
                        static_cast<std::uint16_t>(Unsigned(w[1])), bytes);
     }},
    {"bytes", [](CTraceBuilder& trace, const Words& w) { trace.AddRaw(BytesOf(w[1])); }},
};

/// What stands in a call's line behind its number, without the blank at the end.
std::string CallText(const std::string& line) {
    const std::size_t call = line.find(" Call:");
    const std::size_t name = line.find(' ', call + 1);
    if (name == std::string::npos) return line;
    return line.substr(name + 1, line.find_last_not_of(' ') - name);
}

Lines Matching(const Lines& calls, const Words& patterns) {
    Lines found;
    for (const std::string& call : calls) {
        const std::string entry = call.substr(0, call.find('('));
        if (std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
                return fnmatch(pattern.c_str(), entry.c_str(), 0) == 0;
            })) {
            found.push_back(call);
        }
    }
    return found;
}

/// Messages are written with M, W and E for the prefixes, with a dot for an empty line, and with a
/// ~ for a blank at a line's beginning or end.
Lines Expected(const SSection& section) {
    static const std::map<std::string, std::string> prefixes = {
        {"M: ", "KESTRAIL(M) "}, {"W: ", "KESTRAIL(W) WARNING: "}, {"E: ", "KESTRAIL(W) ERROR: "}};
    Lines lines;
    for (const std::string& line : section.lines) {
        const auto prefix = prefixes.find(line.substr(0, 3));
        if (prefix != prefixes.end()) {
            lines.push_back(prefix->second + line.substr(3));
        } else {
            lines.push_back(line == "." ? "" : line);
        }
        if (lines.back().empty()) continue;
        for (char* end : {&lines.back().front(), &lines.back().back()}) {
            if (*end == '~') *end = ' ';
        }
        if (!lines.back().empty() && lines.back().front() == '~') lines.back().front() = ' ';
    }
    return lines;
}

class CCaseRun {
public:
    explicit CCaseRun(const SCase& one) : m_case(one) {}

    void Run() {
        const CTraceText text = ReadTrace();
        std::size_t i = 0;
        while (i < m_case.sections.size()) {
            std::string arguments;
            if (m_case.sections[i].word == "run") arguments = m_case.sections[i++].rest;
            std::size_t end = i;
            while (end < m_case.sections.size() && m_case.sections[end].word != "run") ++end;
            RunAll(text.trace, arguments, i, end);
            i = end;
        }
    }

private:
    /// Takes the sections in front of the first run; what they hold is for every run.
    CTraceText ReadTrace() {
        const auto& all = m_case.sections;
        const auto head = std::find_if(all.begin(), all.end(),
                                       [](const SSection& s) { return s.word == "trace"; });
        if (head == all.end()) throw std::runtime_error("a case needs a trace");
        CTraceText text(SplitWords(head->rest));
        const auto started = text.trace.CallCount();
        m_started = started;
        m_absent = head->rest == "absent";
        for (const std::string& line : head->lines) text.Add(line);
        std::vector<SSection> kept;
        for (const SSection& section : all) {
            if (section.word == "script") {
                m_options.script = WithValues(Joined(section.lines));
            } else if (section.word == "library") {
                m_options.host = section.rest;
            } else if (section.word == "files") {
                const std::string hosts = KESTRAIL_HOST_FOLDER "/";
                const Words words = SplitWords(section.rest);
                for (const std::string& name : words) std::ofstream(m_folder.File(name)) << "text";
                m_options.host.clear();
                m_options.environment = {"LD_LIBRARY_PATH=" + m_folder.Path() + ":" + hosts +
                                         "recording"};
                m_options.folder = words.size() == 1 ? hosts + "recording" : m_folder.Path();
            } else if (section.word == "environment") {
                m_options.environment = section.lines;
            } else if (section.word == "memory") {
                m_options.memoryLimit = Unsigned(section.rest);
            } else if (section.word != "trace") {
                kept.push_back(section);
            }
            if (section.word == "peak") {
                m_options.measureMemory = true;
                m_options.timeoutSeconds = 60;
                m_size = text.trace.Build().size();
            }
        }
        m_case.sections = kept;
        return text;
    }

    void RunAll(const CTraceBuilder& trace, const std::string& arguments, std::size_t first,
                std::size_t end) {
        std::istringstream ways(arguments + "|");
        for (std::string way; std::getline(ways, way, '|');) {
            // What the sanitizer takes would count as well.
            if (m_options.measureMemory && IsSanitized()) continue;
            const ::testing::ScopedTrace shown(__FILE__, __LINE__, "run " + way);
            const SRunResult run = m_absent ? RunProgram(SplitWords(way), m_options)
                                            : RunTrace(trace, SplitWords(way), m_options);
            bool messages = false;
            bool ends = false;
            for (std::size_t i = first; i < end; ++i) {
                const SSection& section = m_case.sections[i];
                messages = messages || section.word == "messages";
                ends = ends || section.word == "ends";
                Check(run, section);
            }
            EXPECT_TRUE(ends || run.Ok()) << run.Ending();
            EXPECT_EQ(messages ? "" : Joined(run.Messages()), "") << "no messages are expected";
        }
    }

    void Check(const SRunResult& run, const SSection& section) {
        const ::testing::ScopedTrace line(
            __FILE__, __LINE__, section.word + " of line " + std::to_string(section.number));
        Words words = SplitWords(section.rest);
        const std::string expected = Joined(Expected(section));
        if (section.word == "host") {
            Compare(words.empty() ? run.GlCalls() : Matching(run.calls, words), expected);
        } else if (section.word == "tail") {
            const bool counted = std::isdigit(static_cast<unsigned char>(words.at(0)[0])) != 0;
            const auto behind = std::find_if(
                run.calls.rbegin(), counted ? run.calls.rbegin() : run.calls.rend(),
                [&](const std::string& call) { return call.rfind(words[0] + "(", 0) == 0; });
            const Lines calls =
                Matching(counted ? run.calls : Lines(behind.base(), run.calls.end()),
                         words.size() > 1 ? Words(words.begin() + 1, words.end()) : Words{"*"});
            const auto count =
                counted ? std::min<std::size_t>(calls.size(), Unsigned(words[0])) : calls.size();
            Compare(Lines(calls.end() - static_cast<std::ptrdiff_t>(count), calls.end()), expected);
        } else if (section.word == "messages") {
            if (words.empty()) Compare(run.Messages(), expected);
        } else if (section.word == "lines") {
            Lines lines = run.CallLines();
            lines.erase(lines.begin(),
                        lines.begin() + static_cast<std::ptrdiff_t>(
                                            std::min<std::size_t>(lines.size(), m_started)));
            if (words.empty()) std::transform(lines.begin(), lines.end(), lines.begin(), CallText);
            Lines wanted = Expected(section);
            for (std::string& call : wanted) {
                const bool usual = words.empty() && call.find("=>") == std::string::npos;
                if (usual) call += " =>  :: Error: GL_NO_ERROR";
            }
            EXPECT_EQ(Joined(lines), Joined(wanted));
        } else if (section.word == "printed" && !words.empty()) {
            Lines lines;
            for (const std::string& printed : run.Lines()) {
                if (printed.find(section.rest) != std::string::npos) lines.push_back(printed);
            }
            EXPECT_EQ(Joined(lines), expected);
        } else if (section.word == "printed") {
            EXPECT_NE(("\n" + run.out).find("\n" + expected), std::string::npos)
                << expected << "is not in\n"
                << run.out;
        } else if (section.word == "output") {
            std::string out = run.out;
            const std::size_t path = out.find(KESTRAIL_PLAYER);
            if (path != std::string::npos) out.replace(path, sizeof KESTRAIL_PLAYER - 1, "PLAYER");
            EXPECT_EQ(out, expected);
        } else if (section.word == "frames") {
            constexpr std::size_t number = sizeof("KESTRAIL(M) Frame(P): ") - 1;
            const Lines lines = run.CallLines();
            std::string frames;
            for (std::size_t i = m_started; i < lines.size(); ++i) {
                frames += " " + lines[i].substr(number, lines[i].find(' ', number) - number);
            }
            EXPECT_EQ(frames, " " + section.rest);
        } else if (section.word == "errors") {
            EXPECT_EQ(run.err, expected);
        } else if (section.word == "starts") {
            const Lines lines = run.Lines();
            for (const std::string& start : Expected(section)) {
                EXPECT_EQ(
                    std::count_if(lines.begin(), lines.end(),
                                  [&](const std::string& one) { return one.rfind(start, 0) == 0; }),
                    NumberOf(words.at(0)))
                    << start << "\n"
                    << run.out;
            }
        } else if (section.word == "peak") {
            EXPECT_GT(run.maxResidentKilobytes, 0);
            EXPECT_LE(run.maxResidentKilobytes,
                      static_cast<long>(m_size * Unsigned(words.at(0)) >> 10) +
                          (long{Unsigned(words.at(1))} << 10));
        } else if (section.word == "unprinted") {
            for (const std::string& text : Expected(section)) {
                EXPECT_FALSE(run.Printed(text)) << text;
            }
        } else if (section.word == "count") {
            for (std::size_t i = 0; i + 1 < words.size(); i += 2) {
                EXPECT_EQ(Matching(run.calls, {words[i]}).size(), Unsigned(words[i + 1]))
                    << words[i];
            }
        } else if (section.word == "live") {
            for (std::size_t i = 0; i + 1 < words.size(); i += 2) {
                const auto live = run.live.find(words[i]);
                EXPECT_EQ(live == run.live.end() ? 0 : live->second, NumberOf(words[i + 1]))
                    << words[i];
            }
        } else if (section.word == "ends" && section.rest == "crash") {
            // A sanitizer turns the fault into an exit of its own.
            EXPECT_TRUE(run.signal != 0 || (IsSanitized() && run.status != 0)) << run.Ending();
        } else if (section.word == "ends") {
            const bool signal = words.at(0) == "signal";
            EXPECT_EQ(signal ? run.signal : run.status, NumberOf(words.at(1))) << run.Ending();
        } else {
            throw std::runtime_error(section.word + ": no such section");
        }
    }

    /// Names of enumerants may stand for the numbers that the host logs.
    static void Compare(const Lines& seen, const std::string& expected) {
        EXPECT_EQ(WithValues(expected), Joined(seen)) << "Which stands as\n" << expected;
    }

    SCase m_case;
    SRunOptions m_options;
    CTempFolder m_folder;
    std::uint32_t m_started = 0;
    bool m_absent = false;
    std::size_t m_size = 0;
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

std::string TestName(const std::string& text) {
    std::string name;
    for (char letter : text)
        name += std::isalnum(static_cast<unsigned char>(letter)) ? letter : '_';
    return name;
}

void RegisterFile(const std::filesystem::path& path) {
    for (const std::vector<SCase>& rows : ReadCases(path.string())) {
        if (rows.empty()) throw std::runtime_error(path.string() + ": a case without rows");
        ::testing::RegisterTest(path.stem().c_str(), TestName(rows.front().name).c_str(), nullptr,
                                nullptr, __FILE__, __LINE__,
                                [rows] { return new CCaseTest(rows); });
    }
}

}  // namespace
}  // namespace kestrail

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(KESTRAIL_CASES)) {
        if (entry.path().extension() == ".cases") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    for (const std::filesystem::path& file : files) kestrail::RegisterFile(file);
    return RUN_ALL_TESTS();
}
