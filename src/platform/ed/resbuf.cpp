#include "platform/ed/resbuf.hpp"

#include <cstdarg>
#include <cstring>
#include <cwchar>

namespace {

bool InRange(int code, int low, int high) { return code >= low && code <= high; }

RbKind GroupCodeKind(int code) {
    if (code == -4 || InRange(code, 0, 9) || code == 100 || code == 102 || InRange(code, 300, 309) ||
        InRange(code, 410, 419) || InRange(code, 430, 439) || InRange(code, 470, 479) || code == 999 ||
        InRange(code, 1000, 1009))
        return RbKind::kString;
    if (InRange(code, 10, 39) || InRange(code, 110, 112) || InRange(code, 210, 239) || InRange(code, 1010, 1013))
        return RbKind::kPoint;
    if (InRange(code, 40, 59) || InRange(code, 140, 149) || InRange(code, 460, 469) || InRange(code, 1040, 1042))
        return RbKind::kReal;
    if (InRange(code, 60, 79) || InRange(code, 170, 179) || InRange(code, 270, 289) || InRange(code, 370, 389) ||
        InRange(code, 400, 409) || code == 1070)
        return RbKind::kShort;
    if (InRange(code, 90, 99) || InRange(code, 450, 459) || code == 1071) return RbKind::kLong;
    if (code == -1 || code == -2 || InRange(code, 330, 369)) return RbKind::kName;
    return RbKind::kNone;
}

}  // namespace

RbKind ResbufKind(int restype) {
    switch (restype) {
        case RTSTR: case RTDXF0: return RbKind::kString;
        case RTREAL: case RTANG: case RTORINT: return RbKind::kReal;
        case RTPOINT: case RT3DPOINT: return RbKind::kPoint;
        case RTSHORT: return RbKind::kShort;
        case RTLONG: return RbKind::kLong;
        case RTENAME: case RTPICKS: return RbKind::kName;
        case RTLB: case RTLE: case RTDOTE: case RTNIL: case RTT: case RTVOID: case RTNONE: return RbKind::kNone;
        default: return restype < RTNONE ? GroupCodeKind(restype) : RbKind::kNone;
    }
}

resbuf* acutNewRb(int restype) {
    auto* rb = new resbuf{};
    rb->restype = static_cast<short>(restype);
    return rb;
}

int acutRelRb(resbuf* list) {
    while (list) {
        resbuf* next = list->rbnext;
        if (ResbufKind(list->restype) == RbKind::kString) delete[] list->resval.rstring;
        delete list;
        list = next;
    }
    return RTNORM;
}

void SetResbufString(resbuf* rb, const ACHAR* text) {
    if (ResbufKind(rb->restype) == RbKind::kString) delete[] rb->resval.rstring;
    size_t length = text ? std::wcslen(text) : 0;
    rb->resval.rstring = new ACHAR[length + 1];
    if (length) std::wmemcpy(rb->resval.rstring, text, length);
    rb->resval.rstring[length] = L'\0';
}

resbuf* acutBuildList(int restype, ...) {
    va_list args;
    va_start(args, restype);
    resbuf* head = nullptr;
    resbuf** tail = &head;
    bool ok = true;
    for (int type = restype; type != 0 && type != RTNONE; type = va_arg(args, int)) {
        RbKind kind = ResbufKind(type);
        bool valueless = type == RTLB || type == RTLE || type == RTDOTE || type == RTNIL || type == RTT || type == RTVOID;
        if (kind == RbKind::kNone && !valueless) {
            ok = false;
            break;
        }
        resbuf* rb = acutNewRb(type);
        switch (kind) {
            case RbKind::kString: rb->resval.rstring = nullptr; SetResbufString(rb, va_arg(args, const ACHAR*)); break;
            case RbKind::kReal: rb->resval.rreal = va_arg(args, double); break;
            case RbKind::kPoint: std::memcpy(rb->resval.rpoint, va_arg(args, const ads_real*), sizeof(ads_point)); break;
            case RbKind::kShort: rb->resval.rint = static_cast<short>(va_arg(args, int)); break;
            case RbKind::kLong: rb->resval.rlong = va_arg(args, std::int32_t); break;
            case RbKind::kName: std::memcpy(rb->resval.rlname, va_arg(args, const std::int64_t*), sizeof(ads_name)); break;
            case RbKind::kNone: break;
        }
        *tail = rb;
        tail = &rb->rbnext;
    }
    va_end(args);
    if (!ok) {
        acutRelRb(head);
        return nullptr;
    }
    return head;
}
