#include "samples/common/recording_back_end.h"

namespace kestrail::samples {

bool CRecordingBackEnd::Open(int clientVersion, int width, int height) {
    const std::vector<std::int32_t> config = ConfigAttributes(clientVersion);
    m_trace.settings.configAttributes = {config.begin(), config.end()};
    m_trace.Thread();
    m_trace.StartUp(clientVersion, static_cast<std::uint32_t>(width),
                    static_cast<std::uint32_t>(height));
    m_trace.Add(1029, m_trace.Egl().EglBoolean(true).Display(CTraceBuilder::display).EglInt(1));
    return true;
}

void CRecordingBackEnd::Swap() {
    m_trace.SwapBuffers();
}

void CRecordingBackEnd::Close() {
    m_trace.Add(1018, m_trace.Egl()
                          .EglBoolean(true)
                          .Display(CTraceBuilder::display)
                          .Surface(0)
                          .Surface(0)
                          .Context(0)
                          .Config(0)
                          .Attributes({}));
    m_trace.Add(1008, m_trace.Egl()
                          .EglBoolean(true)
                          .Display(CTraceBuilder::display)
                          .Surface(CTraceBuilder::surface));
    m_trace.Add(1007, m_trace.Egl()
                          .EglBoolean(true)
                          .Display(CTraceBuilder::display)
                          .Context(CTraceBuilder::context));
    m_trace.Add(1023, m_trace.Egl().EglBoolean(true).Display(CTraceBuilder::display));
}

}  // namespace kestrail::samples
