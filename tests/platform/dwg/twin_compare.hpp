#pragma once
// Compares two databases of the same drawing object by object, by handle: the kind of object,
// its owner, and for entities the layer and the values of its kind. Gives one line per
// difference, so that a test lists all of them.
#include <cmath>
#include <cwctype>
#include <sstream>
#include <string>
#include <vector>

#include "platform/db/arc.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/database.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"
#include "platform/win/codepage.hpp"

namespace dwg_test {

class TwinComparison {
public:
    std::vector<std::string> differences;
    int compared = 0;

    // Compares the objects of the DXF below seed, the DWG's first free handle: the DXF export
    // numbered objects of its own above it.
    void compare(const AcDbDatabase& fromDwg, const AcDbDatabase& fromDxf, std::uint64_t seed_) {
        seed = seed_;
        for (const auto& stub : fromDxf.stubs()) {
            if (!stub.object || stub.handle.value() >= seed) continue;
            AcDbObjectId id;
            if (const_cast<AcDbDatabase&>(fromDwg).getAcDbObjectId(id, false, stub.handle) !=
                    Acad::eOk ||
                !id.stub()->object) {
                missing.push_back(stub.handle.value());
                continue;
            }
            handle_ = stub.handle.value();
            object(*id.stub()->object, *stub.object);
            ++compared;
        }
    }
    std::vector<std::uint64_t> missing;  // handles of the DXF that the DWG database lacks

private:
    std::uint64_t handle_ = 0;
    std::uint64_t seed = 0;

    // Anonymous blocks are numbered by whoever writes the file ("*D3"): their names compare
    // without the number.
    static std::wstring Numbered(const std::wstring& name) {
        if (name.size() < 2 || name[0] != L'*' || !std::iswalpha(name[1])) return name;
        const auto end = name.find_last_not_of(L"0123456789");
        return end == 1 ? name.substr(0, 2) : name;
    }

    void differ(const std::string& what, const std::string& a, const std::string& b) {
        std::ostringstream line;
        line << std::hex << std::uppercase << handle_ << ": " << what << " '" << a << "' (DWG) vs '"
             << b << "' (DXF)";
        differences.push_back(line.str());
    }
    void text(const std::string& what, const std::wstring& a, const std::wstring& b) {
        if (a != b) differ(what, Utf8FromWide(a), Utf8FromWide(b));
    }
    void number(const std::string& what, double a, double b) {
        if (std::fabs(a - b) > 1e-9 * std::max(1.0, std::fabs(b))) {
            differ(what, std::to_string(a), std::to_string(b));
        }
    }
    void point(const std::string& what, const AcGePoint3d& a, const AcGePoint3d& b) {
        for (int i = 0; i < 3; ++i) number(what + "[" + std::to_string(i) + "]", a[i], b[i]);
    }
    static std::wstring kindOf(const AcDbObject& o) {
        if (auto* u = AcDbUnknownObject::cast(&o)) return u->dxfName();
        return o.isA()->name();
    }

    void object(const AcDbObject& a, const AcDbObject& b) {
        text("kind", kindOf(a), kindOf(b));
        if (kindOf(a) != kindOf(b)) return;
        // An owner the DXF export made anew (above the DWG's handles) is not compared.
        if (b.ownerId().handle().value() < seed) {
            number("owner", a.ownerId().handle().value(), b.ownerId().handle().value());
        }
        if (auto* x = AcDbSymbolTableRecord::cast(&a)) {
            text("name", Numbered(x->name()), Numbered(AcDbSymbolTableRecord::cast(&b)->name()));
        }
        // The kinds kept as their DXF groups: compared group by group.
        static const std::wstring kByGroups[] = {L"XRECORD", L"AcDbHatch", L"DICTIONARYVAR",
                                                 L"SCALE", L"GROUP", L"AcDbFace", L"AcDbRay",
                                                 L"AcDbXline", L"LAYOUT", L"MLINESTYLE"};
        for (const auto& kind : kByGroups) {
            if (kindOf(a) == kind) data(a.fileTags(), b.fileTags());
        }
        // The active viewport follows the screen of whoever saved the file last: the DXF was
        // exported in another session.
        auto* x = AcDbAbstractViewTableRecord::cast(&a);
        if (x && x->name() != L"*Active") {
            auto* y = AcDbAbstractViewTableRecord::cast(&b);
            number("view centre x", x->centerPoint().x, y->centerPoint().x);
            number("view centre y", x->centerPoint().y, y->centerPoint().y);
            number("view height", x->height(), y->height());
            number("view width", x->width(), y->width());
            point("view target", x->target(), y->target());
            number("view direction z", x->viewDirection().z, y->viewDirection().z);
        }
        if (auto* u = AcDbUCSTableRecord::cast(&a)) {
            point("ucs origin", u->origin(), AcDbUCSTableRecord::cast(&b)->origin());
        }
        if (auto* x = AcDbDimStyleTableRecord::cast(&a)) {
            dimensionStyle(*x, *AcDbDimStyleTableRecord::cast(&b));
        }
        auto* e = AcDbEntity::cast(&a);
        if (e == nullptr) return;
        const auto* f = AcDbEntity::cast(&b);
        text("layer", e->layer(), f->layer());
        number("colour", e->colorIndex(), f->colorIndex());
        entity(*e, *f);
    }

