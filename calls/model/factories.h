// One factory for each family: the identifier and the file's version select the class, which reads
// the record. Null for an identifier without a class in that version.
#pragma once

#include <cstdint>
#include <memory>

#include "calls/model/api_call.h"

namespace kestrail {

std::unique_ptr<CApiCall> CreateEglCall(std::uint16_t id, CTrace& trace);
std::unique_ptr<CApiCall> CreateEs1Call(std::uint16_t id, CTrace& trace);
std::unique_ptr<CApiCall> CreateEs2Call(std::uint16_t id, CTrace& trace);
std::unique_ptr<CApiCall> CreateEs3Call(std::uint16_t id, CTrace& trace);
std::unique_ptr<CApiCall> CreateExtCall(std::uint16_t id, CTrace& trace);

}  // namespace kestrail
