#include "tracefile/bytes/trace.h"

namespace kestrail {

void CTrace::ThrowUndefinedType() {
    throw "Undefined Es Type in record library";
}

}  // namespace kestrail
