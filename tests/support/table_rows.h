// Which recorded call is played how, kept apart from the player's own tables: names in the order of
// their identifiers, and by hand for each call what the host must see of it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrail {

enum class Played : char {
    /// One host call with the recorded values, names translated by what the prototype calls them.
    Yes = '+',
    /// Nothing reaches the host, not even the question for an error.
    No = '-',
    /// Nothing but the question for an error.
    Checked = '?',
    /// Has tests of its own.
    ByHand = '=',
};

struct SPrototype {
    std::string family;
    std::string entry;
    std::string result;
    std::vector<std::string> types;
    std::vector<std::string> names;
};

struct SFamilyRows {
    std::string family;
    std::uint16_t first = 0;
    /// Before an entry of this family in the host's log.
    std::string prefix;
    /// The API of an extension call's record, 0 for the other families.
    std::uint8_t api = 0;
    std::vector<std::string> entries;
    /// Patterns of entries behind their mark. The first that fits holds; what none fits is played.
    std::vector<std::string> played;
    /// Patterns ENTRY.PARAMETER of the names that go through a table behind a +, of some that don't
    /// behind a -. The first that fits holds; all other values reach the host as recorded.
    std::vector<std::string> translated;

    Played HowPlayed(const std::string& entry) const;
    /// The table that a parameter's name goes through, or none.
    std::string Table(const std::string& entry, std::string parameter) const;
};

const SFamilyRows& EglRows();
const SFamilyRows& Es1Rows();
const SFamilyRows& Es2Rows();
const SFamilyRows& Es3Rows();
const SFamilyRows& ExtRows();
const SFamilyRows& MultisampleRows();

/// By the published headers.
const SPrototype* FindPrototype(const std::string& family, const std::string& entry);

}  // namespace kestrail
