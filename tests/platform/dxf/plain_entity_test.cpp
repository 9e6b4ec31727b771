// An entity handed to the feed by the values of its record builds what its record builds, and
// keeps no record; one whose values the writer would not give back as the record has them, or
// that goes to another block than its record names, is refused, its record then read as any.
#include "platform/dxf/plain_entity.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <deque>
#include <limits>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "feed_text.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/dxf/angle_text.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/record_feed.hpp"
#include "platform/dxf/tagger.hpp"
#include "platform/win/codepage.hpp"

namespace {

using Kind = dxf::PlainEntity::Kind;

// A drawing with model space (1F), paper space (1E) and a block PLATE (30): the entity goes in
// the block's definition or in ENTITIES; `after` follows it in ENTITIES.
const std::string kTables =
    "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1032\n0\nENDSEC\n"
    "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nBLOCK_RECORD\n5\n1\n330\n0\n100\nAcDbSymbolTable\n"
    "0\nBLOCK_RECORD\n5\n1F\n330\n1\n100\nAcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n2\n*Model_Space\n"
    "0\nBLOCK_RECORD\n5\n1E\n330\n1\n100\nAcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n2\n*Paper_Space\n"
    "0\nBLOCK_RECORD\n5\n30\n330\n1\n100\nAcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n2\nPLATE\n"
    "0\nENDTAB\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n"
    "0\nBLOCK\n5\n31\n330\n30\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n2\nPLATE\n70\n0\n10\n0\n20\n0\n30\n0\n";
const std::string kBlockEnd =
    "0\nENDBLK\n5\n32\n330\n30\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockEnd\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n";
const std::string kEnd = "0\nENDSEC\n0\nSECTION\n2\nOBJECTS\n0\nENDSEC\n0\nEOF\n";

// The record of the entity as the DWG reader makes it, its numbers made from their values.
class Record {
public:
    explicit Record(const dxf::PlainEntity& p) {
        text(0, dxf::PlainTypeName(p.kind));
        made(5, dxf::HandleText(AcDbHandle(p.handle)), dxf::Made::kHandle);
        made(330, dxf::HandleText(AcDbHandle(p.owner)), dxf::Made::kHandle);
        text(100, "AcDbEntity");
        text(8, p.layer);
        if (p.colorIndex != 256) made(62, std::to_string(p.colorIndex), dxf::Made::kInteger);
        if (p.lineweight != -1) made(370, std::to_string(p.lineweight), dxf::Made::kInteger);
        if (p.linetypeScale != 1.0) real(48, p.linetypeScale);
        if (p.kind == Kind::kLwPolyline) {
            lwPolyline(p);
            return;
        }
        const bool round = p.kind == Kind::kCircle || p.kind == Kind::kArc;
        text(100, p.kind == Kind::kLine ? "AcDbLine" : p.kind == Kind::kPoint ? "AcDbPoint" : "AcDbCircle");
        if (p.thickness != 0.0 && p.kind != Kind::kPoint) real(39, p.thickness);
        point(10, p.first);
        if (p.kind == Kind::kLine) point(11, p.second);
        if (round) real(40, p.radius);
        if (p.kind == Kind::kArc) {
            text(100, "AcDbArc");
            angle(50, p.startAngle);
            angle(51, p.endAngle);
        }
        if (p.kind == Kind::kPoint && p.thickness != 0.0) real(39, p.thickness);
        if (p.kind == Kind::kPoint && p.startAngle != 0.0) angle(50, p.startAngle);
    }
    const std::vector<dxf::Tag>& tags() const { return m_tags; }

private:
    void lwPolyline(const dxf::PlainEntity& p) {
        text(100, "AcDbPolyline");
        made(90, std::to_string(p.vertices.size()), dxf::Made::kInteger);
        made(70, std::to_string((p.closed ? 1 : 0) | (p.plinegen ? 128 : 0)), dxf::Made::kInteger);
        if (p.constant) real(43, p.constantWidth);
        if (p.elevation != 0.0) real(38, p.elevation);
        if (p.thickness != 0.0) real(39, p.thickness);
        for (std::size_t k = 0; k < p.vertices.size(); ++k) {
            const AcDbPolyline::Vertex& v = p.vertices[k];
            real(10, v.point.x);
            real(20, v.point.y);
            if (k < p.widthsGiven) {
                real(40, v.startWidth);
                real(41, v.endWidth);
            }
            if (v.bulge != 0.0) real(42, v.bulge);
        }
    }
    void made(int code, std::string value, dxf::Made how, double number = 0.0) {
        m_values.push_back(std::move(value));
        m_tags.push_back({code, m_values.back(), 0, how, number});
    }
    void text(int code, std::string_view value) { made(code, std::string(value), dxf::Made::kText); }
    void real(int code, double v) {
        std::string s;
        if (v == 0.0 && std::signbit(v)) s = "-0.0";
        else dxf::FormatDouble(v, s);
        made(code, s, dxf::Made::kReal, v);
    }
    void angle(int code, double radians) {
        std::string s;
        dxf::FormatAngle(radians, s);
        made(code, s, dxf::Made::kAngle, radians);
    }
    void point(int code, const AcGePoint3d& p) {
        real(code, p.x);
        real(code + 10, p.y);
        real(code + 20, p.z);
    }
    std::deque<std::string> m_values;
    std::vector<dxf::Tag> m_tags;
};

struct Built {
    AcDbDatabase db{false, true};
    Acad::ErrorStatus status = Acad::eOk;
    bool taken = false;
};

// The drawing with the entity handed on by its values (refused: by its record), or by its
// record only.
void Build(const dxf::PlainEntity& p, bool inBlock, bool plain, const std::string& after, Built& out) {
    dxf::RecordFeed feed(out.db, "t.dxf");
    dxftest::FeedText(feed, kTables);
    auto entity = [&] {
        out.taken = plain && feed.plainEntity(p, dxf::BuildPlainEntity(p));
        if (!out.taken) feed.record(Record(p).tags());
    };
    if (inBlock) entity();
    dxftest::FeedText(feed, kBlockEnd);
    if (!inBlock) entity();
    dxftest::FeedText(feed, after + kEnd);
    out.status = feed.finish();
}

std::string Bits(double v) { return std::to_string(std::bit_cast<std::uint64_t>(v)); }
std::string Bits(const AcGePoint3d& p) { return Bits(p.x) + "," + Bits(p.y) + "," + Bits(p.z); }

// The entity's values bit for bit, its owner and the record it keeps.
std::string Entity(const AcDbDatabase& db) {
    for (const AcDbStub& stub : db.stubs()) {
        const AcDbObject* o = stub.object.get();
        const auto* e = o ? AcDbEntity::cast(o) : nullptr;
        if (e == nullptr || stub.handle.value() != 0x2A) continue;
        std::string out = Utf8FromWide(e->layer()) + " " + std::to_string(e->colorIndex()) + " " +
                          std::to_string(static_cast<int>(e->lineWeight())) + " " + Bits(e->linetypeScale()) +
                          " owner " + std::to_string(e->ownerId().isNull() ? 0 : e->ownerId().stub()->handle.value()) +
                          " record " + std::to_string(e->fileTags().byteSize());
        if (const auto* l = AcDbLine::cast(e)) out += " " + Bits(l->startPoint()) + " " + Bits(l->endPoint()) + " " + Bits(l->thickness());
        if (const auto* c = AcDbCircle::cast(e)) out += " " + Bits(c->center()) + " " + Bits(c->radius()) + " " + Bits(c->thickness());
        if (const auto* a = AcDbArc::cast(e))
            out += " " + Bits(a->center()) + " " + Bits(a->radius()) + " " + Bits(a->startAngle()) + " " + Bits(a->endAngle());
        if (const auto* pt = AcDbPoint::cast(e)) out += " " + Bits(pt->position()) + " " + Bits(pt->ecsRotation()) + " " + Bits(pt->thickness());
        if (const auto* l = AcDbPolyline::cast(e)) {
            out += " " + std::to_string(l->isClosed()) + std::to_string(l->hasPlinegen()) + std::to_string(l->hasConstantWidthTag()) +
                   " " + Bits(l->elevation()) + " " + Bits(l->thickness());
            for (unsigned int k = 0; k < l->numVerts(); ++k) {
                const AcDbPolyline::Vertex v = l->vertexAt(k);
                out += " " + Bits(v.point.x) + "," + Bits(v.point.y) + "," + Bits(v.startWidth) + "," + Bits(v.endWidth) + "," + Bits(v.bulge);
            }
        }
        return out;
    }
    return "none";
}

std::string Written(AcDbDatabase& db) {
    std::string out;
    EXPECT_EQ(dxf::WriteDxfText(db, {}, out), Acad::eOk);
    return out;
}

dxf::PlainEntity Plain(Kind kind, std::uint64_t owner = 0x1F) {
    dxf::PlainEntity p;
    p.kind = kind;
    p.handle = 0x2A;
    p.owner = owner;
    p.layer = "0";
    p.first = AcGePoint3d(1.5, 1.0 / 3, 2);
    p.second = AcGePoint3d(-4, 5.25, 0);
    p.radius = 2.5;
    p.startAngle = 0.1;
    p.endAngle = 3.0;
    if (kind == Kind::kLwPolyline) {  // the last vertex's widths not given
        p.vertices = {{{1.5, 1.0 / 3}, 0.5, 0.25, 0.75}, {{-4, 5.25}, 0.0, 1.0, 0.0}, {{2, -1}, -1.0, 0.5, 0.0}};
        p.widthsGiven = 2;
    }
    return p;
}

struct Case {
    const char* behaviour;
    dxf::PlainEntity entity;
    bool inBlock;
    bool taken;
};

// A polyline is refused when its record gives what the writer leaves out (widths both 0, a
// vertex's widths beside a constant width, a negative zero) or its values are no numbers.
std::vector<Case> PolylineCases() {
    auto polyline = [](const char* behaviour, bool taken, void (*change)(dxf::PlainEntity&)) {
        Case c{behaviour, Plain(Kind::kLwPolyline), false, taken};
        change(c.entity);
        return c;
    };
    return {
        polyline("a polyline with widths and bulges", true, [](dxf::PlainEntity&) {}),
        polyline("a closed polyline of linetype generation, raised and thick", true, [](dxf::PlainEntity& p) {
            p.closed = p.plinegen = true;
            p.elevation = 2.5;
            p.thickness = -1.0;
        }),
        polyline("a polyline of a constant width", true, [](dxf::PlainEntity& p) {
            p.constant = true;
            p.constantWidth = 0.5;
            p.widthsGiven = 0;
        }),
        polyline("a polyline of a constant width 0", true, [](dxf::PlainEntity& p) {
            p.constant = true;
            p.widthsGiven = 0;
        }),
        polyline("a polyline of no vertex", true, [](dxf::PlainEntity& p) {
            p.vertices.clear();
            p.widthsGiven = 0;
        }),
        polyline("a polyline bulging and raised by negative zeros", true, [](dxf::PlainEntity& p) {
            p.vertices[1].bulge = -0.0;
            p.elevation = -0.0;
        }),
        polyline("a polyline giving widths 0", false, [](dxf::PlainEntity& p) {
            p.widthsGiven = 3;
            p.vertices[2].startWidth = 0.0;
        }),
        polyline("a polyline giving widths beside a constant width", false, [](dxf::PlainEntity& p) {
            p.constant = true;
            p.constantWidth = 0.5;
        }),
        polyline("a polyline of a constant width without vertices", false, [](dxf::PlainEntity& p) {
            p.constant = true;
            p.vertices.clear();
            p.widthsGiven = 0;
        }),
        polyline("a polyline at a negative zero", false, [](dxf::PlainEntity& p) { p.vertices[2].point.x = -0.0; }),
        polyline("a polyline of a negative zero width", false, [](dxf::PlainEntity& p) { p.vertices[0].endWidth = -0.0; }),
        polyline("a polyline of no number of bulge", false,
                 [](dxf::PlainEntity& p) { p.vertices[2].bulge = std::numeric_limits<double>::infinity(); }),
    };
}

std::vector<Case> Cases() {
    std::vector<Case> cases = {
        {"a line", Plain(Kind::kLine), false, true},
        {"a circle", Plain(Kind::kCircle), false, true},
        {"an arc", Plain(Kind::kArc), false, true},
        {"a point", Plain(Kind::kPoint), false, true},
        {"a line of the block it names", Plain(Kind::kLine, 0x30), true, true},
        {"a line in paper space", Plain(Kind::kLine, 0x1E), false, true},
        {"a line naming another block than the one defined", Plain(Kind::kLine, 0x1F), true, false},
        {"a line naming no object", Plain(Kind::kLine, 0x99), false, false},
        {"a line naming no owner", Plain(Kind::kLine, 0), false, false},
    };
    Case styled{"a circle with colour, lineweight, linetype scale and thickness", Plain(Kind::kCircle), false, true};
    styled.entity.colorIndex = 1;
    styled.entity.lineweight = 35;
    styled.entity.linetypeScale = 2.5;
    styled.entity.thickness = -1.25;
    styled.entity.layer = "HOLES";
    cases.push_back(styled);
    Case byBlock{"a point by block, thick, turned", Plain(Kind::kPoint), false, true};
    byBlock.entity.colorIndex = 0;
    byBlock.entity.thickness = 3;
    byBlock.entity.startAngle = 0.25;
    cases.push_back(byBlock);
    Case upright{"a point not turned", Plain(Kind::kPoint), false, true};
    upright.entity.startAngle = 0.0;
    cases.push_back(upright);
    // Angles of every sort, from a negative zero to none, read as their degree texts are. An arc
    // from a negative zero is refused (its angle reads as a positive zero); a point's is not
    // written.
    struct Turned {
        const char* arc;
        const char* point;
        double angle;
        bool arcTaken;
    };
    const double infinity = std::numeric_limits<double>::infinity();
    const Turned turned[] = {
        {"an arc from zero", "a point turned by zero", 0.0, true},
        {"an arc from a negative zero", "a point turned by a negative zero", -0.0, false},
        {"an arc from an angle the plain conversion loses", "a point turned by an angle the plain conversion loses",
         0x1.1f8f03f04dd1p+0, true},
        {"an arc from a huge angle", "a point turned by a huge angle", -1e300, true},
        {"an arc from the least angle", "a point turned by the least angle", std::numeric_limits<double>::denorm_min(), true},
        {"an arc from an infinite angle", "a point turned by an infinite angle", infinity, true},
        {"an arc from no number of angle", "a point turned by no number", std::numeric_limits<double>::quiet_NaN(), true},
    };
    for (const Turned& t : turned) {
        Case arc{t.arc, Plain(Kind::kArc), false, t.arcTaken};
        arc.entity.startAngle = t.angle;
        cases.push_back(arc);
        Case point{t.point, Plain(Kind::kPoint), false, true};
        point.entity.startAngle = t.angle;
        cases.push_back(point);
    }
    // Looks that differ from one before by one value each (layer, colour, lineweight).
    const std::tuple<const char*, const char*, int, int> looks[] = {
        {"a line on HOLES by colour 1 and lineweight 35", "HOLES", 1, 35},
        {"a line on HOLES by colour 1", "HOLES", 1, -1},
        {"a line on HOLES of lineweight 35", "HOLES", 256, 35},
        {"a line on 0 by colour 1 and lineweight 35", "0", 1, 35},
        {"a line on HOLES by colour 2 and lineweight 35", "HOLES", 2, 35},
        {"a line on HOLES by colour 1 and lineweight 35 again", "HOLES", 1, 35},
    };
    for (const auto& [behaviour, layer, color, lineweight] : looks) {
        Case line{behaviour, Plain(Kind::kLine), false, true};
        line.entity.layer = layer;
        line.entity.colorIndex = color;
        line.entity.lineweight = lineweight;
        cases.push_back(line);
    }
    Case negativeZero{"a line with a negative zero", Plain(Kind::kLine), false, false};
    negativeZero.entity.second.z = -0.0;
    cases.push_back(negativeZero);
    Case notANumber{"a point at no number", Plain(Kind::kPoint), false, false};
    notANumber.entity.first.y = std::numeric_limits<double>::quiet_NaN();
    cases.push_back(notANumber);
    Case flat{"a circle of a negative radius", Plain(Kind::kCircle), false, false};
    flat.entity.radius = -2.0;
    cases.push_back(flat);
    Case scale{"a line of a negative linetype scale", Plain(Kind::kLine), false, false};
    scale.entity.linetypeScale = -1.0;
    cases.push_back(scale);
    Case thickZero{"a line thick by a negative zero", Plain(Kind::kLine), false, true};
    thickZero.entity.thickness = -0.0;
    cases.push_back(thickZero);
    for (Case& c : PolylineCases()) cases.push_back(c);
    return cases;
}

TEST(DxfPlainEntity, plain_entity_builds_what_its_record_builds_or_is_refused) {
    // A bad record after the entity names its line, which counts the plain entity's tags.
    for (const std::string& after : {std::string(), std::string("0\nLINE\n5\n2B\n8\n0\n10\nx1\n")}) {
        for (const Case& c : Cases()) {
            SCOPED_TRACE(std::string(c.behaviour) + (after.empty() ? "" : ", then a bad record"));
            Built plain, record;
            Build(c.entity, c.inBlock, true, after, plain);
            Build(c.entity, c.inBlock, false, after, record);
            EXPECT_EQ(plain.taken, c.taken);
            EXPECT_EQ(plain.status, record.status);
            EXPECT_EQ(Utf8FromWide(plain.db.lastError()), Utf8FromWide(record.db.lastError()));
            EXPECT_EQ(record.status, after.empty() ? Acad::eOk : Acad::eBadDxfFile);
            if (record.status != Acad::eOk) continue;
            EXPECT_EQ(Entity(plain.db), Entity(record.db));
            EXPECT_EQ(Written(plain.db), Written(record.db));
        }
    }
}

// A taken entity keeps no record, as the same record read alone does not.
TEST(DxfPlainEntity, taken_entity_keeps_no_record) {
    Built plain;
    Build(Plain(Kind::kArc), false, true, "", plain);
    ASSERT_EQ(plain.status, Acad::eOk) << Utf8FromWide(plain.db.lastError());
    ASSERT_TRUE(plain.taken);
    EXPECT_NE(Entity(plain.db).find(" record 0 "), std::string::npos) << Entity(plain.db);
}

}  // namespace
