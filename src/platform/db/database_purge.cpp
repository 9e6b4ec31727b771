#include <unordered_set>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/names.hpp"

namespace {
// Records every drawing keeps whatever refers to them.
bool isPermanentRecord(const AcDbDatabase& db, AcDbObjectId id) {
    if (id == db.clayer() || id == db.celtype() || id == db.textstyle() || id == db.dimstyle())
        return true;
    auto* record = AcDbSymbolTableRecord::cast(id.isValid() ? id.stub()->object.get() : nullptr);
    if (record == nullptr) return false;
    if (auto* block = AcDbBlockTableRecord::cast(record)) return block->isLayout();
    std::wstring name = acdbNameUpper(record->name());
    AcDbObjectId table = record->ownerId();
    if (table == db.layerTableId()) return name == L"0" || name == L"DEFPOINTS";
    if (table == db.linetypeTableId())
        return name == L"BYBLOCK" || name == L"BYLAYER" || name == L"CONTINUOUS";
    if (table == db.textStyleTableId() || table == db.dimStyleTableId()) return name == L"STANDARD";
    if (table == db.regAppTableId()) return name == L"ACAD";
    return false;
}
}  // namespace

Acad::ErrorStatus AcDbDatabase::purge(AcDbObjectIdArray& ids) const {
    // Everything a live object refers to, except what an object says of its own owner.
    std::unordered_set<AcDbStub*> referenced;
    AcDbObjectIdArray refs;
    for (const AcDbStub& stub : m_stubs) {
        if (stub.object == nullptr || stub.object->isErased()) continue;
        refs.removeAll();
        stub.object->collectReferences(refs);
        for (const AcDbObjectId& ref : refs)
            if (ref.stub() != &stub) referenced.insert(ref.stub());
    }
    AcDbObjectIdArray kept;
    for (const AcDbObjectId& id : ids)
        if (!referenced.contains(id.stub()) && !isPermanentRecord(*this, id)) kept.append(id);
    ids = kept;
    return Acad::eOk;
}
