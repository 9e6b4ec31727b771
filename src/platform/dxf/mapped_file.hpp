#pragma once
// A drawing file mapped into memory and read front to back. The reader gives back the pages it
// has gone past, so that a large file is never resident whole. A file cut short or written to
// while it is mapped does not stop the process: the pages past its new end read as zeros, and
// changed() tells the reader that what it read is not the file.
#include <sys/types.h>

#include <string>
#include <string_view>

namespace dxf {

class MappedFile {
public:
    MappedFile() = default;
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    ~MappedFile();

    // False when the file cannot be opened or mapped (or is not a regular file).
    bool open(const std::string& path);
    std::string_view bytes() const { return {m_data, m_data ? m_size : 0}; }
    // Gives back the whole pages before p, a quarter megabyte at a time; they are read again
    // from the file if they are looked at again.
    void releaseBefore(const char* p);
    // True when the file was cut short, or its size or modification time changed, since open().
    bool changed() const;

private:
    int m_fd = -1;
    char* m_data = nullptr;
    size_t m_size = 0;
    size_t m_released = 0;
    int m_slot = -1;  // in the table the bus-error handler consults
    off_t m_openedSize = 0;
    long long m_openedMtimeNs = 0;
};

// Why the file at `path` cannot be read as a drawing: missing, a folder, without read
// permission, empty, not a regular file, or what the operating system says.
std::string WhyUnreadable(const std::string& path);

}  // namespace dxf
