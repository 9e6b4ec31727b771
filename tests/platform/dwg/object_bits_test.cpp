// Every AC1018 drawing of the corpus, read and written again, object by object: each object the
// file holds comes back with its bits, an object changed since the read is encoded anew, and the
// writer's own re-encoding of each object is listed against the file's.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "object_bits.hpp"
#include "platform/db/database.hpp"
#include "platform/db/entity.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/read.hpp"

namespace {

const char* const kAc1018Drawings[] = {"example_2004.dwg", "HatchG.dwg", "color_sample_AC1018.dwg"};

std::string Joined(const std::vector<std::string>& lines) {
    std::string out;
    for (const std::string& line : lines) out += line + "\n";
    return out;
}

// The lines of differences that are not objects left out of the written file.
std::vector<std::string> Changed(const std::vector<std::string>& differences) {
    std::vector<std::string> out;
    for (const std::string& d : differences) {
        if (d.find("not written") == std::string::npos) out.push_back(d);
    }
    return out;
}

class ObjectBits : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        file_ = dwg_test::ReadFileBytes(dwg_test::CorpusPath(GetParam()));
        ASSERT_EQ(dwg::ReadDwgBytes(db_, file_, GetParam()), Acad::eOk);
        original_ = dwg_test::StoredObjects(file_);
        ASSERT_GT(original_.size(), 100u);
        codePage_ = db_.dwgFiledObjects().codePage;
        ASSERT_EQ(codePage_, 1252);
    }
    std::vector<std::uint8_t> file_;
    AcDbDatabase db_{false, true};
    std::map<std::uint64_t, dwg_test::StoredObject> original_;
    int codePage_ = 0;
};

TEST_P(ObjectBits, every_object_written_again_keeps_its_bits) {
    const auto written = dwg_test::StoredObjects(dwg_test::Rewritten(db_, codePage_));
    const auto differences = dwg_test::ObjectDifferences(original_, written);
    EXPECT_EQ(Joined(Changed(differences)), "");
    // What the file leaves out is what the writer has no encoder for (views, UCSs, kinds kept
    // whole that it does not write): far from most of the drawing.
    EXPECT_LT(differences.size() * 5, original_.size()) << Joined(differences);
}

TEST_P(ObjectBits, file_written_again_reads_back_to_the_same_objects) {
    const std::vector<std::uint8_t> bytes = dwg_test::Rewritten(db_, codePage_);
    AcDbDatabase again(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(again, bytes, "again.dwg"), Acad::eOk);
    // Read again, the written file keeps its objects' bits once more.
    const auto second = dwg_test::StoredObjects(dwg_test::Rewritten(again, codePage_));
    EXPECT_EQ(Joined(dwg_test::ObjectDifferences(dwg_test::StoredObjects(bytes), second)), "");
}

TEST_P(ObjectBits, changed_entity_is_encoded_anew_and_the_others_keep_their_bits) {
    AcDbEntity* entity = nullptr;
    std::uint64_t changedHandle = 0;
    for (const auto& [handle, object] : original_) {
        AcDbObjectId id;
        const bool drawn = object.type == 1 || (object.type >= 17 && object.type <= 19) ||
                           object.type == 77 || object.type == 78;  // text, arc, circle, line...
        if (!drawn || db_.getAcDbObjectId(id, false, AcDbHandle(handle)) != Acad::eOk) continue;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite) != Acad::eOk) continue;
        changedHandle = handle;
        break;
    }
    ASSERT_NE(entity, nullptr);
    entity->setLinetypeScale(entity->linetypeScale() * 2 + 1);
    entity->close();
    const auto written = dwg_test::StoredObjects(dwg_test::Rewritten(db_, codePage_));
    const std::vector<std::string> changed = Changed(dwg_test::ObjectDifferences(original_, written));
    ASSERT_EQ(changed.size(), 1u) << Joined(changed);
    char expected[32];
    std::snprintf(expected, sizeof expected, "%llX type ", static_cast<unsigned long long>(changedHandle));
    EXPECT_EQ(changed[0].rfind(expected, 0), 0u) << changed[0];
}

// Written in another code page than the file's, no object gets its stored bytes back: the file
// holds the writer's own encoding of each.
TEST_P(ObjectBits, other_code_page_encodes_every_object_anew) {
    const auto written = dwg_test::StoredObjects(dwg_test::Rewritten(db_, 936));
    const auto own = dwg_test::StoredObjects(dwg_test::OwnEncoding(db_, 936));
    ASSERT_EQ(written.size(), own.size());
    EXPECT_EQ(Joined(dwg_test::ObjectDifferences(own, written)), "");
}

// Why the writer's own encoding of an object cannot give the file's bits back, when the reason
// is in the file: the object refers to an object the written file does not hold (a kind the
// writer does not model: a dictionary's entry, a block's viewport, a reactor), or its own
// encoding lists one the file does not hold: a record that every drawing the writer reads
// needs and the file lacks (a Standard dimension style), added by the save. Empty when the
// object holds no such reference.
std::string ReasonInTheFile(const dwg_test::StoredObject& object, const dwg_test::StoredObject& own,
                            const std::map<std::uint64_t, dwg_test::StoredObject>& original,
                            const std::map<std::uint64_t, dwg_test::StoredObject>& written) {
    for (const auto& [code, handle] : dwg_test::HandleReferences(object.bytes)) {
        if (handle != 0 && written.count(handle) == 0) return "refers to an object not written";
    }
    for (const auto& [code, handle] : dwg_test::HandleReferences(own.bytes)) {
        if (handle != 0 && original.count(handle) == 0) return "lists an object the save added";
    }
    return "";
}

// The writer's own encoding of every object, without the bytes kept from the read: the same
// objects as with them, each with the file's bits unless the file says why not.
TEST_P(ObjectBits, own_encoding_of_each_object_gives_the_files_bits) {
    const auto kept = dwg_test::StoredObjects(dwg_test::Rewritten(db_, codePage_));
    const auto written = dwg_test::StoredObjects(dwg_test::OwnEncoding(db_, codePage_));
    std::vector<std::uint64_t> keptHandles, writtenHandles;
    for (const auto& entry : kept) keptHandles.push_back(entry.first);
    for (const auto& entry : written) writtenHandles.push_back(entry.first);
    EXPECT_EQ(writtenHandles, keptHandles);
    std::vector<std::string> unexplained;
    std::size_t explained = 0;
    for (const auto& [handle, object] : original_) {
        const auto it = written.find(handle);
        if (it == written.end() || it->second.bytes == object.bytes) continue;
        if (!ReasonInTheFile(object, it->second, original_, written).empty()) {
            ++explained;
            continue;
        }
        std::map<std::uint64_t, dwg_test::StoredObject> one{{handle, object}};
        for (const std::string& line : dwg_test::ObjectDifferences(one, written)) unexplained.push_back(line);
    }
    EXPECT_EQ(Joined(unexplained), "");
    // What the file explains stays a small part of the drawing.
    EXPECT_LT(explained * 10, original_.size());
}

INSTANTIATE_TEST_SUITE_P(Corpus, ObjectBits, ::testing::ValuesIn(kAc1018Drawings),
                         [](const auto& info) {
                             std::string name = info.param;
                             for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
                             return name;
                         });

}  // namespace
