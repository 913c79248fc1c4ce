// Calls as lines of text, turned into records. Layouts follow from the published prototypes, with
// the exceptions listed in the source; the player's own tables have no part in them.
//
//   [es1.]NAME VALUE... [= RESULT] [!ERROR] [@API]
//
// A value is written by what the call's layout has in its place:
//   numbers   7  -1  0x10  2.5  GL_RGBA  GL_COLOR_BUFFER_BIT|GL_DEPTH_BUFFER_BIT
//             DPY CFG CTX SRF for the handles of a start-up
//   bytes     [01 02ff 11*8]  0x20[01]  null  null[01]: pointer (0x10 unless given) and bytes
//   texts     "a\n"  null
//   lists     {1 2 3}  {7*5}  0x20{1}  {"a" "b"}  null
//   windows   0x500:300x200
//   a draw's captured arrays, behind all others: 0:[11*8]  3:0x20[22*12]
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/table_rows.h"
#include "tests/support/trace_builder.h"

namespace kestrail {

/// The words of a line: brackets, braces and quotes hold what is in them together.
std::vector<std::string> SplitWords(const std::string& line);

/// A number, the name of a published enumerant, or several of them joined by bars. Throws
/// std::runtime_error for anything else.
std::int64_t NumberOf(const std::string& word);

/// The bytes of a word [..].
Bytes BytesOf(const std::string& word);

/// Replaces the names of published enumerants in a text by their values.
std::string WithValues(const std::string& text);

/// A call's identifier and its fields by name of the slot, such as "Uint", "[Float*4]" or "data".
struct SCallLayout {
    std::uint16_t id = 0;
    std::string name;
    std::string result;
    std::vector<std::string> slots;
};

/// `family` (egl, es1, es2, es3 or ext) is where a name is looked for before all others. Throws
/// std::runtime_error if none holds it.
const SCallLayout& FindLayout(const std::string& name, const std::string& family);

/// The type tag of a slot of one scalar. Throws std::out_of_range for another.
unsigned TagOf(const std::string& slot);

/// How many scalars one item behind a pointer holds, by what the prototype calls it.
std::size_t ItemSize(const SPrototype& prototype, const std::string& name);

/// Adds the record of a line. Throws std::runtime_error with what is wrong with the line.
void AddCall(CTraceBuilder& trace, const std::string& line, bool es1Trace = false);

}  // namespace kestrail
