#include "base/win32/registry_settings_store.h"

#include "app/settings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindlecast {
namespace {

constexpr const wchar_t* kName = L"UnitTestValue";

// The user's own settings stay out of it: the root of the current user is an empty key of the test's own.
class RegistrySettingsStoreTest : public ::testing::Test {
protected:
    void SetUp() override {
        RegDeleteTreeW(HKEY_CURRENT_USER, kScratch);
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, kScratch, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                  KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        scratch.Reset(key);
        ASSERT_EQ(RegOverridePredefKey(HKEY_CURRENT_USER, scratch.Get()), ERROR_SUCCESS);
    }
    void TearDown() override {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        scratch.Reset();
        RegDeleteTreeW(HKEY_CURRENT_USER, kScratch);
    }

    static void Put(DWORD type, const std::vector<BYTE>& bytes, const wchar_t* name = kName) {
        const SettingsKey key(SettingsKey::Access::Write);
        // A text that ends without a zero is stored with one when memory happens to hold one right behind it.
        std::vector<BYTE> followed = bytes;
        followed.insert(followed.end(), {'x', 'x'});
        ASSERT_EQ(RegSetValueExW(key.Get(), name, 0, type, followed.data(), static_cast<DWORD>(bytes.size())),
                  ERROR_SUCCESS);
    }
    static std::vector<BYTE> TextBytes(std::size_t byteCount) {
        std::vector<BYTE> bytes(byteCount, 0);
        for (std::size_t i = 0; i + 2 < byteCount; i += 2) {
            bytes[i] = 'w';
        }
        return bytes;
    }

    RegistrySettingsStore store;

private:
    static constexpr const wchar_t* kScratch = L"Software\\Brindlecast unit tests";
    UniqueKey scratch;
};

TEST_F(RegistrySettingsStoreTest, AWriterCreatesTheKeyAndAReaderGetsTheValue) {
    EXPECT_FALSE(SettingsKey(SettingsKey::Access::Read));
    EXPECT_EQ(store.ReadDword(kName, TypeCheck::Strict), std::nullopt);
    EXPECT_EQ(store.ReadString(kName), std::nullopt);
    EXPECT_TRUE(store.WriteDword(kName, 0x80000001));
    EXPECT_EQ(store.ReadDword(kName, TypeCheck::Strict), 0x80000001U);
}

TEST_F(RegistrySettingsStoreTest, AStrictReaderIgnoresAnotherTypeOrSize) {
    Put(REG_SZ, {'8', 0, 0, 0});
    EXPECT_EQ(store.ReadDword(kName, TypeCheck::Strict), std::nullopt);
    Put(REG_DWORD, {1, 2});
    EXPECT_EQ(store.ReadDword(kName, TypeCheck::Strict), std::nullopt);
    Put(REG_BINARY, {1, 0, 0, 0});
    EXPECT_EQ(store.ReadDword(kName, TypeCheck::Strict), std::nullopt);
}

TEST_F(RegistrySettingsStoreTest, ALooseReaderTakesTheFirstFourBytes) {
    Put(REG_BINARY, {5, 0, 0, 0});
    EXPECT_EQ(store.ReadDword(kName, TypeCheck::Loose), 5U);
    Put(REG_BINARY, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(store.ReadDword(kName, TypeCheck::Loose), 0x04030201U);
    Put(REG_SZ, {'8', 0, 0, 0});
    EXPECT_EQ(store.ReadDword(kName, TypeCheck::Loose), 0x38U);
    EXPECT_EQ(store.ReadDword(L"Absent", TypeCheck::Loose), std::nullopt);
}

TEST_F(RegistrySettingsStoreTest, ALooseReaderTakesAShortValueAsIfZerosFollowed) {
    Put(REG_BINARY, {9});
    EXPECT_EQ(store.ReadDword(kName, TypeCheck::Loose), 9U);
    Put(REG_BINARY, {0xFF, 0xFF, 0xFF});
    EXPECT_EQ(store.ReadDword(kName, TypeCheck::Loose), 0x00FFFFFFU);
    Put(REG_BINARY, {});
    EXPECT_EQ(store.ReadDword(kName, TypeCheck::Loose), std::nullopt);
}

TEST_F(RegistrySettingsStoreTest, AVolumeStoredAsTextIsIgnored) {
    Put(REG_SZ, {'8', 0, '0', 0, 0, 0}, L"Volume");
    EXPECT_EQ(ReadSetting(store, settings::kVolume), 50U);
    EXPECT_EQ(ReadPresentSetting(store, settings::kVolume), std::nullopt);
}

TEST_F(RegistrySettingsStoreTest, AMagnetDistanceOfAnotherTypeIsTakenByItsFirstFourBytes) {
    EXPECT_EQ(ReadSetting(store, settings::kMagnetDistance), 10U);
    Put(REG_BINARY, {7, 1, 0, 0, 9, 9}, L"MagnetDistance");
    EXPECT_EQ(ReadSetting(store, settings::kMagnetDistance), 0x107U);
    Put(REG_SZ, {'1', 0, '2', 0, 0, 0}, L"MagnetDistance");
    EXPECT_EQ(ReadSetting(store, settings::kMagnetDistance), 0x00320031U);
}

TEST_F(RegistrySettingsStoreTest, TextsGoThereAndBack) {
    EXPECT_TRUE(store.WriteString(kName, L"한국어 값"));
    EXPECT_EQ(store.ReadString(kName), L"한국어 값");
    EXPECT_TRUE(store.WriteString(kName, L""));
    EXPECT_EQ(store.ReadString(kName), L"");
}

TEST_F(RegistrySettingsStoreTest, ATextOf1024BytesIsReadAndOneOf1026IsNot) {
    Put(REG_SZ, TextBytes(1024));
    EXPECT_EQ(store.ReadString(kName), std::wstring(511, L'w'));
    Put(REG_SZ, TextBytes(1026));
    EXPECT_EQ(store.ReadString(kName), std::nullopt);
}

TEST_F(RegistrySettingsStoreTest, ATextMustBeATerminatedStringOfWholeCharacters) {
    Put(REG_SZ, {});
    EXPECT_EQ(store.ReadString(kName), L"");
    Put(REG_EXPAND_SZ, {'a', 0, 0, 0});
    EXPECT_EQ(store.ReadString(kName), L"a");
    Put(REG_SZ, {'a', 0, 0, 0, 'b', 0, 0, 0});
    EXPECT_EQ(store.ReadString(kName), L"a") << "the text ends at its first zero";
    Put(REG_BINARY, {'a', 0, 0, 0});
    EXPECT_EQ(store.ReadString(kName), std::nullopt);
    store.WriteDword(kName, 7);
    EXPECT_EQ(store.ReadString(kName), std::nullopt);
}

TEST_F(RegistrySettingsStoreTest, AnUnterminatedTextCountsAsAbsent) {
    Put(REG_SZ, {'a', 0, 'b', 0});
    EXPECT_EQ(store.ReadString(kName), std::nullopt);
    Put(REG_SZ, {'a', 0, 0});
    EXPECT_EQ(store.ReadString(kName), std::nullopt);
}

} // namespace
} // namespace brindlecast
