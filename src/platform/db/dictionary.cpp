#include "platform/db/dictionary.hpp"

#include "platform/db/database.hpp"
#include "platform/db/names.hpp"

ACRX_DEFINE_MEMBERS(AcDbDictionary, AcDbObject, L"DICTIONARY")

bool AcDbDictionary::has(const std::wstring& key) const {
    AcDbObjectId id;
    return getAt(key, id) == Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::getAt(const std::wstring& key, AcDbObjectId& id) const {
    for (const auto& [name, entry] : m_entries)
        if (acdbNamesEqual(name, key)) {
            id = entry;
            return Acad::eOk;
        }
    return Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbDictionary::setAt(const std::wstring& key, AcDbObject* object,
                                        AcDbObjectId& id) {
    if (object == nullptr) return Acad::eNullObjectPointer;
    if (database() == nullptr) return Acad::eNoDatabase;
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    Acad::ErrorStatus es = database()->addAcDbObject(id, object);
    if (es != Acad::eOk) return es;
    object->setOwnerId(objectId());
    setAtId(key, id);
    return Acad::eOk;
}

void AcDbDictionary::setAtId(const std::wstring& key, AcDbObjectId id) {
    for (auto& [name, entry] : m_entries)
        if (acdbNamesEqual(name, key)) {
            entry = id;
            return;
        }
    m_entries.emplace_back(key, id);
}

Acad::ErrorStatus AcDbDictionary::remove(const std::wstring& key) {
    for (auto it = m_entries.begin(); it != m_entries.end(); ++it)
        if (acdbNamesEqual(it->first, key)) {
            m_entries.erase(it);
            return Acad::eOk;
        }
    return Acad::eKeyNotFound;
}

void AcDbDictionary::collectReferences(AcDbObjectIdArray& refs) const {
    AcDbObject::collectReferences(refs);
    for (const auto& [name, entry] : m_entries) refs.append(entry);
}
