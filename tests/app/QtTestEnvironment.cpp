// The window and dialog tests show widgets and click them: one QApplication for the run.
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
        static char name[] = "tarabix_app_tests";
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
