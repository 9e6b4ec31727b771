#include "platform/dxf/modelled_record.hpp"

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

// Takes the tags of a new record and tells whether the writer gives the same with the record as
// read for its template: the same tags in the same order and no more, each of the template's
// values either the text the new record has or one the writer replaces by that text (a value
// the database holds otherwise, as an angle turned to radians and back).
class RecordMatch {
public:
    explicit RecordMatch(const AcDbRawTags& asRead) : m_at(asRead.begin()), m_end(asRead.end()) {}
    void tag(int code, std::string_view value) {
        if (!m_same) return;
        m_same = m_at != m_end && m_at->code == code && m_at->value == value;
        if (m_same) ++m_at;
    }
    void field(const Field& f) {
        if (!m_same) return;
        std::string_view text = f.text;
        if (f.kind != Field::Kind::kText) {
            m_text.clear();
            AppendField(f, m_text);
            text = m_text;
        }
        m_same = m_at != m_end && m_at->code == f.code && (m_at->value == text || !SameValue(f, m_at->value));
        if (m_same) ++m_at;
    }
    bool whole() const { return m_same && m_at == m_end; }

private:
    AcDbRawTags::const_iterator m_at, m_end;
    bool m_same = true;
    std::string m_text;
};

}  // namespace

bool DropModelledRecord(AcDbObject& object, Model& model, AcDbRawTags& dropped) {
    if (object.fileTags().empty() || !ModelIgnoresRecord(object)) return false;
    // The model as the writer builds it once the record is gone.
    AcDbRawTags asRead = std::move(object.fileTags());
    object.fileTags().clear();
    BuildModel(object, false, model);
    RecordMatch match(asRead);
    NewRecord(object, model, false, match);
    if (match.whole()) {
        dropped = std::move(asRead);
        return true;
    }
    object.fileTags() = std::move(asRead);
    return false;
}

}  // namespace dxf
