#include "platform/dwg/drawing.hpp"

#include <algorithm>
#include <future>
#include <limits>
#include <map>
#include <memory>
#include <thread>
#include <unordered_map>
#include <vector>

#include "platform/dwg/blocks.hpp"
#include "platform/dwg/chunked_pass.hpp"
#include "platform/dwg/classes.hpp"
#include "platform/dwg/container.hpp"
#include "platform/dwg/decode.hpp"
#include "platform/dwg/dxf_records.hpp"
#include "platform/dwg/entities.hpp"
#include "platform/dwg/extended_data.hpp"
#include "platform/dwg/header.hpp"
#include "platform/dwg/listed_order.hpp"
#include "platform/dwg/object_stream.hpp"
#include "platform/dwg/plain_entities.hpp"
#include "platform/dwg/released_pages.hpp"
#include "platform/dwg/symbols.hpp"
#include "platform/dwg/tables.hpp"

namespace dwg {

namespace {

// One object of the map. Entities of the decoded kinds are decoded when written, so that a
// large drawing is never held decoded whole; the other objects (tables, blocks, dictionaries,
// kinds kept whole) are few and stay decoded, apart (Drawing::decodedItems). 16 bytes an
// object: object types are 16-bit, object data of 4 GB and more is refused, and an entity's
// owner is needed only until the entities are listed by owner (Drawing::owners).
struct Item {
    std::uint64_t handle = 0;
    std::uint32_t offset = 0;  // where the object starts in the object data
    std::uint16_t type = 0;
    bool entity : 1 = false;
    bool written : 1 = false;  // an entity decoded when written, once it has been
    bool holdsDecoded : 1 = false;  // all but the entities decoded when written do
};

// The items of a drawing are counted in 32 bits.
using ItemIndex = std::uint32_t;

// The decoded object of an item that holds one.
struct DecodedItem {
    ItemIndex item = 0;
    std::unique_ptr<DecodedObject> decoded;
};

// The unused room of an owner's list of entities, in entries, from which the list is cut to
// its size.
constexpr std::size_t kUnusedListRoom = 1024;

// Entities a helper thread writes at a time when a block has many (see writeEntitiesAlongside):
// two batches are held at once, one written and one handed on, each some 600 bytes an entity.
constexpr std::size_t kEntityBatch = 512;

// Objects the first pass over the map takes at a time on each of its two threads.
constexpr std::size_t kFirstPassChunk = 2048;

bool IsControl(std::int32_t type) { return type >= 48 && type <= 70 && type % 2 == 0; }
bool IsTableRecord(std::int32_t type) { return type >= 49 && type <= 71 && type % 2 == 1; }

struct Drawing {
    Drawing(const DwgSections& s, DxfText to, bool plain, bool givesBack = false)
        : sections(s), out(std::move(to)), plainEntities(plain), givesBackObjects(givesBack) {}

    const DwgSections& sections;
    HeaderVariables header;
    std::vector<ClassRecord> classes;
    std::vector<Item> items;
    // Of each item that is an entity, the block record or the entity it belongs to; emptied once
    // the entities are listed by owner (index).
    std::vector<std::uint64_t> owners;
    std::vector<DecodedItem> decodedItems;  // in the order of the items
    std::unordered_map<std::uint64_t, SymbolRecord> symbols;  // the records kept whole above
    // The decoded items in the order of their handles; of two items with one handle only the
    // later, and only if it holds a decoded object. Entities decoded when written are never
    // looked up by handle: left out, they cost nothing while the database fills.
    std::vector<std::uint32_t> byHandle;
    std::unordered_map<std::uint64_t, std::vector<ItemIndex>> owned;  // entities by owner
    NameIndex names;
    DxfText out;
    bool plainEntities = true;  // plain entities handed on by their values (see dxf::PlainEntity)
    // The object data's memory is given back as model and paper space are written: `pages`
    // counts, by chunk of the data, the entities still to be decoded (stillDecoded).
    bool givesBackObjects = false;
    ReleasedPages pages;
    std::vector<bool> stillDecoded;
    MapError failure;  // the first entity that did not decode when written
    bool failed = false;

