#include "tests/cases/case_file.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <map>
#include <stdexcept>

namespace kestrail {
namespace {

std::string Trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::vector<std::string> Split(const std::string& text, const std::string& separator) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t at; (at = text.find(separator, start)) != std::string::npos;) {
        parts.push_back(Trimmed(text.substr(start, at - start)));
        start = at + separator.size();
    }
    parts.push_back(Trimmed(text.substr(start)));
    return parts;
}

/// Longer names first, as one may begin with another.
using Values = std::map<std::string, std::string, std::greater<>>;

std::string Filled(std::string text, const Values& values) {
    for (const auto& [key, value] : values) {
        const std::string name = "$" + key;
        for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos;) {
            text.replace(at, name.size(), value);
            at += value.size();
        }
    }
    return text;
}

using Fragments = std::map<std::string, std::vector<std::string>>;

/// A line's share of a section: several calls behind one another, a fragment, or nothing.
// NOLINTNEXTLINE(misc-no-recursion): fragments are made of fragments.
void AppendLines(std::vector<std::string>& lines, const std::string& line,
                 const Fragments& fragments) {
    for (const std::string& part : Split(line, " ; ")) {
        if (part.rfind("use ", 0) != 0) {
            if (!part.empty()) lines.push_back(part);
            continue;
        }
        const std::vector<std::string> words = Split(part, " ");
        Values values;
        for (std::size_t i = 2; i < words.size(); ++i) values[std::to_string(i - 1)] = words[i];
        const auto fragment = fragments.find(words.at(1));
        if (fragment == fragments.end()) throw std::runtime_error(part + ": no such fragment");
        for (const std::string& inner : fragment->second) {
            AppendLines(lines, Filled(inner, values), fragments);
        }
    }
}

std::vector<SCase> RowsOf(const SCase& one, const Fragments& fragments) {
    std::vector<Values> rows(1);
    for (const SSection& section : one.sections) {
        if (section.word != "rows") continue;
        rows.clear();
        const std::vector<std::string> names = Split(section.rest, " | ");
        for (const std::string& line : section.lines) {
            const std::vector<std::string> cells = Split(line + " ", " | ");
            if (cells.size() != names.size()) throw std::runtime_error(line + ": not a row");
            Values values;
            for (std::size_t i = 0; i < names.size(); ++i) values[names[i]] = cells[i];
            rows.push_back(values);
        }
    }
    std::vector<SCase> cases;
    for (const Values& values : rows) {
        SCase row{one.name, "", {}};
        for (const auto& [name, value] : values) row.row += name + "=" + value + " ";
        for (const SSection& section : one.sections) {
            if (section.word == "rows") continue;
            SSection filled{section.word, Filled(section.rest, values), {}, section.number};
            for (const std::string& line : section.lines) {
                AppendLines(filled.lines, Filled(line, values), fragments);
            }
            row.sections.push_back(filled);
        }
        cases.push_back(row);
    }
    return cases;
}

}  // namespace

std::vector<std::vector<SCase>> ReadCases(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error(path + ": cannot be read");
    std::vector<SCase> cases;
    Fragments fragments;
    std::vector<std::string>* lines = nullptr;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        const std::string text = Trimmed(line);
        if (text.empty() || text[0] == '#') continue;
        if (line[0] == ' ') {
            if (lines == nullptr) throw std::runtime_error(line + ": in no section");
            if (!lines->empty() && lines->back().back() == '\\') {
                lines->back().back() = ' ';
                lines->back() = Trimmed(lines->back()) + " " + text;
            } else {
                lines->push_back(text);
            }
            continue;
        }
        const std::size_t space = text.find(' ');
        const std::string word = text.substr(0, space);
        const std::string rest = space == std::string::npos ? "" : Trimmed(text.substr(space));
        if (word == "define") {
            const std::size_t end = std::min(rest.find(' '), rest.size());
            lines = &fragments[rest.substr(0, end)];
            if (end < rest.size()) lines->push_back(Trimmed(rest.substr(end)));
        } else if (word == "case") {
            cases.push_back({rest, "", {}});
            lines = nullptr;
        } else {
            if (cases.empty()) throw std::runtime_error(line + ": in no case");
            cases.back().sections.push_back({word, rest, {}, number});
            lines = &cases.back().sections.back().lines;
        }
    }
    std::vector<std::vector<SCase>> rows;
    for (const SCase& one : cases) rows.push_back(RowsOf(one, fragments));
    return rows;
}

}  // namespace kestrail
