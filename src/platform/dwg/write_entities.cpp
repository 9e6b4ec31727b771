#include "platform/dwg/write_context.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <thread>

#include "platform/dwg/encode_blocks.hpp"
#include "platform/dwg/encode_curves.hpp"
#include "platform/dwg/encode_entities.hpp"
#include "platform/dwg/encode_tables.hpp"
#include "platform/dwg/encode_texts.hpp"
#include "platform/dwg/extended_data.hpp"
#include "platform/dxf/codepage.hpp"
#include "platform/dxf/tagger.hpp"

namespace dwg {

std::string NameKey(std::string_view name) {
    std::string key;
    if (!dxf::DecodeEscapes(name, key)) key.assign(name);
    for (char& ch : key) ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
    return key;
}

std::uint64_t WriteContext::handleOf(const SourceRecord& r, int code) {
    const std::uint64_t handle = r.handle(code);
    return handle != 0 ? handle : nextHandle++;
}

std::uint64_t WriteContext::find(const std::unordered_map<std::string, std::uint64_t>& table,
                                 std::string_view name) {
    const auto it = table.find(NameKey(name));
    return it == table.end() ? 0 : it->second;
}

namespace {

// The extended data from its first tag (a 1001) on; none for no tags.
std::vector<ExtendedData> ExtendedDataFrom(std::span<const SourceTag> tags, const WriteContext& c) {
    if (tags.empty()) return {};
    std::vector<ExtendedGroup> groups;
    for (const SourceTag& tag : tags) groups.emplace_back(tag.code(), std::string(tag.text()));
    return ExtendedDataOfGroups(groups, c.applications, c.layers, c.dwgCodePage, c.options.codePage);
}

}  // namespace

// The owner, the reactors, the extension dictionary and the extended data, found in one walk
// over the record: as owner(), group("{ACAD_REACTORS", 330), the first handle of
// group("{ACAD_XDICTIONARY", 360) and the tags from the first 1001 on.
ObjectCommon ObjectCommonOf(const SourceRecord& r, WriteContext& c, int handleCode) {
    ObjectCommon o;
    o.handle = c.handleOf(r, handleCode);
    bool head = true, inHeadGroup = false, ownerFound = false;
    bool inReactors = false, inDictionary = false, dictionaryFound = false;
    auto extended = r.tags.end();
    for (auto it = r.tags.begin(); it != r.tags.end(); ++it) {
        const int code = it->code();
        if (code == 100) {
            head = false;
        } else if (code == 102) {
            const std::string_view v = it->text();
            inReactors = v == "{ACAD_REACTORS";
            inDictionary = v == "{ACAD_XDICTIONARY";
            if (head) inHeadGroup = !v.empty() && v.front() == '{';
        } else if (code == 330) {
            if (inReactors) o.reactors.push_back(ParseHandle(it->text()));
            if (head && !inHeadGroup && !ownerFound) {
                o.owner = ParseHandle(it->text());
                ownerFound = true;
            }
        } else if (code == 360) {
            if (inDictionary && !dictionaryFound) {
                o.extensionDictionary = ParseHandle(it->text());
                dictionaryFound = true;
            }
        } else if (code == 1001 && extended == r.tags.end()) {
            extended = it;
        }
    }
    o.extended = ExtendedDataFrom({extended, r.tags.end()}, c);
    return o;
}

std::vector<ExtendedData> ExtendedDataOf(const SourceRecord& r, const WriteContext& c) {
    const auto first = std::find_if(r.tags.begin(), r.tags.end(), [](const SourceTag& tag) { return tag.code() == 1001; });
    return ExtendedDataFrom({first, r.tags.end()}, c);
}

// The entity's properties are those of its AcDbEntity subclass, as the DXF reader takes them; a
// record without that subclass has them among all its tags.
EntityCommon EntityCommonOf(const SourceRecord& record, std::uint64_t owner, WriteContext& c) {
    EntityCommon e;
    static_cast<ObjectCommon&>(e) = ObjectCommonOf(record, c);
    const bool marked = std::any_of(record.tags.begin(), record.tags.end(), [](const SourceTag& tag) {
        return tag.code() == 100 && tag.text() == "AcDbEntity";
    });
    const SourceRecord properties = marked ? record.subclass("AcDbEntity") : record;
    const SourceRecord& r = properties;
    e.owner = owner;
    e.mode = owner == c.modelSpace ? 2 : owner == c.paperSpace ? 1 : 0;
    const std::string_view layer = r.has(8) ? r.text(8) : "0";
    if (c.lastLayer == 0 || layer != c.lastLayerName) {
        c.lastLayer = WriteContext::find(c.layers, layer);
        if (c.lastLayer == 0) c.lastLayer = WriteContext::find(c.layers, "0");
        c.lastLayerName = layer;
    }
    e.layer = c.lastLayer;
    const std::string linetype = NameKey(r.text(6));
    if (linetype == "BYBLOCK") {
        e.linetypeFlags = 1;
    } else if (linetype == "CONTINUOUS") {
        e.linetypeFlags = 2;
    } else if (!linetype.empty() && linetype != "BYLAYER") {
        e.linetype = WriteContext::find(c.linetypes, linetype);
        e.linetypeFlags = e.linetype != 0 ? 3 : 0;
    }
    e.color.index = static_cast<std::int16_t>(r.integer(62, 256));
    if (r.has(420)) e.color.rgb = 0xC2000000u | (static_cast<std::uint32_t>(r.integer(420)) & 0xFFFFFF);
    // A colour of a colour book refers to its colour object, when the drawing holds it.
    if (r.has(430)) {
        const auto book = c.bookColors.find(std::string(r.text(430)));
        if (book != c.bookColors.end()) {
            e.color.hasBookHandle = true;
            e.colorBook = book->second;
        }
    }
    if (r.has(440)) {
        e.color.hasTransparency = true;
        e.color.transparency = static_cast<std::uint32_t>(r.integer(440));
    }
    e.lineweight = LineweightIndex(static_cast<int>(r.integer(370, -1)));
    e.linetypeScale = r.real(48, 1.0);
    e.plotStyleFlags = static_cast<std::uint8_t>(r.integer(380, 0) & 3);
    if (e.plotStyleFlags == 3) e.plotStyle = r.handle(390);
    e.invisible = static_cast<std::int16_t>(r.integer(60, 0));
    return e;
}

EntityCommon VertexCommonOf(const SourceRecord& r, std::uint64_t owner, WriteContext& c) {
    EntityCommon common = EntityCommonOf(r, owner, c);
    common.extensionDictionary = 0;
    common.extended.clear();
    return common;
}

EntityCommon PartCommonOf(const SourceRecord& r, std::uint64_t owner, WriteContext& c) {
    EntityCommon common = VertexCommonOf(r, owner, c);
    common.reactors.clear();
    return common;
}

namespace {

Point3 Normal(const SourceRecord& r) { return r.point(210, {0, 0, 1}); }

TextRecord TextOf(const SourceRecord& r, EntityCommon common, WriteContext& c, int verticalCode) {
    TextRecord t;
    t.common = std::move(common);
    const Point3 at = r.point(10);
    t.insertion = {at.x, at.y};
    t.elevation = at.z;
    // A text without an alignment point (left-aligned) has it at its insertion point, which the
    // format stores as "not stored".
    const Point3 alignment = r.has(11) ? r.point(11) : at;
    t.alignment = {alignment.x, alignment.y};
    t.normal = Normal(r);
    t.thickness = r.real(39);
    t.oblique = r.angle(51);
    t.rotation = r.angle(50);
    t.height = r.real(40);
    t.widthFactor = r.real(41, 1.0);
    t.text = std::string(r.text(1));
    t.generation = static_cast<std::int16_t>(r.integer(71));
    t.horizontal = static_cast<std::int16_t>(r.integer(72));
    t.vertical = static_cast<std::int16_t>(r.integer(verticalCode));
    t.style = WriteContext::find(c.styles, r.has(7) ? r.text(7) : "STANDARD");
    return t;
}

AttributeRecord AttributeOf(const SourceRecord& r, EntityCommon common, WriteContext& c,
                            bool definition) {
    AttributeRecord a;
    a.text = TextOf(r, std::move(common), c, 74);
    a.tag = std::string(r.text(2));
    a.prompt = std::string(r.text(3));
    a.fieldLength = static_cast<std::int16_t>(r.integer(73));
    a.flags = static_cast<std::uint8_t>(r.integer(70));
    a.kind = definition ? 4 : 1;
    return a;
}

MTextRecord MTextOf(const SourceRecord& r, EntityCommon common, WriteContext& c) {
    MTextRecord m;
    m.common = std::move(common);
    m.insertion = r.point(10);
    m.normal = Normal(r);
    m.direction = r.has(11) ? r.point(11) : Point3{1, 0, 0};
    if (!r.has(11) && r.has(50)) {
        const double angle = r.angle(50);
        m.direction = {std::cos(angle), std::sin(angle), 0};
    }
    m.width = r.real(41);
    m.rectHeight = r.real(46);
    m.height = r.real(40);
    m.attachment = static_cast<std::int16_t>(r.integer(71, 1));
    m.flow = static_cast<std::int16_t>(r.integer(72, 1));
    m.extentsHeight = r.real(43);
    m.extentsWidth = r.real(42);
    // The text comes in pieces: the 3 tags, then the 1 tag with the rest.
    for (const auto& [code, value] : r.tags) {
        if (code == 3) m.contents += value;
    }
    m.contents += r.text(1);
    m.lineSpacingStyle = static_cast<std::int16_t>(r.integer(73, 1));
    m.lineSpacingFactor = r.real(44, 1.0);
    m.style = WriteContext::find(c.styles, r.has(7) ? r.text(7) : "STANDARD");
    return m;
}

LwPolylineRecord LwPolylineOf(const SourceRecord& r, EntityCommon common) {
    LwPolylineRecord p;
    p.common = std::move(common);
    const long long flags = r.integer(70);
    if (flags & 1) p.flags |= 512;
    if (flags & 128) p.flags |= 256;
    p.constantWidth = r.real(43);
    p.elevation = r.real(38);
    p.thickness = r.real(39);
    p.normal = Normal(r);
    std::vector<Point2> widths;
    std::vector<double> bulges;
    bool anyWidth = false, anyBulge = false;
    for (const SourceTag& tag : r.tags) {
        const int code = tag.code();
        double number = 0;
        if (code == 10 || code == 20 || code == 40 || code == 41 || code == 42) TagReal(tag, number);
        if (code == 10) {
            p.points.push_back({number, 0});
            widths.push_back({0, 0});
            bulges.push_back(0);
        } else if (p.points.empty()) {
            continue;
        } else if (code == 20) {
            p.points.back().y = number;
        } else if (code == 40) {
            widths.back().x = number;
            anyWidth = anyWidth || number != 0;
        } else if (code == 41) {
            widths.back().y = number;
            anyWidth = anyWidth || number != 0;
        } else if (code == 42) {
            bulges.back() = number;
            anyBulge = anyBulge || number != 0;
        }
    }
    if (anyWidth) p.widths = std::move(widths);
    if (anyBulge) p.bulges = std::move(bulges);
    return p;
}

InsertRecord InsertOf(const SourceRecord& r, EntityCommon common, WriteContext& c) {
    InsertRecord i;
    i.common = std::move(common);
    i.block = WriteContext::find(c.blocks, r.text(2));
    i.position = r.point(10);
    i.scale = {r.real(41, 1.0), r.real(42, 1.0), r.real(43, 1.0)};
    i.rotation = r.angle(50);
    i.normal = Normal(r);
    i.columns = static_cast<std::int16_t>(r.integer(70, 1));
    i.rows = static_cast<std::int16_t>(r.integer(71, 1));
    i.columnSpacing = r.real(44);
    i.rowSpacing = r.real(45);
    return i;
}

// The kind of a POLYLINE by its flags: 8 a 3D polyline, 64 a polyface mesh, 16 a polygon mesh
// (not written), otherwise 2D.
std::int32_t PolylineKind(long long flags) {
    if (flags & 8) return kPolyline3d;
    if (flags & 64) return kPolylinePface;
    if (flags & 16) return 0;
    return kPolyline2d;
}

PolylineRecord PolylineOf(const SourceRecord& r, EntityCommon common, std::int32_t kind) {
    PolylineRecord p;
    p.common = std::move(common);
    p.kind = kind;
    const long long flags = r.integer(70);
    p.flags = static_cast<std::int16_t>(kind == kPolyline3d ? (flags & 1) : flags);
    p.curveType = static_cast<std::int16_t>(r.integer(75));
    p.startWidth = r.real(40);
    p.endWidth = r.real(41);
    p.thickness = r.real(39);
    p.elevation = r.point(10).z;
    p.normal = Normal(r);
    p.vertexCount = static_cast<std::int16_t>(r.integer(71));
    p.faceCount = static_cast<std::int16_t>(r.integer(72));
    return p;
}

VertexRecord VertexOf(const SourceRecord& r, EntityCommon common, std::int32_t polylineKind) {
    VertexRecord v;
    v.common = std::move(common);
    v.flags = static_cast<std::uint8_t>(r.integer(70));
    if (polylineKind == kPolyline3d) {
        v.kind = kVertex3d;
    } else if (polylineKind == kPolylinePface) {
        v.kind = (v.flags & 64) ? kVertexPface : kVertexPfaceFace;
    } else {
        v.kind = kVertex2d;
    }
    v.position = r.point(10);
    v.startWidth = r.real(40);
    v.endWidth = r.real(41);
    v.bulge = r.real(42);
    v.tangent = r.angle(50);
    for (int i = 0; i < 4; ++i) v.faceIndex[i] = static_cast<std::int16_t>(r.integer(71 + i));
    return v;
}

SolidRecord SolidOf(const SourceRecord& r, EntityCommon common) {
    SolidRecord s;
    s.common = std::move(common);
    for (int i = 0; i < 4; ++i) {
        const Point3 p = r.point(10 + i);
        s.corners[i] = {p.x, p.y};
    }
    s.elevation = r.point(10).z;
    s.thickness = r.real(39);
    s.normal = Normal(r);
    return s;
}

// The records an INSERT or POLYLINE owns: those after it up to its SEQEND.
std::size_t OwnedEnd(const std::vector<SourceRecord>& records, std::size_t first) {
    std::size_t i = first;
    while (i < records.size() && (records[i].type == "ATTRIB" || records[i].type == "VERTEX")) ++i;
    return i;
}

struct EntityWriter {
    const std::vector<SourceRecord>& records;
    WriteContext& c;

