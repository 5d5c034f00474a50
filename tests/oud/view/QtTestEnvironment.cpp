// The display and widget tests paint on QImages and show widgets: one QApplication for the run.
#include <QApplication>

#include <gtest/gtest.h>

namespace {

class QtEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        static int argc = 1;
        static char name[] = "tarabix_oud_view_tests";
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
