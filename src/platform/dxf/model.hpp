#pragma once
// The middle layer of the codec: what the database models of one object, as the tags of its
// drawing-file record, grouped by subclass. The writer lays this over the record as read.
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/db/database.hpp"

namespace dxf {

// One modelled value. Numbers stay numbers until written, so that a value equal to the one the
// file has keeps the file's text without being formatted.
struct Field {
    enum class Kind : std::uint8_t { kText, kReal, kInteger, kHandle, kAngle };
    int code = 0;
    Kind kind = Kind::kText;
    // A value at its default: it replaces a tag of the template, but is not added where the
    // template has none (nor in a new record).
    bool optional = false;
    int run = 0;             // 0: a single value; otherwise the repeating block it belongs to
    double real = 0.0;       // kReal; kAngle: radians, written in degrees
    long long integer = 0;   // kInteger, and a handle's value (kHandle)
    std::string text;        // kText, UTF-8
};

// A subclass of the model: its marker and its ranges of the model's fields and owned codes.
struct Subclass {
    std::string_view marker;  // the subclass marker (group code 100); empty for the record's head
    size_t fieldBegin = 0, fieldEnd = 0;
    size_t ownedBegin = 0, ownedEnd = 0;  // codes it models, including those left at default
};

// The modelled record of an object: its type name and subclasses in the format's order. The
// lists keep their storage from one object to the next.
struct Model {
    std::string type;
    std::vector<Subclass> subclasses;
    // The first fieldCount are the object's; the rest stay for their storage.
    std::vector<Field> fields;
    size_t fieldCount = 0;
    std::vector<int> owned;

    void clear();
    std::span<const Field> fieldsOf(const Subclass& s) const {
        return {fields.data() + s.fieldBegin, s.fieldEnd - s.fieldBegin};
    }
    bool owns(const Subclass& s, int code) const;
    // All subclasses as one, for records written without subclass markers.
    Subclass whole() const { return {"", 0, fieldCount, 0, owned.size()}; }
};

// Appends fields to a model, one subclass at a time.
class ModelWriter {
public:
    ModelWriter(Model& model, bool hasTemplate) : m_model(model), m_hasTemplate(hasTemplate) {}
    bool hasTemplate() const { return m_hasTemplate; }

    // Starts a subclass; the marker is a literal (the model keeps a view of it).
    void subclass(std::string_view marker);
    void own(std::initializer_list<int> codes);
    // Marks the values of the next call as optional when they are at their default.
    ModelWriter& optional(bool atDefault) {
        m_optional = atDefault;
        return *this;
    }
    void text(int code, std::string_view value);
    void wide(int code, std::wstring_view value);
    void real(int code, double value);
    void angle(int code, double radians);
    void integer(int code, long long value);
    void handle(int code, AcDbHandle h);
    void id(int code, AcDbObjectId id);
    void point(int code, const AcGePoint3d& p);
    void point2d(int code, const AcGePoint2d& p);
    void vector(int code, const AcGeVector3d& v) { point(code, {v.x, v.y, v.z}); }
    // The extrusion direction, written only when it is not the z axis.
    void normal(const AcGeVector3d& n);
    void thickness(double t) { optional(t == 0.0).real(39, t); }
    // A name reference: owned only when it resolves, so an unresolved name of the file stays.
    void name(int code, AcDbObjectId id);
    void beginRun() { m_run = ++m_runCount; }
    void endRun() { m_run = 0; }

private:
    Field& add(int code, Field::Kind kind);
    Model& m_model;
    bool m_hasTemplate;
    int m_run = 0;
    int m_runCount = 0;
    bool m_optional = false;
};

// Fills the model of an object. hasTemplate tells whether the object keeps a record as read
// (values that only a new record needs are then left to the template).
void BuildModel(const AcDbObject& object, bool hasTemplate, Model& model);

// The record type name of an object: as read, or by its class.
std::string TypeName(const AcDbObject& object);

// Text conversions between the database's wide strings and the codec's UTF-8.
std::string Utf8(std::wstring_view text);
void Utf8Into(std::wstring_view text, std::string& out);  // appends
std::wstring Wide(std::string_view utf8);
std::string HandleText(AcDbHandle handle);
// Appends a handle's value as the format writes it: upper-case hexadecimal.
void AppendHex(std::uint64_t value, std::string& out);
// Name of the symbol-table record behind an id, empty when there is none.
std::wstring RecordName(AcDbObjectId id);
// The dimension style overrides as the ACAD application's DSTYLE extension data.
void DimVarsToXData(const AcDbDimVars& vars, AcDbRawTags& tags);

inline constexpr double kDegrees = 57.29577951308232;

}  // namespace dxf
