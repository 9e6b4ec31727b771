#pragma once
// Hands a DXF text's records to a record feed as its tags come, split at each 0 tag, as the
// reader does with a file.
#include <string_view>
#include <vector>

#include "platform/dxf/record_feed.hpp"
#include "platform/dxf/tagger.hpp"

namespace dxftest {

inline void FeedText(dxf::RecordFeed& feed, std::string_view text) {
    dxf::TagCursor cursor(text);
    std::vector<dxf::Tag> record;
    dxf::Tag tag;
    while (cursor.next(tag)) {
        if (tag.code == 0 && !record.empty()) {
            feed.record(record);
            record.clear();
        }
        record.push_back(tag);
    }
    if (!record.empty()) feed.record(record);
}

}  // namespace dxftest
