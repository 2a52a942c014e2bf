#pragma once

#include "platform/diagnostics/failure.h"

namespace platform {

class PathResolver;

// Clears up after processes that were killed, on all volumes of the device: removes what they left
// unpublished and gives the files that they had set aside their names back. What cannot be
// restored stays, and the run says so. Only while no other process is at work on the device.
void RecoverVolumes(const PathResolver& tree);

// Removes the files that earlier processes left unpublished in an open directory, whatever way it
// is open, and nothing else. Only while no other process is at work there. A file that cannot be
// removed stays and is no failure.
Status RemoveUnfinishedFilesIn(int directory);

// Whether RecoverVolumes would find anything to do. Only looks; what cannot be read is reported by
// the same line.
bool HaveLeftovers(const PathResolver& tree);

}  // namespace platform
