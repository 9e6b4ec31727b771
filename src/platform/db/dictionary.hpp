#pragma once
#include <string>
#include <utility>
#include <vector>

#include "platform/db/object.hpp"

// A named map of objects, in insertion order; the named-object dictionary is one.
class AcDbDictionary : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbDictionary)
    AcDbDictionary() = default;

    bool has(const std::wstring& key) const;
    Acad::ErrorStatus getAt(const std::wstring& key, AcDbObjectId& id) const;
    // Sets or replaces the entry. A database-resident dictionary takes a new object into its
    // database and owns it.
    Acad::ErrorStatus setAt(const std::wstring& key, AcDbObject* object, AcDbObjectId& id);
    // Sets an entry to an object already in the database (readers of drawing files).
    void setAtId(const std::wstring& key, AcDbObjectId id);
    Acad::ErrorStatus remove(const std::wstring& key);
    int numEntries() const { return static_cast<int>(m_entries.size()); }
    const std::vector<std::pair<std::wstring, AcDbObjectId>>& entries() const { return m_entries; }
    void collectReferences(AcDbObjectIdArray& refs) const override;

private:
    std::vector<std::pair<std::wstring, AcDbObjectId>> m_entries;
};
