#pragma once
// Runs the tavrik program with Tavrik.arx on a drawing that the test makes, with a script of
// answers, and reads back the drawing that the script saved.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"
#include "platform/db/line.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"

struct ConsoleRun {
    int status = -1;
    std::string output;  // stdout and stderr together
};

// A text of the drawing as read back.
struct SeenText {
    std::wstring value;
    AcGePoint3d position;
    int color = 256;
    double widthFactor = 1.0;
    AcDbExtents box;
};

class ConsoleTest : public ::testing::Test {
protected:
    void SetUp() override {
        auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        work_ = std::filesystem::temp_directory_path() / (std::string("tavrik-console-") + info->name());
        std::filesystem::remove_all(work_);
        std::filesystem::create_directories(work_);
        prefix_ = work_ / "prefix";
        ASSERT_EQ(Shell(std::string(TAVRIK_EXE) + " prefix init " + prefix_.string()).status, 0);
        db_ = std::make_unique<AcDbDatabase>(true, true);
    }
    void TearDown() override {
        db_.reset();
        std::filesystem::remove_all(work_);
    }

    static ConsoleRun Shell(const std::string& command) {
        ConsoleRun run;
        FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
        if (!pipe) return run;
        char buffer[4096];
        size_t n = 0;
        while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) run.output.append(buffer, n);
        int raw = ::pclose(pipe);
        run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
        return run;
    }

    // --- the drawing the test makes ---
    AcDbObjectId Append(AcDbEntity* entity) {
        AcDbBlockTableRecord* model = nullptr;
        EXPECT_EQ(acdbOpenObject(model, db_->modelSpaceId(), AcDb::kForWrite), Acad::eOk);
        AcDbObjectId id;
        EXPECT_EQ(model->appendAcDbEntity(id, entity), Acad::eOk);
        model->close();
        entity->close();
        return id;
    }
    void AddText(const wchar_t* value, double x, double y) {
        Append(new AcDbText(AcGePoint3d(x, y, 0), value, db_->textstyle(), 2.5));
    }
    void AddMText(const wchar_t* contents, double x, double y) {
        auto* mtext = new AcDbMText();
        mtext->setContents(contents);
        mtext->setLocation(AcGePoint3d(x, y, 0));
        mtext->setTextHeight(2.5);
        Append(mtext);
    }
    // A sheet: a block reference with an attribute whose block is a rectangle of w x h.
    void AddSheet(double x, double y, double w, double h) {
        AcDbBlockTable* blocks = nullptr;
        ASSERT_EQ(db_->getBlockTable(blocks, AcDb::kForWrite), Acad::eOk);
        auto* block = new AcDbBlockTableRecord();
        std::wstring name = L"SHEET" + std::to_wstring(++sheets_);
        block->setName(name);
        AcDbObjectId blockId;
        ASSERT_EQ(blocks->add(blockId, block), Acad::eOk);
        blocks->close();
        AcDbObjectId unused;
        block->appendAcDbEntity(unused, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(w, h, 0)));
        block->appendAcDbEntity(unused, new AcDbAttributeDefinition(AcGePoint3d(1, 1, 0), L"", L"NAME", L"Name"));
        block->close();
        auto* ref = new AcDbBlockReference(AcGePoint3d(x, y, 0), blockId);
        AcDbBlockTableRecord* model = nullptr;
        ASSERT_EQ(acdbOpenObject(model, db_->modelSpaceId(), AcDb::kForWrite), Acad::eOk);
        AcDbObjectId refId;
        ASSERT_EQ(model->appendAcDbEntity(refId, ref), Acad::eOk);
        model->close();
        auto* attribute = new AcDbAttribute(AcGePoint3d(x + 1, y + 1, 0), L"P1", L"NAME");
        ASSERT_EQ(ref->appendAttribute(attribute), Acad::eOk);
        attribute->close();
        ref->close();
    }
    std::filesystem::path SaveDrawing() {
        std::filesystem::path path = work_ / "drawing.dxf";
        EXPECT_EQ(dxf::WriteDxfFile(*db_, path.string(), {}), Acad::eOk);
        return path;
    }

    // --- the run ---
    // tavrik on the drawing (none: a new drawing) with the script's lines; the script ends
    // with a SAVEAS to out.dxf unless `save` is false.
    ConsoleRun Run(const std::string& lines, bool withDrawing = true, bool save = true) {
        std::string drawing = withDrawing ? SaveDrawing().string() : "";
        std::filesystem::path script = work_ / "script.scr";
        std::ofstream(script, std::ios::binary) << lines << (save ? "SAVEAS\n" + Out() + "\n" : std::string());
        return Shell(std::string(TAVRIK_EXE) + " --prefix " + prefix_.string() + " --script " + script.string() + " " +
                     drawing + " < /dev/null");
    }
    std::string Out() const { return (work_ / "out.dxf").string(); }

    // The texts of the saved drawing, in drawing order.
    std::vector<SeenText> SavedTexts() {
        std::vector<SeenText> texts;
        AcDbDatabase saved(false, true);
        EXPECT_EQ(saved.readDwgFile(dxf::Wide(Out()).c_str()), Acad::eOk) << dxf::Utf8(saved.lastError());
        AcDbBlockTableRecord* model = nullptr;
        if (acdbOpenObject(model, saved.modelSpaceId(), AcDb::kForRead) != Acad::eOk) return texts;
        AcDbBlockTableRecordIterator walk(model, true, true);
        for (; !walk.done(); walk.step()) {
            AcDbEntity* entity = nullptr;
            if (walk.getEntity(entity, AcDb::kForRead) != Acad::eOk) continue;
            AcDbExtents box;
            entity->getGeomExtents(box);
            if (auto* text = AcDbText::cast(entity))
                texts.push_back({text->textString(), text->position(), entity->colorIndex(), text->widthFactor(), box});
            else if (auto* mtext = AcDbMText::cast(entity))
                texts.push_back({mtext->contents(), mtext->location(), entity->colorIndex(), 1.0, box});
            entity->close();
        }
        model->close();
        return texts;
    }
    static const SeenText* Find(const std::vector<SeenText>& texts, const std::wstring& value, double x) {
        for (const SeenText& t : texts)
            if (t.value == value && std::abs(t.position.x - x) < 1e-9) return &t;
        return nullptr;
    }
    static int Count(const std::vector<SeenText>& texts, const std::wstring& value) {
        int n = 0;
        for (const SeenText& t : texts) n += t.value == value;
        return n;
    }

    std::filesystem::path work_;
    std::filesystem::path prefix_;
    std::unique_ptr<AcDbDatabase> db_;
    int sheets_ = 0;
};
