#pragma once
// Objects of a database as lines of text, and the files written from it, for tests that compare
// two reads object by object.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/db/object.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/win/codepage.hpp"

namespace dwg_test {

// An object's handle as a decimal number, "null" for no object.
inline std::string HandleText(const AcDbObjectId& id) {
    return id.isNull() ? "null" : std::to_string(id.stub()->handle.value());
}

// The stub's handle, its object's class, owner, extension dictionary and reactors.
inline std::string ObjectHead(const AcDbStub& stub) {
    const AcDbObject& o = *stub.object;
    std::string line = std::to_string(stub.handle.value()) + " " + Utf8FromWide(o.isA()->name()) + " owner " +
                       HandleText(o.ownerId()) + " xdict " + HandleText(o.extensionDictionary()) + " reactors";
    for (int i = 0; i < o.persistentReactors().length(); ++i) line += " " + HandleText(o.persistentReactors()[i]);
    return line;
}

inline std::string Bits(double v) {
    char text[24];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(std::bit_cast<std::uint64_t>(v)));
    return text;
}

inline std::string Bits(const AcGePoint3d& p) { return Bits(p.x) + "," + Bits(p.y) + "," + Bits(p.z); }
inline std::string Bits(const AcGeVector3d& v) { return Bits(v.x) + "," + Bits(v.y) + "," + Bits(v.z); }

// The values of the kinds built without their records (see dxf::PlainEntity), their numbers bit
// for bit.
inline std::string PlainValues(const AcDbObject& o) {
    std::string out;
    if (const auto* e = AcDbEntity::cast(&o)) {
        const AcCmColor c = e->color();
        out += Utf8FromWide(e->layer()) + " " + Utf8FromWide(e->linetype()) + " " + std::to_string(c.colorIndex()) +
               " " + std::to_string(c.hasTrueColor()) + " " + std::to_string(static_cast<int>(e->lineWeight())) +
               " " + Bits(e->linetypeScale()) + " " + std::to_string(e->inPaperSpace()) + " " +
               std::to_string(e->visibility() == AcDb::kVisible);
    }
    if (const auto* e = AcDbLine::cast(&o))
        out += " " + Bits(e->startPoint()) + " " + Bits(e->endPoint()) + " " + Bits(e->thickness()) + " " + Bits(e->normal());
    if (const auto* e = AcDbCircle::cast(&o))
        out += " " + Bits(e->center()) + " " + Bits(e->radius()) + " " + Bits(e->thickness()) + " " + Bits(e->normal());
    if (const auto* e = AcDbArc::cast(&o))
        out += " " + Bits(e->center()) + " " + Bits(e->radius()) + " " + Bits(e->startAngle()) + " " +
               Bits(e->endAngle()) + " " + Bits(e->thickness()) + " " + Bits(e->normal());
    if (const auto* e = AcDbPoint::cast(&o))
        out += " " + Bits(e->position()) + " " + Bits(e->ecsRotation()) + " " + Bits(e->thickness()) + " " + Bits(e->normal());
    if (const auto* e = AcDbPolyline::cast(&o)) {
        out += " " + std::to_string(e->isClosed()) + std::to_string(e->hasPlinegen()) + std::to_string(e->hasConstantWidthTag()) +
               " " + Bits(e->elevation()) + " " + Bits(e->thickness()) + " " + Bits(e->normal());
        for (unsigned int k = 0; k < e->numVerts(); ++k) {
            const AcDbPolyline::Vertex v = e->vertexAt(k);
            out += " " + Bits(v.point.x) + "," + Bits(v.point.y) + "," + Bits(v.startWidth) + "," + Bits(v.endWidth) + "," + Bits(v.bulge);
        }
    }
    return out;
}

// One line per object: handle, class, owner, links, extension data, the record kept, the values
// of the plain kinds.
inline std::vector<std::string> ObjectLines(const AcDbDatabase& db) {
    std::vector<std::string> lines;
    for (const AcDbStub& stub : db.stubs()) {
        if (!stub.object) continue;
        const AcDbObject& o = *stub.object;
        std::string line = ObjectHead(stub);
        for (const auto& group : o.xData()) line += " xdata " + Utf8FromWide(group.appName) + " " + std::to_string(group.tags.byteSize());
        line += " record";
        for (const AcDbRawTag& t : o.fileTags()) line += " " + std::to_string(t.code) + "=" + std::string(t.value);
        lines.push_back(line + " |" + PlainValues(o));
    }
    return lines;
}

inline std::string WrittenDxf(AcDbDatabase& db, AcDb::AcDbDwgVersion version = AcDb::kDHL_1032) {
    std::string out;
    dxf::WriteOptions options;
    options.version = version;
    EXPECT_EQ(dxf::WriteDxfText(db, options, out), Acad::eOk);
    return out;
}

inline std::vector<std::uint8_t> WrittenDwg(AcDbDatabase& db) {
    std::vector<std::uint8_t> out;
    dwg::DwgWriteReport report;
    EXPECT_EQ(dwg::WriteDwgBytes(db, 936, out, report), Acad::eOk);
    return out;
}

}  // namespace dwg_test
