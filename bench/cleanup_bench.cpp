// Times the clean-ups of the colour rules, duplicate removal, chains and line deviation on
// generated drawings of growing size, each against a reference measured in the same run: one
// walk that opens and closes every entity of the model space. Usage: cleanup_bench [N...]
// (entities per drawing, default 1000 10000 100000), or cleanup_bench FILE.dxf to time the
// operations on a drawing read from a file, against its read. The generated drawing is a grid of cells, each with
// a chain square on layer CHAIN, a circle and a line inside it, a doubled and a nested line, two
// red pieces that join into a chain and a red square polyline on layer DEV.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "cleanup/class_interface_data.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/dxf/dxf.hpp"

namespace {

constexpr int kEntitiesPerCell = 12;

void AddLayer(AcDbDatabase& db, const std::wstring& name) {
    AcDbLayerTable* layers = nullptr;
    db.getSymbolTable(layers, AcDb::kForWrite);
    auto* record = new AcDbLayerTableRecord;
    record->setName(name);
    layers->add(record);
    record->close();
    layers->close();
}

void Append(AcDbBlockTableRecord* model, AcDbDatabase& db, AcDbEntity* entity, const wchar_t* layer, int color) {
    entity->setDatabaseDefaults(&db);
    entity->setLayerName(layer);
    entity->setColorIndex(static_cast<std::uint16_t>(color));
    AcDbObjectId id;
    model->appendAcDbEntity(id, entity);
    entity->close();
}

AcDbLine* Line(double x0, double y0, double x1, double y1) {
    return new AcDbLine(AcGePoint3d(x0, y0, 0), AcGePoint3d(x1, y1, 0));
}

std::unique_ptr<AcDbDatabase> MakeDrawing(int entities) {
    auto db = std::make_unique<AcDbDatabase>(true, false);
    AddLayer(*db, L"CHAIN");
    AddLayer(*db, L"DEV");
    AcDbBlockTable* blocks = nullptr;
    db->getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
    blocks->close();
    int cells = std::max(1, entities / kEntitiesPerCell);
    int side = static_cast<int>(std::ceil(std::sqrt(static_cast<double>(cells))));
    for (int c = 0; c < cells; ++c) {
        double x = (c % side) * 40.0, y = (c / side) * 40.0;
        Append(model, *db, Line(x, y, x + 10, y), L"CHAIN", 7);
        Append(model, *db, Line(x + 10, y, x + 10, y + 10), L"CHAIN", 7);
        Append(model, *db, Line(x + 10, y + 10, x, y + 10), L"CHAIN", 7);
        Append(model, *db, Line(x, y + 10, x, y), L"CHAIN", 7);
        Append(model, *db, new AcDbCircle(AcGePoint3d(x + 5, y + 5, 0), AcGeVector3d::kZAxis, 2), L"0", 5);
        Append(model, *db, Line(x + 2, y + 2, x + 8, y + 2), L"0", 5);
        Append(model, *db, Line(x + 15, y, x + 25, y), L"0", 7);
        Append(model, *db, Line(x + 15, y, x + 25, y), L"0", 7);
        Append(model, *db, Line(x + 17, y, x + 20, y), L"0", 7);
        Append(model, *db, Line(x + 15, y + 5, x + 20, y + 5), L"0", 1);
        Append(model, *db, Line(x + 20, y + 5, x + 20, y + 10), L"0", 1);
        auto* square = new AcDbPolyline;
        const double corners[][2] = {{0, 20}, {10, 20}, {10, 30}, {0, 30}};
        for (const auto& p : corners) square->addVertexAt(square->numVerts(), AcGePoint2d(x + p[0], y + p[1]), 0, 0, 0);
        square->setClosed(true);
        Append(model, *db, square, L"DEV", 1);
    }
    model->close();
    return db;
}

// The reference: one walk opening and closing every entity.
void OpenEveryEntity(ClassInterfaceData& cleanup) {
    for (const AcDbObjectId& id : GetModelSpaceIds(cleanup.database)) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) == Acad::eOk) entity->close();
    }
}

