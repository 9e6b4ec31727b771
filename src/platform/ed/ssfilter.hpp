#pragma once
// Filter lists of selection sets. Items in a row must all hold. A -4 item opens or closes a
// group ("<OR" ... "OR>", "<AND" ... "AND>", "<NOT" one item "NOT>", "<XOR" two items "XOR>")
// or sets the relation of the item after it: "=", "!=", "/=", "<>", "<", "<=", ">", ">=",
// "*" (any), "&" (some bit), "&=" (all bits); for a point one relation per coordinate,
// "op,op,op". Strings match as wild cards: the type (0) and the names of layers, linetypes
// and blocks (8, 6, 2) without regard to case, the text value (1) as typed. The groups an
// entity answers: 0 type, 1 text value, 2 block name, 6 linetype, 8 layer, 10 first point,
// 62 colour, 66 attributes follow; an item of any other group matches no entity.
#include <string>

#include "platform/ed/resbuf.hpp"

class AcDbEntity;

// True when the entity passes the filter (a null filter passes everything). `error` is set for
// a list whose groups do not close or whose relation is unknown; such a list passes nothing.
bool EntityPassesFilter(const AcDbEntity* entity, const resbuf* filter, std::wstring* error = nullptr);
