#include "platform/dxf/mapped_file.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <mutex>

namespace dxf {
namespace {

constexpr size_t kPage = 4096;
constexpr size_t kReleaseStep = size_t{256} << 10;

// The mappings being read, for the bus-error handler: a fixed table it can walk without locks.
struct Mapping {
    std::atomic<char*> begin{nullptr};
    std::atomic<size_t> size{0};
    std::atomic<bool> cut{false};
};
constexpr int kSlots = 64;
Mapping g_mappings[kSlots];
struct sigaction g_previous {};

// A read past the end of a file that shrank while mapped raises SIGBUS. The rest of the
// mapping is replaced by zero pages, so that the read goes on (and fails on the zeros), and the
// mapping is marked cut. A bus error anywhere else goes to the handler that was there before.
void OnBusError(int signal, siginfo_t* info, void* context) {
    char* address = static_cast<char*>(info->si_addr);
    for (Mapping& m : g_mappings) {
        char* begin = m.begin.load();
        size_t size = m.size.load();
        if (begin == nullptr || address < begin || address >= begin + size) continue;
        char* page = begin + ((static_cast<size_t>(address - begin)) & ~(kPage - 1));
        size_t rest = static_cast<size_t>(begin + size - page);
        if (::mmap(page, rest, PROT_READ, MAP_PRIVATE | MAP_FIXED | MAP_ANONYMOUS, -1, 0) != MAP_FAILED) {
            m.cut.store(true);
            return;
        }
        break;
    }
    if (g_previous.sa_flags & SA_SIGINFO) {
        g_previous.sa_sigaction(signal, info, context);
    } else if (g_previous.sa_handler != SIG_IGN && g_previous.sa_handler != SIG_DFL) {
        g_previous.sa_handler(signal);
    } else {
        ::signal(SIGBUS, SIG_DFL);  // the fault repeats on return, with the default action
    }
}

void InstallBusErrorHandler() {
    static std::once_flag once;
    std::call_once(once, [] {
        struct sigaction action {};
        action.sa_sigaction = OnBusError;
        action.sa_flags = SA_SIGINFO;
        sigemptyset(&action.sa_mask);
        ::sigaction(SIGBUS, &action, &g_previous);
    });
}

int TakeSlot(char* data, size_t size) {
    for (int i = 0; i < kSlots; ++i) {
        char* expected = nullptr;
        if (g_mappings[i].begin.compare_exchange_strong(expected, data)) {
            g_mappings[i].cut.store(false);
            g_mappings[i].size.store(size);
            return i;
        }
    }
    return -1;  // more files mapped at once than the table holds: read without the guard
}

long long MtimeNs(const struct stat& info) {
    return static_cast<long long>(info.st_mtim.tv_sec) * 1000000000LL + info.st_mtim.tv_nsec;
}

}  // namespace

MappedFile::~MappedFile() {
    if (m_slot >= 0) {
        g_mappings[m_slot].size.store(0);
        g_mappings[m_slot].begin.store(nullptr);
    }
    if (m_data) ::munmap(m_data, m_size);
    if (m_fd >= 0) ::close(m_fd);
}

bool MappedFile::open(const std::string& path) {
    m_fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_fd < 0) return false;
    struct stat info {};
    if (::fstat(m_fd, &info) != 0 || !S_ISREG(info.st_mode)) return false;
    m_openedSize = info.st_size;
    m_openedMtimeNs = MtimeNs(info);
    m_size = static_cast<size_t>(info.st_size);
    if (m_size == 0) return true;
    InstallBusErrorHandler();
    void* data = ::mmap(nullptr, m_size, PROT_READ, MAP_PRIVATE, m_fd, 0);
    if (data == MAP_FAILED) return false;
    m_data = static_cast<char*>(data);
    m_slot = TakeSlot(m_data, m_size);
    ::madvise(m_data, m_size, MADV_SEQUENTIAL);
    return true;
}

void MappedFile::releaseBefore(const char* p) {
    if (!m_data || p < m_data || p > m_data + m_size) return;
    size_t upTo = static_cast<size_t>(p - m_data) & ~(kPage - 1);
    if (upTo < m_released + kReleaseStep) return;
    ::madvise(m_data + m_released, upTo - m_released, MADV_DONTNEED);
    m_released = upTo;
}

bool MappedFile::changed() const {
    if (m_slot >= 0 && g_mappings[m_slot].cut.load()) return true;
    struct stat info {};
    if (m_fd < 0 || ::fstat(m_fd, &info) != 0) return true;
    return info.st_size != m_openedSize || MtimeNs(info) != m_openedMtimeNs;
}

std::string WhyUnreadable(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0)
        return errno == ENOENT ? "the file does not exist" : std::strerror(errno);
    if (S_ISDIR(info.st_mode)) return "it is a folder, not a file";
    if (::access(path.c_str(), R_OK) != 0) return "permission denied";
    if (!S_ISREG(info.st_mode)) return "it is not a regular file";
    if (info.st_size == 0) return "the file is empty";
    return "the file cannot be read";
}

}  // namespace dxf