    // Writes the record at i (and what it owns); the index of the next record.
    std::size_t write(std::size_t i, std::uint64_t owner, std::vector<std::uint64_t>& top);
    bool writeSimple(const SourceRecord& r, const EntityCommon& common);
    std::size_t writeInsert(std::size_t i, EntityCommon common);
    std::size_t writePolyline(std::size_t i, EntityCommon common, std::int32_t kind);
    std::uint64_t writeSeqend(std::size_t& i, std::uint64_t owner);
};

bool EntityWriter::writeSimple(const SourceRecord& r, const EntityCommon& common) {
    const std::uint64_t handle = common.handle;
    const EncodeOptions& o = c.options;
    const std::string_view t = r.type;
    if (t == "LINE") {
        c.add(handle, EncodeLine({common, r.point(10), r.point(11), r.real(39), Normal(r)}, o));
    } else if (t == "CIRCLE" || t == "ARC") {
        CircleRecord circle{common, r.point(10), r.real(40), r.real(39), Normal(r)};
        if (t == "CIRCLE") {
            c.add(handle, EncodeCircle(circle, o));
        } else {
            c.add(handle, EncodeArc({std::move(circle), r.angle(50), r.angle(51)}, o));
        }
    } else if (t == "POINT") {
        c.add(handle, EncodePoint({common, r.point(10), r.real(39), Normal(r), r.angle(50)}, o));
    } else if (t == "TEXT") {
        c.add(handle, EncodeText(TextOf(r, common, c, 73), o));
    } else if (t == "ATTDEF") {
        c.add(handle, EncodeAttribute(AttributeOf(r, common, c, true), true, o));
    } else if (t == "MTEXT") {
        c.add(handle, EncodeMText(MTextOf(r, common, c), o));
    } else if (t == "ELLIPSE") {
        c.add(handle, EncodeEllipse({common, r.point(10), r.point(11), Normal(r),
                                     r.real(40, 1.0), r.real(41), r.real(42)}, o));
    } else if (t == "LWPOLYLINE") {
        c.add(handle, EncodeLwPolyline(LwPolylineOf(r, common), o));
    } else if (t == "SOLID" || t == "TRACE") {
        c.add(handle, EncodeSolid(SolidOf(r, common), t == "SOLID" ? kSolid : kTrace, o));
    } else {
        return false;
    }
    return true;
}

std::uint64_t EntityWriter::writeSeqend(std::size_t& i, std::uint64_t owner) {
    if (i >= records.size() || records[i].type != "SEQEND") {
        EntityCommon common;
        common.handle = c.nextHandle++;
        common.owner = owner;
        common.layer = WriteContext::find(c.layers, "0");
        c.add(common.handle, EncodeCommonOnly(common, kSeqend, c.options));
        return common.handle;
    }
    EntityCommon common = PartCommonOf(records[i], owner, c);
    common.mode = 0;
    ++i;
    c.add(common.handle, EncodeCommonOnly(common, kSeqend, c.options));
    return common.handle;
}

std::size_t EntityWriter::writeInsert(std::size_t i, EntityCommon common) {
    const SourceRecord& r = records[i];
    InsertRecord insert = InsertOf(r, std::move(common), c);
    const std::size_t end = OwnedEnd(records, i + 1);
    std::size_t next = i + 1;
    if (r.integer(66) == 1) {
        insert.hasAttributes = true;
        for (; next < end; ++next) {
            EntityCommon ac = EntityCommonOf(records[next], insert.common.handle, c);
            ac.mode = 0;
            const std::uint64_t handle = ac.handle;
            c.add(handle, EncodeAttribute(AttributeOf(records[next], std::move(ac), c, false), false,
                                          c.options));
            insert.attributes.push_back(handle);
        }
        insert.seqend = writeSeqend(next, insert.common.handle);
    }
    const bool multiple = insert.columns > 1 || insert.rows > 1;
    const std::uint64_t handle = insert.common.handle;
    c.add(handle, EncodeInsert(insert, multiple, c.options));
    return next;
}

std::size_t EntityWriter::writePolyline(std::size_t i, EntityCommon common, std::int32_t kind) {
    PolylineRecord polyline = PolylineOf(records[i], std::move(common), kind);
    const std::size_t end = OwnedEnd(records, i + 1);
    std::size_t next = i + 1;
    for (; next < end; ++next) {
        EntityCommon vc = VertexCommonOf(records[next], polyline.common.handle, c);
        vc.mode = 0;
        const std::uint64_t handle = vc.handle;
        c.add(handle, EncodeVertex(VertexOf(records[next], std::move(vc), kind), c.options));
        polyline.vertices.handles.push_back(handle);
    }
    polyline.vertices.seqend = writeSeqend(next, polyline.common.handle);
    const std::uint64_t handle = polyline.common.handle;
    c.add(handle, EncodePolyline(polyline, c.options));
    return next;
}

std::size_t EntityWriter::write(std::size_t i, std::uint64_t owner,
                                std::vector<std::uint64_t>& top) {
    const SourceRecord& r = records[i];
    EntityCommon common = EntityCommonOf(r, owner, c);
    const std::uint64_t handle = common.handle;
    std::size_t next = i + 1;
    if (r.type == "INSERT") {
        next = writeInsert(i, std::move(common));
    } else if (r.type == "POLYLINE" && PolylineKind(r.integer(70)) != 0) {
        next = writePolyline(i, std::move(common), PolylineKind(r.integer(70)));
    } else if (!writeSimple(r, common) && !WriteAnnotation(r, std::move(common), c)) {
        // Not written (the report counts it among the database's objects left out); what it
        // owns goes with it.
        if (r.type == "POLYLINE") {
            next = OwnedEnd(records, next);
            if (next < records.size() && records[next].type == "SEQEND") ++next;
        }
        return next;
    }
    top.push_back(handle);
    return next;
}

}  // namespace

namespace {

// Records of one batch encoded on a helper thread.
constexpr std::size_t kEntityBatch = 4096;

struct EntityBatch {
    std::size_t begin = 0, end = 0;
    WriteContext part;  // the names of the drawing; the batch's objects and what it left out
    std::vector<std::uint64_t> top;
};

// Writes the records from begin to end (a record that starts an entity, or the end).
void WriteRange(const std::vector<SourceRecord>& records, std::size_t begin, std::size_t end,
                std::uint64_t owner, WriteContext& c, std::vector<std::uint64_t>& top) {
    EntityWriter writer{records, c};
    for (std::size_t i = begin; i < end;) {
        const std::uint64_t own = records[i].owner();
        i = writer.write(i, own != 0 ? own : owner, top);
    }
}

bool IsOwnedRecord(const SourceRecord& r) {
    return r.type == "ATTRIB" || r.type == "VERTEX" || r.type == "SEQEND";
}

// Batches of about kEntityBatch records, each starting at an entity of its own (attributes,
// vertices and their SEQEND stay with their owner), with a context holding what the writer
// reads: the drawing's names and the options.
std::vector<EntityBatch> Batches(const std::vector<SourceRecord>& records, WriteContext& c) {
    EncodedObjects objects = std::move(c.objects);
    std::map<std::string, int> leftOut = std::move(c.leftOut);
    c.objects = EncodedObjects();
    c.leftOut.clear();
    std::vector<EntityBatch> batches;
    for (std::size_t begin = 0; begin < records.size();) {
        std::size_t end = std::min(records.size(), begin + kEntityBatch);
        while (end < records.size() && IsOwnedRecord(records[end])) ++end;
        batches.push_back({begin, end, c, {}});
        batches.back().part.batch = true;
        begin = end;
    }
    c.objects = std::move(objects);
    c.leftOut = std::move(leftOut);
    return batches;
}

// The batches' objects, counts and entities after the writer's own, in the batches' order.
std::vector<std::uint64_t> Gathered(std::vector<EntityBatch>& batches, WriteContext& c) {
    std::vector<std::uint64_t> top;
    for (EntityBatch& batch : batches) {
        for (auto& [handle, bytes] : batch.part.batchObjects) c.add(handle, std::move(bytes));
        for (const auto& [type, count] : batch.part.leftOut) c.leftOut[type] += count;
        top.insert(top.end(), batch.top.begin(), batch.top.end());
    }
    return top;
}

}  // namespace

// A long list is encoded a batch per thread, as the DXF writer makes its records. The file is
// the one a single thread writes: unless a batch had to give a record a new handle (numbered
// in the records' order), in which case the list is written again on one thread.
std::vector<std::uint64_t> WriteEntities(const std::vector<SourceRecord>& records,
                                         std::uint64_t owner, WriteContext& c) {
    std::vector<std::uint64_t> top;
    const std::size_t threads = c.threads;
    if (threads < 2 || records.size() < 2 * kEntityBatch) {
        WriteRange(records, 0, records.size(), owner, c, top);
        return top;
    }
    std::vector<EntityBatch> batches = Batches(records, c);
    for (std::size_t first = 0; first < batches.size(); first += threads) {
        std::vector<std::thread> helpers;
        const std::size_t last = std::min(batches.size(), first + threads);
        for (std::size_t k = first + 1; k < last; ++k) {
            helpers.emplace_back([&records, &batch = batches[k], owner] {
                WriteRange(records, batch.begin, batch.end, owner, batch.part, batch.top);
            });
        }
        EntityBatch& own = batches[first];
        WriteRange(records, own.begin, own.end, owner, own.part, own.top);
        for (std::thread& helper : helpers) helper.join();
    }
    const bool numbered = std::any_of(batches.begin(), batches.end(),
                                      [&](const EntityBatch& b) { return b.part.nextHandle != c.nextHandle; });
    if (numbered) {
        WriteRange(records, 0, records.size(), owner, c, top);
        return top;
    }
    return Gathered(batches, c);
}

}  // namespace dwg
