// Times the hole step of the pipeline (gathering the points, reading CAD_hole.ini and replacing
// the marked holes by their symbols) on generated drawings of growing size, against a reference
// measured in the same run: one walk that opens and closes every entity of the model space.
// Usage: holes_bench [N...] (entities per drawing, default 1000 10000 100000).
// The generated drawing is a grid of cells of ten entities: a tapped hole (a solid circle, a
// dashed circle and its point on the type's layer), a hole whose point lies on a layer of no
// type, a loose circle and three lines. Every tapped hole is replaced; the others stay.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "drawing_queries.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/win/codepage.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/prefix.hpp"
#include "standard/hole_substitution.hpp"

namespace {

constexpr int kEntitiesPerCell = 10;
constexpr const wchar_t* kIni = L"D:\\HOLES\\CAD_hole.ini";
constexpr const wchar_t* kDrawing = L"D:\\WORK\\PLATE.dwg";

void WriteFile(const std::wstring& windowsPath, const std::string& bytes) {
    std::filesystem::path file = ResolvePath(windowsPath);
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}

void Append(AcDbBlockTableRecord* model, AcDbDatabase& db, AcDbEntity* entity, const wchar_t* layer,
            const wchar_t* linetype = nullptr) {
    entity->setDatabaseDefaults(&db);
    entity->setLayerName(layer);
    if (linetype) entity->setLinetypeName(linetype);
    AcDbObjectId id;
    model->appendAcDbEntity(id, entity);
    entity->close();
}

AcDbCircle* Circle(double x, double y, double diameter) {
    return new AcDbCircle(AcGePoint3d(x, y, 0), AcGeVector3d::kZAxis, diameter / 2);
}

// The symbol library of one type: a tapped hole's symbol, two circles and the centre cross.
bool WriteLibrary() {
    WriteFile(kIni, EncodeCodePage(L"[BLKPATH]\r\nBLKPATH,D:\\HOLES\\\r\n[DASHL]\r\nHIDDEN\r\n"
                                   L"[TYPE1]\r\nLAYER,H_TAP\r\n5,M6R,M6,M6R,M6,M6R,M6\r\n",
                                   936));
    WriteFile(kDrawing, "x");
    AcDbDatabase symbol(true, false);
    AcDbBlockTableRecord* model = OpenModelSpace(symbol, AcDb::kForWrite);
    Append(model, symbol, Circle(0, 0, 5), L"0");
    Append(model, symbol, Circle(0, 0, 6), L"0");
    Append(model, symbol, new AcDbLine(AcGePoint3d(-6, 0, 0), AcGePoint3d(6, 0, 0)), L"0");
    Append(model, symbol, new AcDbLine(AcGePoint3d(0, -6, 0), AcGePoint3d(0, 6, 0)), L"0");
    model->close();
    for (const wchar_t* name : {L"D:\\HOLES\\M6.dwg", L"D:\\HOLES\\M6R.dwg"})
        if (dxf::WriteDxfFile(symbol, ResolvePath(name).string(), dxf::WriteOptions{}) != Acad::eOk) return false;
    return true;
}

std::unique_ptr<AcDbDatabase> MakeDrawing(int entities) {
    auto db = std::make_unique<AcDbDatabase>(true, false);
    AcDbBlockTableRecord* model = OpenModelSpace(*db, AcDb::kForWrite);
    int cells = std::max(1, entities / kEntitiesPerCell);
    int side = static_cast<int>(std::ceil(std::sqrt(static_cast<double>(cells))));
    for (int c = 0; c < cells; ++c) {
        double x = (c % side) * 40.0, y = (c / side) * 40.0;
        Append(model, *db, Circle(x + 5, y + 5, 5), L"PART");
        Append(model, *db, Circle(x + 5, y + 5, 6), L"PART", L"HIDDEN");
        Append(model, *db, new AcDbPoint(AcGePoint3d(x + 5, y + 5, 0)), L"H_TAP");
        Append(model, *db, Circle(x + 20, y + 5, 5), L"PART");
        Append(model, *db, Circle(x + 20, y + 5, 8), L"PART");
        Append(model, *db, new AcDbPoint(AcGePoint3d(x + 20, y + 5, 0)), L"H_OTHER");
        Append(model, *db, Circle(x + 30, y + 20, 4), L"PART");
        Append(model, *db, new AcDbLine(AcGePoint3d(x, y + 30, 0), AcGePoint3d(x + 35, y + 30, 0)), L"PART");
        Append(model, *db, new AcDbLine(AcGePoint3d(x, y + 35, 0), AcGePoint3d(x + 35, y + 35, 0)), L"PART");
        Append(model, *db, new AcDbLine(AcGePoint3d(x + 35, y, 0), AcGePoint3d(x + 35, y + 35, 0)), L"PART");
    }
    model->close();
    return db;
}

// The reference: one walk opening and closing every entity.
void OpenEveryEntity(AcDbDatabase& db) {
    AcDbBlockTableRecord* model = OpenModelSpace(db, AcDb::kForWrite);
    AcDbBlockTableRecordIterator* it = nullptr;
    model->newIterator(it);
    for (; !it->done(); it->step()) {
        AcDbEntity* entity = nullptr;
        if (it->getEntity(entity, AcDb::kForRead) == Acad::eOk) entity->close();
    }
    delete it;
    model->close();
}

// The hole step as the pipeline runs it; answers the number of symbol entities inserted.
int SubstituteDrawingHoles(AcDbDatabase& db) {
    AcArray<tPt> points;
    CollectPoints(&db, points);
    HoleSubstitution holes(points, kIni);
    holes.ReadHoleConfig(kIni);
    holes.SubstituteHoles(&db, kDrawing, L"TARGET");
    return holes.inserted.length();
}

double Seconds(const std::function<void()>& work) {
    auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<int> sizes;
    for (int i = 1; i < argc; ++i) sizes.push_back(std::atoi(argv[i]));
    if (sizes.empty()) sizes = {1000, 10000, 100000};
    const char* tmp = std::getenv("TMPDIR");
    std::filesystem::path prefix = std::filesystem::path(tmp ? tmp : "/tmp") / "holes_bench";
    std::filesystem::remove_all(prefix);
    std::string error;
    if (!InitPrefix(prefix, error) || !OpenPrefix(prefix, error)) {
        std::fprintf(stderr, "holes_bench: %s\n", error.c_str());
        return 1;
    }
    if (!WriteLibrary()) {
        std::fprintf(stderr, "holes_bench: cannot write the symbol library below %s\n", prefix.c_str());
        return 1;
    }
    std::printf("%-24s %9s %10s %12s %10s %9s\n", "operation", "entities", "seconds", "x reference", "growth",
                "inserted");
    double previous = 0.0;
    for (int n : sizes) {
        auto db = MakeDrawing(n);
        acdbHostApplicationServices()->setWorkingDatabase(db.get());
        double reference = Seconds([&] { OpenEveryEntity(*db); });
        int inserted = 0;
        double seconds = Seconds([&] { inserted = SubstituteDrawingHoles(*db); });
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
        std::printf("%-24s %9d %10.4f %12.1f %10.1f %9d\n", "SubstituteHoles", n, seconds, seconds / reference,
                    previous > 0.0 ? seconds / previous : 0.0, inserted);
        std::printf("%-24s %9d %10.4f\n", "reference walk", n, reference);
        previous = seconds;
    }
    std::filesystem::remove_all(prefix);
    return 0;
}
