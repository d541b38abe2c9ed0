#include <gtest/gtest.h>
#include <objbase.h>

namespace brindlecast {
namespace {

// Filters are used from an apartment like the player's main thread.
class ComEnvironment final : public ::testing::Environment {
public:
    void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))); }
    void TearDown() override { CoUninitialize(); }
};

const auto* const comEnvironment = ::testing::AddGlobalTestEnvironment(new ComEnvironment);

} // namespace
} // namespace brindlecast
