#pragma once
// The host framework's text file class. Text is decoded and encoded by the host code page; a
// file that begins with a UTF-8 byte-order mark is read and appended to as UTF-8. In text
// mode (the default) a line is written with "\r\n" and read without its line end.
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/win/wintypes.hpp"

class CFileException {};

class CFile {
public:
    enum OpenFlags : UINT {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareCompat = 0x0000,
        shareExclusive = 0x0010,
        shareDenyWrite = 0x0020,
        shareDenyRead = 0x0030,
        shareDenyNone = 0x0040,
        modeNoInherit = 0x0080,
        modeCreate = 0x1000,
        modeNoTruncate = 0x2000,
        typeText = 0x4000,
        typeBinary = 0x8000,
    };
    enum SeekPosition : UINT { begin = 0, current = 1, end = 2 };
};

class CStdioFile : public CFile {
public:
    CStdioFile() = default;
    CStdioFile(const CStdioFile&) = delete;
    CStdioFile& operator=(const CStdioFile&) = delete;
    ~CStdioFile();

    // Without modeCreate the file must exist; with it, it is made, and emptied unless
    // modeNoTruncate is given. Sharing flags are accepted and have no effect.
    BOOL Open(LPCTSTR fileName, UINT flags, CFileException* error = nullptr);
    // The next line without its line end; FALSE at the end of the file.
    BOOL ReadString(std::wstring& line);
    void WriteString(LPCTSTR text);
    ULONGLONG Seek(LONGLONG offset, UINT from);
    void SeekToBegin();
    ULONGLONG SeekToEnd();
    ULONGLONG GetLength() const;
    ULONGLONG GetPosition() const;
    void Close();

private:
    std::FILE* stream_ = nullptr;
    bool text_ = true;
    bool utf8_ = false;  // the file starts with a UTF-8 byte-order mark
};

// The bytes that WriteString puts in a file for `text`: "\n" as "\r\n" in text mode, UTF-8 after
// a byte-order mark, else the host code page.
std::string EncodeFileText(std::wstring_view text, bool textMode, bool utf8);
// The file begins with a UTF-8 byte-order mark.
bool FileStartsWithBom(const std::filesystem::path& file);
