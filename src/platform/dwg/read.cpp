#include "platform/dwg/read.hpp"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <utility>

#include "platform/dwg/container.hpp"
#include "platform/dwg/filed_objects.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/record_feed.hpp"
#include "platform/win/codepage.hpp"

namespace dwg {
namespace {

constexpr std::pair<const char*, Version> kVersions[] = {
    {"AC1012", Version::kR13},   {"AC1014", Version::kR14},   {"AC1015", Version::kR2000},
    {"AC1018", Version::kR2004}, {"AC1021", Version::kR2007}, {"AC1024", Version::kR2010},
    {"AC1027", Version::kR2013}, {"AC1032", Version::kR2018}};

Acad::ErrorStatus Fail(AcDbDatabase& db, const std::string& name, std::size_t offset,
                       const std::string& reason) {
    db.discardContents();  // no part of a damaged drawing is used as if it were the drawing
    db.setLastError(WideFromUtf8(name + ": offset " + std::to_string(offset) + ": " + reason));
    return Acad::eDwgNeedsRecovery;
}

// The header variables the DXF records gave in another version's terms, put back.
void KeepFileVersion(AcDbDatabase& db, Version version) {
    db.setOriginalFileVersion(DatabaseVersion(version));
    for (auto& [name, tags] : db.headerVars()) {
        if (name != "$ACADVER") continue;
        tags = AcDbRawTags();
        tags.push_back(1, dxf::VersionName(DatabaseVersion(version)));
    }
}

// The kept objects' data goes with the objects their head records made.
void KeepWhole(AcDbDatabase& db, std::vector<KeptData>& kept, const DwgSections& sections) {
    auto& whole = db.dwgKeptObjects();
    const int ac1018CodePage = sections.version == Version::kR2004 ? sections.codePage : 0;
    for (KeptData& k : kept) {
        AcDbObjectId id;
        if (db.getAcDbObjectId(id, false, AcDbHandle(k.handle)) != Acad::eOk) continue;
        whole[k.handle] = {std::move(k.typeName), std::move(k.bytes), ac1018CodePage, k.listedBy};
    }
}

// The places of the tables' erased entries go with the tables.
void KeepErasedEntries(AcDbDatabase& db, std::vector<ErasedEntries>& erased) {
    for (ErasedEntries& entries : erased) {
        AcDbObjectId id;
        if (db.getAcDbObjectId(id, false, AcDbHandle(entries.control)) != Acad::eOk) continue;
        if (auto* table = AcDbSymbolTable::cast(id.stub()->object.get())) {
            table->setErasedEntryPlaces(std::move(entries.places));
        }
    }
}

// The dimension styles' true colours go with the styles, beside the indexes their records gave.
void KeepDimensionStyleColors(AcDbDatabase& db, const std::vector<DimensionStyleColors>& styles) {
    for (const DimensionStyleColors& style : styles) {
        AcDbObjectId id;
        if (db.getAcDbObjectId(id, false, AcDbHandle(style.style)) != Acad::eOk) continue;
        auto* record = AcDbDimStyleTableRecord::cast(id.stub()->object.get());
        if (record == nullptr) continue;
        for (const auto& [code, color] : style.colors) {
            AcCmColor c;
            c.setColorIndex(static_cast<std::uint16_t>(color.index));
            c.setTrueColor(color.rgb);
            record->setColorVar(code, c);
        }
    }
}

}  // namespace

std::vector<std::uint8_t> StreamBytes(std::istream& in) {
    const std::istream::pos_type start = in.tellg();
    in.seekg(0, std::ios::end);
    const std::istream::pos_type end = in.tellg();
    in.seekg(start);
    if (start < 0 || end < start || !in) {
        // A stream that cannot tell its size (a pipe) is read as it comes.
        in.clear();
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(end - start));
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

std::vector<std::uint8_t> FileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return StreamBytes(in);
}

bool LooksLikeDwg(std::span<const std::uint8_t> head) {
    return head.size() >= 6 && head[0] == 'A' && head[1] == 'C' &&
           (std::memcmp(head.data() + 2, "10", 2) == 0 || std::memcmp(head.data() + 2, "20", 2) == 0);
}

bool VersionFromMagic(std::span<const std::uint8_t> file, Version& out) {
    if (file.size() < 6) return false;
    for (const auto& [magic, version] : kVersions) {
        if (std::memcmp(file.data(), magic, 6) == 0) {
            out = version;
            return true;
        }
    }
    return false;
}

AcDb::AcDbDwgVersion DatabaseVersion(Version version) {
    switch (version) {
        case Version::kR13: return AcDb::kDHL_1012;
        case Version::kR14: return AcDb::kDHL_1014;
        case Version::kR2000: return AcDb::kDHL_1015;
        case Version::kR2004: return AcDb::kDHL_1018;
        case Version::kR2007: return AcDb::kDHL_1021;
        case Version::kR2010: return AcDb::kDHL_1024;
        case Version::kR2013: return AcDb::kDHL_1027;
        case Version::kR2018: return AcDb::kDHL_1032;
    }
    return AcDb::kDHL_1018;
}

bool GivesBackObjects(const DwgSections& sections, const DwgContainer* container,
                      const AcDbDatabase::DwgSourceFile* file) {
    if (container == nullptr || sections.objects.empty() || KeepsSectionsInMemory(sections, file)) return false;
    return std::any_of(container->buffers.begin(), container->buffers.end(),
                       [&](const std::vector<std::uint8_t>& b) { return b.data() == sections.objects.data(); });
}

namespace {

// The database filled from the records the drawing is decoded into, handed to the DXF reader
// one at a time.
// Given the container the sections were decoded into, the filed sections are moved out of it;
// given the file the sections are of, only its identity is kept.
Acad::ErrorStatus ReadRecords(AcDbDatabase& db, const DwgSections& sections, const std::string& name,
                              DwgContainer* container, bool plainEntities = true,
                              const AcDbDatabase::DwgSourceFile* file = nullptr) {
    std::vector<KeptData> kept;
    std::vector<ErasedEntries> erased;
    std::vector<DimensionStyleColors> colors;
    MapError error;
    dxf::RecordFeed feed(db, name);
    if (!DwgToRecords(sections, feed, kept, erased, colors, error, plainEntities,
                      GivesBackObjects(sections, container, file)))
        return Fail(db, name, error.offset, error.reason);
    if (feed.finish() != Acad::eOk) {
        // The records are made here: a refusal is a fault of this reader, said as such.
        const std::wstring why = db.lastError();
        db.discardContents();
        db.setLastError(WideFromUtf8(name) + L": offset 0: the decoded drawing was refused: " + why);
        return Acad::eDwgNeedsRecovery;
    }
    KeepFileVersion(db, sections.version);
    KeepWhole(db, kept, sections);
    KeepErasedEntries(db, erased);
    KeepDimensionStyleColors(db, colors);
    KeepFiledObjects(db, sections, container, file);
    db.setLastError(L"");
    return Acad::eOk;
}

}  // namespace

Acad::ErrorStatus ReadDwgSections(AcDbDatabase& db, const DwgSections& sections,
                                  const std::string& name) {
    return ReadRecords(db, sections, name, nullptr);
}

namespace {

// The file's container, or false with the database emptied and the reason said.
bool ReadContainer(AcDbDatabase& db, std::span<const std::uint8_t> file, const std::string& name,
                   DwgContainer& container, Acad::ErrorStatus& status) {
    Version version;
    if (!VersionFromMagic(file, version)) {
        status = Fail(db, name, 0, "not a DWG version this reader knows (\"" +
                                       std::string(file.begin(), file.begin() + std::min<std::size_t>(6, file.size())) +
                                       "\")");
        return false;
    }
    MapError error;
    if (!ReadDwgContainer(file, container, error)) {
        status = Fail(db, name, error.offset, error.reason);
        return false;
    }
    return true;
}

}  // namespace

Acad::ErrorStatus ReadDwgBytes(AcDbDatabase& db, std::span<const std::uint8_t> file,
                               const std::string& name, bool plainEntities) {
    DwgContainer container;
    Acad::ErrorStatus status = Acad::eOk;
    if (!ReadContainer(db, file, name, container, status)) return status;
    return ReadRecords(db, SectionsOf(container, file), name, &container, plainEntities);
}

namespace {

// The bytes handed over read, those of the file at `name` when `ofFile`: the file's identity is
// then what a save needs of it, not its sections.
Acad::ErrorStatus ReadHandedOver(AcDbDatabase& db, std::vector<std::uint8_t>&& file, const std::string& name,
                                 bool ofFile) {
    DwgContainer container;
    Acad::ErrorStatus status = Acad::eOk;
    if (!ReadContainer(db, file, name, container, status)) return status;
    const DwgSections sections = SectionsOf(container, file);
    std::optional<AcDbDatabase::DwgSourceFile> source;
    if (ofFile && KeepsFiledObjects(sections)) source = IdentifiedFile(name, file);
    // From 2004 on, the sections are the container's own: the file is no longer needed.
    if (container.version > Version::kR2000) std::vector<std::uint8_t>().swap(file);
    return ReadRecords(db, sections, name, &container, true, source ? &*source : nullptr);
}

}  // namespace

Acad::ErrorStatus ReadDwgBytes(AcDbDatabase& db, std::vector<std::uint8_t>&& file, const std::string& name) {
    return ReadHandedOver(db, std::move(file), name, false);
}

Acad::ErrorStatus ReadDwgFile(AcDbDatabase& db, const std::string& path) {
    return ReadHandedOver(db, FileBytes(path), path, true);
}

}  // namespace dwg
