#pragma once
// A fresh host state over a fresh prefix, for tests of the module: files are written and read
// at Windows paths ("D:\\Mytool\\cad\\Cg.log"), text is encoded in a code page of choice, and the
// registry is set from the text of a registry export.
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "platform/win/codepage.hpp"
#include "platform/win/host_state.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/prefix_fixture.hpp"
#include "platform/win/registry_file.hpp"

class ModuleTest : public PrefixTest {
protected:
    // The bytes of a text in a code page: 936 is GBK, 65001 UTF-8.
    static std::string Encoded(std::wstring_view text, UINT codePage = 936) {
        return EncodeCodePage(text, codePage);
    }

    // Writes bytes at a Windows path, making the folders on the way.
    std::filesystem::path WriteAt(std::wstring_view windowsPath, const std::string& bytes) {
        std::filesystem::path file = ResolvePath(windowsPath);
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
        return file;
    }
    // Writes a text encoded in a code page at a Windows path.
    std::filesystem::path WriteText(std::wstring_view windowsPath, std::wstring_view text,
                                    UINT codePage = 936) {
        return WriteAt(windowsPath, Encoded(text, codePage));
    }
    std::string ReadAt(std::wstring_view windowsPath) { return ReadBytes(ResolvePath(windowsPath)); }
    bool ExistsAt(std::wstring_view windowsPath) {
        return std::filesystem::exists(ResolvePath(windowsPath));
    }

    // Replaces the registry by the keys and values of an export's body, e.g.
    // L"[HKEY_LOCAL_MACHINE\\SOFTWARE\\X]\r\n\"Name\"=\"value\"\r\n".
    static void SetRegistry(const std::wstring& body) {
        Host().registry = ParseRegistryExport(L"Windows Registry Editor Version 5.00\r\n\r\n" + body);
    }
};
