#pragma once
// Records written from the database's model: objects made in memory, subclasses a template
// lacks, and records of R12 written anew with subclasses for a later version.
#include <algorithm>
#include <span>
#include <string_view>
#include <vector>

#include "platform/db/carried.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/tagger.hpp"

namespace dxf {

// What the head of a record names: an object's extension dictionary and persistent reactors,
// or those a part of an object (a vertex) is written with.
struct HeadIds {
    AcDbObjectId extensionDictionary;
    const AcDbObjectIdArray* reactors = nullptr;
};

inline HeadIds HeadIdsOf(const AcDbObject& o) { return {o.extensionDictionary(), &o.persistentReactors()}; }

// The application groups of a record's head: extension dictionary and persistent reactors.
template <typename Sink>
void HeadGroups(const HeadIds& head, bool r12, bool xdict, bool reactors, Sink& sink) {
    if (r12) return;
    if (xdict && !head.extensionDictionary.isNull()) {
        sink.tag(102, "{ACAD_XDICTIONARY");
        sink.tag(360, HandleText(head.extensionDictionary.handle()));
        sink.tag(102, "}");
    }
    if (reactors && !head.reactors->isEmpty()) {
        sink.tag(102, "{ACAD_REACTORS");
        for (const auto& id : *head.reactors) sink.tag(330, HandleText(id.handle()));
        sink.tag(102, "}");
    }
}

// True when a record as read has a tag of the code.
inline bool HasCode(std::span<const AcDbRawTag> tags, int code) {
    return std::any_of(tags.begin(), tags.end(), [code](const AcDbRawTag& t) { return t.code == code; });
}

// True for a record as R12 writes them, without subclass markers.
template <typename Tags>
bool WithoutSubclasses(const Tags& tags) {
    return std::none_of(tags.begin(), tags.end(), [](const AcDbRawTag& t) { return t.code == 100; });
}

// The properties every entity has, which a record with subclasses keeps in AcDbEntity.
inline bool IsEntityPropertyCode(int code) {
    switch (code) {
        case 6: case 8: case 48: case 60: case 62: case 67: case 284: case 347: case 370:
        case 390: case 420: case 430: case 440: return true;
        default: return false;
    }
}

// A record as read, and the records it carries inside it (the vertices and SEQEND of a mesh),
// each from its 0 tag.
inline std::vector<std::span<const AcDbRawTag>> SplitRecords(std::span<const AcDbRawTag> tags) {
    std::vector<std::span<const AcDbRawTag>> records;
    size_t begin = 0;
    for (size_t i = 1; i <= tags.size(); ++i)
        if (i == tags.size() || tags[i].code == 0) {
            records.push_back(tags.subspan(begin, i - begin));
            begin = i;
        }
    return records;
}

inline bool IsMesh(const AcDbObject& o) { return AcDbPolyFaceMesh::cast(&o) || AcDbPolygonMesh::cast(&o); }

// True when a record of R12 can be written anew for a later version: its tags find their
// subclasses in the model, and what it carries inside it is a mesh's vertices. Entities the
// database carries without knowing their subclass stay as read.
inline bool Upgradable(const AcDbObject& o, const std::vector<std::span<const AcDbRawTag>>& records,
                const Model& model) {
    if (records.size() > 1 && !IsMesh(o)) return false;
    return !AcDbCarriedEntity::cast(&o) || model.subclasses.back().marker != "AcDbEntity";
}

// The subclasses of a vertex of a mesh, by the mesh and the vertex's flags (group code 70).
inline std::vector<std::string_view> MeshVertexSubclasses(const AcDbObject& mesh, std::span<const AcDbRawTag> vertex) {
    long long flags = 0;
    for (const AcDbRawTag& t : vertex)
        if (t.code == 70) ParseInteger(t.value, flags);
    if (AcDbPolygonMesh::cast(&mesh)) return {"AcDbVertex", "AcDbPolygonMeshVertex"};
    if ((flags & 64) == 0) return {"AcDbFaceRecord"};
    return {"AcDbVertex", "AcDbPolyFaceMeshVertex"};
}

// A subclass the template lacks: its marker and the values not at their default, and those at
// their default that `asRead` has (a record written anew in place of one as read).
template <typename Sink>
void NewSubclass(const Model& model, const Subclass& s, bool r12, Sink& sink,
                 std::span<const AcDbRawTag> asRead = {}) {
    if (!r12) sink.tag(100, s.marker);
    for (const Field& f : model.fieldsOf(s))
        if (!f.optional || HasCode(asRead, f.code)) sink.field(f);
}

// A record from the model alone, in its order. When it stands in for a record as read without
// subclasses (`asRead`, of R12), the tags of that record the model does not own go where a
// record with subclasses has them: entity properties in AcDbEntity, the rest in the last
// subclass.
template <typename Sink>
void NewRecord(const HeadIds& ids, const Model& model, bool r12, Sink& sink,
               std::span<const AcDbRawTag> asRead = {}) {
    sink.tag(0, model.type);
    std::span<const Field> head = model.fieldsOf(model.subclasses[0]);
    for (const Field& f : head)
        if (f.code != 330) sink.field(f);
    HeadGroups(ids, r12, true, true, sink);
    for (const Field& f : head)
        if (f.code == 330 && !r12) sink.field(f);
    bool entity = std::any_of(model.subclasses.begin(), model.subclasses.end(),
                              [](const Subclass& s) { return s.marker == "AcDbEntity"; });
    for (size_t k = 1; k < model.subclasses.size(); ++k) {
        const Subclass& s = model.subclasses[k];
        NewSubclass(model, s, r12, sink, asRead);
        bool properties = s.marker == "AcDbEntity", last = k + 1 == model.subclasses.size();
        for (const AcDbRawTag& t : asRead.subspan(std::min<size_t>(asRead.size(), 1))) {
            if (model.owns(model.whole(), t.code)) continue;
            bool property = entity && IsEntityPropertyCode(t.code);
            if (properties ? property : last && !property) sink.tag(t.code, t.value);
        }
    }
}


}  // namespace dxf