    bool decode(MapError& error);
    bool decodeOne(const ObjectLocation& loc, Item& item, std::uint64_t& owner,
                   std::unique_ptr<DecodedObject>& decoded, MapError& error) const;
    void keepDecoded(std::vector<std::unique_ptr<DecodedObject>>& decoded);
    void readSymbols();
    void sortHandles();
    MapError decodeError(const Item& item) const {
        return {static_cast<std::size_t>(item.offset),
                "object " + std::to_string(item.handle) + " (" + typeName(item) +
                    ") does not hold what its type needs"};
    }
    bool decodeAgain(const Item& item, DecodedObject& decoded);
    bool checkUnwritten(MapError& error);
    std::string typeName(const Item& item) const { return TypeName(item.type, classes); }
    void index();
    // The extended data of the record just written, as the groups that end it.
    void writeExtendedData(const ObjectCommon& common) { writeExtendedData(out, common); }
    void writeExtendedData(DxfText& to, const ObjectCommon& common) const {
        if (common.extended.empty()) return;
        for (const auto& [code, value] :
             ExtendedGroupsOf(common.extended, names.applications, names.layers, sections.codePage)) {
            to.tag(code, value);
        }
    }
    std::string blockName(const BlockHeaderRecord& block, std::uint64_t handle,
                          std::map<std::string, int>& numbered) const;
    std::uint64_t ownerOf(const EntityCommon& c) const {
        if (c.mode == 1) return header.handles.paperSpace;
        if (c.mode == 2) return header.handles.modelSpace;
        return c.owner;
    }
    // The decoded item of the handle (see byHandle).
    const DecodedItem* find(std::uint64_t handle) const {
        const auto handleOf = [&](std::uint32_t d) { return items[decodedItems[d].item].handle; };
        const auto it = std::lower_bound(byHandle.begin(), byHandle.end(), handle,
                                         [&](std::uint32_t d, std::uint64_t h) { return handleOf(d) < h; });
        return it == byHandle.end() || handleOf(*it) != handle ? nullptr : &decodedItems[*it];
    }
    // The place of the item's decoded object in decodedItems; the item holds one.
    std::size_t decodedPlace(ItemIndex item) const {
        return static_cast<std::size_t>(
            std::lower_bound(decodedItems.begin(), decodedItems.end(), item,
                             [](const DecodedItem& d, ItemIndex i) { return d.item < i; }) -
            decodedItems.begin());
    }
    const DecodedObject* decodedOf(ItemIndex item) const {
        return items[item].holdsDecoded ? decodedItems[decodedPlace(item)].decoded.get() : nullptr;
    }
    void writeHeader();
    void writeClasses();
    void writeTables();
    void writeTable(const char* name, std::int32_t recordType, std::uint64_t control);
    void writeBlocks();
    void writeEntities(std::uint64_t owner);
    void writeEntity(DxfText& to, ItemIndex index, std::uint64_t owner, bool withOwned = true);
    void writeRecord(DxfText& to, const Item& item, const DecodedObject& decoded, const std::string& type,
                     std::uint64_t owner, bool withOwned = true);
    void writeRefusedPlain(DxfText& to, ItemIndex index, std::uint64_t owner);
    void writeEntitiesAlongside(const std::vector<ItemIndex>& entities, std::uint64_t owner, bool givesBack);
    bool givesBackWhileWriting(std::uint64_t owner) const;
    void countStillDecoded(std::uint64_t owner);
    void decodedLast(ItemIndex i);
    void writtenLast(const std::vector<ItemIndex>& entities, std::size_t first, std::size_t last);
    void writeObjects();
    void takeKept(std::vector<KeptData>& kept);
    void takeErasedEntries(std::vector<ErasedEntries>& erased) const;
    void takeDimensionStyleColors(std::vector<DimensionStyleColors>& out) const;
};

void Drawing::sortHandles() {
    byHandle.resize(items.size());
    for (std::size_t i = 0; i < items.size(); ++i) byHandle[i] = static_cast<std::uint32_t>(items.size() - 1 - i);
    // From the last item back, so that of two items with one handle the later is found.
    std::stable_sort(byHandle.begin(), byHandle.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return items[a].handle < items[b].handle; });
    // The earlier of two items with one handle is never found; nor is an item without a decoded object.
    const auto hidden = [&](std::size_t k) {
        return (k > 0 && items[byHandle[k - 1]].handle == items[byHandle[k]].handle) ||
               !items[byHandle[k]].holdsDecoded;
    };
    std::vector<std::uint32_t> found;
    for (std::size_t k = 0; k < byHandle.size(); ++k) {
        if (!hidden(k)) found.push_back(static_cast<std::uint32_t>(decodedPlace(byHandle[k])));
    }
    byHandle = std::move(found);
}

bool Drawing::decode(MapError& error) {
    const Version v = sections.version;
    if (!ParseHeader(sections.header, v, sections.maintenance, sections.codePage, header, error) ||
        !ParseClasses(sections.classes, v, sections.maintenance, sections.codePage, classes, error)) {
        return false;
    }
    std::vector<ObjectLocation> map;
    if (!ParseObjectMap(sections.objectMap, map, error)) return false;
    // Each object decodes alone into its own item, so the objects are shared out between this
    // thread and a helper (when the records feed a database; the DXF text is the plain way);
    // the first that fails is decoded again here for its error.
    items.resize(map.size());
    owners.resize(map.size());
    std::vector<std::unique_ptr<DecodedObject>> decoded(map.size());
    out.expectObjects(map.size());
    const bool alongside = map.size() >= 2 * kFirstPassChunk && out.feeds() &&
                           std::thread::hardware_concurrency() > 1;
    const std::size_t failed =
        FirstFailingStep(map.size(), kFirstPassChunk, alongside, [&](std::size_t k) {
            MapError unused;
            return decodeOne(map[k], items[k], owners[k], decoded[k], unused);
        });
    if (failed < map.size()) {
        decodeOne(map[failed], items[failed], owners[failed], decoded[failed], error);
        return false;
    }
    keepDecoded(decoded);
    readSymbols();
    sortHandles();
    return true;
}

bool Drawing::decodeOne(const ObjectLocation& loc, Item& item, std::uint64_t& owner,
                        std::unique_ptr<DecodedObject>& kept, MapError& error) const {
    ObjectStreams o;
    if (!OpenObject(sections.objects, loc.offset, sections.version, sections.codePage, o, error)) {
        return false;
    }
    item.handle = loc.handle;
    if (loc.offset > std::numeric_limits<std::uint32_t>::max()) {
        error = {static_cast<std::size_t>(loc.offset), "object data of 4 GB and more is not read"};
        return false;
    }
    item.offset = static_cast<std::uint32_t>(loc.offset);
    item.type = static_cast<std::uint16_t>(o.type);
    if (DecodesToEntityRecord(item.type)) {
        // Decoded whole when written: here only the common data that names the owner.
        EntityCommon common;
        ReadEntityCommon(o, common);
        if (o.data.failed() || o.handles.failed() || o.strings.failed()) {
            error = decodeError(item);
            return false;
        }
        item.entity = true;
        owner = ownerOf(common);
        return true;
    }
    auto decoded = std::make_unique<DecodedObject>();
    if (!DecodeObject(o, classes, *decoded)) {
        error = decodeError(item);
        return false;
    }
    const bool whole = std::holds_alternative<KeptObject>(*decoded);
    if (const EntityCommon* common = EntityCommonOf(*decoded)) {
        item.entity = true;
        owner = ownerOf(*common);
    }
    // BLOCK and ENDBLK are written with their block record, kept kinds with their bytes.
    if (!item.entity || whole || item.type == kBlock || item.type == kEndblk) {
        item.holdsDecoded = true;
        kept = std::move(decoded);
    }
    return true;
}

// The decoded objects of the first pass, one a slot of the map, kept in a list of their own.
void Drawing::keepDecoded(std::vector<std::unique_ptr<DecodedObject>>& decoded) {
    for (std::size_t k = 0; k < decoded.size(); ++k) {
        if (decoded[k]) decodedItems.push_back({static_cast<ItemIndex>(k), std::move(decoded[k])});
    }
}

// The names and values of the symbol table records kept whole, read from their objects opened
// again (their CRCs were checked), in the order of the items: of two records with one handle,
// the later reads over the earlier.
void Drawing::readSymbols() {
    for (const DecodedItem& d : decodedItems) {
        const Item& item = items[d.item];
        if (!IsTableRecord(item.type) || !std::holds_alternative<KeptObject>(*d.decoded)) continue;
        ObjectStreams o;
        MapError unused;
        if (OpenObject(sections.objects, item.offset, sections.version, sections.codePage, o,
                       unused, false)) {
            ReadSymbolRecord(o, symbols[item.handle]);
        }
    }
}

// An entity decoded whole, the first time or again. Its frame and CRC were checked when the map
// was read; what fails is the first failure of the drawing.
bool Drawing::decodeAgain(const Item& item, DecodedObject& decoded) {
    ObjectStreams o;
    MapError error;
    if (OpenObject(sections.objects, item.offset, sections.version, sections.codePage, o, error,
                   false) &&
        DecodeObject(o, classes, decoded)) {
        return true;
    }
    if (!failed) failure = decodeError(item);
    failed = true;
    return false;
}

// The entities no block holds are never written; they are decoded to be sure they are sound.
bool Drawing::checkUnwritten(MapError& error) {
    for (const Item& item : items) {
        if (!item.entity || item.holdsDecoded || item.written) continue;
        DecodedObject decoded;
        decodeAgain(item, decoded);
    }
    if (failed) error = failure;
    return !failed;
}

// The record of an anonymous block, and that of a paper space beyond the first, hold the kind
// of name only ("*D", "*Paper_Space"); the BLOCK entity holds the whole name ("*D4",
// "*Paper_Space0"). Without a BLOCK that says it, the blocks of a kind are numbered in their order.
std::string Drawing::blockName(const BlockHeaderRecord& block, std::uint64_t handle,
                               std::map<std::string, int>& numbered) const {
    std::string name = block.entry.name;
    const bool furtherPaperSpace = name == "*Paper_Space" && handle != header.handles.paperSpace;
    if (!furtherPaperSpace && !(block.anonymous && name.size() <= 2)) return name;
    const DecodedItem* begin = find(block.blockEntity);
    const auto* beginRecord = begin ? std::get_if<BlockBeginRecord>(begin->decoded.get()) : nullptr;
    if (beginRecord != nullptr && beginRecord->name.size() > name.size() &&
        beginRecord->name.compare(0, name.size(), name) == 0) {
        return beginRecord->name;
    }
    // The DXF numbers paper spaces from 0 and anonymous blocks from 1.
    return name + std::to_string(furtherPaperSpace ? numbered[name]++ : ++numbered[name]);
}

void Drawing::index() {
    names.modelSpace = header.handles.modelSpace;
    names.paperSpace = header.handles.paperSpace;
    std::map<std::string, int> anonymous;  // the DXF numbers anonymous blocks: *D1, *D2 ...
    for (const DecodedItem& d : decodedItems) {
        const Item& item = items[d.item];
        const DecodedObject* decoded = d.decoded.get();
        if (const auto* layer = std::get_if<LayerRecord>(decoded)) {
            names.layers[item.handle] = layer->entry.name;
        } else if (const auto* block = std::get_if<BlockHeaderRecord>(decoded)) {
            names.blocks[item.handle] = blockName(*block, item.handle, anonymous);
        } else if (item.type == kLinetype) {
            names.linetypes[item.handle] = symbols[item.handle].entry.name;
        } else if (item.type == kStyle) {
            names.styles[item.handle] = symbols[item.handle].entry.name;
        } else if (item.type == kAppId) {
            names.applications[item.handle] = symbols[item.handle].entry.name;
        } else if (item.type == kDimensionStyle) {
            names.dimensionStyles[item.handle] = symbols[item.handle].entry.name;
        } else if (const auto* dictionary = std::get_if<DictionaryRecord>(decoded)) {
            for (const auto& [name, entry] : dictionary->entries) names.entries.emplace(entry, name);
        }
    }
    for (std::size_t i = 0; i < items.size(); ++i) {
        const Item& item = items[i];
        if (item.entity && item.type != kBlock && item.type != kEndblk) {
            owned[owners[i]].push_back(static_cast<ItemIndex>(i));
        }
    }
    std::vector<std::uint64_t>().swap(owners);
    // The lists are held while the entities are built: a long one without the room its growth
    // left (the many short ones of polylines and block references are not worth a copy).
    for (auto& [owner, entities] : owned) {
        if (entities.capacity() - entities.size() >= kUnusedListRoom) entities.shrink_to_fit();
    }
}

// The drawing's classes in their order, so that a DWG written from the records numbers each
// class as this file did.
void Drawing::writeClasses() {
    if (classes.empty()) return;
    out.tag(0, "SECTION");
    out.tag(2, "CLASSES");
    for (const ClassRecord& c : classes) {
        out.tag(0, "CLASS");
        out.tag(1, c.dxfName);
        out.tag(2, c.cppName);
        out.tag(3, c.application);
        out.tag(90, std::to_string(c.proxyFlags));
        out.tag(91, std::to_string(c.instanceCount));
        out.tag(280, c.wasZombie ? "1" : "0");
        out.tag(281, c.isEntity ? "1" : "0");
    }
    out.tag(0, "ENDSEC");
}

void Drawing::writeHeader() {
    const HeaderVariables& h = header;
    out.tag(0, "SECTION");
    out.tag(2, "HEADER");
    // The texts are UTF-8 already: the version read as one whose texts are.
    out.tag(9, "$ACADVER");
    out.tag(1, "AC1032");
    out.tag(9, "$DWGCODEPAGE");
    out.tag(3, CodePageName(sections.codePage));
    out.tag(9, "$INSBASE");
    out.point(10, h.model.insbase);
    out.tag(9, "$EXTMIN");
    out.point(10, h.model.extmin);
    out.tag(9, "$EXTMAX");
    out.point(10, h.model.extmax);
    out.tag(9, "$LIMMIN");
    out.point(10, h.model.limmin);
    out.tag(9, "$LIMMAX");
    out.point(10, h.model.limmax);
    out.tag(9, "$LTSCALE");
    out.tag(40, h.ltscale);
    out.tag(9, "$ATTMODE");
    out.integer(70, h.attmode);
    out.tag(9, "$TEXTSIZE");
    out.tag(40, h.textsize);
    out.tag(9, "$TEXTSTYLE");
    out.tag(7, names.name(names.styles, h.textstyle));
    out.tag(9, "$CLAYER");
    out.tag(8, names.name(names.layers, h.clayer));
    out.tag(9, "$CECOLOR");
    out.integer(62, h.cecolor.index);
    out.tag(9, "$CELTSCALE");
    out.tag(40, h.celtscale);
    const DimensionVariables& m = h.dim;
    const std::pair<const char*, double> reals[] = {
        {"$DIMSCALE", m.scale}, {"$DIMASZ", m.asz}, {"$DIMEXO", m.exo}, {"$DIMDLI", m.dli},
        {"$DIMRND", m.rnd},     {"$DIMDLE", m.dle}, {"$DIMEXE", m.exe}, {"$DIMTP", m.tp},
        {"$DIMTM", m.tm},       {"$DIMTXT", m.txt}, {"$DIMCEN", m.cen}, {"$DIMTSZ", m.tsz},
        {"$DIMALTF", m.altf},   {"$DIMLFAC", m.lfac}, {"$DIMTVP", m.tvp}, {"$DIMTFAC", m.tfac},
        {"$DIMGAP", m.gap}};
    for (const auto& [name, value] : reals) {
        out.tag(9, name);
        out.tag(40, value);
    }
    const std::pair<const char*, int> shorts[] = {
        {"$DIMTOL", m.tol}, {"$DIMLIM", m.lim}, {"$DIMTIH", m.tih}, {"$DIMTOH", m.toh},
        {"$DIMSE1", m.se1}, {"$DIMSE2", m.se2}, {"$DIMTAD", m.tad}, {"$DIMZIN", m.zin},
        {"$DIMALT", m.alt}, {"$DIMALTD", m.altd}, {"$DIMTOFL", m.tofl}, {"$DIMTIX", m.tix},
        {"$DIMSOXD", m.soxd}, {"$DIMSAH", m.sah}, {"$DIMJUST", m.just}, {"$DIMSD1", m.sd1},
        {"$DIMSD2", m.sd2}, {"$DIMTOLJ", m.tolj}, {"$DIMTZIN", m.tzin}, {"$DIMDEC", m.dec},
        {"$DIMTDEC", m.tdec}, {"$DIMAUNIT", m.aunit}, {"$DIMADEC", m.adec},
        {"$DIMDSEP", m.dsep}, {"$DIMATFIT", m.atfit}, {"$DIMLUNIT", m.lunit},
        {"$DIMLWD", m.lwd}, {"$DIMLWE", m.lwe}, {"$DIMTMOVE", m.tmove}, {"$LUNITS", h.lunits},
        {"$LUPREC", h.luprec}, {"$AUNITS", h.aunits}, {"$AUPREC", h.auprec},
        {"$PDMODE", h.pdmode}, {"$ANGDIR", h.angdir}, {"$TILEMODE", h.tilemode},
        {"$INSUNITS", h.insunits}};
    for (const auto& [name, value] : shorts) {
        out.tag(9, name);
        out.integer(70, value);
    }
    out.tag(9, "$PDSIZE");
    out.tag(40, h.pdsize);
    out.tag(9, "$ANGBASE");
    out.angle(50, h.angbase);
    out.tag(9, "$CELWEIGHT");
    out.integer(370, h.celweight);
    out.tag(9, "$HANDSEED");
    out.handle(5, h.handseed);
    out.tag(0, "ENDSEC");
}

void Drawing::writeTable(const char* name, std::int32_t recordType, std::uint64_t control) {
    out.tag(0, "TABLE");
    out.tag(2, name);
    out.handle(5, control);
    // The control object's extension dictionary and extended data, which a drawing may give it.
    const DecodedItem* controlItem = find(control);
    const auto* kept = controlItem ? std::get_if<KeptObject>(controlItem->decoded.get()) : nullptr;
    if (kept != nullptr && kept->common.extensionDictionary != 0) {
        out.tag(102, "{ACAD_XDICTIONARY");
        out.handle(360, kept->common.extensionDictionary);
        out.tag(102, "}");
    }
    out.handle(330, 0);
    out.tag(100, "AcDbSymbolTable");
    if (kept != nullptr && recordType == kDimensionStyle) {
        // The dimension style table lists its styles a second time, by hard pointers, in an
        // order of its own.
        std::vector<std::uint64_t> styles;
        for (const HandleRef& ref : kept->references) {
            if (ref.code == 5) styles.push_back(ref.value);
        }
        out.tag(100, "AcDbDimStyleTable");
        out.integer(71, static_cast<long long>(styles.size()));
        for (std::uint64_t style : styles) out.handle(340, style);
    }
    if (kept != nullptr) writeExtendedData(kept->common);
    for (const DecodedItem& d : decodedItems) {
        const Item& item = items[d.item];
        if (item.type != recordType) continue;
        if (const auto* layer = std::get_if<LayerRecord>(d.decoded.get())) {
            WriteLayer(out, *layer, names);
            writeExtendedData(layer->entry.common);
        } else if (const auto* block = std::get_if<BlockHeaderRecord>(d.decoded.get())) {
            WriteBlockRecord(out, *block, names.name(names.blocks, item.handle));
            writeExtendedData(block->entry.common);
        } else {
            WriteSymbolRecord(out, name, symbols[item.handle]);
            writeExtendedData(symbols[item.handle].entry.common);
        }
    }
    out.tag(0, "ENDTAB");
}

void Drawing::writeTables() {
    const HeaderHandles& c = header.handles;
    out.tag(0, "SECTION");
    out.tag(2, "TABLES");
    writeTable("VPORT", 65, c.vportControl);
    writeTable("LTYPE", kLinetype, c.linetypeControl);
    writeTable("LAYER", kLayer, c.layerControl);
    writeTable("STYLE", kStyle, c.styleControl);
    writeTable("VIEW", 61, c.viewControl);
    writeTable("UCS", 63, c.ucsControl);
    writeTable("APPID", kAppId, c.appidControl);
    writeTable("DIMSTYLE", kDimensionStyle, c.dimstyleControl);
    writeTable("BLOCK_RECORD", kBlockHeader, c.blockControl);
    out.tag(0, "ENDSEC");
}

void Drawing::writeEntity(DxfText& to, ItemIndex index, std::uint64_t owner, bool withOwned) {
    Item& item = items[index];
    item.written = true;
    DecodedObject again;
    const DecodedObject* kept = decodedOf(index);
    if (kept == nullptr && !decodeAgain(item, again)) return;
    const DecodedObject& decoded = kept != nullptr ? *kept : again;
    const std::string type = typeName(item);
    if (plainEntities && to.takesPlain() && !owned.contains(item.handle)) {
        // Built here, on the helper thread when there is one; the feed adds it.
        dxf::PlainEntity plain;
        if (PlainEntityOf(decoded, type, owner, names, plain)) {
            std::unique_ptr<AcDbEntity> built = dxf::BuildPlainEntity(plain);
            if (built && to.plain(std::move(plain), std::move(built), index)) return;
        }
    }
    writeRecord(to, item, decoded, type, owner, withOwned);
}

// The entity's record and extended data, and the entities it owns after it.
void Drawing::writeRecord(DxfText& to, const Item& item, const DecodedObject& decoded, const std::string& type,
                          std::uint64_t owner, bool withOwned) {
    WriteEntity(to, decoded, type, owner, names);
    const EntityCommon* common = EntityCommonOf(decoded);
    if (common != nullptr && !std::holds_alternative<KeptObject>(decoded)) writeExtendedData(to, *common);
    // Attributes and vertices follow their owner, and the SEQEND closes them. They own nothing
    // themselves: what a damaged file lists under them (even their owner again, or a chain as
    // long as the drawing) is not followed, and an entity already written is not written again.
    if (!withOwned) return;
    const auto it = owned.find(item.handle);
    if (it == owned.end()) return;
    std::vector<ItemIndex> children = it->second;
    std::stable_partition(children.begin(), children.end(),
                          [&](ItemIndex i) { return items[i].type != kSeqend; });
    for (ItemIndex i : children) {
        if (!items[i].written) writeEntity(to, i, item.handle, false);
    }
}

// The record of a plain entity that the feed did not take, decoded again (it decoded before).
void Drawing::writeRefusedPlain(DxfText& to, ItemIndex index, std::uint64_t owner) {
    const Item& item = items[index];
    DecodedObject decoded;
    if (decodeAgain(item, decoded)) writeRecord(to, item, decoded, typeName(item), owner);
}

// A block's entities in the order its record lists them (2004 on), which is the drawing's
// order; the others (a record without the list) in the order of their handles.
void Drawing::writeEntities(std::uint64_t owner) {
    const auto it = owned.find(owner);
    if (it == owned.end()) return;
    // Sorted where the map holds it: a sort again gives the same order, and a copy of the
    // largest list would be held while its entities are built.
    std::vector<ItemIndex>& entities = it->second;
    const DecodedItem* record = find(owner);
    auto* block = record ? std::get_if<BlockHeaderRecord>(record->decoded.get()) : nullptr;
    if (block != nullptr && !block->entities.empty()) {
        SortByListedPlace(entities, block->entities, [&](ItemIndex i) { return items[i].handle; });
        // Nothing reads the record's list again, and a large block's would be held while its
        // entities are built.
        std::vector<std::uint64_t>().swap(block->entities);
    }
    const bool givesBack = givesBackWhileWriting(owner);
    if (givesBack) countStillDecoded(owner);
    if (entities.size() >= 2 * kEntityBatch && out.feeds() && std::thread::hardware_concurrency() > 1) {
        writeEntitiesAlongside(entities, owner, givesBack);
        return;
    }
    for (std::size_t k = 0; k < entities.size(); ++k) {
        writeEntity(out, entities[k], owner);
        if (givesBack) writtenLast(entities, k, k + 1);
    }
}

// The entities decoded and written as records a batch at a time on a helper thread, while this
// one hands the batch before to the feed that builds the database: the feed takes the same
// records in the same order as from writeEntity alone. Only the helper writes the items while
// it runs.
void Drawing::writeEntitiesAlongside(const std::vector<ItemIndex>& entities, std::uint64_t owner, bool givesBack) {
    auto batchFrom = [&](std::size_t first) {
        DxfText batch = DxfText::Kept();
        const std::size_t last = std::min(entities.size(), first + kEntityBatch);
        for (std::size_t k = first; k < last; ++k) writeEntity(batch, entities[k], owner);
        return batch;
    };
    std::future<DxfText> next = std::async(std::launch::async, batchFrom, 0);
    for (std::size_t first = 0; first < entities.size(); first += kEntityBatch) {
        DxfText batch = next.get();
        const std::size_t last = std::min(entities.size(), first + kEntityBatch);
        if (last < entities.size()) next = std::async(std::launch::async, batchFrom, last);
        batch.handTo(out, [&](DxfText& to, ItemIndex i) { writeRefusedPlain(to, i, owner); });
        // The batch's entities are decoded no more (the refused ones were just now); the helper
        // reads only those of the next batch, still counted.
        if (givesBack) writtenLast(entities, first, last);
    }
}

// Whether the object data is given back as the entities are written: in the passes over model
// and paper space, the last passes that decode entities (a damaged file naming one block record
// for both would write its entities twice).
bool Drawing::givesBackWhileWriting(std::uint64_t owner) const {
    const HeaderHandles& h = header.handles;
    return givesBackObjects && (owner == h.modelSpace || owner == h.paperSpace) && h.modelSpace != h.paperSpace;
}

// Before the pass over model space (or paper space): the entities still to be decoded are those
// not written yet, and those of the spaces still to be written (a damaged file may have written
// them already as the entities another owns). The chunks none of them is in are given back.
void Drawing::countStillDecoded(std::uint64_t owner) {
    pages = PagesOf(sections.objects);
    stillDecoded.assign(items.size(), false);
    const auto count = [&](ItemIndex i) {
        if (!items[i].entity || items[i].holdsDecoded || stillDecoded[i]) return;
        stillDecoded[i] = true;
        CountRead(pages, items[i].offset, StoredExtent(sections.objects, items[i].offset, sections.version));
    };
    for (ItemIndex i = 0; i < items.size(); ++i)
        if (!items[i].written) count(i);
    for (std::uint64_t space : {owner, header.handles.paperSpace}) {
        if (const auto it = owned.find(space); it != owned.end())
            for (ItemIndex i : it->second) count(i);
    }
    GiveBackUnread(pages);
}

void Drawing::decodedLast(ItemIndex i) {
    if (!stillDecoded[i]) return;
    stillDecoded[i] = false;
    ReadLast(pages, items[i].offset, StoredExtent(sections.objects, items[i].offset, sections.version));
}

// The entities of a batch just handed on, and those they own (written with them), are decoded
// no more: neither is written again, nor checked unwritten. Those owned by an entity whose
// handle is a space's (a damaged file) are that space's, still to be written.
void Drawing::writtenLast(const std::vector<ItemIndex>& entities, std::size_t first, std::size_t last) {
    const HeaderHandles& h = header.handles;
    for (std::size_t k = first; k < last; ++k) {
        const Item& item = items[entities[k]];
        decodedLast(entities[k]);
        if (!OwnsEntities(item.type) || item.handle == h.modelSpace || item.handle == h.paperSpace) continue;
        if (const auto it = owned.find(item.handle); it != owned.end())
            for (ItemIndex i : it->second) decodedLast(i);
    }
}

void Drawing::writeBlocks() {
    out.tag(0, "SECTION");
    out.tag(2, "BLOCKS");
    for (const DecodedItem& d : decodedItems) {
        const auto* block = std::get_if<BlockHeaderRecord>(d.decoded.get());
        if (block == nullptr) continue;
        const Item& item = items[d.item];
        const std::string name = names.name(names.blocks, item.handle);
        const DecodedItem* begin = find(block->blockEntity);
        const DecodedItem* end = find(block->endBlock);
        const auto* beginRecord =
            begin ? std::get_if<BlockBeginRecord>(begin->decoded.get()) : nullptr;
        WriteBlockBegin(out, *block, name, beginRecord, item.handle, names);
        if (item.handle != header.handles.modelSpace && item.handle != header.handles.paperSpace) {
            writeEntities(item.handle);
        }
        const EntityCommon* endCommon =
            end ? EntityCommonOf(*end->decoded) : nullptr;
        WriteBlockEnd(out, endCommon, item.handle, names);
    }
    out.tag(0, "ENDSEC");
}

void Drawing::writeObjects() {
    out.tag(0, "SECTION");
    out.tag(2, "OBJECTS");
    const DecodedItem* named = find(header.handles.namedObjects);
    if (named != nullptr) {
        const Item& item = items[named->item];
        WriteObject(out, *named->decoded, typeName(item), item.handle, names);
        if (const ObjectCommon* common = ModelledObjectCommonOf(*named->decoded)) writeExtendedData(*common);
    }
    for (const DecodedItem& d : decodedItems) {
        const Item& item = items[d.item];
        if (&d == named || IsControl(item.type) || IsTableRecord(item.type) || item.entity ||
            IsEntityType(item.type, classes)) {
            continue;
        }
        WriteObject(out, *d.decoded, typeName(item), item.handle, names);
        if (const ObjectCommon* common = ModelledObjectCommonOf(*d.decoded)) writeExtendedData(*common);
    }
    out.tag(0, "ENDSEC");
}

void Drawing::takeErasedEntries(std::vector<ErasedEntries>& erased) const {
    for (const DecodedItem& d : decodedItems) {
        const Item& item = items[d.item];
        const auto* control = std::get_if<KeptObject>(d.decoded.get());
        if (control == nullptr || !IsControl(item.type)) continue;
        ErasedEntries entries{item.handle, {}};
        int place = 0;
        for (const HandleRef& ref : control->references) {
            if (ref.code != 2) continue;  // the records a control owns softly
            if (ref.value == 0) entries.places.push_back(place);
            ++place;
        }
        if (!entries.places.empty()) erased.push_back(std::move(entries));
    }
}

void Drawing::takeDimensionStyleColors(std::vector<DimensionStyleColors>& out) const {
    for (const auto& [handle, symbol] : symbols) {
        DimensionStyleColors style{handle, {}};
        const std::pair<int, const Color*> colors[] = {
            {176, &symbol.dim.clrd}, {177, &symbol.dim.clre}, {178, &symbol.dim.clrt}};
        for (const auto& [code, color] : colors)
            if ((color->rgb >> 24) == 0xC2) style.colors.emplace_back(code, *color);
        if (!style.colors.empty()) out.push_back(std::move(style));
    }
}

void Drawing::takeKept(std::vector<KeptData>& kept) {
    // The block records' references and the layouts' viewports, by the object listed.
    std::unordered_map<std::uint64_t, std::uint64_t> listedBy;
    for (const DecodedItem& d : decodedItems) {
        const std::uint64_t handle = items[d.item].handle;
        if (const auto* block = std::get_if<BlockHeaderRecord>(d.decoded.get())) {
            for (std::uint64_t insert : block->inserts) listedBy.emplace(insert, handle);
        } else if (const auto* layout = std::get_if<LayoutRecord>(d.decoded.get())) {
            for (std::uint64_t viewport : layout->viewports) listedBy.emplace(viewport, handle);
        }
    }
    for (DecodedItem& d : decodedItems) {
        const Item& item = items[d.item];
        auto* whole = std::get_if<KeptObject>(d.decoded.get());
        if (whole == nullptr || IsControl(item.type) || IsTableRecord(item.type)) continue;
        const auto by = listedBy.find(item.handle);
        kept.push_back({item.handle, typeName(item), std::move(whole->bytes), by == listedBy.end() ? 0 : by->second});
    }
}

}  // namespace

