#pragma once
// The decoded entities whose records would be plain (see dxf::PlainEntity): handed to the reader
// by their values, without their records being made.
#include <cstdint>
#include <string_view>

#include "platform/dwg/decode.hpp"
#include "platform/dwg/dxf_records.hpp"
#include "platform/dxf/plain_entity.hpp"

namespace dwg {

// True with `plain` filled when the record WriteEntity would make of the entity, as typeName,
// under the owner given, is a plain one; the names are those WriteEntity uses.
bool PlainEntityOf(const DecodedObject& decoded, std::string_view typeName, std::uint64_t owner,
                   const NameIndex& names, dxf::PlainEntity& plain);

}  // namespace dwg