    // The groups after the record's subclass marker, as text.
    static std::vector<std::string> Body(const AcDbRawTags& tags) {
        std::vector<std::string> out;
        bool body = false;
        for (const auto& t : tags) {
            if (body) out.push_back(std::to_string(t.code) + "=" + std::string(t.value));
            if (t.code == 100) body = true;
        }
        return out;
    }
    // "code=value" pairs of the same code whose values are the same number to 1e-9.
    static bool SameNumber(const std::string& p, const std::string& q) {
        const auto i = p.find('='), j = q.find('=');
        if (i == std::string::npos || p.substr(0, i) != q.substr(0, j)) return false;
        char* end1 = nullptr;
        char* end2 = nullptr;
        const double a = std::strtod(p.c_str() + i + 1, &end1), b = std::strtod(q.c_str() + j + 1, &end2);
        return *end1 == 0 && *end2 == 0 && end1 != p.c_str() + i + 1 &&
               std::fabs(a - b) <= 1e-9 * std::max(1.0, std::fabs(b));
    }
    void data(const AcDbRawTags& a, const AcDbRawTags& b) {
        const auto x = Body(a), y = Body(b);
        for (std::size_t i = 0; i < std::max(x.size(), y.size()); ++i) {
            const std::string p = i < x.size() ? x[i] : "", q = i < y.size() ? y[i] : "";
            if (p == q || SameNumber(p, q)) continue;
            differ("group " + std::to_string(i), p, q);
            return;
        }
    }

    // Every variable the DXF gives (it leaves out those at their defaults).
    void dimensionStyle(const AcDbDimStyleTableRecord& a, const AcDbDimStyleTableRecord& b) {
        for (const auto& [code, value] : b.dimVars()) {
            const auto it = a.dimVars().find(code);
            const std::string what = "dimension variable " + std::to_string(code);
            if (it == a.dimVars().end()) {
                differ(what, "", "set");
            } else if (value.kind == AcDbDimVarValue::kReal) {
                number(what, it->second.real, value.real);
            } else if (value.kind == AcDbDimVarValue::kInt) {
                number(what, it->second.integer, value.integer);
            } else if (value.kind == AcDbDimVarValue::kString) {
                text(what, it->second.text, value.text);
            } else {
                number(what, it->second.id.handle().value(), value.id.handle().value());
            }
        }
    }

    void entity(const AcDbEntity& a, const AcDbEntity& b) {
        if (auto* x = AcDbLine::cast(&a)) {
            auto* y = AcDbLine::cast(&b);
            point("start", x->startPoint(), y->startPoint());
            point("end", x->endPoint(), y->endPoint());
        } else if (auto* x = AcDbCircle::cast(&a)) {
            auto* y = AcDbCircle::cast(&b);
            point("centre", x->center(), y->center());
            number("radius", x->radius(), y->radius());
            if (auto* xa = AcDbArc::cast(&a)) {
                number("start angle", xa->startAngle(), AcDbArc::cast(&b)->startAngle());
                number("end angle", xa->endAngle(), AcDbArc::cast(&b)->endAngle());
            }
        } else if (auto* x = AcDbPoint::cast(&a)) {
            point("position", x->position(), AcDbPoint::cast(&b)->position());
        } else if (auto* x = AcDbText::cast(&a)) {
            auto* y = AcDbText::cast(&b);
            text("text", x->textString(), y->textString());
            point("position", x->position(), y->position());
            number("height", x->height(), y->height());
            number("rotation", x->rotation(), y->rotation());
        } else if (auto* x = AcDbMText::cast(&a)) {
            auto* y = AcDbMText::cast(&b);
            text("contents", x->contents(), y->contents());
            point("location", x->location(), y->location());
            number("height", x->textHeight(), y->textHeight());
        } else if (auto* x = AcDbBlockReference::cast(&a)) {
            auto* y = AcDbBlockReference::cast(&b);
            point("position", x->position(), y->position());
            number("rotation", x->rotation(), y->rotation());
            number("block", x->blockTableRecord().handle().value(),
                   y->blockTableRecord().handle().value());
            number("attributes", x->attributeIds().length(), y->attributeIds().length());
        } else if (auto* x = AcDbPolyline::cast(&a)) {
            auto* y = AcDbPolyline::cast(&b);
            number("vertices", x->numVerts(), y->numVerts());
            for (unsigned i = 0; i < std::min(x->numVerts(), y->numVerts()); ++i) {
                AcGePoint2d p, q;
                x->getPointAt(i, p);
                y->getPointAt(i, q);
                number("vertex x", p.x, q.x);
                number("vertex y", p.y, q.y);
            }
            number("closed", x->isClosed(), y->isClosed());
        } else if (auto* x = AcDbEllipse::cast(&a)) {
            auto* y = AcDbEllipse::cast(&b);
            point("centre", x->center(), y->center());
            number("ratio", x->radiusRatio(), y->radiusRatio());
            number("end", x->endParam(), y->endParam());
        } else if (auto* x = AcDb2dPolyline::cast(&a)) {
            auto* y = AcDb2dPolyline::cast(&b);
            number("vertices", x->vertices().size(), y->vertices().size());
            for (std::size_t i = 0; i < std::min(x->vertices().size(), y->vertices().size()); ++i) {
                point("vertex", x->vertices()[i].position, y->vertices()[i].position);
            }
        } else if (auto* x = AcDbDimension::cast(&a)) {
            auto* y = AcDbDimension::cast(&b);
            number("measurement", x->storedMeasurement(), y->storedMeasurement());
            point("text position", x->textPosition(), y->textPosition());
            text("dimension text", x->dimensionText(), y->dimensionText());
            number("dimension block", x->dimBlockId().handle().value(),
                   y->dimBlockId().handle().value());
        }
    }
};

}  // namespace dwg_test
