#pragma once
// Objects of a database as lines of text, for tests that compare two reads object by object.
#include <string>

#include "platform/db/database.hpp"
#include "platform/db/object.hpp"
#include "platform/win/codepage.hpp"

namespace dwg_test {

// An object's handle as a decimal number, "null" for no object.
inline std::string HandleText(const AcDbObjectId& id) {
    return id.isNull() ? "null" : std::to_string(id.stub()->handle.value());
}

// The stub's handle, its object's class, owner, extension dictionary and reactors.
inline std::string ObjectHead(const AcDbStub& stub) {
    const AcDbObject& o = *stub.object;
    std::string line = std::to_string(stub.handle.value()) + " " + Utf8FromWide(o.isA()->name()) + " owner " +
                       HandleText(o.ownerId()) + " xdict " + HandleText(o.extensionDictionary()) + " reactors";
    for (int i = 0; i < o.persistentReactors().length(); ++i) line += " " + HandleText(o.persistentReactors()[i]);
    return line;
}

}  // namespace dwg_test
