// A drawing whose file header names the GBK code page (ANSI_936) reads with its Chinese layer
// names, texts, attribute tags and values intact. The file is made from a corpus drawing: four
// of its strings are replaced by GBK bytes of the same length, the objects' CRCs made anew, and
// the code page number of the file header set to 39 (ANSI_936), its CRC made anew.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/db/block_reference.hpp"
#include "platform/db/database.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/object_stream.hpp"
#include "platform/dwg/read.hpp"
#include "platform/win/codepage.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;

std::vector<bool> Bits(const std::uint8_t* data, std::size_t count) {
    std::vector<bool> bits;
    for (std::size_t i = 0; i < count; ++i) {
        for (int b = 7; b >= 0; --b) bits.push_back((data[i] >> b) & 1);
    }
    return bits;
}

// Replaces the bytes `from` by `to` (same length) wherever they stand in the object at the
// offset, at any bit position, and stores the object's CRC anew. False when they are not there.
bool ReplaceInObject(Bytes& file, std::int64_t offset, const std::string& from, const std::string& to) {
    dwg::ObjectStreams o;
    dwg::MapError error;
    if (!dwg::OpenObject(file, offset, dwg::Version::kR2000, 1252, o, error)) return false;
    const std::size_t start = static_cast<std::size_t>(offset);
    const std::size_t dataStart = start + (o.size < 0x8000 ? 2 : 4);
    auto bits = Bits(file.data() + dataStart, o.size);
    const auto needle = Bits(reinterpret_cast<const std::uint8_t*>(from.data()), from.size());
    const auto patch = Bits(reinterpret_cast<const std::uint8_t*>(to.data()), to.size());
    const auto at = std::search(bits.begin(), bits.end(), needle.begin(), needle.end());
    if (at == bits.end()) return false;
    std::copy(patch.begin(), patch.end(), at);
    for (std::size_t i = 0; i < o.size; ++i) {
        std::uint8_t byte = 0;
        for (int b = 0; b < 8; ++b) byte = static_cast<std::uint8_t>(byte << 1 | bits[i * 8 + b]);
        file[dataStart + i] = byte;
    }
    const auto crc = dwg::Crc16(0xC0C1, std::span(file).subspan(start, dataStart - start + o.size));
    file[dataStart + o.size] = static_cast<std::uint8_t>(crc);
    file[dataStart + o.size + 1] = static_cast<std::uint8_t>(crc >> 8);
    return true;
}

// Sets the code page number of an R13-2000 file header and stores the header's CRC anew: the
// stored CRC is the computed one XORed with a mask, which the new CRC keeps.
void SetCodePage(Bytes& file, std::uint8_t codePage) {
    const std::uint32_t locators = file[0x15] | file[0x16] << 8 | file[0x17] << 16 | file[0x18] << 24;
    const std::size_t crcAt = 0x19 + 9 * locators;
    const auto crc = [&] { return dwg::Crc16(0, std::span(file).first(crcAt)); };
    const std::uint16_t mask = (file[crcAt] | file[crcAt + 1] << 8) ^ crc();
    file[0x13] = codePage;
    file[0x14] = 0;
    const std::uint16_t stored = crc() ^ mask;
    file[crcAt] = static_cast<std::uint8_t>(stored);
    file[crcAt + 1] = static_cast<std::uint8_t>(stored >> 8);
}

std::int64_t OffsetOf(const Bytes& file, std::uint64_t handle) {
    std::vector<dwg::ObjectLocation> map;
    dwg::MapError error;
    dwg::ParseObjectMap(dwg_test::FileSection(file, dwg::kHandlesSection), map, error);
    for (const auto& loc : map) {
        if (loc.handle == handle) return loc.offset;
    }
    return -1;
}

template <typename T>
T* Open(AcDbDatabase& db, std::uint64_t handle) {
    AcDbObjectId id;
    T* object = nullptr;
    if (db.getAcDbObjectId(id, false, AcDbHandle(handle)) != Acad::eOk ||
        acdbOpenObject(object, id, AcDb::kForRead) != Acad::eOk) {
        return nullptr;
    }
    return object;
}

TEST(DwgGbk, chinese_layer_names_texts_and_attributes_read_intact) {
    Bytes file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg"));
    ASSERT_TRUE(ReplaceInObject(file, OffsetOf(file, 0x8A), "Tavolo 3", "\xCD\xBC\xB2\xE3\xC8\xFD\xBA\xC5"));
    ASSERT_TRUE(ReplaceInObject(file, OffsetOf(file, 0x17B), "teksto simpla",
                                "\xD6\xD0\xCE\xC4\xCE\xC4\xD7\xD6\xB2\xE2\xCA\xD4\x21"));
    ASSERT_TRUE(ReplaceInObject(file, OffsetOf(file, 0x192), "ETIKEDO", "\xB1\xEA\xC7\xA9TAG"));
    ASSERT_TRUE(ReplaceInObject(file, OffsetOf(file, 0x192), "valoro de la teksto en bloko",
                                "\xBF\xE9\xD6\xD0\xCA\xF4\xD0\xD4\xB5\xC4\xCE\xC4\xD7\xD6\xD6\xB5"
                                " of a block!"));
    SetCodePage(file, 39);  // ANSI_936
    const std::string path =
        (std::filesystem::temp_directory_path() / "gbk_example_2000.dwg").string();
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(file.data()),
                                                static_cast<std::streamsize>(file.size()));
    AcDbDatabase db(false, true);
    const Acad::ErrorStatus read = db.readDwgFile(WideFromUtf8(path).c_str());
    std::filesystem::remove(path);
    ASSERT_EQ(read, Acad::eOk) << Utf8FromWide(db.lastError());

    auto* layer = Open<AcDbLayerTableRecord>(db, 0x8A);
    ASSERT_NE(layer, nullptr);
    EXPECT_EQ(Utf8FromWide(layer->name()), "图层三号");
    layer->close();
    auto* text = Open<AcDbText>(db, 0x17B);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(Utf8FromWide(text->textString()), "中文文字测试!");
    EXPECT_EQ(Utf8FromWide(text->layer()), "图层三号");  // the entity names its layer by handle
    text->close();
    auto* attribute = Open<AcDbAttribute>(db, 0x192);
    ASSERT_NE(attribute, nullptr);
    EXPECT_EQ(Utf8FromWide(attribute->tag()), "标签TAG");
    EXPECT_EQ(Utf8FromWide(attribute->textString()), "块中属性的文字值 of a block!");
    EXPECT_EQ(Utf8FromWide(attribute->layer()), "图层三号");
    attribute->close();
    std::string codePage;
    for (const auto& [name, tags] : db.headerVars()) {
        if (name == "$DWGCODEPAGE") codePage = std::string(tags.begin()->value);
    }
    EXPECT_EQ(codePage, "ANSI_936");
}

}  // namespace
