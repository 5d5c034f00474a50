#include "app/DataFolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace tarabix {
namespace {

void touch(const QString& path)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
}

TEST(DataFolder, FindsTheDataBesideTheProgramOrInShare)
{
    struct Case {
        const char* name;
        std::vector<QString> files;  // relative to the prefix
        QString expected;            // relative to the prefix
    };
    const Case cases[] = {
        {"beside the program", {"bin/tunings.ini"}, "bin"},
        {"in share/tarabix", {"share/tarabix/tunings.ini"}, "share/tarabix"},
        {"both: the program's own folder wins", {"bin/tunings.ini", "share/tarabix/tunings.ini"}, "bin"},
        {"share/tarabix without tunings.ini", {"share/tarabix/maqams.ini"}, "bin"},
        {"nowhere", {}, "bin"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir prefix;
        ASSERT_TRUE(prefix.isValid());
        QDir().mkpath(prefix.filePath("bin"));
        for (const QString& file : c.files)
            touch(prefix.filePath(file));
        EXPECT_EQ(dataFolder(prefix.filePath("bin")), QDir::cleanPath(prefix.filePath(c.expected)));
    }
}

}  // namespace
}  // namespace tarabix
