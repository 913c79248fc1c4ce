// The EGL world of the recorded application at one moment: displays, contexts and surfaces, and
// what is current. All handles are recorded ones.
#pragma once

#include <cstdint>
#include <vector>

#include "base/shared.h"
#include "calls/model/egl_values.h"
#include "state/state_table.h"

namespace kestrail {

/// A growing list of records, each with its key in front; a lookup that misses appends a default
/// record. The last record takes the place of one that is erased.
template <typename Record>
class TStateList {
public:
    std::uint32_t Count() const { return static_cast<std::uint32_t>(m_records.Count()); }
    const Record& At(std::uint32_t index) const {
        return *m_records.ValueAt(static_cast<std::int32_t>(index));
    }
    /// -1 when there is none.
    std::int32_t IndexOf(std::uint32_t handle) const { return m_records.IndexOf(handle); }
    /// Null when there is none.
    const Record* Find(std::uint32_t handle) const { return m_records.Find(handle); }
    Record& GetOrCreate(std::uint32_t handle) {
        Record& record = m_records.GetOrCreate(handle);
        record.handle = handle;
        return record;
    }
    void Erase(std::uint32_t handle) { m_records.Erase(handle); }

private:
    TStateTable<Record> m_records;
};

/// A list of name and value pairs with its end mark, or none.
using SEglAttributes = std::vector<std::int32_t>;
/// The same in a record, of which there are copies with every change of another one.
using SSharedEglAttributes = TShared<SEglAttributes>;

struct SEglDisplayRecord {
    std::uint32_t handle = 0;
    std::uint32_t nativeDisplay = 0;
    std::int32_t swapInterval = 1;
    std::uint8_t initialised = 0;  ///< what eglInitialize returned
};

struct SEglContextRecord {
    std::uint32_t handle = 0;
    std::uint32_t display = 0;
    std::uint32_t config = 0;
    std::uint32_t shareContext = 0;
    std::uint32_t api = 0;  ///< that was bound when it was made, 0 for the usual one
    SSharedEglAttributes attributes;
    SSharedEglAttributes configAttributes;
};

struct SEglSurfaceRecord {
    std::uint32_t handle = 0;
    std::uint32_t display = 0;
    std::uint32_t config = 0;
    SSharedEglAttributes attributes;
    SSharedEglAttributes configAttributes;
    std::int32_t height = 0;
    std::int32_t width = 0;
    SEglNativeWindowDesc window;
};

class CEglState {
public:
    TStateList<SEglContextRecord> contexts;
    TStateList<SEglDisplayRecord> displays;
    TStateList<SEglSurfaceRecord> surfaces;
    std::uint32_t currentContext = 0;
    std::uint32_t currentDisplay = 0;
    std::uint32_t currentDrawSurface = 0;
    std::uint32_t currentReadSurface = 0;
    std::uint32_t boundApi = 0;
    /// Of the last context that was created with one.
    std::uint32_t contextClientVersion = 0;
};

}  // namespace kestrail
