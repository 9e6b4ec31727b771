// The entities and layers decoded from a 2000 drawing agree, object by object, with its DXF
// twin as the DXF reader fills the database: handles, layers, coordinates, texts.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <set>

#include "platform/db/arc.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/dictionary.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/classes.hpp"
#include "platform/dwg/curves.hpp"
#include "platform/dwg/decode.hpp"
#include "platform/dwg/entities.hpp"
#include "platform/dwg/objects.hpp"
#include "platform/dwg/texts.hpp"
#include "platform/dwg/tables.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/win/codepage.hpp"
#include "shared_folder.hpp"

namespace {

using Visit = std::function<void(dwg::ObjectStreams&)>;

// Opens every object the map of an uncompressed (R13-2000) file names.
void ForEachObject(const std::vector<std::uint8_t>& file, dwg::Version version, const Visit& visit) {
    std::vector<dwg::ObjectLocation> map;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ParseObjectMap(dwg_test::FileSection(file, dwg::kHandlesSection), map, error));
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
    std::set<std::uint64_t> handles;  // every handle of the DWG's object map

    explicit Twin(const std::string& stem) {
        dwg = dwg_test::ReadFileBytes(dwg_test::CorpusPath(stem + ".dwg"));
        EXPECT_EQ(dxf::ReadDxfFile(dxf, SharedFile("corpus/dxf/" + stem + ".dxf").string()), Acad::eOk);
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

TEST(DwgTwin2000, blocks_inserts_polylines_and_texts_have_the_values_of_the_dxf) {
    Twin twin("example_2000");
    ForEachObject(twin.dwg, dwg::Version::kR2000, [&](dwg::ObjectStreams& o) {
        twin.handles.insert(o.handle);
        if (o.type != dwg::kLayer) return;
        dwg::LayerRecord layer;
        dwg::ReadLayer(o, layer);
        twin.layers[o.handle] = WideFromUtf8(layer.entry.name);
    });
    ForEachObject(twin.dwg, dwg::Version::kR2000, [&](dwg::ObjectStreams& o) {
        SCOPED_TRACE(testing::Message() << "handle " << std::hex << o.handle);
        switch (o.type) {
            case dwg::kBlockHeader: {
                dwg::BlockHeaderRecord r;
                ASSERT_TRUE(dwg::ReadBlockHeader(o, r));
                auto* e = OpenByHandle<AcDbBlockTableRecord>(twin.dxf, o.handle);
                ASSERT_NE(e, nullptr);
                std::wstring name;
                e->getName(name);
                // Anonymous blocks are numbered when a drawing is written as DXF ("*D" to "*D3").
                EXPECT_EQ(name.rfind(WideFromUtf8(r.entry.name), 0), 0u) << Utf8FromWide(name);
                EXPECT_EQ(r.anonymous, name[0] == L'*' && name.size() > 1 && name[1] != L'M'
                                           && name[1] != L'P')
                    << Utf8FromWide(name);
                ExpectPoint(r.base, e->origin());
                EXPECT_EQ(r.layout, e->getLayoutId().handle().value());
                e->close();
                break;
            }
            case dwg::kInsert: {
                dwg::InsertRecord r;
                ASSERT_TRUE(dwg::ReadInsert(o, r, false));
                auto* e = OpenByHandle<AcDbBlockReference>(twin.dxf, o.handle);
                ASSERT_NE(e, nullptr);
                ExpectPoint(r.position, e->position());
                EXPECT_NEAR(r.scale.x, e->scaleFactors().sx, 1e-9);
                EXPECT_NEAR(r.scale.y, e->scaleFactors().sy, 1e-9);
                EXPECT_NEAR(r.rotation, e->rotation(), 1e-9);
                EXPECT_EQ(r.block, e->blockTableRecord().handle().value());
                EXPECT_EQ(r.hasAttributes, e->attributeIds().length() > 0);
                twin.expectLayer(r.common, e);
                e->close();
                break;
            }
            case dwg::kLwPolyline: {
                dwg::LwPolylineRecord r;
                ASSERT_TRUE(dwg::ReadLwPolyline(o, r));
                auto* e = OpenByHandle<AcDbPolyline>(twin.dxf, o.handle);
                ASSERT_NE(e, nullptr);
                ASSERT_EQ(r.points.size(), e->numVerts());
                for (unsigned i = 0; i < e->numVerts(); ++i) {
                    AcGePoint2d p;
                    e->getPointAt(i, p);
                    EXPECT_NEAR(r.points[i].x, p.x, 1e-9);
                    EXPECT_NEAR(r.points[i].y, p.y, 1e-9);
                }
                EXPECT_EQ(r.closed(), e->isClosed());
                twin.expectLayer(r.common, e);
                e->close();
                break;
            }
            case dwg::kEllipse: {
                dwg::EllipseRecord r;
                ASSERT_TRUE(dwg::ReadEllipse(o, r));
                auto* e = OpenByHandle<AcDbEllipse>(twin.dxf, o.handle);
                ASSERT_NE(e, nullptr);
                ExpectPoint(r.center, e->center());
                EXPECT_NEAR(r.majorAxis.x, e->majorAxis().x, 1e-9);
                EXPECT_NEAR(r.ratio, e->radiusRatio(), 1e-9);
                EXPECT_NEAR(r.endParam, e->endParam(), 1e-9);
                e->close();
                break;
            }
            case dwg::kMText: {
                dwg::MTextRecord r;
                ASSERT_TRUE(dwg::ReadMText(o, r));
                auto* e = OpenByHandle<AcDbMText>(twin.dxf, o.handle);
                ASSERT_NE(e, nullptr);
                EXPECT_EQ(WideFromUtf8(r.contents), e->contents());
                EXPECT_NEAR(r.height, e->textHeight(), 1e-9);
                ExpectPoint(r.insertion, e->location());
                EXPECT_EQ(r.attachment, static_cast<int>(e->attachment()));
                twin.expectLayer(r.common, e);
                e->close();
                break;
            }
            case dwg::kAttrib:
            case dwg::kAttdef: {
                dwg::AttributeRecord r;
                ASSERT_TRUE(dwg::ReadAttribute(o, r, o.type == dwg::kAttdef));
                auto* e = OpenByHandle<AcDbText>(twin.dxf, o.handle);
                ASSERT_NE(e, nullptr);
                EXPECT_EQ(WideFromUtf8(r.text.text), e->textString());
                if (auto* a = AcDbAttribute::cast(e)) {
                    EXPECT_EQ(WideFromUtf8(r.tag), a->tag());
                }
                if (auto* a = AcDbAttributeDefinition::cast(e)) {
                    EXPECT_EQ(WideFromUtf8(r.tag), a->tag());
                    EXPECT_EQ(WideFromUtf8(r.prompt), a->prompt());
                }
                e->close();
                break;
            }
            case dwg::kDictionary: {
                dwg::DictionaryRecord r;
                ASSERT_TRUE(dwg::ReadDictionary(o, r));
                auto* e = OpenByHandle<AcDbDictionary>(twin.dxf, o.handle);
                // The DXF export leaves out the DWG's round-trip dictionaries and writes their
                // records anew under handles the DWG does not have; every other entry of the
                // DXF is in the DWG under the same handle.
                if (e == nullptr) return;
                std::map<std::wstring, std::uint64_t> own;
                for (const auto& [name, handle] : r.entries) own[WideFromUtf8(name)] = handle;
                for (const auto& [name, id] : e->entries()) {
                    if (name == L"ACAD_XREC_ROUNDTRIP" || !twin.handles.count(id.handle().value())) {
                        continue;
                    }
                    ASSERT_TRUE(own.count(name)) << Utf8FromWide(name);
                    EXPECT_EQ(own[name], id.handle().value()) << Utf8FromWide(name);
                }
                e->close();
                break;
            }
            case dwg::kSolid: {
                dwg::SolidRecord r;
                ASSERT_TRUE(dwg::ReadSolid(o, r));
                break;
            }
            case dwg::kPolyline2d:
            case dwg::kPolyline3d:
            case dwg::kPolylinePface: {
                dwg::PolylineRecord r;
                ASSERT_TRUE(dwg::ReadPolyline(o, r));
                EXPECT_NE(r.vertices.seqend, 0u);
                break;
            }
            case dwg::kVertex2d:
            case dwg::kVertex3d:
            case dwg::kVertexPface:
            case dwg::kVertexPfaceFace: {
                dwg::VertexRecord r;
                ASSERT_TRUE(dwg::ReadVertex(o, r));
                break;
            }
            default: return;
        }
        EXPECT_LE(o.data.bitPosition(), o.dataEnd);
        EXPECT_GT(o.data.bitPosition() + 8, o.dataEnd);
        ++twin.compared[o.type];
    });
    for (auto [type, count] : twin.compared) std::cout << "type " << type << ": " << count << "\n";
}

}  // namespace

namespace {

// Every object of a kind the decoder knows decodes within its object, in the uncompressed
// drawings of the corpus.
TEST(DwgDecoders, known_kinds_decode_in_every_uncompressed_corpus_drawing) {
    const std::pair<const char*, dwg::Version> files[] = {
        {"example_r14.dwg", dwg::Version::kR14},
        {"example_2000.dwg", dwg::Version::kR2000},
        {"Leader.dwg", dwg::Version::kR14},
        {"entities-2d.dwg", dwg::Version::kR2000},
        {"color_sample_AC1015.dwg", dwg::Version::kR2000}};
    for (const auto& [name, version] : files) {
        SCOPED_TRACE(name);
        const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath(name));
        std::vector<dwg::ClassRecord> classes;
        dwg::MapError error;
        ASSERT_TRUE(dwg::ParseClasses(dwg_test::FileSection(file, dwg::kClassesSection), version, 0, 1252, classes,
                                      error));
        std::set<std::uint64_t> handles;
        ForEachObject(file, version, [&](dwg::ObjectStreams& o) { handles.insert(o.handle); });
        int count = 0;
        int kept = 0;
        std::map<std::string, int> keptKinds;
        ForEachObject(file, version, [&](dwg::ObjectStreams& o) {
            SCOPED_TRACE(testing::Message() << "handle " << std::hex << o.handle << " type "
                                            << dwg::TypeName(o.type, classes));
            dwg::DecodedObject decoded;
            const bool ok = dwg::DecodeObject(o, classes, decoded);
            if (auto* k = std::get_if<dwg::KeptObject>(&decoded)) {
                // A kind kept whole: its common data and references read, its owner is an
                // object of the drawing.
                EXPECT_TRUE(ok);
                EXPECT_TRUE(k->common.owner == 0 || handles.count(k->common.owner))
                    << std::hex << k->common.owner;
                EXPECT_EQ(k->bytes.size(), o.size);
                for (const auto& ref : k->references) {
                    const auto target = dwg::BitReader::Absolute(ref, o.handle);
                    EXPECT_TRUE(target == 0 || handles.count(target)) << std::hex << target;
                }
                ++kept;
                ++keptKinds[dwg::TypeName(o.type, classes)];
                return;
            }
            if (auto* layer = std::get_if<dwg::LayerRecord>(&decoded)) {
                EXPECT_FALSE(layer->entry.name.empty());
            }
            EXPECT_TRUE(ok);
            // The values end where the handles begin (up to the padding of the last byte).
            EXPECT_LE(o.data.bitPosition(), o.dataEnd);
            EXPECT_GT(o.data.bitPosition() + 8, o.dataEnd);
            ++count;
        });
        EXPECT_GT(count, 0);
        std::cout << name << ": " << count << " decoded, " << kept << " kept whole:";
        for (const auto& [kind, n] : keptKinds) std::cout << ' ' << kind << ' ' << n;
        std::cout << '\n';
    }
}

}  // namespace
