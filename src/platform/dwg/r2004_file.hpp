#pragma once
// A whole AC1018 file from its sections: the plain file header, the data pages of each section
// (at most 0x7400 bytes of data a page, compressed), the section map and page map pages, and the
// encrypted file header block that says where they are.
#include <cstdint>
#include <string>
#include <vector>

namespace dwg {

struct NamedSection {
    std::string name;  // "AcDb:Header" ...
    std::vector<std::uint8_t> data;
};

// The file's bytes. dwgCodePage is the file header's code page number (30 for ANSI_1252).
std::vector<std::uint8_t> AssembleR2004(std::vector<NamedSection> sections, int dwgCodePage);

// The file header's code page number of a Windows code page (1252: 30, 936: 39); 30 for one
// the format does not list.
int DwgCodePageNumber(int windowsCodePage);

}  // namespace dwg
