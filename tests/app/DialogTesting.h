#pragma once

#include "settings/UserSettings.h"

#include <QAbstractButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <map>
#include <memory>
#include <string>

namespace tarabix::test {

// A left click on the button's indicator: check boxes and radio buttons take clicks on their box
// and caption only, not on the empty width a layout gives them.
inline void click(QAbstractButton* button)
{
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
}

using Stored = std::map<std::string, std::string>;

// The settings class over an INI file in a fresh temporary folder, and what that file holds.
class TempSettings {
public:
    UserSettings& settings() { return m_settings; }

    // Every stored key of section "options" with its text, read back from the file.
    Stored stored() const
    {
        QSettings store(m_file, QSettings::IniFormat);
        store.beginGroup(QStringLiteral("options"));
        Stored out;
        for (const QString& key : store.childKeys())
            out[key.toStdString()] = store.value(key).toString().toStdString();
        return out;
    }

private:
    QTemporaryDir m_dir;
    QString m_file = m_dir.filePath(QStringLiteral("Tarabix.conf"));
    UserSettings m_settings{std::make_unique<QSettings>(m_file, QSettings::IniFormat)};
};

}  // namespace tarabix::test
