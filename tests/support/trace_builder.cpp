#include "tests/support/trace_builder.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace kestrail {

namespace {

void AppendLittle(Bytes& out, std::uint64_t value, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i) {
        out.push_back(i < 8 ? static_cast<std::uint8_t>(value >> (8 * i)) : std::uint8_t{0});
    }
}

void AppendRaw(Bytes& out, const void* data, std::size_t size) {
    const auto* first = static_cast<const std::uint8_t*>(data);
    if (size != 0) out.insert(out.end(), first, first + size);
}

std::uint32_t Low32(std::size_t value) {
    return static_cast<std::uint32_t>(value);
}

// What eglGetConfigAttrib would have told of a 24-bit configuration with depth and stencil, kept to
// the attributes that a driver elsewhere can match.
std::vector<std::int64_t> DefaultConfigAttributes() {
    return {0x3020, 24,      // EGL_BUFFER_SIZE
            0x3021, 0,       // EGL_ALPHA_SIZE
            0x3022, 8,       // EGL_BLUE_SIZE
            0x3023, 8,       // EGL_GREEN_SIZE
            0x3024, 8,       // EGL_RED_SIZE
            0x3025, 24,      // EGL_DEPTH_SIZE
            0x3026, 8,       // EGL_STENCIL_SIZE
            0x3031, 0,       // EGL_SAMPLES
            0x3033, 0x0004,  // EGL_SURFACE_TYPE: EGL_WINDOW_BIT
            0x3040, 0x0045,  // EGL_RENDERABLE_TYPE: ES1, ES2 and ES3
            0x3038};
}

}  // namespace

WidthTable StandardWidths() {
    return {4,  -4, 4, 4, 4, 4, 4, 4,  4,  4,  4,  4, 4,  1,  4,  -1, -2,
            -4, -4, 1, 2, 4, 4, 4, -4, -4, -4, -4, 0, -4, -4, -8, -8};
}

CRecordBuilder& CRecordBuilder::Value(unsigned typeTag, std::uint64_t value) {
    const int entry = typeTag < m_widths.size() ? m_widths[typeTag] : 0;
    AppendLittle(m_bytes, value, entry == 0 ? 4U : static_cast<std::size_t>(std::abs(entry)));
    return *this;
}

CRecordBuilder& CRecordBuilder::Little(std::uint64_t value, std::size_t width) {
    AppendLittle(m_bytes, value, width);
    return *this;
}

CRecordBuilder& CRecordBuilder::Raw(const void* data, std::size_t size) {
    AppendRaw(m_bytes, data, size);
    return *this;
}

CRecordBuilder& CRecordBuilder::Data(std::uint64_t pointer, const void* data, std::size_t size) {
    return Pointer(pointer).U32(Low32(size)).Raw(data, size);
}

CRecordBuilder& CRecordBuilder::String(std::uint64_t pointer, std::string_view text) {
    Pointer(pointer).U32(Low32(text.size()));
    return pointer == 0 ? *this : Raw(text.data(), text.size());
}

CRecordBuilder& CRecordBuilder::Strings(std::uint64_t pointer,
                                        const std::vector<std::string>& texts) {
    ArrayHead(pointer, Low32(texts.size()));
    if (pointer == 0) return *this;
    std::uint64_t address = pointer + 0x1000;
    for (const std::string& text : texts) {
        String(address, text);
        address += text.size() + 1;
    }
    return *this;
}

CRecordBuilder& CRecordBuilder::ClientArray(std::int64_t index, std::uint64_t pointer,
                                            const Bytes& bytes) {
    if (m_version >= 14) Int(index);
    return Data(pointer, bytes);
}

CTraceBuilder::CTraceBuilder(std::uint32_t version) : m_version(version) {
    settings.footer = version >= 12;
    settings.configAttributes = DefaultConfigAttributes();
    if (version == 7) {
        settings.typeSet = 1;
        settings.widths.resize(28);
    }
}

CTraceBuilder& CTraceBuilder::Add(std::uint16_t id, const CRecordBuilder& record) {
    return AddSized(Low32(record.Content().size()), id, record.Content());
}

CTraceBuilder& CTraceBuilder::AddSized(std::uint32_t size, std::uint16_t id, const Bytes& payload) {
    Bytes& section = Section();
    AppendLittle(section, size, 4);
    AppendLittle(section, id, 2);
    AppendRaw(section, payload.data(), payload.size());
    if (id > 5) ++m_callCount;
    return *this;
}

