#include "tests/cases/trace_text.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <functional>
#include <map>
#include <regex>

#include "tests/support/call_notation.h"

namespace kestrail {
namespace {

/// The words of a directive, by place; words that aren't there are empty.
struct SDirective {
    std::vector<std::string> words;

    std::string Word(std::size_t i) const { return i < words.size() ? words[i] : ""; }
    /// Without its quotes or brackets.
    std::string Inner(std::size_t i) const { return Word(i).substr(1, Word(i).size() - 2); }
    std::int64_t Number(std::size_t i, std::int64_t usual = 0) const {
        return Word(i).empty() ? usual : NumberOf(Word(i));
    }
    template <typename Value = std::uint32_t>
    Value As(std::size_t i, std::int64_t usual = 0) const {
        return static_cast<Value>(Number(i, usual));
    }
    /// WIDTHxHEIGHT.
    std::pair<std::uint32_t, std::uint32_t> Size(std::size_t i) const {
        const std::size_t cross = Word(i).find('x');
        const SDirective parts{{Word(i).substr(0, cross), Word(i).substr(cross + 1)}};
        return {parts.As(0), parts.As(1)};
    }
    /// Calls the action with each number of FIRST-LAST, or with the one number.
    template <typename Action>
    void EachOf(std::size_t i, Action action) const {
        const std::string last = Word(i).substr(Word(i).find('-') + 1);
        for (std::int64_t n = NumberOf(Word(i).substr(0, Word(i).find('-'))); n <= NumberOf(last);
             ++n) {
            action(static_cast<std::uint32_t>(n));
        }
    }
    template <typename Value>
    std::vector<Value> List(std::size_t i) const {
        std::vector<Value> list;
        for (const std::string& word : SplitWords(Inner(i))) {
            list.push_back(static_cast<Value>(NumberOf(word)));
        }
        return list;
    }
};

using Directive = std::function<void(CTraceBuilder&, const SDirective&)>;

constexpr std::uint32_t kSurface = CTraceBuilder::surface;
constexpr std::uint32_t kContext = CTraceBuilder::context;

const std::map<std::string, Directive>& Directives() {
    using T = CTraceBuilder&;
    using D = const SDirective&;
    static const std::map<std::string, Directive> directives = {
        {"startup", [](T t, D d) { t.StartUp(d.As<int>(1), d.Size(2).first, d.Size(2).second); }},
        {"display", [](T t, D) { t.GetDisplay(); }},
        {"init", [](T t, D) { t.Initialize(); }},
        {"context", [](T t, D d) { t.CreateContext(d.As<int>(1), d.As(2, kContext)); }},
        {"window",
         [](T t, D d) {
             t.CreateWindowSurface(d.Size(1).first, d.Size(1).second, d.As(2, kSurface));
         }},
        {"current", [](T t, D d) { t.MakeCurrent(d.As(1, kSurface), d.As(2, kContext)); }},
        {"swap", [](T t, D d) { t.SwapBuffers(0, 0, {}, d.As(1, kSurface)); }},
        {"config", [](T t, D d) { t.settings.configAttributes = d.List<std::int64_t>(1); }},
        {"thread", [](T t, D d) { t.Thread(d.As(1)); }},
        {"marker", [](T t, D d) { t.Marker(d.As<std::uint16_t>(1)); }},
        {"state", [](T t, D) { t.BeginState(); }},
        {"endstate", [](T t, D) { t.EndState(); }},
        {"stateoffset", [](T t, D d) { t.settings.stateOffset = d.As<std::uint64_t>(1); }},
        {"disable",
         [](T t, D d) {
             for (std::size_t i = 1; !d.Word(i).empty(); ++i) {
                 d.EachOf(i, [&](std::uint32_t n) { t.Disable(n); });
             }
         }},
        {"override",
         [](T t, D d) { d.EachOf(1, [&](std::uint32_t n) { t.OverrideText(n, d.Inner(2)); }); }},
        {"patch", [](T t, D d) { t.Patch(d.As(1), d.As(2)); }},
        {"cut", [](T t, D d) { t.CutAt(d.As(1)); }},
        {"footer",
         [](T t, D d) {
             t.settings.firstMark = d.As<std::int8_t>(1);
             t.settings.secondMark = d.As<std::int8_t>(2);
         }},
        {"magic", [](T t, D d) { t.settings.magic = d.Inner(1); }},
        {"mark", [](T t, D d) { t.settings.mark = d.As(1); }},
        {"flag", [](T t, D d) { t.settings.dataFlag = d.As<std::uint8_t>(1); }},
        {"typeset", [](T t, D d) { t.settings.typeSet = d.As(1); }},
        {"widths", [](T t, D d) { t.settings.widths = d.List<std::int8_t>(1); }},
        {"widthcount", [](T t, D d) { t.settings.widthCount = d.As<std::int8_t>(1); }},
        // A record as bytes; a size of its own may stand behind.
        {"record",
         [](T t, D d) {
             const Bytes bytes = BytesOf(d.Word(2));
             t.AddSized(d.As(3, static_cast<std::int64_t>(bytes.size())), d.As<std::uint16_t>(1),
                        bytes);
         }},
        {"bytes", [](T t, D d) { t.AddRaw(BytesOf(d.Word(1))); }},
    };
    return directives;
}

std::string Option(const std::string& head, const std::string& name, const std::string& usual) {
    for (const std::string& word : SplitWords(head)) {
        if (word.rfind(name + "=", 0) == 0) return word.substr(name.size() + 1);
    }
    return usual;
}

}  // namespace

CTraceText::CTraceText(const std::string& head)
    : trace(static_cast<std::uint32_t>(NumberOf(Option(head, "version", "14")))),
      m_es1(head.rfind("es1", 0) == 0) {
    if (head.rfind("es", 0) == 0) {
        AddOnce("startup " + head.substr(2, 1) + " " + Option(head, "window", "300x300"));
    }
}

void CTraceText::Add(const std::string& line) {
    const std::vector<std::string> words = SplitWords(line);
    if (words[0] == "fill") {
        Fill(static_cast<std::uint32_t>(NumberOf(words[1])), line.substr(line.find(' ', 5)));
    } else if (std::isdigit(static_cast<unsigned char>(words[0][0])) != 0) {
        const std::int64_t times = NumberOf(words[0].substr(0, words[0].size() - 1));
        for (std::int64_t i = 0; i < times; ++i) AddOnce(line.substr(words[0].size() + 1));
    } else {
        AddOnce(line);
    }
}

void CTraceText::AddOnce(const std::string& line) {
    const std::vector<std::string> words = SplitWords(line);
    const auto directive = Directives().find(words[0]);
    if (directive != Directives().end()) {
        directive->second(trace, SDirective{words});
    } else {
        AddCall(trace, line, m_es1);
    }
}

/// Repeats the calls until they take that many MiB. The number of the time stands for each #,
/// changed by what stands behind it: #*12, #%32+4. Built once, as there are tens of thousands.
void CTraceText::Fill(std::uint32_t mebibytes, std::string calls) {
    static const std::regex number("#(\\*(\\d+))?(%(\\d+))?(\\+(\\d+))?");
    constexpr std::uint32_t mark = 0x5A5A5A00;
    std::vector<std::function<std::uint32_t(std::uint32_t)>> numbers;
    for (std::smatch match; std::regex_search(calls, match, number);) {
        const SDirective given{{match[2], match[4], match[6]}};
        numbers.emplace_back(
            [times = given.As(0, 1), most = given.As(1, 0xFFFFFFFF),
             more = given.As(2)](std::uint32_t n) { return n * times % most + more; });
        calls.replace(static_cast<std::size_t>(match.position()),
                      static_cast<std::size_t>(match.length()),
                      std::to_string(mark + numbers.size() - 1));
    }
    CTraceText once("none version=" + std::to_string(trace.Version()));
    once.trace.settings.footer = false;
    const auto head = static_cast<std::ptrdiff_t>(once.trace.Build().size());
    once.m_es1 = m_es1;
    for (std::size_t at = 0; at < calls.size();) {
        const std::size_t end = std::min(calls.find(";;", at), calls.size());
        once.AddOnce(calls.substr(at, end - at));
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

}  // namespace kestrail
