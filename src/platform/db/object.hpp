#pragma once
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/db/acdb_types.hpp"
#include "platform/db/object_id.hpp"
#include "platform/db/raw_tags.hpp"
#include "platform/db/rx_class.hpp"
#include "platform/db/status.hpp"

class AcDbDatabase;

// Maps an id of one database to the corresponding id of another (null when there is none).
using AcDbIdMapper = std::function<AcDbObjectId(AcDbObjectId)>;

// The slot of one object in its database: the handle it is known by and the object itself.
// Ids point at stubs, so an id stays comparable after its object is erased.
struct AcDbStub {
    AcDbDatabase* database = nullptr;
    AcDbHandle handle;
    std::unique_ptr<AcDbObject> object;  // null while only a reference has named the handle
};

// Base of every database object. An object is either owned by its maker (not yet added to a
// database) or resident in a database, where it is reached by id and opened, used and closed.
// Open protocol: any number of readers, or one writer; an erased object opens only on request.
class AcDbObject : public AcRxObject {
public:
    ACRX_DECLARE_ABSTRACT_MEMBERS(AcDbObject)
    ~AcDbObject() override;

    AcDbObjectId objectId() const { return AcDbObjectId(m_stub); }
    AcDbHandle getHandle() const;
    AcDbDatabase* database() const { return m_stub ? m_stub->database : nullptr; }
    AcDbObjectId ownerId() const { return m_owner; }
    Acad::ErrorStatus setOwnerId(AcDbObjectId owner);

    // Marks the object erased (true) or brings it back (false). Needs the object open for write.
    Acad::ErrorStatus erase(bool erasing = true);
    bool isErased() const { return m_erased; }
    // Ends one open: the writer's, or one reader's.
    Acad::ErrorStatus close();

    bool isReadEnabled() const { return m_writer || m_readers > 0; }
    bool isWriteEnabled() const { return m_writer; }
    bool isNewObject() const { return m_stub == nullptr; }
    int numReaders() const { return m_readers; }
    // To write; eOnLockedLayer for an entity on a locked layer, as a write open.
    Acad::ErrorStatus upgradeOpen();
    Acad::ErrorStatus downgradeOpen();
    // Why the object may not be opened for write now, beyond the open protocol: eOk here, and
    // eOnLockedLayer for a database-resident entity whose layer is locked.
    virtual Acad::ErrorStatus writeRefusal() const { return Acad::eOk; }

    // Extension dictionary and persistent reactors, as ids in the same database.
    AcDbObjectId extensionDictionary() const { return m_rare ? m_rare->extensionDictionary : AcDbObjectId(); }
    void setExtensionDictionary(AcDbObjectId id) {
        if (m_rare || !id.isNull()) rare().extensionDictionary = id;
    }
    const AcDbObjectIdArray& persistentReactors() const { return m_rare ? m_rare->reactors : NoRare().reactors; }
    AcDbObjectIdArray& persistentReactors() { return rare().reactors; }

    // Extended entity data (group codes 1000 and up), per registered application in file order.
    struct XDataGroup {
        std::wstring appName;
        AcDbRawTags tags;  // the tags after the 1001 application name
    };
    const std::vector<XDataGroup>& xData() const { return m_rare ? m_rare->xdata : NoRare().xdata; }
    std::vector<XDataGroup>& xData() { return rare().xdata; }

    // The object's record as last read from a drawing file. The writer walks it and gives back,
    // in place, every tag the database does not model. Empty for objects made in memory, and
    // for objects whose record the writer makes the same from the database alone.
    const AcDbRawTags& fileTags() const { return m_rare ? m_rare->fileTags : NoRare().fileTags; }
    AcDbRawTags& fileTags() { return rare().fileTags; }
    // Gives back the storage of the parts above when none of them holds anything.
    void releaseEmptyParts();

    // The reference ids this object holds to others (owner excepted); purge counts them.
    virtual void collectReferences(AcDbObjectIdArray& refs) const;
    // Replaces each reference id by its image, when a copy moves to another database.
    virtual void remapReferences(const AcDbIdMapper& map);

    // Wiring used by the database when an object is added, opened or closed.
    void attachToStub(AcDbStub* stub) { m_stub = stub; }
    Acad::ErrorStatus openFor(AcDb::OpenMode mode);
    void forceClosed() { m_readers = 0; m_writer = false; }

protected:
    AcDbObject() = default;
    // A copy carries the data but belongs to no database and is not open.
    AcDbObject(const AcDbObject& other);
    AcDbObject& operator=(const AcDbObject&) = delete;

    // Called when a write open ends, for objects that keep derived data up to date.
    virtual void closedAfterWrite() {}

    // Checks for subclasses' setters and getters, as the host asserts them.
    bool writeEnabledOrNew() const { return m_stub == nullptr || m_writer; }

private:
    // What most objects of a large drawing lack, apart behind one pointer that is null until one
    // of them is asked for to be changed: an object then costs a pointer for them, not 100 bytes.
    struct Rare {
        AcDbObjectId extensionDictionary;
        AcDbObjectIdArray reactors;
        std::vector<XDataGroup> xdata;
        AcDbRawTags fileTags;
    };
    Rare& rare() {
        if (!m_rare) m_rare = std::make_unique<Rare>();
        return *m_rare;
    }
    static const Rare& NoRare();

    AcDbStub* m_stub = nullptr;
    AcDbObjectId m_owner;
    std::unique_ptr<Rare> m_rare;
    int m_readers = 0;
    bool m_writer = false;
    bool m_erased = false;
};

using AcDbVoidPtrArray = AcArray<void*>;

// Opens the object behind an id. Fails with eNullObjectId, eUnknownHandle (no object behind the
// handle), eWasErased (unless openErased), eWasOpenForWrite, eWasOpenForRead (write requested
// while readers hold it) or eNotThatKindOfClass; on failure obj is set to null.
Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& obj, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased = false);

template <typename T>
Acad::ErrorStatus acdbOpenObject(T*& obj, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased = false) {
    AcDbObject* base = nullptr;
    obj = nullptr;
    Acad::ErrorStatus es = acdbOpenAcDbObject(base, id, mode, openErased);
    if (es != Acad::eOk) return es;
    obj = T::cast(base);
    if (obj == nullptr) {
        base->close();
        return Acad::eNotThatKindOfClass;
    }
    return Acad::eOk;
}
