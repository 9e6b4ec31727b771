#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "platform/win/registry.hpp"
#include "prefix_fixture.hpp"

namespace {

const char* kExport =
    "Windows Registry Editor Version 5.00\r\n"
    "\r\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment]\r\n"
    "\"CZConfig\"=\"D:\\\\MYTOOL\"\r\n"
    "\"Quoted\"=\"say \\\"hi\\\"\"\r\n"
    "\"Count\"=dword:0000002a\r\n"
    "\"Blob\"=hex:01,02,\\\r\n"
    "  03\r\n"
    "\"Path\"=hex(2):25,00,41,00,25,00,00,00\r\n"
    "@=\"default\"\r\n";

class Registry : public PrefixTest {
protected:
    void SetUp() override {
        PrefixTest::SetUp();
        Host().registry = ParseRegistryExport(std::wstring(kExport, kExport + std::strlen(kExport)));
    }
    // Reads a value the way the module does: size first, then the data.
    std::wstring ReadString(const wchar_t* name, DWORD* typeOut = nullptr) {
        HKEY key = nullptr;
        if (RegOpenKeyExW(HKEY_LOCAL_MACHINE,
                          L"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment", 0,
                          KEY_QUERY_VALUE, &key) != ERROR_SUCCESS)
            return L"<no key>";
        DWORD type = 0, size = 0;
        LONG status = RegQueryValueExW(key, name, nullptr, &type, nullptr, &size);
        std::vector<BYTE> data(size * 2, 0);
        if (status == ERROR_SUCCESS) status = RegQueryValueExW(key, name, nullptr, &type, data.data(), &size);
        RegCloseKey(key);
        if (typeOut) *typeOut = type;
        if (status != ERROR_SUCCESS) return L"<no value>";
        return reinterpret_cast<const wchar_t*>(data.data());
    }
};

TEST_F(Registry, StringValueReadsWithBackslashesUnescaped) {
    DWORD type = 0;
    EXPECT_EQ(ReadString(L"CZConfig", &type), L"D:\\MYTOOL");
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(ReadString(L"Quoted"), L"say \"hi\"");
}

TEST_F(Registry, KeyAndValueNamesIgnoreCase) {
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"system\\currentcontrolset\\control\\SESSION MANAGER\\environment", 0,
                            KEY_QUERY_VALUE, &key),
              ERROR_SUCCESS);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExW(key, L"czconfig", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, (std::wcslen(L"D:\\MYTOOL") + 1) * sizeof(wchar_t));
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
}

TEST_F(Registry, OtherTypesAreRecognised) {
    DWORD type = 0;
    ReadString(L"Count", &type);
    EXPECT_EQ(type, REG_DWORD);
    ReadString(L"Blob", &type);
    EXPECT_EQ(type, REG_BINARY);
    EXPECT_EQ(ReadString(L"Path", &type), L"%A%");
    EXPECT_EQ(type, REG_EXPAND_SZ);
    EXPECT_EQ(ReadString(L""), L"default");
}

TEST_F(Registry, DwordAndContinuedHexValuesKeepTheirBytes) {
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment", 0, KEY_READ, &key);
    DWORD value = 0, size = sizeof value;
    EXPECT_EQ(RegQueryValueExW(key, L"Count", nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &size), ERROR_SUCCESS);
    EXPECT_EQ(value, 42u);
    BYTE blob[8] = {};
    size = sizeof blob;
    EXPECT_EQ(RegQueryValueExW(key, L"Blob", nullptr, nullptr, blob, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(blob[2], 3);
    RegCloseKey(key);
}

TEST_F(Registry, SmallBufferGivesMoreDataAndTheSize) {
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment", 0, KEY_READ, &key);
    BYTE small[4] = {};
    DWORD size = sizeof small;
    EXPECT_EQ(RegQueryValueExW(key, L"CZConfig", nullptr, nullptr, small, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 10 * sizeof(wchar_t));
    RegCloseKey(key);
}

TEST_F(Registry, MissingKeyAndMissingValueFail) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Nothing", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(ReadString(L"Absent"), L"<no value>");
}

TEST_F(Registry, ParentOfAListedKeyExists) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
}

TEST_F(Registry, RegistryFileOfThePrefixIsLoadedByOpenPrefix) {
    WriteBytes("registry.reg", std::string("\xFF\xFE", 2) + [] {
        std::string utf16;
        for (const char* c = "Windows Registry Editor Version 5.00\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\r\n\"V\"=\"x\"\r\n"; *c; ++c) {
            utf16 += *c;
            utf16 += '\0';
        }
        return utf16;
    }());
    std::string error;
    ASSERT_TRUE(OpenPrefix(prefix_, error)) << error;
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\T", 0, KEY_READ, &key), ERROR_SUCCESS);
    wchar_t value[4] = {};
    DWORD size = sizeof value;
    EXPECT_EQ(RegQueryValueExW(key, L"V", nullptr, nullptr, reinterpret_cast<BYTE*>(value), &size), ERROR_SUCCESS);
    EXPECT_STREQ(value, L"x");
    RegCloseKey(key);
}

}  // namespace
