// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace harrowby {

/// Per-user settings of the application "Harrowby", addressed by section and key without regard to case.
class SavedSettings
{
public:
    virtual ~SavedSettings();
    [[nodiscard]] virtual QString get(const QString &section, const QString &key, const QString &defaultValue) = 0;
    virtual void save(const QString &section, const QString &key, const QString &value) = 0;
};

/// The INI file Harrowby/Harrowby.ini in the user's configuration folder. Read afresh at every use, since the
/// host may write it meanwhile. A value is found under any capitalisation and written where it was found.
class IniSettings final : public SavedSettings
{
public:
    /// Uses `path`, or the user's own file when it is empty.
    explicit IniSettings(QString path = {});
    [[nodiscard]] QString get(const QString &section, const QString &key, const QString &defaultValue) override;
    void save(const QString &section, const QString &key, const QString &value) override;
    [[nodiscard]] const QString &path() const { return m_path; }

private:
    QString m_path;
};

} // namespace harrowby
