// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/saved_settings.h>

#include <QString>

namespace harrowby {

/// Per-user settings of the application "Harrowby", addressed by section and key without regard to case.
class SavedSettings
{
public:
    virtual ~SavedSettings();
    [[nodiscard]] virtual QString get(const QString &section, const QString &key, const QString &defaultValue) = 0;
    /// The saved value, or the setting's own default.
    [[nodiscard]] QString get(const SettingPlace &place) { return get(place.section, place.key, place.defaultValue); }
    virtual void save(const QString &section, const QString &key, const QString &value) = 0;
    void save(const SettingPlace &place, const QString &value) { save(place.section, place.key, value); }
};

/// The INI file Harrowby/Harrowby.ini in the user's configuration folder. Read afresh at every use, since the
/// host may write it meanwhile. A value is found under any capitalisation and written where it was found.
class IniSettings final : public SavedSettings
{
public:
    /// Uses `path`, or the user's own file when it is empty.
    explicit IniSettings(QString path = {});
    using SavedSettings::get;
    using SavedSettings::save;
    [[nodiscard]] QString get(const QString &section, const QString &key, const QString &defaultValue) override;
    void save(const QString &section, const QString &key, const QString &value) override;
    [[nodiscard]] const QString &path() const { return m_path; }

private:
    QString m_path;
};

} // namespace harrowby
