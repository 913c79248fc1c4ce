// What the state updates of several calls of OpenGL ES 1.1 have in common. Most are those of a call
// in all of its forms, which differ in how they give their numbers; the rows of the calls name
// them.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "state/context_updates.h"
#include "state/es1/es1_state.h"
#include "state/stored_values.h"

namespace kestrail {

/// Whether two runs of floats are the same to the bit: what is not a number equals itself, and 0
/// does not equal -0.
template <std::size_t Count>
bool SameBits(const std::array<float, Count>& left, const std::array<float, Count>& right) {
    using Bits = std::array<std::uint32_t, Count>;
    return std::bit_cast<Bits>(left) == std::bit_cast<Bits>(right);
}

bool SetClipPlane(CEs1State& state, const TGLenum& plane, const CNumbers& equation);
bool SetTexCoord(CEs1State& state, const TGLenum& texture, const CNumbers& s, const CNumbers& t,
                 const CNumbers& r, const CNumbers& q);
bool SetPointParameter(CEs1State& state, const TGLenum& pname, const CNumbers& numbers);

bool SetFog(CEs1State& state, const TGLenum& pname, const CNumbers& numbers);
bool SetLight(CEs1State& state, const TGLenum& light, const TGLenum& pname,
              const CNumbers& numbers);
bool SetLightModel(CEs1State& state, const TGLenum& pname, const CNumbers& numbers);
bool SetMaterial(CEs1State& state, const TGLenum& face, const TGLenum& pname,
                 const CNumbers& numbers);

bool LoadMatrix(CEs1State& state, const CNumbers& elements);
bool MultMatrix(CEs1State& state, const CNumbers& elements);
bool Translate(CEs1State& state, const CNumbers& x, const CNumbers& y, const CNumbers& z);
bool Scale(CEs1State& state, const CNumbers& x, const CNumbers& y, const CNumbers& z);
bool Rotate(CEs1State& state, const CNumbers& angle, const CNumbers& x, const CNumbers& y,
            const CNumbers& z);
bool Frustum(CEs1State& state, const CNumbers& l, const CNumbers& r, const CNumbers& b,
             const CNumbers& t, const CNumbers& n, const CNumbers& f);
bool Ortho(CEs1State& state, const CNumbers& l, const CNumbers& r, const CNumbers& b,
           const CNumbers& t, const CNumbers& n, const CNumbers& f);

bool SetTexParameter(CEs1State& state, const TGLenum& target, const TGLenum& pname,
                     const CNumbers& value);
bool SetTexEnv(CEs1State& state, const TGLenum& target, const TGLenum& pname,
               const CNumbers& value);

}  // namespace kestrail
