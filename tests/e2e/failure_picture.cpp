#include "tests/e2e/environment.h"
#include "tests/e2e/screen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace brindlecast::testing {
namespace {

// Keeps what the screen shows when the first check of a test fails, while the player still stands there.
class FailurePicture final : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override { kept = false; }

    void OnTestPartResult(const ::testing::TestPartResult& result) override {
        const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
        if (!result.failed() || kept || test == nullptr) {
            return;
        }
        kept = true;
        std::string name = std::string(test->test_suite_name()) + "." + test->name();
        std::ranges::replace(name, '/', '_'); // it stands in the names of tests with parameters
        const Rect screen{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
        PhotographScreen(screen).Save(ReportFolder() + L"\\" + std::wstring(name.begin(), name.end()) +
                                      L".bmp");
    }

    bool kept = false;
};

// Listeners can't be added before the framework has read its command line.
class AddFailurePicture final : public ::testing::Environment {
    void SetUp() override { ::testing::UnitTest::GetInstance()->listeners().Append(new FailurePicture); }
};

const ::testing::Environment* const environment = ::testing::AddGlobalTestEnvironment(new AddFailurePicture);

} // namespace
} // namespace brindlecast::testing
