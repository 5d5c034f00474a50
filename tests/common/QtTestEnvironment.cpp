// Widget and picture tests show widgets, click them and paint on QImages: one QApplication for
// the whole run of a test executable.
#include <QApplication>

#include <gtest/gtest.h>

namespace {

class QtEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        if (QApplication::instance())
            return;
        static int argc = 1;
        static char name[] = "tarabix_tests";
        static char* argv[] = {name, nullptr};
        m_app = new QApplication(argc, argv);
    }
    void TearDown() override { delete m_app; }

private:
    QApplication* m_app = nullptr;
};

[[maybe_unused]] ::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace
