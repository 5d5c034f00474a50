#pragma once

#include "settings/UserSettings.h"

#include <QSettings>
#include <QString>
#include <QTemporaryDir>

#include <map>
#include <memory>
#include <string>

namespace tarabix::test {

// The settings class over an INI file in a fresh temporary folder, and what that file holds.
class TempSettings {
public:
    TempSettings() : m_settings(std::make_unique<QSettings>(file(), QSettings::IniFormat)) {}

    UserSettings& settings() { return m_settings; }

    // Every stored key of section "options" with its text, read back from the file.
    std::map<std::string, std::string> stored() const
    {
        QSettings store(file(), QSettings::IniFormat);
        store.beginGroup(QStringLiteral("options"));
        std::map<std::string, std::string> out;
        for (const QString& key : store.childKeys())
            out[key.toStdString()] = store.value(key).toString().toStdString();
        return out;
    }

private:
    QString file() const { return m_dir.filePath(QStringLiteral("Tarabix.conf")); }

    QTemporaryDir m_dir;
    UserSettings m_settings;
};

}  // namespace tarabix::test
