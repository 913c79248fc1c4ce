#include "tracefile/document/load_observers.h"

#include <cstddef>

namespace kestrail {

void CLoadObservers::Register(std::uint32_t event, CLoadObserver* observer) {
    m_observers.emplace_back(event, observer);
}

void CLoadObservers::Unregister(std::uint32_t event, CLoadObserver* observer) {
    std::erase(m_observers, std::pair(event, observer));
}

void CLoadObservers::Notify(std::uint32_t event, const COpenProgress& progress) {
    // By index: an observer may register or unregister while it is told.
    // NOLINTNEXTLINE(modernize-loop-convert)
    for (std::size_t i = 0; i < m_observers.size(); ++i) {
        const auto [wanted, observer] = m_observers[i];
        if (wanted == event) observer->OnLoadProgress(event, progress);
    }
}

}  // namespace kestrail
