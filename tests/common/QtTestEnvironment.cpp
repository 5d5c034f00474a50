// Widget and picture tests show widgets, click them and paint on QImages: one QApplication for
// the whole run of a test executable.
#include <QApplication>

#include <gtest/gtest.h>

namespace {

struct QtEnvironment : ::testing::Environment {
    void SetUp() override
    {
        static int argc = 1;
        static char name[] = "tarabix_tests";
        static char* argv[] = {name, nullptr};
        if (!QApplication::instance())
            app = new QApplication(argc, argv);
    }
    void TearDown() override { delete app; }
    QApplication* app = nullptr;
};

[[maybe_unused]] ::testing::Environment* const kEnvironment = ::testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace
