#include "platform/db/shared_name.hpp"

#include <mutex>
#include <unordered_set>

namespace {
// Looks texts up by view, so that a name already kept costs no allocation.
struct TextHash {
    using is_transparent = void;
    size_t operator()(std::wstring_view text) const { return std::hash<std::wstring_view>{}(text); }
};
struct Pool {
    std::mutex lock;
    // Node-based: a kept text never moves, so pointers to it stay valid.
    std::unordered_set<std::wstring, TextHash, std::equal_to<>> texts;
};
Pool& ThePool() {
    static Pool* pool = new Pool();  // never destroyed: objects may outlive static destruction
    return *pool;
}
}  // namespace

const std::wstring& AcDbSharedName::Intern(std::wstring_view text) {
    Pool& pool = ThePool();
    std::lock_guard<std::mutex> guard(pool.lock);
    auto it = pool.texts.find(text);
    if (it == pool.texts.end()) it = pool.texts.emplace(text).first;
    return *it;
}

const std::wstring& AcDbSharedName::Empty() {
    static const std::wstring& empty = Intern(L"");
    return empty;
}
