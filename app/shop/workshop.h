// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <memory>

class QTemporaryDir;

namespace harrowby::app {

/// A hidden folder (mode 0700) beside the place of a file that is being made; removed by the destructor. It is locked
/// with flock() while the program lives, which tells it from a folder that a killed program has left.
class Workshop
{
public:
    enum class Purpose {
        NewStore, ///< ".harrowby-new-…"
        Backup,   ///< ".harrowby-backup-…"
    };

    Workshop(const QString &folder, Purpose purpose);
    ~Workshop();
    Workshop(const Workshop &) = delete;
    Workshop &operator=(const Workshop &) = delete;

    [[nodiscard]] bool isValid() const;
    [[nodiscard]] QString errorString() const;
    [[nodiscard]] QString filePath(const QString &name) const;

private:
    bool own();

    std::unique_ptr<QTemporaryDir> m_folder;
    int m_owner = -1; ///< the folder's descriptor, which holds the mark
};

/// Removes the workshops in this folder that no living program has locked. Without flock() all stay.
void removeLeftWorkshops(const QString &folder);

} // namespace harrowby::app
