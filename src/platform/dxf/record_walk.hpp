#pragma once
// The walk over a drawing file's records shared by the text reader and the record feed: each
// tag checked (a known group code, a number where the code wants one), records split at their
// 0 tags, and the order of sections.
#include <algorithm>
#include <cmath>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dxf/dxf.hpp"
#include "platform/dxf/tagger.hpp"

namespace dxf {

struct ReadError {
    DxfError error = DxfError::kNone;
    int line = 0;
    std::string reason;
    Acad::ErrorStatus status = Acad::eOk;
};

inline bool ValidNumber(ValueKind kind, std::string_view v) {
    if (kind == ValueKind::kDouble) {
        double d;
        return IsPlainDecimal(v) || ParseDouble(v, d);
    }
    if (IsIntegerKind(kind)) {
        long long i;
        double d;
        return ParseInteger(v, i) || (ParseDouble(v, d) && std::floor(d) == d);
    }
    return true;
}

// A group code the format knows, with a number where the code wants one.
inline ReadError CheckTag(const Tag& tag) {
    ValueKind kind = KindOfCode(tag.code);
    if (kind == ValueKind::kInvalid)
        return {DxfError::kBadGroupCode, tag.line, "unknown group code " + std::to_string(tag.code)};
    if (!ValidNumber(kind, tag.value))
        return {DxfError::kBadNumber, tag.line + 1,
                "value '" + std::string(tag.value.substr(0, 40)) + "' of group code " +
                    std::to_string(tag.code) + " is not a number"};
    return {};
}

// True for a value a decoder wrote from a number of a kind the group code takes (an integer
// where an integer or a real goes, a real where a real goes): CheckTag passes it as it is.
inline bool MadeNumberFits(const Tag& tag) {
    if (tag.made == Made::kText || tag.made == Made::kHandle) return false;
    const ValueKind kind = KindOfCode(tag.code);
    return kind == ValueKind::kDouble || (tag.made == Made::kInteger && IsIntegerKind(kind));
}

// Walks the records of the text: the 0 tag and every tag up to the next 0, checking each tag's
// group code and number on the way. A bad tag ends the walk with error() set. Nothing after
// EOF is read.
class RecordReader {
public:
    explicit RecordReader(std::string_view text) : m_cursor(text) { m_has = take(m_pending); }
    bool next(std::vector<Tag>& record) {
        record.clear();
        while (m_has && m_pending.code == 999) m_has = take(m_pending);
        if (!m_has) return false;
        record.push_back(m_pending);
        if (m_pending.code == 0 && m_pending.value == "EOF") {
            m_has = false;
            return true;
        }
        while ((m_has = take(m_pending)) && m_pending.code != 0)
            if (m_pending.code != 999) record.push_back(m_pending);
        return m_error.error == DxfError::kNone;
    }
    const ReadError& error() const { return m_error; }
    int lastLine() const { return m_lastLine; }

private:
    bool take(Tag& tag) {
        if (!m_cursor.next(tag)) {
            const std::string& e = m_cursor.error();
            if (!e.empty())
                m_error = {e.rfind("file ends", 0) == 0 ? DxfError::kTruncated : DxfError::kBadGroupCode,
                           m_cursor.line(), e};
            return false;
        }
        m_lastLine = tag.line;
        m_error = CheckTag(tag);
        return m_error.error == DxfError::kNone;
    }
    TagCursor m_cursor;
    Tag m_pending;
    bool m_has = false;
    int m_lastLine = 0;
    ReadError m_error;
};

// The order of sections and records: sections named, not nested, closed, and the file ended
// by EOF outside them. Tags before the first section are allowed (comments, stray values).
class SectionOrder {
public:
    // Checks a record; the current section is then section().
    ReadError enter(std::span<const Tag> record) {
        const Tag& head = record[0];
        if (head.code != 0) {
            if (!m_names.empty()) return outside(head);
            return {};
        }
        if (head.value == "SECTION") {
            if (!m_section.empty()) return {DxfError::kBadStructure, head.line, "SECTION inside section " + std::string(m_section)};
            if (record.size() < 2 || record[1].code != 2)
                return {DxfError::kBadStructure, record.size() < 2 ? head.line : record[1].line, "SECTION without a name"};
            m_section = record[1].value;
            m_names.push_back(m_section);
            return {};
        }
        if (head.value == "ENDSEC") {
            if (m_section.empty()) return {DxfError::kBadStructure, head.line, "ENDSEC outside a section"};
            m_section = {};
            return record.size() > 1 ? outside(record[1]) : ReadError{};
        }
        if (head.value == "EOF") {
            if (!m_section.empty()) return {DxfError::kTruncated, head.line, "EOF inside section " + std::string(m_section)};
            m_ended = true;
            return {};
        }
        if (m_section.empty())
            return {DxfError::kBadStructure, head.line, "record " + std::string(head.value.substr(0, 40)) + " outside a section"};
        return {};
    }
    std::string_view section() const { return m_section; }
    bool ended() const { return m_ended; }
    // What the whole file lacks, once it has been read to its last line.
    ReadError finish(AcDb::AcDbDwgVersion version, int lastLine) const {
        if (!m_ended) return {DxfError::kTruncated, lastLine, "the file ends before EOF"};
        if (!has("ENTITIES")) return {DxfError::kMissingSection, lastLine, "no ENTITIES section"};
        if (version >= AcDb::kDHL_1015)
            for (const char* needed : {"TABLES", "BLOCKS", "OBJECTS"})
                if (!has(needed)) return {DxfError::kMissingSection, lastLine, std::string("no ") + needed + " section"};
        return {};
    }

private:
    static ReadError outside(const Tag& t) {
        return {DxfError::kBadStructure, t.line, "group code " + std::to_string(t.code) + " outside a section"};
    }
    bool has(std::string_view name) const { return std::find(m_names.begin(), m_names.end(), name) != m_names.end(); }
    std::string m_section;  // copied: records handed over one at a time do not stay
    std::vector<std::string> m_names;
    bool m_ended = false;
};

}  // namespace dxf
