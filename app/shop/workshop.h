// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <memory>

class QTemporaryDir;

namespace harrowby::app {

/// A hidden folder beside the place of a file that is being made, its owner's alone. It goes with the object. As long
/// as the program lives it is marked as owned, so that one that a kill has left behind can be told from it.
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

/// Removes the workshops in this folder that nobody alive owns. Where the file system knows no such mark, all stay.
void removeLeftWorkshops(const QString &folder);

} // namespace harrowby::app
