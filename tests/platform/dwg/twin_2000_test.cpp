// The entities and layers decoded from a 2000 drawing agree, object by object, with its DXF
// twin as the DXF reader fills the database: handles, layers, coordinates, texts.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>

#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/entities.hpp"
#include "platform/dwg/tables.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/win/codepage.hpp"

namespace {

using Visit = std::function<void(dwg::ObjectStreams&)>;

// Opens every object the map of an uncompressed (R13-2000) file names.
void ForEachObject(const std::vector<std::uint8_t>& file, dwg::Version version, const Visit& visit) {
    std::vector<dwg::ObjectLocation> map;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ParseObjectMap(dwg_test::LocatedSection(file, 2), map, error));
    for (const auto& loc : map) {
        dwg::ObjectStreams o;
        ASSERT_TRUE(dwg::OpenObject(file, loc.offset, version, 1252, o, error)) << error.reason;
        visit(o);
    }
}

template <typename T>
T* OpenByHandle(AcDbDatabase& db, std::uint64_t handle) {
    AcDbObjectId id;
    if (db.getAcDbObjectId(id, false, AcDbHandle(handle)) != Acad::eOk) return nullptr;
    T* object = nullptr;
    if (acdbOpenObject(object, id, AcDb::kForRead) != Acad::eOk) return nullptr;
    return object;
}

void ExpectPoint(const dwg::Point3& p, const AcGePoint3d& q) {
    EXPECT_NEAR(p.x, q.x, 1e-9);
    EXPECT_NEAR(p.y, q.y, 1e-9);
    EXPECT_NEAR(p.z, q.z, 1e-9);
}

struct Twin {
    AcDbDatabase dxf{false, true};
    std::vector<std::uint8_t> dwg;
    std::map<std::uint64_t, std::wstring> layers;
    std::map<int, int> compared;

    explicit Twin(const std::string& stem) {
        dwg = dwg_test::ReadFileBytes(dwg_test::CorpusPath(stem + ".dwg"));
        EXPECT_EQ(dxf::ReadDxfFile(dxf, "/work/shared/corpus/dxf/" + stem + ".dxf"), Acad::eOk);
    }

    void expectLayer(const dwg::EntityCommon& common, const AcDbEntity* entity) {
        EXPECT_EQ(layers[common.layer], entity->layer()) << std::hex << common.handle;
    }
};

TEST(DwgTwin2000, layers_have_the_names_and_states_of_the_dxf) {
    Twin twin("example_2000");
    int layers = 0;
    ForEachObject(twin.dwg, dwg::Version::kR2000, [&](dwg::ObjectStreams& o) {
        if (o.type != dwg::kLayer) return;
        dwg::LayerRecord layer;
        ASSERT_TRUE(dwg::ReadLayer(o, layer));
        auto* record = OpenByHandle<AcDbLayerTableRecord>(twin.dxf, layer.entry.common.handle);
        ASSERT_NE(record, nullptr) << layer.entry.name;
        std::wstring name;
        record->getName(name);
        EXPECT_EQ(WideFromUtf8(layer.entry.name), name);
        EXPECT_EQ(layer.off, record->isOff()) << layer.entry.name;
        EXPECT_EQ((layer.flags & 1) != 0, record->isFrozen()) << layer.entry.name;
        EXPECT_EQ(layer.color.index, record->color().colorIndex()) << layer.entry.name;
        EXPECT_EQ(layer.entry.common.owner, record->ownerId().handle().value());
        record->close();
        ++layers;
    });
    EXPECT_GT(layers, 1);
}