CTraceBuilder& CTraceBuilder::AddRaw(const Bytes& bytes) {
    AppendRaw(Section(), bytes.data(), bytes.size());
    return *this;
}

CTraceBuilder& CTraceBuilder::Initialize() {
    return Add(1017, Egl()
                         .EglBoolean(true)
                         .Display(display)
                         .Array(tag::EglInt, 0x20000, {1})
                         .Array(tag::EglInt, 0x20004, {4}));
}

CTraceBuilder& CTraceBuilder::CreateContext(int clientVersion, std::uint32_t ctx) {
    return Add(1003, Egl()
                         .Context(ctx)
                         .Display(display)
                         .Config(config)
                         .Context(0)
                         .Attributes({0x3098, clientVersion, 0x3038})
                         .Attributes(settings.configAttributes));
}

CTraceBuilder& CTraceBuilder::CreateWindowSurface(std::uint32_t width, std::uint32_t height,
                                                  std::uint32_t srf) {
    return Add(1006, Egl()
                         .Surface(srf)
                         .Display(display)
                         .Config(config)
                         .Window(0x500, width, height)
                         .Attributes({})
                         .Attributes(settings.configAttributes));
}

CTraceBuilder& CTraceBuilder::MakeCurrent(std::uint32_t srf, std::uint32_t ctx) {
    CRecordBuilder record =
        Egl().EglBoolean(true).Display(display).Surface(srf).Surface(srf).Context(ctx);
    if (m_version >= 9) record.Config(config).Attributes(settings.configAttributes);
    return Add(1018, record);
}

CTraceBuilder& CTraceBuilder::SwapBuffers(std::uint32_t width, std::uint32_t height,
                                          const Bytes& picture, std::uint32_t srf) {
    CRecordBuilder record = Egl().EglBoolean(true).Display(display).Surface(srf);
    if (m_version >= 9) record.Uint(++m_frame);
    if (m_version >= 10) {
        record.Uint(width).Uint(height).Data(picture.empty() ? 0 : 0x30000, picture);
    }
    return Add(1022, record);
}

CTraceBuilder& CTraceBuilder::StartUp(int clientVersion, std::uint32_t width,
                                      std::uint32_t height) {
    GetDisplay();
    Initialize();
    CreateContext(clientVersion);
    CreateWindowSurface(width, height);
    return MakeCurrent();
}

Bytes CTraceBuilder::BuildHeader() const {
    Bytes out;
    AppendRaw(out, settings.magic.data(), settings.magic.size());
    AppendLittle(out, settings.mark, 4);
    AppendLittle(out, m_version, 4);
    out.push_back(settings.dataFlag);
    if (m_version > 10) out.push_back(settings.secondFlag);
    AppendLittle(out, settings.typeSet, 4);
    if (m_version > 7) {
        const auto size = static_cast<std::int8_t>(settings.widths.size());
        out.push_back(static_cast<std::uint8_t>(settings.widthCount.value_or(size)));
    }
    AppendRaw(out, settings.widths.data(), settings.widths.size());
    if (m_version > 12) {
        AppendLittle(out, m_disabled.size(), 4);
        for (std::uint32_t callNumber : m_disabled) AppendLittle(out, callNumber, 4);
        AppendLittle(out, m_overrides.size(), 4);
        for (const auto& [callNumber, text] : m_overrides) {
            AppendLittle(out, callNumber, 4);
            AppendLittle(out, text.size(), 4);
            AppendRaw(out, text.data(), text.size());
        }
    }
    return out;
}

Bytes CTraceBuilder::Build() const {
    Bytes out = BuildHeader();
    AppendRaw(out, m_calls.data(), m_calls.size());
    const std::uint64_t statePlace = m_state.empty() ? 0 : out.size();
    AppendRaw(out, m_state.data(), m_state.size());
    if (settings.footer) {
        out.push_back(static_cast<std::uint8_t>(settings.firstMark));
        out.push_back(static_cast<std::uint8_t>(settings.secondMark));
        AppendLittle(out, settings.stateOffset.value_or(statePlace), 8);
    }
    for (const auto& [offset, value] : m_patches) std::memcpy(&out.at(offset), &value, 4);
    out.resize(std::min(out.size(), m_cutAt));
    return out;
}

bool CTraceBuilder::Write(const std::string& path) const {
    const Bytes bytes = Build();
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    file.close();
    return !file.fail();
}

}  // namespace kestrail
