#include "platform/ed/ssfilter.hpp"

#include <algorithm>
#include <optional>
#include <sstream>
#include <variant>
#include <vector>

#include "platform/db/arc.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/text.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/win/text.hpp"

namespace {

using Value = std::variant<std::wstring, double, AcGePoint3d>;

std::wstring BlockName(const AcDbBlockReference* insert) {
    AcDbBlockTableRecord* block = nullptr;
    if (acdbOpenObject(block, insert->blockTableRecord(), AcDb::kForRead) != Acad::eOk) return L"";
    std::wstring name;
    block->getName(name);
    block->close();
    return name;
}

std::optional<AcGePoint3d> FirstPoint(const AcDbEntity* e) {
    if (auto* t = AcDbText::cast(e)) return t->position();
    if (auto* m = AcDbMText::cast(e)) return m->location();
    if (auto* i = AcDbBlockReference::cast(e)) return i->position();
    if (auto* l = AcDbLine::cast(e)) return l->startPoint();
    if (auto* c = AcDbCircle::cast(e)) return c->center();
    if (auto* a = AcDbArc::cast(e)) return a->center();
    if (auto* p = AcDbPoint::cast(e)) return p->position();
    return std::nullopt;
}

std::optional<Value> GroupValue(const AcDbEntity* e, int code) {
    switch (code) {
        case 0: return Value{std::wstring(e->isA()->dxfName())};
        case 8: return Value{e->layer()};
        case 6: return Value{e->linetype()};
        case 62: return Value{static_cast<double>(e->colorIndex())};
        case 1:
            if (auto* t = AcDbText::cast(e)) return Value{t->textString()};
            if (auto* m = AcDbMText::cast(e)) return Value{m->contents()};
            return std::nullopt;
        case 2:
            if (auto* i = AcDbBlockReference::cast(e)) return Value{BlockName(i)};
            return std::nullopt;
        case 66:
            if (auto* i = AcDbBlockReference::cast(e)) return Value{i->attributeIds().isEmpty() ? 0.0 : 1.0};
            return std::nullopt;
        case 10:
            if (auto p = FirstPoint(e)) return Value{*p};
            return std::nullopt;
        default: return std::nullopt;
    }
}

bool Compare(double value, double wanted, const std::wstring& op, bool& known) {
    known = true;
    if (op == L"*") return true;
    if (op == L"=") return value == wanted;
    if (op == L"!=" || op == L"/=" || op == L"<>") return value != wanted;
    if (op == L"<") return value < wanted;
    if (op == L"<=") return value <= wanted;
    if (op == L">") return value > wanted;
    if (op == L">=") return value >= wanted;
    long bits = static_cast<long>(value), mask = static_cast<long>(wanted);
    if (op == L"&") return (bits & mask) != 0;
    if (op == L"&=") return (bits & mask) == mask;
    known = false;
    return false;
}

std::vector<std::wstring> PointRelations(const std::wstring& op) {
    std::vector<std::wstring> parts;
    std::wistringstream stream(op);
    std::wstring part;
    while (std::getline(stream, part, L',')) parts.push_back(TrimBlanks(part));
    if (parts.size() == 1) parts.assign(3, parts[0]);
    return parts;
}

bool IsNameGroup(int code) { return code == 0 || code == 2 || code == 6 || code == 8; }

class FilterEvaluator {
public:
    FilterEvaluator(const AcDbEntity* entity, std::wstring& error) : entity_(entity), error_(error) {}

    // Evaluates items up to the closing `closer` (empty: the end of the list); all must hold.
    bool Sequence(const resbuf*& rb, const std::wstring& closer, std::vector<bool>* each = nullptr) {
        bool all = true;
        while (rb) {
            if (rb->restype == -4 && Text(rb) == closer) {
                rb = rb->rbnext;
                return all;
            }
            bool result = Item(rb);
            if (each) each->push_back(result);
            all = all && result;
            if (!error_.empty()) return false;
        }
        if (!closer.empty()) error_ = L"the group \"" + closer + L"\" is not closed";
        return all;
    }

private:
    static std::wstring Text(const resbuf* rb) { return rb->resval.rstring ? rb->resval.rstring : L""; }

    bool Item(const resbuf*& rb) {
        if (rb->restype != -4) {
            bool result = Test(rb, IsPointValue(rb) ? L"=,=,=" : L"=");
            rb = rb->rbnext;
            return result;
        }
        std::wstring op = UpperCase(Text(rb));
        rb = rb->rbnext;
        std::vector<bool> results;
        if (op == L"<AND") return Sequence(rb, L"AND>");
        if (op == L"<OR" || op == L"<XOR" || op == L"<NOT") {
            std::wstring closer = op.substr(1) + L">";
            Sequence(rb, closer, &results);
            return Combine(op, results);
        }
        if (!rb) {
            error_ = L"the relation \"" + op + L"\" has no item after it";
            return false;
        }
        bool result = Test(rb, op);
        rb = rb->rbnext;
        return result;
    }

    bool Combine(const std::wstring& op, const std::vector<bool>& results) {
        size_t holding = std::count(results.begin(), results.end(), true);
        if (op == L"<OR") return holding > 0;
        if (op == L"<XOR") {
            if (results.size() != 2) error_ = L"\"<XOR\" needs two items";
            return holding == 1;
        }
        if (results.size() != 1) error_ = L"\"<NOT\" needs one item";
        return holding == 0;
    }

    static bool IsPointValue(const resbuf* rb) { return ResbufKind(rb->restype) == RbKind::kPoint; }

    bool Test(const resbuf* rb, const std::wstring& op) {
        int code = rb->restype == RTDXF0 ? 0 : rb->restype;  // RTDXF0 stands for group 0
        std::optional<Value> value = GroupValue(entity_, code);
        if (!value) return false;
        bool known = true;
        bool result = false;
        if (auto* text = std::get_if<std::wstring>(&*value)) {
            std::wstring pattern = Text(rb);
            result = IsNameGroup(code) ? acutWcMatch(UpperCase(*text).c_str(), UpperCase(pattern).c_str()) == RTNORM
                                              : acutWcMatch(text->c_str(), pattern.c_str()) == RTNORM;
            if (op == L"!=" || op == L"/=" || op == L"<>") result = !result;
        } else if (auto* number = std::get_if<double>(&*value)) {
            double wanted = ResbufKind(rb->restype) == RbKind::kReal ? rb->resval.rreal
                            : ResbufKind(rb->restype) == RbKind::kLong ? rb->resval.rlong : rb->resval.rint;
            result = Compare(*number, wanted, op, known);
        } else {
            const AcGePoint3d& p = std::get<AcGePoint3d>(*value);
            std::vector<std::wstring> ops = PointRelations(op);
            result = ops.size() == 3;
            for (size_t i = 0; i < ops.size() && i < 3 && known; ++i)
                result = Compare(p[static_cast<int>(i)], rb->resval.rpoint[i], ops[i], known) && result;
            if (ops.size() != 3) known = false;
        }
        if (!known) error_ = L"unknown relation \"" + op + L"\"";
        return result;
    }

    const AcDbEntity* entity_;
    std::wstring& error_;
};

}  // namespace

bool EntityPassesFilter(const AcDbEntity* entity, const resbuf* filter, std::wstring* error) {
    std::wstring problem;
    const resbuf* rb = filter;
    bool passes = FilterEvaluator(entity, problem).Sequence(rb, L"");
    if (error) *error = problem;
    return passes && problem.empty();
}
