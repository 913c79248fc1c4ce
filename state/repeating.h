// Updates of a record that are done once more. The states of most frames are not kept but made
// again from the calls since a kept one, which must not print anything twice.
#pragma once

namespace kestrail {

inline bool repeatingUpdates = false;

/// For as long as it lives, updates are repetitions.
struct SRepeatedUpdates {
    SRepeatedUpdates() { repeatingUpdates = true; }
    ~SRepeatedUpdates() { repeatingUpdates = false; }
    SRepeatedUpdates(const SRepeatedUpdates&) = delete;
    SRepeatedUpdates& operator=(const SRepeatedUpdates&) = delete;
};

}  // namespace kestrail
