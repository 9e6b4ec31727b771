// A DWG drawing read from a file keeps what identifies the file (its path, size and hash), not
// the file's sections: a DWG save reads them from the file again and puts back the stored bits
// of unchanged objects just as a drawing that kept its sections in memory does, while the file
// is the one read. A file gone or changed since the read gives back nothing: the save is the
// writer's own encoding. A drawing read from bytes keeps the sections in memory.
#include <xxhash.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "object_bits.hpp"
#include "platform/db/database.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/filed_objects.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dxf/support.hpp"
#include "platform/win/codepage.hpp"

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

void WriteBytes(const fs::path& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

// An AC1018 drawing of the corpus as it is, or written again in GBK (code page 936): files whose
// objects a save puts back.
struct FiledCase {
    const char* name;
    int codePage;  // of the file's texts, which the save writes
    bool ownEncodingDiffers;  // the writer's own encoding of some object is not the file's bits
};

Bytes FileOf(const FiledCase& c) {
    const Bytes corpus = dwg_test::ReadFileBytes(dwg_test::CorpusPath(c.name));
    if (c.codePage == 1252) return corpus;
    AcDbDatabase db(false, true);
    EXPECT_EQ(dwg::ReadDwgBytes(db, corpus, c.name), Acad::eOk);
    return dwg_test::Rewritten(db, c.codePage);
}

class DwgFiledFile : public ::testing::TestWithParam<FiledCase> {
protected:
    void SetUp() override {
        file_ = FileOf(GetParam());
        ASSERT_FALSE(file_.empty());
        dir_ = dxftest::TempDir(std::string("dwg_filed_") + std::to_string(GetParam().codePage));
        path_ = (dir_ / "drawing.dwg").string();
        WriteBytes(path_, file_);
    }
    void TearDown() override { fs::remove_all(dir_); }

    // The drawing read as the host reads a file.
    void ReadFromFile(AcDbDatabase& db) const {
        ASSERT_EQ(db.readDwgFile(WideFromUtf8(path_).c_str()), Acad::eOk) << Utf8FromWide(db.lastError());
    }
    // The same drawing read from its bytes, its sections kept in memory.
    void ReadFromBytes(AcDbDatabase& db) const {
        ASSERT_EQ(dwg::ReadDwgBytes(db, file_, "drawing.dwg"), Acad::eOk) << Utf8FromWide(db.lastError());
    }
    // The save of the drawing with no stored bits put back.
    Bytes OwnEncoding() const {
        AcDbDatabase db(false, true);
        ReadFromBytes(db);
        return dwg_test::OwnEncoding(db, GetParam().codePage);
    }

    Bytes file_;
    fs::path dir_;
    std::string path_;
};

TEST_P(DwgFiledFile, drawing_read_from_a_file_keeps_its_identity_and_no_section_bytes) {
    AcDbDatabase db(false, true);
    ReadFromFile(db);
    const AcDbDatabase::DwgFiledObjects& filed = db.dwgFiledObjects();
    EXPECT_EQ(filed.codePage, GetParam().codePage);
    EXPECT_TRUE(filed.header.empty());
    EXPECT_TRUE(filed.classes.empty());
    EXPECT_TRUE(filed.objectMap.empty());
    EXPECT_TRUE(filed.objects.empty());
    EXPECT_EQ(filed.file.path, path_);
    EXPECT_EQ(filed.file.size, file_.size());
    EXPECT_EQ(filed.file.hash, XXH3_64bits(file_.data(), file_.size()));
}

TEST_P(DwgFiledFile, drawing_read_from_bytes_keeps_the_sections_in_memory) {
    AcDbDatabase lent(false, true), given(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(lent, std::span<const std::uint8_t>(file_), path_), Acad::eOk);
    ASSERT_EQ(dwg::ReadDwgBytes(given, Bytes(file_), path_), Acad::eOk);
    for (const AcDbDatabase* db : {&lent, &given}) {
        const AcDbDatabase::DwgFiledObjects& filed = db->dwgFiledObjects();
        EXPECT_EQ(filed.codePage, GetParam().codePage);
        EXPECT_FALSE(filed.header.empty());
        EXPECT_FALSE(filed.classes.empty());
        EXPECT_FALSE(filed.objectMap.empty());
        EXPECT_FALSE(filed.objects.empty());
        EXPECT_TRUE(filed.file.path.empty());
    }
}

// Unchanged, and with an entity erased: the save of the drawing read from the file is byte for
// byte the save of the drawing read from its bytes.
TEST_P(DwgFiledFile, save_of_a_drawing_read_from_a_file_is_that_of_the_drawing_read_from_its_bytes) {
    const int codePage = GetParam().codePage;
    AcDbDatabase fromFile(false, true), fromBytes(false, true);
    ReadFromFile(fromFile);
    ReadFromBytes(fromBytes);
    const Bytes saved = dwg_test::Rewritten(fromFile, codePage);
    EXPECT_TRUE(saved == dwg_test::Rewritten(fromBytes, codePage));
    EXPECT_EQ(saved != OwnEncoding(), GetParam().ownEncodingDiffers);  // the file's bits were put back

    std::uint64_t erased = 0;
    for (const auto& [handle, object] : dwg_test::StoredObjects(file_)) {
        if (object.type == 19 && dwg_test::EraseObject(fromFile, handle) == Acad::eOk) {  // a line
            erased = handle;
            break;
        }
    }
    ASSERT_NE(erased, 0u);
    ASSERT_EQ(dwg_test::EraseObject(fromBytes, erased), Acad::eOk);
    EXPECT_TRUE(dwg_test::Rewritten(fromFile, codePage) == dwg_test::Rewritten(fromBytes, codePage));
}

// What becomes of the file between the read and the save.
struct FileChange {
    const char* what;
    std::function<void(const fs::path&, Bytes)> apply;  // given the file's path and its bytes
};

const FileChange kChanges[] = {
    {"removed", [](const fs::path& path, const Bytes&) { fs::remove(path); }},
    {"a folder in its place",
     [](const fs::path& path, const Bytes&) {
         fs::remove(path);
         fs::create_directory(path);
     }},
    {"cut short",
     [](const fs::path& path, Bytes bytes) {
         bytes.resize(bytes.size() / 2);
         WriteBytes(path, bytes);
     }},
    {"one byte in the middle changed",
     [](const fs::path& path, Bytes bytes) {
         bytes[bytes.size() / 2] ^= 0x5A;
         WriteBytes(path, bytes);
     }},
    // The drawing's own bytes unchanged, those past its end different: the file reads as before,
    // but is not the file read.
    {"bytes past the drawing changed",
     [](const fs::path& path, Bytes bytes) {
         bytes[bytes.size() - 1] ^= 0x5A;
         WriteBytes(path, bytes);
     }},
    {"bytes past the drawing dropped",
     [](const fs::path& path, Bytes bytes) {
         bytes.resize(bytes.size() - 16);
         WriteBytes(path, bytes);
     }},
};

// The file read has 16 bytes past the drawing's end, which the container does not look at.
TEST_P(DwgFiledFile, file_gone_or_changed_since_the_read_gives_the_writers_own_encoding) {
    const int codePage = GetParam().codePage;
    file_.insert(file_.end(), 16, 0x20);
    WriteBytes(path_, file_);
    const Bytes own = OwnEncoding();
    for (const FileChange& change : kChanges) {
        SCOPED_TRACE(change.what);
        fs::remove_all(path_);
        WriteBytes(path_, file_);
        AcDbDatabase db(false, true);
        ReadFromFile(db);
        change.apply(path_, file_);
        Bytes saved;
        dwg::DwgWriteReport report;
        ASSERT_EQ(dwg::WriteDwgBytes(db, codePage, saved, report), Acad::eOk);
        EXPECT_TRUE(saved == own);
    }
    // The file as it was read, put back in place: its objects are put back again.
    fs::remove_all(path_);
    WriteBytes(path_, file_);
    AcDbDatabase db(false, true), fromBytes(false, true);
    ReadFromFile(db);
    ReadFromBytes(fromBytes);
    EXPECT_TRUE(dwg_test::Rewritten(db, codePage) == dwg_test::Rewritten(fromBytes, codePage));
}

INSTANTIATE_TEST_SUITE_P(Files, DwgFiledFile,
                         ::testing::Values(FiledCase{"example_2004.dwg", 1252, true},
                                           FiledCase{"example_2004.dwg", 936, false},
                                           FiledCase{"color_sample_AC1018.dwg", 1252, false}),
                         [](const auto& info) {
                             std::string name = info.param.name;
                             name = name.substr(0, name.find('.'));
                             return name + "_" + std::to_string(info.param.codePage);
                         });

// Whether the read keeps the sections in memory: only for a drawing whose objects are kept as
// stored, read without a file that a save could read again.
TEST(DwgFiledSections, are_kept_in_memory_only_for_filed_objects_read_without_their_file) {
    const AcDbDatabase::DwgSourceFile file{"/drawings/a.dwg", 100, 1};
    struct Case {
        dwg::Version version;
        int codePage;
        const AcDbDatabase::DwgSourceFile* file;
        bool inMemory;
    };
    const Case cases[] = {
        {dwg::Version::kR2004, 1252, nullptr, true}, {dwg::Version::kR2004, 936, nullptr, true},
        {dwg::Version::kR2004, 1252, &file, false},  {dwg::Version::kR2004, 936, &file, false},
        {dwg::Version::kR2004, 1251, nullptr, false}, {dwg::Version::kR2000, 1252, nullptr, false},
        {dwg::Version::kR2007, 936, nullptr, false},
    };
    for (const Case& c : cases) {
        dwg::DwgSections sections;
        sections.version = c.version;
        sections.codePage = c.codePage;
        EXPECT_EQ(dwg::KeepsSectionsInMemory(sections, c.file), c.inMemory)
            << static_cast<int>(c.version) << " " << c.codePage << " " << (c.file != nullptr);
    }
}

}  // namespace
