// The owning holder of a process-wide host table. It has no destructor on purpose: the table must
// last until the process is gone, since closing a driver's library during exit would unmap code
// that the driver's own exit handlers and threads still run.
#pragma once

#include <memory>

#include "base/output.h"

namespace kestrail {

template <typename T>
class TraceScopedPtr {
public:
    constexpr TraceScopedPtr() = default;
    TraceScopedPtr(const TraceScopedPtr&) = delete;
    TraceScopedPtr& operator=(const TraceScopedPtr&) = delete;

    /// Destroys the object held and takes the new one.
    void Reset(std::unique_ptr<T> object) {
        Clear();
        m_object = object.release();
    }
    /// Destroys the object held; the holder is empty afterwards.
    void Clear() {
        delete m_object;
        m_object = nullptr;
    }

    explicit operator bool() const { return m_object != nullptr; }
    /// The object held. Null when there is none, which is reported.
    T* operator->() const { return Get(); }
    T* Get() const {
        if (m_object == nullptr) [[unlikely]] {
            // Kept: spelled like that; readers match it.
            output::Print("Error refering empty TraceScopedPtr\n");
        }
        return m_object;
    }

private:
    T* m_object = nullptr;
};

}  // namespace kestrail
