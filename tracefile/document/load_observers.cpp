#include "tracefile/document/load_observers.h"

namespace kestrail {

CLoadObservers& CLoadObservers::Instance() {
    static CLoadObservers instance;
    return instance;
}

void CLoadObservers::Register(std::uint32_t event, CLoadObserver* observer) {
    m_observers.emplace_back(event, observer);
}

void CLoadObservers::Unregister(std::uint32_t event, CLoadObserver* observer) {
    std::erase(m_observers, std::pair(event, observer));
}

void CLoadObservers::Notify(std::uint32_t event, const COpenProgress& progress) {
    for (const auto& [wanted, observer] : m_observers) {
        if (wanted == event) observer->OnLoadProgress(event, progress);
    }
}

}  // namespace kestrail
