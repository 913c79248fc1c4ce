// Values that only EGL calls have: attribute lists and descriptions of native objects.
#pragma once

#include <cstdint>

#include "base/enumerants.h"
#include "base/kstl_string.h"
#include "calls/model/array_values.h"

namespace kestrail {

/// Pairs of name and value, closed by EGL_NONE; the count is that of all integers.
class SEglAttribList : public SArrayPtr<TEGLint, 1, 1> {
public:
    SEglAttribList() = default;
    /// Takes a list up to and including its EGL_NONE; null gives an empty list.
    explicit SEglAttribList(const std::int32_t* list);

    /// The value of the first pair of that name into `out`, which stays as it is without one.
    void GetAttribute(std::int32_t name, std::int32_t& out) const;
    void Read(CTrace& trace);
    /// What is written of an application's list: up to and including its EGL_NONE.
    template <typename Sink, typename Given>
    static void Put(Sink& out, const Given* list) {
        std::uint32_t count = 0;
        if (list != nullptr) {
            while (list[count] != EGL_NONE) count += 2;
            ++count;
        }
        SArrayPtr::Put(out, list, count);
    }

    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
    void AppendDetailText(TextWriter& out) const override;

private:
    void AppendPair(TextWriter& out, std::uint32_t index) const;
};

/// Descriptors that stand in old layouts and take no bytes.
class SEglSurfaceDesc {
public:
    void Read(CTrace&) {}
    void Write(CRecordWriter&) const {}
};
class SEglSurfaceShortDesc {
public:
    void Read(CTrace&) {}
    void Write(CRecordWriter&) const {}
};

/// A recorded native window: its handle and its size in pixels.
class SEglNativeWindowDesc : public SApiTypeBase {
public:
    TEGLNativeWindowType handle;
    std::int32_t width = 0;
    std::int32_t height = 0;

    void Read(CTrace& trace);
    void Write(CRecordWriter& out) const;
    void AppendText(TextWriter& out) const override { handle.AppendText(out); }
};

/// A recorded native pixmap with its bytes. The length of the bytes stands on file once: the first
/// pixmap of a trace has it, and every later one takes the same.
class SEglNativePixmapDesc : public SApiTypeBase {
public:
    TEGLNativePixmapType handle;
    CKSTLString data;

    void Read(CTrace& trace);
    void Write(CRecordWriter& out) const;
    void AppendText(TextWriter& out) const override { handle.AppendText(out); }
};

}  // namespace kestrail
