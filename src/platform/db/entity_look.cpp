#include "platform/db/entity_look.hpp"

#include <bit>
#include <cstdint>
#include <functional>
#include <mutex>
#include <unordered_set>

namespace {

std::uint64_t ScaleBits(const AcDbEntityLook& look) { return std::bit_cast<std::uint64_t>(look.linetypeScale); }

struct LookHash {
    size_t operator()(const AcDbEntityLook& look) const {
        // The names are kept once each, so their addresses stand for them.
        size_t h = std::hash<const void*>{}(&look.layer.str());
        auto mix = [&](std::uint64_t v) { h = (h ^ v) * 0x100000001B3ull; };
        mix(reinterpret_cast<std::uintptr_t>(&look.linetype.str()));
        mix(reinterpret_cast<std::uintptr_t>(&look.plotStyleName.str()));
        mix(look.color.colorIndex());
        mix(look.color.trueColor());
        mix(ScaleBits(look));
        mix(static_cast<std::uint64_t>(look.lineWeight));
        return h;
    }
};

struct LookEqual {
    bool operator()(const AcDbEntityLook& a, const AcDbEntityLook& b) const { return SameLook(a, b); }
};

struct Pool {
    std::mutex lock;
    // Node-based: a kept look never moves, so pointers to it stay valid.
    std::unordered_set<AcDbEntityLook, LookHash, LookEqual> looks;
};

Pool& ThePool() {
    static Pool* pool = new Pool();  // never destroyed: objects may outlive static destruction
    return *pool;
}

}  // namespace

bool SameLook(const AcDbEntityLook& a, const AcDbEntityLook& b) {
    return a.layer == b.layer && a.linetype == b.linetype && a.plotStyleName == b.plotStyleName &&
           a.color == b.color && ScaleBits(a) == ScaleBits(b) && a.lineWeight == b.lineWeight;
}

const AcDbEntityLook& AcDbSharedLook::Intern(const AcDbEntityLook& look) {
    Pool& pool = ThePool();
    std::lock_guard<std::mutex> guard(pool.lock);
    return *pool.looks.insert(look).first;
}

const AcDbEntityLook& AcDbSharedLook::Default() {
    static const AcDbEntityLook& look = Intern(AcDbEntityLook{});
    return look;
}
