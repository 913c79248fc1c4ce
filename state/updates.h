// What updates of the records of one trace share beside the records.
#pragma once

#include <cstdint>
#include <memory>

#include "base/diagnostics.h"

namespace kestrail {

struct SUpdates {
    explicit SUpdates(Diagnostics& told) : diagnostics(told) {}

    Diagnostics& diagnostics;
    /// They are done once more: the states of most frames are not kept but made again from the
    /// calls since a kept one, which must not print anything twice.
    bool repeated = false;
    /// What all contents that take parts come to, in bytes. The records that have them count, and
    /// may be there longer than this.
    std::shared_ptr<std::uint64_t> taken = std::make_shared<std::uint64_t>(0);
};

/// For as long as it lives, updates are repetitions.
class SRepeatedUpdates {
public:
    explicit SRepeatedUpdates(SUpdates& updates) : m_updates(updates) { updates.repeated = true; }
    ~SRepeatedUpdates() { m_updates.repeated = false; }
    SRepeatedUpdates(const SRepeatedUpdates&) = delete;
    SRepeatedUpdates& operator=(const SRepeatedUpdates&) = delete;

private:
    SUpdates& m_updates;
};

}  // namespace kestrail
