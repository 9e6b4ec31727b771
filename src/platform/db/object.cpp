#include "platform/db/object.hpp"

#include <cstdio>

#include "platform/db/database.hpp"

AcRxClass* AcRxObject::desc() {
    static AcRxClass cls(L"AcRxObject", nullptr, L"");
    return &cls;
}

ACRX_DEFINE_MEMBERS(AcDbObject, AcRxObject, L"")

const AcDbObjectId AcDbObjectId::kNull{};

namespace {
// A reader limit as the host has one; reaching it means a caller forgets to close.
constexpr int kMaxReaders = 256;
}  // namespace

std::wstring AcDbHandle::toString() const {
    wchar_t buffer[20];
    std::swprintf(buffer, 20, L"%llX", static_cast<unsigned long long>(m_value));
    return buffer;
}

bool AcDbObjectId::isValid() const { return m_stub != nullptr && m_stub->object != nullptr; }

bool AcDbObjectId::isErased() const {
    return m_stub != nullptr && m_stub->object != nullptr && m_stub->object->isErased();
}

AcDbHandle AcDbObjectId::handle() const { return m_stub ? m_stub->handle : AcDbHandle{}; }

AcDbDatabase* AcDbObjectId::database() const { return m_stub ? m_stub->database : nullptr; }

AcRxClass* AcDbObjectId::objectClass() const {
    return isValid() ? m_stub->object->isA() : nullptr;
}

AcDbObject::AcDbObject(const AcDbObject& other) : AcRxObject(other), m_owner(other.m_owner) {
    // A copy has no extension dictionary nor reactors of its own.
    if (!other.xData().empty()) xData() = other.xData();
    if (!other.fileTags().empty()) fileTags() = other.fileTags();
}

AcDbObject::~AcDbObject() = default;

const AcDbObject::Rare& AcDbObject::NoRare() {
    static const Rare none;
    return none;
}

void AcDbObject::releaseEmptyParts() {
    if (m_rare && m_rare->extensionDictionary.isNull() && m_rare->reactors.isEmpty() &&
        m_rare->xdata.empty() && m_rare->fileTags.empty()) {
        m_rare.reset();
    }
}

AcDbHandle AcDbObject::getHandle() const { return m_stub ? m_stub->handle : AcDbHandle{}; }

Acad::ErrorStatus AcDbObject::setOwnerId(AcDbObjectId owner) {
    m_owner = owner;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::erase(bool erasing) {
    if (m_stub != nullptr && !m_writer) return Acad::eNotOpenForWrite;
    if (!erasing && !m_erased) return Acad::eWasNotErased;
    m_erased = erasing;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::close() {
    if (m_writer) {
        m_writer = false;
        closedAfterWrite();
        return Acad::eOk;
    }
    if (m_readers > 0) {
        --m_readers;
        return Acad::eOk;
    }
    return Acad::eNotOpenForRead;
}

Acad::ErrorStatus AcDbObject::openFor(AcDb::OpenMode mode) {
    if (m_writer) return Acad::eWasOpenForWrite;
    if (mode == AcDb::kForWrite) {
        if (m_readers > 0) return Acad::eWasOpenForRead;
        if (Acad::ErrorStatus refused = writeRefusal(); refused != Acad::eOk) return refused;
        m_writer = true;
        return Acad::eOk;
    }
    if (m_readers >= kMaxReaders) return Acad::eAtMaxReaders;
    ++m_readers;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
    if (m_writer) return Acad::eOk;
    if (m_readers != 1) return Acad::eWasOpenForRead;
    if (Acad::ErrorStatus refused = writeRefusal(); refused != Acad::eOk) return refused;
    m_readers = 0;
    m_writer = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeOpen() {
    if (!m_writer) return Acad::eWasNotOpenForWrite;
    m_writer = false;
    m_readers = 1;
    return Acad::eOk;
}

void AcDbObject::collectReferences(AcDbObjectIdArray& refs) const {
    if (!extensionDictionary().isNull()) refs.append(extensionDictionary());
}

void AcDbObject::remapReferences(const AcDbIdMapper& map) {
    if (!extensionDictionary().isNull()) setExtensionDictionary(map(extensionDictionary()));
}

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& obj, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
    obj = nullptr;
    if (id.isNull()) return Acad::eNullObjectId;
    AcDbObject* target = id.stub()->object.get();
    if (target == nullptr) return Acad::eUnknownHandle;
    if (target->isErased() && !openErased) return Acad::eWasErased;
    Acad::ErrorStatus es = target->openFor(mode);
    if (es != Acad::eOk) return es;
    obj = target;
    return Acad::eOk;
}