TEST(DwgTwin2000, simple_entities_have_the_values_of_the_dxf) {
    Twin twin("example_2000");
    ForEachObject(twin.dwg, dwg::Version::kR2000, [&](dwg::ObjectStreams& o) {
        if (o.type != dwg::kLayer) return;
        dwg::LayerRecord layer;
        dwg::ReadLayer(o, layer);
        twin.layers[o.handle] = WideFromUtf8(layer.entry.name);
    });
    ForEachObject(twin.dwg, dwg::Version::kR2000, [&](dwg::ObjectStreams& o) {
        SCOPED_TRACE(testing::Message() << "handle " << std::hex << o.handle);
        switch (o.type) {
            case dwg::kLine: {
                dwg::LineRecord r;
                ASSERT_TRUE(dwg::ReadLine(o, r));
                auto* e = OpenByHandle<AcDbLine>(twin.dxf, o.handle);
                ASSERT_NE(e, nullptr);
                ExpectPoint(r.start, e->startPoint());
                ExpectPoint(r.end, e->endPoint());
                twin.expectLayer(r.common, e);
                e->close();
                break;
            }
            case dwg::kCircle: {
                dwg::CircleRecord r;
                ASSERT_TRUE(dwg::ReadCircle(o, r));
                auto* e = OpenByHandle<AcDbCircle>(twin.dxf, o.handle);
                ASSERT_NE(e, nullptr);
                ExpectPoint(r.center, e->center());
                EXPECT_NEAR(r.radius, e->radius(), 1e-9);
                twin.expectLayer(r.common, e);
                e->close();
                break;
            }
            case dwg::kArc: {
                dwg::ArcRecord r;
                ASSERT_TRUE(dwg::ReadArc(o, r));
                auto* e = OpenByHandle<AcDbArc>(twin.dxf, o.handle);
                ASSERT_NE(e, nullptr);
                ExpectPoint(r.circle.center, e->center());
                EXPECT_NEAR(r.circle.radius, e->radius(), 1e-9);
                EXPECT_NEAR(r.startAngle, e->startAngle(), 1e-9);
                EXPECT_NEAR(r.endAngle, e->endAngle(), 1e-9);
                twin.expectLayer(r.circle.common, e);
                e->close();
                break;
            }
            case dwg::kPoint: {
                dwg::PointRecord r;
                ASSERT_TRUE(dwg::ReadPoint(o, r));
                auto* e = OpenByHandle<AcDbPoint>(twin.dxf, o.handle);
                ASSERT_NE(e, nullptr);
                ExpectPoint(r.position, e->position());
                twin.expectLayer(r.common, e);
                e->close();
                break;
            }
            case dwg::kText: {
                dwg::TextRecord r;
                ASSERT_TRUE(dwg::ReadText(o, r));
                auto* e = OpenByHandle<AcDbText>(twin.dxf, o.handle);
                ASSERT_NE(e, nullptr);
                EXPECT_EQ(WideFromUtf8(r.text), e->textString());
                EXPECT_NEAR(r.height, e->height(), 1e-9);
                EXPECT_NEAR(r.insertion.x, e->position().x, 1e-9);
                EXPECT_NEAR(r.insertion.y, e->position().y, 1e-9);
                twin.expectLayer(r.common, e);
                e->close();
                break;
            }
            default: return;
        }
        ++twin.compared[o.type];
    });
    EXPECT_GT(twin.compared[dwg::kLine] + twin.compared[dwg::kCircle] + twin.compared[dwg::kArc], 0);
    for (auto [type, count] : twin.compared) std::cout << "type " << type << ": " << count << "\n";
}

}  // namespace

namespace {

// Drawings without a twin: every layer and simple entity decodes within its object.
TEST(DwgSimpleEntities, decode_in_every_uncompressed_corpus_drawing) {
    const std::pair<const char*, dwg::Version> files[] = {
        {"example_r14.dwg", dwg::Version::kR14},
        {"Leader.dwg", dwg::Version::kR14},
        {"entities-2d.dwg", dwg::Version::kR2000},
        {"color_sample_AC1015.dwg", dwg::Version::kR2000}};
    for (const auto& [name, version] : files) {
        SCOPED_TRACE(name);
        const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath(name));
        int decoded = 0;
        ForEachObject(file, version, [&](dwg::ObjectStreams& o) {
            SCOPED_TRACE(testing::Message() << "handle " << std::hex << o.handle);
            bool ok = true;
            switch (o.type) {
                case dwg::kLine: { dwg::LineRecord r; ok = dwg::ReadLine(o, r); break; }
                case dwg::kCircle: { dwg::CircleRecord r; ok = dwg::ReadCircle(o, r); break; }
                case dwg::kArc: { dwg::ArcRecord r; ok = dwg::ReadArc(o, r); break; }
                case dwg::kPoint: { dwg::PointRecord r; ok = dwg::ReadPoint(o, r); break; }
                case dwg::kText: { dwg::TextRecord r; ok = dwg::ReadText(o, r); break; }
                case dwg::kLayer: {
                    dwg::LayerRecord r;
                    ok = dwg::ReadLayer(o, r);
                    EXPECT_FALSE(r.entry.name.empty());
                    break;
                }
                default: return;
            }
            EXPECT_TRUE(ok);
            // The values end where the handles begin (up to the padding of the last byte).
            EXPECT_LE(o.data.bitPosition(), o.dataEnd);
            EXPECT_GT(o.data.bitPosition() + 8, o.dataEnd);
            ++decoded;
        });
        EXPECT_GT(decoded, 0);
    }
}

}  // namespace
