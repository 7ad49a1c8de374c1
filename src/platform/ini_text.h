// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace harrowby {

/// The contents of an INI file. Changing one value keeps every other byte: comments, order, spacing and line ends.
/// Sections and keys are compared without regard to case; of equal ones the last counts. Values are UTF-8, quoted
/// and escaped where they need it, in the way of QSettings, so that a host may use that class on the same file.
///
/// Written by hand because QSettings writes the whole file anew, without its comments and in an order of its own.
class IniText
{
public:
    explicit IniText(const QByteArray &bytes);

    [[nodiscard]] std::optional<QString> value(const QString &section, const QString &key) const;
    void setValue(const QString &section, const QString &key, const QString &value);
    [[nodiscard]] QByteArray bytes() const;

    /// Whether value() would find a line written with this section and key.
    [[nodiscard]] static bool canName(const QString &section, const QString &key);

private:
    struct Place
    {
        std::optional<std::size_t> line;       ///< of the value
        std::optional<std::size_t> sectionEnd; ///< last line of the section that is not blank
    };
    [[nodiscard]] Place find(const QString &section, const QString &key) const;
    void endLastLine();

    QByteArray m_mark;               ///< byte order mark, where there is one
    std::vector<QByteArray> m_lines; ///< each with its line end
    QByteArray m_lineEnd;
};

} // namespace harrowby
