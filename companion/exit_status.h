// The exit statuses of the command; its man page has the same table.
#pragma once

namespace kestrail {

enum EExitStatus : int {
    kExitDone = 0,
    kExitFound = 1,       ///< differences or failed calls were found
    kExitUsage = 2,       ///< wrong usage
    kExitTrace = 3,       ///< the trace can't be read
    kExitDriver = 4,      ///< no display or driver
    kExitOutput = 5,      ///< an output can't be written
    kExitNotRun = 126,    ///< record: the program was found but can't be run
    kExitNotFound = 127,  ///< record: there is no such program
    kExitSignal = 128,    ///< record: added to the signal that ended the program
};

}  // namespace kestrail
