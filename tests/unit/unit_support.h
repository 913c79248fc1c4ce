// Rows of data, records to read values from, and the texts of values.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "base/diagnostics.h"
#include "base/output.h"
#include "calls/model/call_info.h"
#include "tests/support/call_notation.h"
#include "tracefile/bytes/trace.h"

namespace kestrail {

/// Rows of numbers and of names of published enumerants, split by semicolons.
template <typename Number = std::int32_t>
std::vector<std::vector<Number>> Rows(const std::string& text) {
    std::vector<std::vector<Number>> rows;
    std::istringstream lines(text);
    for (std::string line, word; std::getline(lines, line, ';');) {
        rows.emplace_back();
        for (std::istringstream words(line); words >> word;) {
            rows.back().push_back(static_cast<Number>(NumberOf(word)));
        }
    }
    return rows;
}

/// A file that goes away with the object.
class CTempFile {
public:
    explicit CTempFile(const Bytes& content) {
        static int s_number = 0;
        m_path = testing::TempDir() + "kestrail_unit_" + std::to_string(getpid()) + "_" +
                 std::to_string(++s_number);
        std::ofstream(m_path, std::ios::binary) << std::string(content.begin(), content.end());
    }
    ~CTempFile() { std::filesystem::remove(m_path); }
    CTempFile(const CTempFile&) = delete;
    CTempFile& operator=(const CTempFile&) = delete;

    CKSTLString Name() const { return CKSTLString(m_path.c_str()); }

private:
    std::string m_path;
};

/// One record's payload behind a reader. Zeros follow it, as other records do in a trace.
class CRecordStream {
public:
    explicit CRecordStream(const Bytes& payload, std::uint32_t version = 14,
                           const WidthTable& widths = StandardWidths())
        : m_widths(widths),
          m_file(WithTail(payload)),
          m_trace(&m_stream, version, true, WithSpare(m_widths),
                  static_cast<std::int8_t>(widths.size()), ForEver()) {
        EXPECT_TRUE(m_stream.Open(m_file.Name(), true));
        m_trace.SetRecordSize(static_cast<std::uint32_t>(payload.size()));
    }
    explicit CRecordStream(const CRecordBuilder& record, std::uint32_t version = 14)
        : CRecordStream(record.Content(), version) {}
    ~CRecordStream() { m_stream.Close(); }

    CTrace& Trace() { return m_trace; }
    std::uint32_t Consumed() const { return m_stream.Tell(); }

private:
    static Bytes WithTail(Bytes payload) {
        payload.resize(payload.size() + 64);
        return payload;
    }
    /// Calls and values may outlive what they are read from.
    static CObjectArena& ForEver() {
        static CObjectArena memory;
        return memory;
    }
    static const std::int8_t* WithSpare(WidthTable& widths) {
        widths.push_back(0);
        return widths.data();
    }

    WidthTable m_widths;
    CTempFile m_file;
    IOManager m_stream;
    CTrace m_trace;
};

inline CRecordBuilder Record(std::uint32_t version = 14) {
    return CRecordBuilder(StandardWidths(), version);
}

/// A value read from a record that holds just it.
template <typename Value>
Value ReadFrom(const CRecordBuilder& record) {
    CRecordStream stream(record);
    Value value;
    stream.Trace() >> value;
    EXPECT_EQ(stream.Consumed(), record.Content().size());
    return value;
}

inline std::string ShortText(const SApiTypeBase& value) {
    CKSTLString text;
    value.GetText(text, nullptr);
    return std::string(text.view());
}

inline std::string FullText(const SApiTypeBase& value) {
    CKSTLString text, detail;
    value.GetText(text, &detail);
    return std::string(detail.view());
}

inline std::string LinesText(const SApiTypeBase& value) {
    CKSTLString text;
    value.GetDetailText(text);
    return std::string(text.view());
}

/// A call with its values, its result and its error.
inline std::string LineOf(const CGenCallInfo& info) {
    TextWriter line;
    line.Append(info.GetCallName());
    const CGenCallInfo::Parameters* const parameters = info.GetParameters();
    for (std::uint32_t i = 0; parameters != nullptr && i < parameters->size(); ++i) {
        line.Append(i == 0 ? "(" : ", ");
        (*parameters)[i]->AppendText(line);
    }
    line.Append(") => ");
    if (info.GetReturnValue() != nullptr) info.GetReturnValue()->AppendDetailText(line);
    line.Append(" :: ");
    info.GetErrorValue()->AppendText(line);
    return std::string(line.View());
}

/// Nobody is told anything.
struct SQuiet : Diagnostics {
    void OnTold(EDiagnostic, const char*, std::va_list) override {}
};

/// What `action` prints on standard output.
template <typename Action>
std::string Printed(Action action) {
    output::Flush();
    testing::internal::CaptureStdout();
    action();
    output::Flush();
    return testing::internal::GetCapturedStdout();
}

}  // namespace kestrail
