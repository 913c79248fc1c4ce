// How a recorded process and the command meet: at a socket in the rendezvous folder, where the
// command hands out a ring. Needs nothing of the process but its being there: it may be in other
// namespaces, and closed to all who would look into it.
#pragma once

#include <sys/types.h>

#include "recorder/channel/ring.h"

namespace kestrail {

/// The command's end; -1 when there can't be any. Never waits.
int ListenIn(const char* folder);
/// The next process that has come, connected; -1 without one. Its number may be 0 when it has none
/// here.
int NextComer(int listener, pid_t& process);
/// Hands out the ring, or none.
void HandOut(int connection, const SRingMemory& memory);

/// In the process: waits for the ring. False when the command is gone, or has no memory.
bool TakeRing(const char* folder, CRingMapping& ring);

}  // namespace kestrail
