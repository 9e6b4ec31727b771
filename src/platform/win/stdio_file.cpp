#include "platform/win/stdio_file.hpp"

#include <cerrno>
#include <filesystem>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/win/codepage.hpp"
#include "platform/win/paths.hpp"

namespace {

constexpr char kUtf8Bom[] = "\xEF\xBB\xBF";

int PosixFlags(UINT flags) {
    int access = (flags & CFile::modeReadWrite) ? O_RDWR : (flags & CFile::modeWrite) ? O_WRONLY : O_RDONLY;
    if (flags & CFile::modeCreate) {
        access |= O_CREAT;
        if (!(flags & CFile::modeNoTruncate)) access |= O_TRUNC;
    }
    return access;
}

const char* StreamMode(UINT flags) {
    if (flags & CFile::modeReadWrite) return "r+b";
    if (flags & CFile::modeWrite) return "wb";
    return "rb";
}

bool StartsWithBom(int fd) {
    char head[3] = {};
    return ::pread(fd, head, 3, 0) == 3 && std::string_view(head, 3) == kUtf8Bom;
}

// A file opened for writing only is read through a descriptor of its own.
bool StartsWithBom(const std::filesystem::path& file) {
    int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    bool bom = StartsWithBom(fd);
    ::close(fd);
    return bom;
}

// The descriptor of the file, and its path when it had to be resolved. A file that exists as
// spelt is opened there at once (ResolvePath would give that same path); one that does not is
// resolved and opened with the creating flags.
int OpenDescriptor(LPCTSTR fileName, int flags, std::filesystem::path& resolved) {
    std::filesystem::path spelled = SpelledPath(fileName);
    if (!spelled.empty()) {
        int fd = ::open(spelled.c_str(), flags & ~O_CREAT, 0644);
        if (fd >= 0) {
            resolved = spelled;
            return fd;
        }
    }
    resolved = ResolvePath(fileName);
    return ::open(resolved.c_str(), flags, 0644);
}

// A file for writing only is opened for reading as well where that is allowed, so that its
// byte order mark is read through the same descriptor.
int OpenReadable(LPCTSTR fileName, int flags, std::filesystem::path& resolved, bool& readable) {
    readable = (flags & O_ACCMODE) != O_WRONLY;
    if (!readable) {
        int fd = OpenDescriptor(fileName, (flags & ~O_ACCMODE) | O_RDWR, resolved);
        if (fd >= 0 || (errno != EACCES && errno != EPERM)) {
            readable = fd >= 0;
            return fd;
        }
    }
    return OpenDescriptor(fileName, flags, resolved);
}

}  // namespace

bool FileStartsWithBom(const std::filesystem::path& file) { return StartsWithBom(file); }

std::string EncodeFileText(std::wstring_view text, bool textMode, bool utf8) {
    std::wstring translated;
    translated.reserve(text.size());
    for (wchar_t c : text) {
        if (textMode && c == L'\n') translated += L'\r';
        translated += c;
    }
    return utf8 ? Utf8FromWide(translated) : AnsiFromWide(translated);
}

CStdioFile::~CStdioFile() { Close(); }

BOOL CStdioFile::Open(LPCTSTR fileName, UINT flags, CFileException*) {
    Close();
    if (!fileName) return FALSE;
    std::filesystem::path file;
    bool readable = false;
    int fd = OpenReadable(fileName, PosixFlags(flags), file, readable);
    if (fd < 0) return FALSE;
    struct stat info {};
    if (::fstat(fd, &info) != 0 || S_ISDIR(info.st_mode)) {
        ::close(fd);
        return FALSE;
    }
    utf8_ = readable ? StartsWithBom(fd) : StartsWithBom(file);
    stream_ = ::fdopen(fd, StreamMode(flags));
    if (!stream_) {
        ::close(fd);
        return FALSE;
    }
    text_ = !(flags & typeBinary);
    return TRUE;
}

BOOL CStdioFile::ReadString(std::wstring& line) {
    line.clear();
    if (!stream_) return FALSE;
    if (utf8_ && GetPosition() == 0) std::fseek(stream_, 3, SEEK_SET);
    std::string bytes;
    int c = 0;
    while ((c = std::fgetc(stream_)) != EOF && c != '\n') bytes += static_cast<char>(c);
    if (c == EOF && bytes.empty()) return FALSE;
    if (text_ && c == '\n' && !bytes.empty() && bytes.back() == '\r') bytes.pop_back();
    line = utf8_ ? WideFromUtf8(bytes) : WideFromAnsi(bytes);
    return TRUE;
}

void CStdioFile::WriteString(LPCTSTR text) {
    if (!stream_ || !text) return;
    std::string bytes = EncodeFileText(text, text_, utf8_);
    std::fwrite(bytes.data(), 1, bytes.size(), stream_);
}

ULONGLONG CStdioFile::Seek(LONGLONG offset, UINT from) {
    if (!stream_) return 0;
    int whence = from == end ? SEEK_END : from == current ? SEEK_CUR : SEEK_SET;
    fseeko(stream_, offset, whence);
    return GetPosition();
}

void CStdioFile::SeekToBegin() { Seek(0, begin); }
ULONGLONG CStdioFile::SeekToEnd() { return Seek(0, end); }

ULONGLONG CStdioFile::GetPosition() const {
    return stream_ ? static_cast<ULONGLONG>(ftello(stream_)) : 0;
}

ULONGLONG CStdioFile::GetLength() const {
    struct stat info {};
    if (!stream_) return 0;
    std::fflush(stream_);
    return ::fstat(fileno(stream_), &info) == 0 ? static_cast<ULONGLONG>(info.st_size) : 0;
}

void CStdioFile::Close() {
    if (stream_) std::fclose(stream_);
    stream_ = nullptr;
}