namespace {

// The drawing decoded and written out as its records, in the order the DXF reader builds a
// database from.
bool WriteDrawing(Drawing& drawing, std::vector<KeptData>& kept, MapError& error) {
    if (!drawing.decode(error)) return false;
    drawing.index();
    drawing.writeHeader();
    drawing.writeClasses();
    drawing.writeTables();
    drawing.writeBlocks();
    drawing.out.tag(0, "SECTION");
    drawing.out.tag(2, "ENTITIES");
    drawing.writeEntities(drawing.header.handles.modelSpace);
    drawing.writeEntities(drawing.header.handles.paperSpace);
    drawing.out.tag(0, "ENDSEC");
    if (!drawing.checkUnwritten(error)) return false;
    drawing.writeObjects();
    drawing.out.tag(0, "EOF");
    drawing.out.flush();
    drawing.takeKept(kept);
    return true;
}

}  // namespace

bool DwgToDxfText(const DwgSections& sections, std::string& dxf, std::vector<KeptData>& kept,
                  MapError& error) {
    Drawing drawing(sections, DxfText(), false);
    if (!WriteDrawing(drawing, kept, error)) return false;
    dxf = drawing.out.take();
    return true;
}

bool DwgToRecords(const DwgSections& sections, dxf::RecordFeed& feed, std::vector<KeptData>& kept,
                  std::vector<ErasedEntries>& erased, std::vector<DimensionStyleColors>& colors,
                  MapError& error, bool plainEntities, bool givesBackObjects) {
    Drawing drawing(sections, DxfText(&feed), plainEntities, givesBackObjects);
    if (!WriteDrawing(drawing, kept, error)) return false;
    drawing.takeErasedEntries(erased);
    drawing.takeDimensionStyleColors(colors);
    return true;
}

}  // namespace dwg
