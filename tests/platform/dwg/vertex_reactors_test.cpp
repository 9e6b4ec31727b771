// A polyline's vertex keeps the persistent reactors it has of its own (example_2004's 3D
// polyline 0x41A has a reactor 0x42F, and of its vertices only 0x41E has one, the same), read
// from DWG and from DXF and written back by both writers.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "corpus_files.hpp"
#include "object_bits.hpp"
#include "platform/db/database.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dxf/dxf.hpp"
#include "shared_folder.hpp"

namespace {

constexpr std::uint64_t kPolyline = 0x41A;
constexpr std::uint64_t kVertexWithReactor = 0x41E;
constexpr std::uint64_t kVertexWithout = 0x41C;
constexpr std::uint64_t kAbsent = ~0ull;

// The handles of a vertex's own reactors, by the vertex's handle; kAbsent alone without the
// polyline or the vertex.
std::vector<std::uint64_t> VertexReactors(AcDbDatabase& db, std::uint64_t vertex) {
    AcDbObjectId id;
    AcDbObject* object = nullptr;
    if (db.getAcDbObjectId(id, false, AcDbHandle(kPolyline)) != Acad::eOk ||
        acdbOpenAcDbObject(object, id, AcDb::kForRead) != Acad::eOk)
        return {kAbsent};
    std::vector<std::uint64_t> out{kAbsent};
    if (auto* polyline = AcDb3dPolyline::cast(object)) {
        for (const AcDb3dPolylineVertex& v : polyline->vertices()) {
            if (v.handle.value() != vertex) continue;
            out.clear();
            for (const AcDbObjectId& r : v.reactors) out.push_back(r.handle().value());
        }
    }
    object->close();
    return out;
}

std::string DxfText(AcDbDatabase& db) {
    std::string out;
    dxf::WriteOptions options;
    options.codePage = 65001;
    EXPECT_EQ(dxf::WriteDxfText(db, options, out), Acad::eOk);
    return out;
}

// The head of a record in DXF text: from its handle to its first subclass marker.
std::string RecordHead(const std::string& text, std::uint64_t handle) {
    char key[32];
    std::snprintf(key, sizeof key, "  5\n%llX\n", static_cast<unsigned long long>(handle));
    const std::size_t at = text.find(key);
    if (at == std::string::npos) return "absent";
    return text.substr(at, text.find("100\n", at) - at);
}

TEST(VertexReactors, own_reactor_of_a_vertex_survives_dwg_to_dwg) {
    AcDbDatabase db(false, true);
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2004.dwg"));
    ASSERT_EQ(dwg::ReadDwgBytes(db, file, "example_2004.dwg"), Acad::eOk);
    EXPECT_EQ(VertexReactors(db, kVertexWithReactor), std::vector<std::uint64_t>{0x42F});
    EXPECT_EQ(VertexReactors(db, kVertexWithout), std::vector<std::uint64_t>{});

    AcDbDatabase again(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(again, dwg_test::OwnEncoding(db, 1252), "again.dwg"), Acad::eOk);
    EXPECT_EQ(VertexReactors(again, kVertexWithReactor), std::vector<std::uint64_t>{0x42F});
    // The polyline's reactor is not lent to the vertices without one of their own.
    EXPECT_EQ(VertexReactors(again, kVertexWithout), std::vector<std::uint64_t>{});
}

// The drawing's DXF with the vertex's own reactor changed to the dimension association 0x452:
// no longer the polyline's.
std::string DxfWithOtherVertexReactor() {
    const auto bytes = dwg_test::ReadFileBytes(SharedFile("corpus/dxf/example_2004.dxf").string());
    std::string text;
    for (std::uint8_t b : bytes)
        if (b != '\r') text += static_cast<char>(b);  // lines end in CR LF there
    const std::string from = "  5\n41E\n102\n{ACAD_REACTORS\n330\n42F\n";
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos);
    if (at != std::string::npos) text.replace(at, from.size(), "  5\n41E\n102\n{ACAD_REACTORS\n330\n452\n");
    return text;
}

TEST(VertexReactors, own_reactor_of_a_vertex_survives_dxf_to_dxf) {
    const std::string source = DxfWithOtherVertexReactor();
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, source, "vertex.dxf"), Acad::eOk);
    EXPECT_EQ(VertexReactors(db, kVertexWithReactor), std::vector<std::uint64_t>{0x452});
    EXPECT_EQ(VertexReactors(db, kVertexWithout), std::vector<std::uint64_t>{});

    const std::string written = DxfText(db);
    EXPECT_EQ(RecordHead(written, kVertexWithReactor), "  5\n41E\n102\n{ACAD_REACTORS\n330\n452\n102\n}\n330\n41A\n");
    AcDbDatabase again(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(again, written, "again.dxf"), Acad::eOk);
    EXPECT_EQ(VertexReactors(again, kVertexWithReactor), std::vector<std::uint64_t>{0x452});
}

// A vertex without reactors of its own is written without its polyline's, as AutoCAD's DXF of
// the drawing has it.
TEST(VertexReactors, vertex_without_reactors_of_its_own_is_written_without_the_polylines) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, DxfWithOtherVertexReactor(), "vertex.dxf"), Acad::eOk);
    const std::string written = DxfText(db);
    EXPECT_EQ(RecordHead(written, kVertexWithout), "  5\n41C\n330\n41A\n");
    EXPECT_EQ(RecordHead(written, kPolyline), "  5\n41A\n102\n{ACAD_REACTORS\n330\n42F\n102\n}\n330\n1F\n");
}

// A vertex's own reactor read from DXF reaches the DWG: the written file, read again, has it.
TEST(VertexReactors, own_reactor_of_a_vertex_read_from_dxf_reaches_the_dwg) {
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, DxfWithOtherVertexReactor(), "vertex.dxf"), Acad::eOk);
    AcDbDatabase again(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(again, dwg_test::OwnEncoding(db, 1252), "again.dwg"), Acad::eOk);
    EXPECT_EQ(VertexReactors(again, kVertexWithReactor), std::vector<std::uint64_t>{0x452});
    EXPECT_EQ(VertexReactors(again, kVertexWithout), std::vector<std::uint64_t>{});
}

}  // namespace
