#pragma once
// Records handed to the reader one at a time, already split into tags, by a decoder that makes
// them (the DWG reader): the database is built as from the same records in a file, checked the
// same way, without their text being written out whole and split again.
#include <cstddef>
#include <memory>
#include <span>
#include <string>

#include "platform/db/database.hpp"
#include "platform/dxf/plain_entity.hpp"
#include "platform/dxf/tagger.hpp"

namespace dxf {

class RecordFeed {
public:
    RecordFeed(AcDbDatabase& db, std::string name);
    ~RecordFeed();
    RecordFeed(const RecordFeed&) = delete;
    RecordFeed& operator=(const RecordFeed&) = delete;

    // About how many objects the records make, so that the database grows once.
    void reserve(std::size_t objects);
    // One record: its 0 tag and the tags up to the next 0; the views need to last for the call
    // only. Tags are numbered by the lines they would take in a file. After a bad tag or once
    // EOF has been met, records are ignored.
    void record(std::span<const Tag> tags);
    // An entity given by the values of its record (see PlainEntity) and built from them by
    // BuildPlainEntity, taken as record() would read the record; false when it needs the record
    // (null, or it goes to another block than the record names): give that to record() then.
    bool plainEntity(const PlainEntity& plain, std::unique_ptr<AcDbEntity> built);
    // After the last record: eOk with the database built, or the database emptied and
    // lastError() "name:line: DXFnnn reason", as ReadDxfBytes gives them.
    Acad::ErrorStatus finish();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace dxf
