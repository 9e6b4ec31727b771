#include "platform/dxf/modelled_record.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/db/arc.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/spline.hpp"
#include "platform/db/text.hpp"
#include "platform/dxf/field_text.hpp"
#include "platform/dxf/new_records.hpp"
#include "platform/dxf/plain_entity.hpp"

namespace dxf {
namespace {

// The kinds whose model is built the same with and without a record as read (a polyline's
// vertex identifiers and zero widths come from the record only when it has them). Dimensions,
// classic polylines and the entities the database carries read their record again, and stay.
bool ModelIgnoresRecord(const AcDbObject& o) {
    if (AcDbMInsertBlock::cast(&o)) return false;
    return AcDbLine::cast(&o) || AcDbArc::cast(&o) || AcDbCircle::cast(&o) || AcDbPoint::cast(&o) ||
           AcDbText::cast(&o) || AcDbMText::cast(&o) || AcDbPolyline::cast(&o) || AcDbSpline::cast(&o) ||
           AcDbEllipse::cast(&o) || AcDbBlockReference::cast(&o);
}

// Whether the writer's text for the field keeps a template's value that a decoder made from a
// number (the text the new record has, or a value the writer replaces by it), told from the
// numbers alone; unknown (empty) where only the texts tell.
std::optional<bool> MadeValueKept(const Field& f, const Tag& made) {
    const ValueKind kind = KindOfCode(f.code);
    if (f.kind == Field::Kind::kInteger && made.made == Made::kInteger && IsIntegerKind(kind)) {
        // Both texts are the integers' plain digits: the same integer, the same text.
        return true;
    }
    if (f.kind == Field::Kind::kHandle && made.made == Made::kHandle &&
        (kind == ValueKind::kHandle || kind == ValueKind::kString)) {
        // Both texts are the handles' upper-case digits, which read as the same handle only
        // when they are the same text.
        return true;
    }
    if (kind != ValueKind::kDouble) return {};
    if (f.kind == Field::Kind::kReal && made.made == Made::kReal) {
        // Both texts are FormatDouble's but for the decoder's negative zero, which reads as the
        // same value as the writer's "0.0" without being its text.
        if (made.real != f.real) return true;
        return !(made.real == 0.0 && std::signbit(made.real));
    }
    if (f.kind == Field::Kind::kAngle && made.made == Made::kAngle && made.real == f.real &&
        made.real != 0.0) {
        return true;  // the same radians, the same FormatAngle text
    }
    return {};
}

// Takes the tags of a new record and tells whether the writer gives the same with the record as
// read for its template: the same tags in the same order and no more, each of the template's
// values either the text the new record has or one the writer replaces by that text (a value
// the database holds otherwise, as an angle turned to radians and back).
class RecordMatch {
public:
    RecordMatch(const AcDbRawTags& asRead, std::span<const Tag> made)
        : m_at(asRead.begin()), m_end(asRead.end()), m_made(made) {}
    void tag(int code, std::string_view value) {
        if (!m_same) return;
        m_same = m_at != m_end && m_at->code == code && m_at->value == value;
        step();
    }
    void field(const Field& f) {
        if (!m_same) return;
        m_same = m_at != m_end && m_at->code == f.code && kept(f);
        step();
    }
    bool whole() const { return m_same && m_at == m_end; }

private:
    void step() {
        if (!m_same) return;
        ++m_at;
        ++m_index;
    }
    bool kept(const Field& f) {
        if (const Tag* made = madeTag())
            if (std::optional<bool> k = MadeValueKept(f, *made)) return *k;
        std::string_view text = f.text;
        if (f.kind != Field::Kind::kText) {
            m_text.clear();
            AppendField(f, m_text);
            text = m_text;
        }
        return m_at->value == text || !SameValue(f, m_at->value);
    }
    // The decoder's tag of the template's current one, when it is in step with the template.
    const Tag* madeTag() const {
        if (m_index >= m_made.size()) return nullptr;
        const Tag& t = m_made[m_index];
        return t.code == m_at->code && t.value == m_at->value ? &t : nullptr;
    }
    AcDbRawTags::const_iterator m_at, m_end;
    std::span<const Tag> m_made;
    size_t m_index = 0;
    bool m_same = true;
    std::string m_text;
};

// A real of the record that the writer gives back as its text: the model's is the same number,
// and it is finite and not a negative zero (whose text "-0.0" the writer does not give).
bool SameReal(double recorded, double modelled) {
    return std::isfinite(recorded) && !(recorded == 0.0 && std::signbit(recorded)) &&
           std::bit_cast<std::uint64_t>(recorded) == std::bit_cast<std::uint64_t>(modelled);
}

bool SamePoint(const AcGePoint3d& recorded, const AcGePoint3d& modelled) {
    return SameReal(recorded.x, modelled.x) && SameReal(recorded.y, modelled.y) && SameReal(recorded.z, modelled.z);
}

// An angle whose degrees the writer gives as the record has them: the same radians bit for bit
// (Radians reads FormatAngle's degrees back as the radians they were made of, so the entity holds
// the decoder's own; another one is left to the record).
bool SameAngle(double recorded, double modelled) {
    return std::bit_cast<std::uint64_t>(recorded) == std::bit_cast<std::uint64_t>(modelled);
}

// The thickness, written when not 0 (39), and the normal, the z axis (no 210).
bool SameExtrusion(double recorded, double modelled, const AcGeVector3d& normal) {
    const bool thickness = recorded != 0.0 ? SameReal(recorded, modelled) : modelled == 0.0;
    return thickness && normal.x == 0.0 && normal.y == 0.0 && normal.z == 1.0;
}

// What EntityCommon models, as the record gives it: the layer (ASCII), the colour index alone,
// the lineweight and the linetype scale; the rest at its default, so not written.
bool SameCommon(const AcDbEntity& e, const PlainEntity& p) {
    const std::wstring& layer = e.layer();
    if (layer.size() != p.layer.size() || !std::equal(layer.begin(), layer.end(), p.layer.begin(),
                                                       [](wchar_t w, char c) { return w == static_cast<unsigned char>(c); })) {
        return false;
    }
    const AcCmColor color = e.color();
    const bool scale = p.linetypeScale != 1.0 ? SameReal(p.linetypeScale, e.linetypeScale()) : e.linetypeScale() == 1.0;
    return !e.inPaperSpace() && e.linetype() == L"BYLAYER" && color.colorIndex() == p.colorIndex &&
           !color.hasTrueColor() && color.colorName().empty() && static_cast<int>(e.lineWeight()) == p.lineweight && scale &&
           e.visibility() == AcDb::kVisible;
}

// A circle's or an arc's centre, radius, thickness and normal.
template <typename T>
bool SameRound(const T& e, const PlainEntity& p) {
    return SameExtrusion(p.thickness, e.thickness(), e.normal()) &&
           SamePoint(p.first, AcGeMatrix3d::worldToPlane(e.normal()) * e.center()) && SameReal(p.radius, e.radius());
}

// A value written when not 0 (a height, a bulge), and modelled then only.
bool SameOptional(double recorded, double modelled) {
    return recorded != 0.0 ? SameReal(recorded, modelled) : modelled == 0.0;
}

// A vertex's point, widths (written when given; the model writes them when not both 0) and bulge.
bool SameVertex(const AcDbPolyline::Vertex& v, const AcDbPolyline::Vertex& m, bool widths) {
    const bool modelWidths = m.startWidth != 0.0 || m.endWidth != 0.0;
    return SameReal(v.point.x, m.point.x) && SameReal(v.point.y, m.point.y) && SameOptional(v.bulge, m.bulge) &&
           widths == modelWidths && (!widths || (SameReal(v.startWidth, m.startWidth) && SameReal(v.endWidth, m.endWidth)));
}

// A constant width is written as one value (43), and no vertex's widths then.
bool SameLwPolyline(const AcDbPolyline& e, const PlainEntity& p) {
    double width = 0.0;
    const bool constant = e.hasConstantWidthTag() && e.getConstantWidth(width) == Acad::eOk;
    if (constant != p.constant || (constant && (p.widthsGiven != 0 || !SameReal(p.constantWidth, width)))) return false;
    if (e.isClosed() != p.closed || e.hasPlinegen() != p.plinegen || e.numVerts() != p.vertices.size()) return false;
    if (!SameOptional(p.elevation, e.elevation()) || !SameExtrusion(p.thickness, e.thickness(), e.normal())) return false;
    for (std::size_t k = 0; k < p.vertices.size(); ++k) {
        AcDbPolyline::Vertex m = e.vertexAt(static_cast<unsigned int>(k));
        if (constant) m.startWidth = m.endWidth = 0.0;
        if (!SameVertex(p.vertices[k], m, k < p.widthsGiven)) return false;
    }
    return true;
}

bool SamePlainBody(const AcDbEntity& entity, const PlainEntity& p) {
    switch (p.kind) {
        case PlainEntity::Kind::kLine: {
            const auto* e = AcDbLine::cast(&entity);
            return e && SameExtrusion(p.thickness, e->thickness(), e->normal()) &&
                   SamePoint(p.first, e->startPoint()) && SamePoint(p.second, e->endPoint());
        }
        case PlainEntity::Kind::kCircle: {
            const auto* e = AcDbCircle::cast(&entity);
            return e && SameRound(*e, p);
        }
        case PlainEntity::Kind::kArc: {
            const auto* e = AcDbArc::cast(&entity);
            return e && SameRound(*e, p) && SameAngle(p.startAngle, e->startAngle()) && SameAngle(p.endAngle, e->endAngle());
        }
        case PlainEntity::Kind::kPoint: {
            const auto* e = AcDbPoint::cast(&entity);
            // The x axis angle is written when not 0 (50), and modelled then only.
            const bool angle = p.startAngle != 0.0 ? e && e->ecsRotation() != 0.0 && SameAngle(p.startAngle, e->ecsRotation())
                                                   : e && e->ecsRotation() == 0.0;
            return e && angle && SameExtrusion(p.thickness, e->thickness(), e->normal()) && SamePoint(p.first, e->position());
        }
        case PlainEntity::Kind::kLwPolyline: {
            const auto* e = AcDbPolyline::cast(&entity);
            return e && SameLwPolyline(*e, p);
        }
    }
    return false;
}

}  // namespace

// The record's head (handle, owner) holds handles, which the writer gives as the record has them
// (see MadeValueKept); the rest is told by the values, each as strict as RecordMatch or more.
bool ModelGivesPlainRecord(const AcDbEntity& entity, const PlainEntity& plain) {
    return ModelIgnoresRecord(entity) && SameCommon(entity, plain) && SamePlainBody(entity, plain);
}

bool DropModelledRecord(AcDbObject& object, Model& model, AcDbRawTags& dropped, std::span<const Tag> made) {
    if (object.fileTags().empty() || !ModelIgnoresRecord(object)) return false;
    // The model as the writer builds it once the record is gone.
    AcDbRawTags asRead = std::move(object.fileTags());
    object.fileTags().clear();
    BuildModel(object, false, model);
    RecordMatch match(asRead, made);
    NewRecord(HeadIdsOf(object), model, false, match);
    if (match.whole()) {
        dropped = std::move(asRead);
        return true;
    }
    object.fileTags() = std::move(asRead);
    return false;
}

}  // namespace dxf
