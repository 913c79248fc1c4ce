// Writes a scene into a trace, as a recorder beside a running application would. It needs no
// graphics library.
#pragma once

#include "samples/common/back_end.h"

namespace kestrail::samples {

class CRecordingBackEnd final : public IBackEnd {
public:
    explicit CRecordingBackEnd(CTraceBuilder& trace) : m_trace(trace) {}

    bool Open(int clientVersion, int width, int height) override;
    void Swap() override;
    void Close() override;
    CTraceBuilder* Trace() override { return &m_trace; }
    Entry Find(const char*) override { return nullptr; }

private:
    CTraceBuilder& m_trace;
};

}  // namespace kestrail::samples
