#include "platform/win/recycle.hpp"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <ctime>
#include <fstream>
#include <system_error>

#include "platform/win/host_state.hpp"

namespace fs = std::filesystem;

namespace {

// The path of `file` relative to the prefix; empty when it lies outside.
fs::path InsidePrefix(const fs::path& file) {
    if (Host().prefix.empty()) return {};
    std::error_code error;
    fs::path prefix = fs::weakly_canonical(Host().prefix, error);
    fs::path target = fs::weakly_canonical(file, error);
    if (error) return {};
    fs::path relative = target.lexically_relative(prefix);
    if (relative.empty() || *relative.begin() == ".." || *relative.begin() == kRecycleFolderName) return {};
    return relative;
}

std::string EntryName() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y%m%d-%H%M%S", &local);
    return std::string(stamp) + "-" + std::to_string(::getpid());
}

// A free place for `relative` in this run's entry folder, its folders made.
fs::path RecyclePlace(const fs::path& relative, std::error_code& error) {
    if (Host().recycleEntry.empty()) Host().recycleEntry = EntryName();
    fs::path place = Host().prefix / kRecycleFolderName / Host().recycleEntry / relative;
    fs::create_directories(place.parent_path(), error);
    fs::path free = place;
    std::error_code probe;
    for (int version = 2; fs::exists(free, probe); ++version)
        free = place.string() + "~" + std::to_string(version);
    return free;
}

std::string Reason(const std::error_code& error) { return error.message(); }

bool SameBytes(const fs::path& a, const fs::path& b) {
    std::ifstream left(a, std::ios::binary), right(b, std::ios::binary);
    char x[65536], y[65536];
    while (left && right) {
        left.read(x, sizeof x);
        right.read(y, sizeof y);
        if (left.gcount() != right.gcount() || std::memcmp(x, y, static_cast<size_t>(left.gcount())) != 0) return false;
    }
    return !left && !right;
}

// How many of the files kept last are compared with one to keep: the batch's scratch copy of a
// conversion is kept one or two files after the converted drawing that it equals.
constexpr size_t kKeptCompared = 32;

void Remember(const fs::path& kept) {
    std::error_code code;
    std::uintmax_t size = fs::file_size(kept, code);
    if (code) return;
    auto& recent = Host().recycleKept;
    recent.emplace_back(size, kept);
    if (recent.size() > kKeptCompared) recent.pop_front();
}

// A file that this run already keeps with the bytes of `file`. The batch deletes its scratch
// copy of each converted drawing before the next one; that copy equals the converted drawing
// kept when it was saved over, and must not take the space again for every drawing.
fs::path KeptWithSameBytes(const fs::path& file) {
    std::error_code code;
    std::uintmax_t size = fs::file_size(file, code);
    if (code) return {};
    for (const auto& [keptSize, kept] : Host().recycleKept)
        if (keptSize == size && SameBytes(kept, file)) return kept;
    return {};
}

// Keeps `file` at `place`: a second name of an equal file already kept, else what `keep` makes.
template <typename Keep>
void KeepAt(const fs::path& file, const fs::path& place, std::error_code& code, Keep keep) {
    fs::path same = KeptWithSameBytes(file);
    if (!same.empty()) fs::create_hard_link(same, place, code);
    if (same.empty() || code) {
        code.clear();
        keep();
    }
    if (!code) Remember(place);
}

}  // namespace

bool RecycleFile(const fs::path& file, std::string& error) {
    std::error_code code;
    fs::path relative = InsidePrefix(file);
    if (relative.empty()) {
        if (fs::remove(file, code)) return true;
        error = file.string() + ": " + Reason(code ? code : std::make_error_code(std::errc::no_such_file_or_directory));
        return false;
    }
    fs::path place = RecyclePlace(relative, code);
    if (!code) KeepAt(file, place, code, [&] { fs::rename(file, place, code); });
    if (!code && fs::exists(file, code)) fs::remove(file, code);  // kept as a second name
    if (code) {
        // Another file system: a copy that is complete before the original goes.
        std::error_code copyError;
        if (!fs::copy_file(file, place, copyError) || !fs::remove(file, copyError)) {
            fs::remove(place, copyError);
            error = file.string() + ": cannot move it to the recycle folder: " + Reason(code);
            return false;
        }
        Remember(place);
    }
    return true;
}

bool RecycleCopy(const fs::path& file, std::string& error) {
    std::error_code code;
    if (!fs::is_regular_file(file, code)) return true;
    fs::path relative = InsidePrefix(file);
    if (relative.empty()) return true;
    fs::path place = RecyclePlace(relative, code);
    if (!code)
        KeepAt(file, place, code, [&] {
            fs::create_hard_link(file, place, code);
            if (code) {
                code.clear();
                fs::copy_file(file, place, code);
            }
        });
    if (code) {
        error = file.string() + ": cannot keep a copy in the recycle folder: " + Reason(code);
        return false;
    }
    return true;
}

void PurgeRecycle(const fs::path& prefix, int days) {
    std::error_code code;
    auto limit = fs::file_time_type::clock::now() - std::chrono::hours(24) * days;
    for (const fs::directory_entry& entry : fs::directory_iterator(prefix / kRecycleFolderName, code)) {
        if (entry.is_directory(code) && entry.last_write_time(code) < limit) fs::remove_all(entry.path(), code);
    }
}

std::vector<RecycledFile> ListRecycle(const fs::path& prefix) {
    std::vector<RecycledFile> files;
    fs::path root = prefix / kRecycleFolderName;
    std::error_code code;
    for (auto it = fs::recursive_directory_iterator(root, code); !code && it != fs::end(it); it.increment(code)) {
        if (!it->is_regular_file(code)) continue;
        fs::path item = it->path().lexically_relative(root);
        std::string original = fs::path(item).lexically_relative(*item.begin()).string();
        size_t version = original.rfind('~');
        if (version != std::string::npos && original.find_first_not_of("0123456789", version + 1) == std::string::npos &&
            version + 1 < original.size())
            original.erase(version);
        files.push_back({item.string(), original, it->file_size(code)});
    }
    std::sort(files.begin(), files.end(), [](const RecycledFile& a, const RecycledFile& b) { return a.item < b.item; });
    return files;
}

std::vector<RecycledFile> LatestVersions(const std::vector<RecycledFile>& files) {
    std::vector<RecycledFile> latest;
    for (const RecycledFile& file : files) {
        auto same = std::find_if(latest.begin(), latest.end(),
                                 [&](const RecycledFile& kept) { return kept.original == file.original; });
        if (same == latest.end()) latest.push_back(file);
        else *same = file;  // the list runs from the oldest entry to the newest
    }
    return latest;
}

bool RestoreRecycled(const fs::path& prefix, const std::string& item, std::string& error) {
    for (const RecycledFile& file : ListRecycle(prefix)) {
        if (file.item != item) continue;
        fs::path target = prefix / file.original;
        std::error_code code;
        fs::create_directories(target.parent_path(), code);
        if (!RecycleCopy(target, error)) return false;
        fs::path temp = target.string() + ".restore" + std::to_string(::getpid());
        fs::copy_file(prefix / kRecycleFolderName / file.item, temp, fs::copy_options::overwrite_existing, code);
        if (!code) fs::rename(temp, target, code);
        if (code) {
            std::error_code ignored;
            fs::remove(temp, ignored);
            error = target.string() + ": cannot restore: " + Reason(code);
            return false;
        }
        return true;
    }
    error = item + ": no such file in the recycle folder";
    return false;
}
