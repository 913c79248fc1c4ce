// Who wants to know how far a load has come: where a front end connects its progress bar.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "base/kstl_string.h"

namespace kestrail {

/// How far a load has come.
struct COpenProgress {
    std::uint32_t progressValue = 0;  ///< bytes processed, or 100 at a finished stage
    std::uint32_t progressMax = 0;    ///< the file's size while records are read, else 100
    CKSTLString progressTitle;
    CKSTLString progressDetail;
};

/// All notifications of a load are of this event.
inline constexpr std::uint32_t kLoadProgressEvent = 0;

class CLoadObserver {
public:
    virtual ~CLoadObserver() = default;
    virtual void OnLoadProgress(std::uint32_t event, const COpenProgress& progress) = 0;
};

class CLoadObservers {
public:
    /// Observers are not owned.
    void Register(std::uint32_t event, CLoadObserver* observer);
    void Unregister(std::uint32_t event, CLoadObserver* observer);
    /// Tells the event's observers, in the order of their registration.
    void Notify(std::uint32_t event, const COpenProgress& progress);

private:
    std::vector<std::pair<std::uint32_t, CLoadObserver*>> m_observers;
};

}  // namespace kestrail
