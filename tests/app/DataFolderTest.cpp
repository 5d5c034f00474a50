#include "app/DataFolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace tarabix {
namespace {

TEST(DataFolder, FindsTheDataBesideTheProgramOrInShare)
{
    // Files made under a prefix, and the folder found from its bin/, both relative to the prefix.
    const std::tuple<const char*, std::vector<QString>, QString> cases[] = {
        {"in share/tarabix", {"share/tarabix/tunings.ini"}, "share/tarabix"},
        {"both: the program's own folder wins", {"bin/tunings.ini", "share/tarabix/tunings.ini"}, "bin"},
        {"share/tarabix without tunings.ini", {"share/tarabix/maqams.ini"}, "bin"},
        {"nowhere", {}, "bin"},
    };
    for (const auto& [name, files, expected] : cases) {
        SCOPED_TRACE(name);
        QTemporaryDir prefix;
        QDir().mkpath(prefix.filePath("bin"));
        for (const QString& file : files) {
            QDir().mkpath(QFileInfo(prefix.filePath(file)).path());
            QFile touched(prefix.filePath(file));
            ASSERT_TRUE(touched.open(QIODevice::WriteOnly));
        }
        EXPECT_EQ(dataFolder(prefix.filePath("bin")), QDir::cleanPath(prefix.filePath(expected)));
    }
}

}  // namespace
}  // namespace tarabix