double Seconds(const std::function<void()>& work) {
    auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Step {
    const char* name;
    void (ClassInterfaceData::*run)();
};

const Step kSteps[] = {{"FunChangeColor", &ClassInterfaceData::FunChangeColor},
                       {"FunModifyColor", &ClassInterfaceData::FunModifyColor},
                       {"FunDeleteRepeatingLine", &ClassInterfaceData::FunDeleteRepeatingLine},
                       {"FunConnectPline", &ClassInterfaceData::FunConnectPline},
                       {"FunLineDeviation", &ClassInterfaceData::FunLineDeviation}};

// Each operation on a fresh read of the file, in the order of the pipeline.
int TimeOnFile(const std::string& path, const std::filesystem::path& folder) {
    std::printf("%-24s %10s %12s\n", "operation", "seconds", "x read");
    for (const Step& step : kSteps) {
        AcDbDatabase db(false, true);
        double read = Seconds([&] { dxf::ReadDxfFile(db, path); });
        acdbHostApplicationServices()->setWorkingDatabase(&db);
        ClassInterfaceData cleanup(&db, folder.wstring());
        double seconds = Seconds([&] { (cleanup.*step.run)(); });
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
        std::printf("%-24s %10.4f %12.2f\n", step.name, seconds, seconds / read);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<int> sizes;
    for (int i = 1; i < argc; ++i) sizes.push_back(std::atoi(argv[i]));
    if (sizes.empty()) sizes = {1000, 10000, 100000};
    bool onFile = argc == 2 && std::string(argv[1]).ends_with(".dxf");
    const char* tmp = std::getenv("TMPDIR");
    std::filesystem::path folder = std::filesystem::path(tmp ? tmp : "/tmp") / "cleanup_bench";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "CAD_line.ini")
        << "[public]\r\nStrSolidLineType=Continuous\r\n"
           "[ModifyColor]\r\nStrChangeColor=[{\"ColorOld\":\"0 0 255\",\"ColorNew\":\"0 255 255\"}]\r\n"
           "StrJson=[{\"StrLayer\":\"CHAIN\",\"ColorSolid\":\"255 0 0\",\"ColorDotted\":\"0 255 0\",\"ColorExclude\":[]}]\r\n"
           "[DeleteRepeatingLine]\r\nBolOpen=1\r\nTolerance=0.01\r\n"
           "[ConnectPline]\r\nTolerance=0.05\r\nColorInspect=255 0 0;\r\n"
           "[LineDeviation]\r\nBolOpen=1\r\nStrLayer=DEV\r\nStrJson=[{\"Color\":\"255 0 0\",\"VarOffset\":1}]\r\n";
    if (onFile) return TimeOnFile(argv[1], folder);
    const auto& steps = kSteps;
    std::printf("%-24s %9s %10s %12s %10s\n", "operation", "entities", "seconds", "x reference", "growth");
    std::vector<double> previous(std::size(steps), 0.0);
    for (int n : sizes) {
        std::vector<double> times;
        double reference = 0.0;
        for (const Step& step : steps) {
            auto db = MakeDrawing(n);
            acdbHostApplicationServices()->setWorkingDatabase(db.get());
            ClassInterfaceData cleanup(db.get(), folder.wstring());
            reference = Seconds([&] { OpenEveryEntity(cleanup); });
            times.push_back(Seconds([&] { (cleanup.*step.run)(); }));
            acdbHostApplicationServices()->setWorkingDatabase(nullptr);
        }
        for (size_t s = 0; s < std::size(steps); ++s) {
            double growth = previous[s] > 0.0 ? times[s] / previous[s] : 0.0;
            std::printf("%-24s %9d %10.4f %12.1f %10.1f\n", steps[s].name, n, times[s], times[s] / reference, growth);
            previous[s] = times[s];
        }
        std::printf("%-24s %9d %10.4f\n", "reference walk", n, reference);
    }
    return 0;
}
